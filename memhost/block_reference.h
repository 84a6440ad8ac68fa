// Block references with their attributes, and entities kept as read.
#pragma once

#include "memhost/texts.h"

namespace kestrana::memhost {

class MemBlockReference final : public EntityImpl<host::BlockReference> {
 public:
  std::string ObjectName() const override { return "AcDbBlockReference"; }
  EntityKind Kind() const override { return EntityKind::kBlockReference; }
  std::string EntityName() const override { return "INSERT"; }
  std::string Name() const override;
  Point3 InsertionPoint() const override;
  void SetInsertionPoint(const Point3& p) override;
  double Rotation() const override;
  void SetRotation(double angle) override;
  double XScaleFactor() const override;
  double YScaleFactor() const override;
  double ZScaleFactor() const override;
  void SetScaleFactors(double x, double y, double z) override;
  bool HasAttributes() const override;
  std::vector<host::AttributeReference*> GetAttributes() const override;

  void Transform(const Affine& m) override;
  void AddExtents(const Affine& m, Box2& box) const override;
  std::unique_ptr<MemEntity> CloneState() const override;

  // The transform from block coordinates to the owner's coordinates.
  Affine BlockTransform() const;
  const std::vector<MemAttributeReference*>& Attributes() const {
    return attributes_;
  }
  // Adds an attribute read from a file (the reader's way in) with `handle`
  // (0: a new one); its layer is kept as set.
  MemAttributeReference& AdoptAttribute(
      std::unique_ptr<MemAttributeReference> attribute, uint64_t handle = 0);
  void AttachAttribute(MemAttributeReference& attribute);

  std::string block_name_;
  Point3 insertion_;
  double rotation_ = 0;
  double sx_ = 1, sy_ = 1, sz_ = 1;
  // A reference facing down is held as the mirrored insert it shows (X and
  // Z scales turned over); a tilted one keeps its plane's values.
  Point3 normal_{0, 0, 1};

 private:
  friend class MemBlock;
  friend class MemDocument;
  std::vector<MemAttributeReference*> attributes_;
};

inline MemBlockReference* MemEntity::AsBlockReference() {
  return KindOf() == EntityKind::kBlockReference
             ? static_cast<MemBlockReference*>(this)
             : nullptr;
}
inline const MemBlockReference* MemEntity::AsBlockReference() const {
  return const_cast<MemEntity*>(this)->AsBlockReference();
}

// An entity kind the system does not model; kept for the file layer.
class MemOtherEntity final : public EntityImpl<host::OtherEntity> {
 public:
  MemOtherEntity(std::string type_name, std::string object_name)
      : type_name_(std::move(type_name)),
        object_name_(std::move(object_name)) {}
  std::string ObjectName() const override { return object_name_; }
  EntityKind Kind() const override { return EntityKind::kOther; }
  std::string EntityName() const override { return type_name_; }

  void Transform(const Affine& m) override;
  void AddExtents(const Affine& m, Box2& box) const override;
  std::unique_ptr<MemEntity> CloneState() const override;

  std::string type_name_;
  std::string object_name_;
  // Points that stand for the entity's extent, when the reader knows them.
  std::vector<Point3> extent_points_;
};

}  // namespace kestrana::memhost
