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
// Sets what every entity carries; call after the entity joined the document.
void ApplyXData(const Shape& shape, memhost::MemObject& obj,
                const TextCodec& codec);

// Fingerprint of an entity's whole state (common fields, kind, XData).
uint64_t EntityHash(const memhost::MemEntity& e);

// Everything an entity writes, for WriteObject.
void EntityPlan(memhost::MemEntity& e, const WriteContext& ctx,
                WritePlan& plan);

// Text alignment codes of the file (72 and 73/74) and of the host.
host::TextAlignment AlignmentFromCodes(int horizontal, int vertical);
void AlignmentToCodes(host::TextAlignment a, int& horizontal, int& vertical);

}  // namespace kestrana::dxf
