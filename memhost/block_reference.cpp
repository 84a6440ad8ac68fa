// Block references with their attributes, and entities kept as read.
#include <algorithm>
#include <cmath>

#include "memhost/document.h"
#include "memhost/entity_support.h"

namespace kestrana::memhost {

using host::ErrorCode;
using host::HostError;
using host::TextAlignment;
using namespace support;

namespace {
// A reference moves its attributes along: all must be movable before
// anything moves.
void CheckAllFlat(const MemBlockReference& ref) {
  ref.CheckFlat(ref.normal_);
  for (const MemAttributeReference* a : ref.Attributes())
    if (!a->IsErased()) a->CheckFlat(a->normal_);
}
}  // namespace

std::string MemBlockReference::Name() const {
  CheckAlive();
  return block_name_;
}

Point3 MemBlockReference::InsertionPoint() const {
  CheckAlive();
  return insertion_;
}

void MemBlockReference::SetInsertionPoint(const Point3& p) {
  CheckWritable();
  CheckFinite(p, "an insertion point");
  CheckAllFlat(*this);
  Affine move = Affine::Translation(p.x - insertion_.x, p.y - insertion_.y,
                                    p.z - insertion_.z);
  insertion_ = p;
  for (MemAttributeReference* a : attributes_) a->Transform(move);
}

double MemBlockReference::Rotation() const {
  CheckAlive();
  return rotation_;
}

void MemBlockReference::SetRotation(double angle) {
  CheckWritable();
  CheckFinite(angle, "a rotation");
  CheckAllFlat(*this);
  Affine turn = Affine::Rotation(insertion_, angle - rotation_);
  rotation_ = angle;
  for (MemAttributeReference* a : attributes_) a->Transform(turn);
}

double MemBlockReference::XScaleFactor() const {
  CheckAlive();
  return sx_;
}
double MemBlockReference::YScaleFactor() const {
  CheckAlive();
  return sy_;
}
double MemBlockReference::ZScaleFactor() const {
  CheckAlive();
  return sz_;
}

void MemBlockReference::SetScaleFactors(double x, double y, double z) {
  CheckWritable();
  if (x == 0 || y == 0 || z == 0 || !std::isfinite(x) || !std::isfinite(y) ||
      !std::isfinite(z))
    throw HostError(ErrorCode::kBadArgument, "scale factors cannot be zero");
  CheckAllFlat(*this);
  Affine old_t = BlockTransform();
  sx_ = x;
  sy_ = y;
  sz_ = z;
  Affine change = old_t.Inverse().Then(BlockTransform());
  for (MemAttributeReference* a : attributes_) a->Transform(change);
}

bool MemBlockReference::HasAttributes() const {
  CheckAlive();
  return std::any_of(
      attributes_.begin(), attributes_.end(),
      [](const MemAttributeReference* a) { return !a->IsErased(); });
}

std::vector<host::AttributeReference*> MemBlockReference::GetAttributes()
    const {
  CheckAlive();
  std::vector<host::AttributeReference*> out;
  for (MemAttributeReference* a : attributes_)
    if (!a->IsErased()) out.push_back(a);
  return out;
}

Affine MemBlockReference::BlockTransform() const {
  MemBlock* block = doc_->FindBlock(block_name_);
  Point3 origin = block ? block->origin_ : Point3{};
  return Affine::Insert(origin, insertion_, sx_, sy_, sz_, rotation_);
}

void MemBlockReference::AttachAttribute(MemAttributeReference& attribute) {
  attribute.insert_ = this;
  attribute.owner_ = owner_;
  attributes_.push_back(&attribute);
}

MemAttributeReference& MemBlockReference::AdoptAttribute(
    std::unique_ptr<MemAttributeReference> attribute, uint64_t handle) {
  if (attribute->layer_.empty()) attribute->layer_ = "0";
  auto& a = static_cast<MemAttributeReference&>(
      doc_->RegisterObject(std::move(attribute), handle));
  if (doc_->FindLayer(a.layer_) == nullptr) doc_->AddLayer(a.layer_);
  AttachAttribute(a);
  doc_->OnLayerChanged(a, "", a.layer_);
  a.ForEachXDataApp([&](const std::string& app) { doc_->RegisterApp(app); });
  return a;
}

void MemBlockReference::Transform(const Affine& m) {
  CheckAllFlat(*this);
  insertion_ = m.Apply(insertion_);
  rotation_ += m.RotationAngle();
  double sx = m.ScaleX(), sy = m.ScaleY();
  sx_ *= m.Mirrors() ? -sx : sx;
  sy_ *= sy;
  sz_ *= m.sz;
  for (MemAttributeReference* a : attributes_) a->Transform(m);
}

void MemBlockReference::AddExtents(const Affine& m, Box2& box) const {
  MemBlock* block = doc_->FindBlock(block_name_);
  if (block != nullptr && g_extent_depth < 16) {
    ++g_extent_depth;
    Affine t = BlockTransform().Then(PlaneThen(normal_, insertion_.z, m));
    for (MemEntity* e : block->MemEntities()) e->AddExtents(t, box);
    --g_extent_depth;
  }
  for (const MemAttributeReference* a : attributes_)
    if (!a->IsErased() && !a->invisible_) a->AddExtents(m, box);
  if (box.empty) AddPoint(PlaneThen(normal_, insertion_.z, m), insertion_, box);
}

std::unique_ptr<MemEntity> MemBlockReference::CloneState() const {
  auto copy = std::make_unique<MemBlockReference>(*this);
  copy->attributes_.clear();
  return copy;
}

void MemOtherEntity::Transform(const Affine& m) {
  throw HostError(ErrorCode::kNotSupported,
                  "a " + type_name_ + " cannot be moved by this system");
}

void MemOtherEntity::AddExtents(const Affine& m, Box2& box) const {
  for (const Point3& p : extent_points_) AddPoint(m, p, box);
}

std::unique_ptr<MemEntity> MemOtherEntity::CloneState() const {
  return std::make_unique<MemOtherEntity>(*this);
}

}  // namespace kestrana::memhost
