// The entity kinds memhost models, each with a reader (tags into typed
// state), the fields its state writes, and a fingerprint of that state.
// Kinds not listed become MemOtherEntity and keep their tags as read.
#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "dxf/shape.h"
#include "dxf/text_codec.h"
#include "memhost/document.h"

namespace kestrana::dxf {

struct ReadContext {
  memhost::MemDocument& doc;
  const TextCodec& codec;
  // Boundary objects of associative hatches, named by handle; resolved to
  // object IDs once every object is read.
  struct Sources {
    memhost::MemHatch* hatch;
    size_t loop;
    std::vector<uint64_t> handles;
  };
  std::vector<Sources> pending_sources;
};

struct WriteContext {
  memhost::MemDocument& doc;
  const TextCodec& codec;
  const Shape* original = nullptr;  // nullptr for a new entity
  bool paper_space = false;
};

struct EntityCodec {
  std::string_view type;  // "LINE"
  host::EntityKind kind;  // of the memhost entity it reads
  std::unique_ptr<memhost::MemEntity> (*read)(const Shape& shape,
                                              ReadContext& ctx);
  // Adds the kind's groups (after the common AcDbEntity group).
  void (*fields)(memhost::MemEntity& e, const WriteContext& ctx,
                 WritePlan& plan);
  void (*hash)(const memhost::MemEntity& e, Hasher& h);
};

// The codec of a modelled kind, or nullptr.
const EntityCodec* FindEntityCodec(std::string_view type);

// Reads an entity of any kind (typed or kept as read), with its common
// fields and extended data set once it joins a block.
// `raw_only` keeps even a modelled kind as read (attributes without their
// block reference).
std::unique_ptr<memhost::MemEntity> ReadEntityOfShape(const Shape& shape,
                                                      ReadContext& ctx,
                                                      bool& paper_space,
                                                      bool raw_only);
// Extended data left in a file's text until it is used.
class FileXData final : public memhost::XDataSource,
                        public std::enable_shared_from_this<FileXData> {
 public:
  FileXData(std::shared_ptr<const std::string> file, const TextCodec& codec);
  std::vector<host::XRecord> Parse(uint64_t at, uint32_t line) const override;
  // Gives `obj` the extended data of `shape` (read from this file); call
  // after the object joined the document. The data is checked now, with
  // the errors parsing would raise.
  void Apply(const Shape& shape, memhost::MemObject& obj);

 private:
  std::shared_ptr<const std::string> file_;
  TextCodec codec_;
  memhost::XDataApps last_apps_;
};

// Fills the picture of an entity of a kind the model keeps as read.
void ReadOutline(const Shape& shape, const TextCodec& codec,
                 memhost::MemOtherEntity& e);

// The picture of a classic POLYLINE from its vertices, read after it.
class PolylineOutline {
 public:
  explicit PolylineOutline(const Shape& polyline);
  void AddVertex(const Shape& vertex);
  void Finish(memhost::MemOtherEntity& e) const;

 private:
  struct Vertex {
    host::Point3 at;
    double bulge = 0;
    int64_t flags = 0;
    int64_t face[4] = {0, 0, 0, 0};
  };
  int64_t flags_ = 0;
  double elevation_ = 0;
  host::Point3 normal_{0, 0, 1};
  std::vector<Vertex> vertices_;
};

// Fingerprint of an entity's state (common fields and kind); its extended
// data is followed by MemObject::XDataVersion().
uint64_t EntityHash(const memhost::MemEntity& e);

// Everything an entity writes, for WriteObject.
void EntityPlan(memhost::MemEntity& e, const WriteContext& ctx,
                WritePlan& plan);

// Text alignment codes of the file (72 and 73/74) and of the host.
host::TextAlignment AlignmentFromCodes(int horizontal, int vertical);
void AlignmentToCodes(host::TextAlignment a, int& horizontal, int& vertical);

}  // namespace kestrana::dxf
