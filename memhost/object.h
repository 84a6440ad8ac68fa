// State shared by every object and entity of an in-memory drawing, and the
// templates that implement the host interface over it.
#pragma once

#include <any>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/host.h"
#include "memhost/geometry.h"

namespace kestrana::memhost {

using host::BoundingBox;
using host::ObjectId;
using host::EntityKind;
using host::XRecord;

class MemBlock;
class MemDocument;
class MemBlockReference;
class MemEntity;

enum class IdPolicy { kFromHandle, kFresh };

struct Options {
  IdPolicy id_policy = IdPolicy::kFromHandle;
  // Seeds the fresh IDs; 0 takes one from the clock.
  uint32_t fresh_seed = 0;
};

// Extended data read from a file and parsed on first use: loading and
// saving a drawing then builds no records that nobody reads.
class XDataSource {
 public:
  virtual ~XDataSource() = default;
  // The records that start at `at` (a position in the source's own terms)
  // on line `line`.
  virtual std::vector<XRecord> Parse(uint64_t at, uint32_t line) const = 0;
};
// The application of each record, in order; objects whose records name
// the same applications share one list.
using XDataApps = std::shared_ptr<const std::vector<std::string>>;

// What a file layer keeps of an object or a drawing to write it back as
// read. memhost stores it and never looks inside.
class FileState {
 public:
  template <class T>
  T* Get() {
    return std::any_cast<T>(&state_);
  }
  template <class T>
  const T* Get() const {
    return std::any_cast<T>(&state_);
  }
  template <class T>
  void Set(T state) {
    state_ = std::move(state);
  }

 private:
  std::any state_;
};

// State of every database object.
class MemObject {
 public:
  virtual ~MemObject() = default;
  virtual host::Object& AsHostObject() = 0;
  // The entity this object is, or nullptr (cheaper than a dynamic_cast).
  virtual MemEntity* AsMemEntity() { return nullptr; }

  MemDocument& Doc() const { return *doc_; }
  uint64_t HandleValue() const { return handle_; }
  ObjectId Id() const { return id_; }
  bool IsErased() const { return erased_; }
  // Creation order; drawing order within a block.
  uint64_t Sequence() const { return seq_; }
  const std::vector<XRecord>& XData() const {
    if (pending_source_) ParsePendingXData();
    return xdata_;
  }
  // Counts the changes to the extended data (copies carry it along), so
  // that the file layer can tell unchanged records without comparing them.
  uint32_t XDataVersion() const { return xdata_version_; }
  // Replaces all extended data without checks (the file reader's way in).
  void SetAllXData(std::vector<XRecord> records);
  // The same, parsed from `source` when first used; the applications
  // count at once.
  void SetPendingXData(std::shared_ptr<const XDataSource> source,
                       XDataApps apps, uint64_t at, uint32_t line);
  // Calls `f(app)` for the application of each record, in order, without
  // parsing pending data.
  template <class F>
  void ForEachXDataApp(F&& f) const {
    if (pending_source_) {
      for (const std::string& app : *pending_apps_) f(app);
    } else {
      for (const XRecord& r : xdata_) f(r[0].value.Text());
    }
  }
  // Whether a record of an application matches `test(app)`, without
  // parsing pending data.
  template <class F>
  bool AnyXDataApp(F&& test) const {
    bool found = false;
    ForEachXDataApp(
        [&](const std::string& app) { found = found || test(app); });
    return found;
  }

  FileState& File() { return file_; }
  const FileState& File() const { return file_; }

 protected:
  friend class MemDocument;
  friend class MemBlock;
  friend class MemBlockReference;
  template <class B>
  friend class EntityImpl;
  void CheckAlive() const;
  std::optional<XRecord> FindXData(const std::string& app) const;
  void StoreXData(const XRecord& record);
  std::string Describe() const;
  void ParsePendingXData() const;

  MemDocument* doc_ = nullptr;
  uint64_t handle_ = 0;
  ObjectId id_ = 0;
  bool erased_ = false;
  uint64_t seq_ = 0;
  // Parsed records; empty while pending_source_ holds them unparsed.
  mutable std::vector<XRecord> xdata_;
  mutable std::shared_ptr<const XDataSource> pending_source_;
  mutable XDataApps pending_apps_;
  uint64_t pending_at_ = 0;
  uint32_t pending_line_ = 0;
  uint32_t xdata_version_ = 0;
  FileState file_;
};

// Implements host::Object for a host base class.
template <class Base, class State = MemObject>
class ObjectImpl : public Base, public State {
 public:
  host::Object& AsHostObject() override { return *this; }
  ObjectId ObjectID() const override {
    this->CheckAlive();
    return this->id_;
  }
  std::string Handle() const override;
  bool Erased() const override { return this->erased_; }
  host::Document& OwnerDocument() const override;
  std::optional<XRecord> GetXData(const std::string& app) const override {
    this->CheckAlive();
    return this->FindXData(app);
  }
  void SetXData(const XRecord& record) override;
  std::vector<XRecord> GetAllXData() const override {
    this->CheckAlive();
    return this->XData();
  }

 protected:
  // Raises when the object may not change (erased, locked layer).
  virtual void CheckWritable() const { this->CheckAlive(); }
};

// Entity state and the geometric hooks each kind provides.
class MemEntity : public MemObject {
 public:
  virtual host::Entity& AsHostEntity() = 0;
  MemEntity* AsMemEntity() override { return this; }
  EntityKind KindOf() const {
    return const_cast<MemEntity*>(this)->AsHostEntity().Kind();
  }
  // This entity as a block reference, or nullptr.
  MemBlockReference* AsBlockReference();
  const MemBlockReference* AsBlockReference() const;
  MemBlock& Owner() const { return *owner_; }
  const std::string& LayerName() const { return layer_; }
  // True when the entity sits in model or paper space (selectable).
  bool InLayout() const;
  // Moves the entity by a plan transform (move, rotate, scale).
  virtual void Transform(const Affine& m) = 0;
  // Adds the extents of the entity, transformed by `m`, to `box`.
  virtual void AddExtents(const Affine& m, Box2& box) const = 0;
  // The plan curve of the entity; kNotSupported for kinds without one.
  virtual std::vector<CurvePiece> Pieces() const;
  // A copy of the kind's state, not yet registered in a document.
  virtual std::unique_ptr<MemEntity> CloneState() const = 0;
  // Raises kNotSupported for an entity on a tilted plane, which this host
  // does not move or intersect.
  void CheckFlat(const Point3& normal) const;

  // Sets the layer without checks (the file reader's way in).
  void SetLayerUnchecked(const std::string& layer);
  int color_ = host::color::kByLayer;
  bool visible_ = true;

 protected:
  friend class MemDocument;
  friend class MemBlock;
  template <class B>
  friend class EntityImpl;
  void CheckModifiable() const;

  MemBlock* owner_ = nullptr;
  std::string layer_ = "0";
};

// Implements host::Entity for a host entity class.
template <class Base>
class EntityImpl : public ObjectImpl<Base, MemEntity> {
 public:
  host::Entity& AsHostEntity() override { return *this; }
  host::Block& OwnerBlock() const override;
  std::string Layer() const override {
    this->CheckAlive();
    return this->layer_;
  }
  void SetLayer(const std::string& layer) override;
  int TrueColor() const override {
    this->CheckAlive();
    return this->color_;
  }
  void SetTrueColor(int color_index) override;
  bool Visible() const override {
    this->CheckAlive();
    return this->visible_;
  }
  void SetVisible(bool visible) override {
    this->CheckWritable();
    this->visible_ = visible;
  }
  void Delete() override;
  void Update() override { this->CheckAlive(); }
  BoundingBox GetBoundingBox() const override;
  std::vector<double> IntersectWith(const host::Entity& other,
                                    host::ExtendOption option) const override;
  void Move(const Point3& from, const Point3& to) override {
    this->CheckWritable();
    this->Transform(
        Affine::Translation(to.x - from.x, to.y - from.y, to.z - from.z));
  }
  void Rotate(const Point3& base, double angle) override {
    this->CheckWritable();
    this->Transform(Affine::Rotation(base, angle));
  }
  host::Entity& Copy() const override;

 protected:
  void CheckWritable() const override { this->CheckModifiable(); }
};

}  // namespace kestrana::memhost
