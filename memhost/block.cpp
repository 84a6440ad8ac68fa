// Block definitions: their entities and the ways new ones are added.
#include <algorithm>
#include <cmath>

#include "memhost/document.h"
#include "memhost/entity_support.h"

namespace kestrana::memhost {

using host::ErrorCode;
using host::HostError;
using host::TextAlignment;
using namespace support;

std::string MemBlock::Name() const {
  CheckAlive();
  return name_;
}
Point3 MemBlock::Origin() const {
  CheckAlive();
  return origin_;
}
void MemBlock::SetOrigin(const Point3& p) {
  CheckAlive();
  CheckFinite(p, "a block origin");
  origin_ = p;
}
bool MemBlock::IsLayout() const {
  CheckAlive();
  return is_layout_;
}
bool MemBlock::IsXRef() const {
  CheckAlive();
  return is_xref_;
}

void MemBlock::Compact() const {
  if (erased_count_ == 0) return;
  std::erase_if(entities_, [](const MemEntity* e) { return e->IsErased(); });
  erased_count_ = 0;
}

int MemBlock::Count() const {
  CheckAlive();
  Compact();
  return static_cast<int>(entities_.size());
}

host::Entity& MemBlock::Item(int index) const {
  CheckAlive();
  Compact();
  if (index < 0 || static_cast<size_t>(index) >= entities_.size())
    throw HostError(
        ErrorCode::kBadArgument,
        "block \"" + name_ + "\" has no item " + std::to_string(index));
  return entities_[index]->AsHostEntity();
}

std::vector<host::Entity*> MemBlock::Entities() const {
  CheckAlive();
  Compact();
  std::vector<host::Entity*> out;
  out.reserve(entities_.size());
  for (MemEntity* e : entities_) out.push_back(&e->AsHostEntity());
  return out;
}

std::vector<MemEntity*> MemBlock::MemEntities() const {
  Compact();
  return entities_;
}

void MemBlock::Delete() {
  CheckAlive();
  if (is_layout_)
    throw HostError(ErrorCode::kInUse,
                    "the layout block \"" + name_ + "\" cannot be deleted");
  for (MemBlock* b : doc_->BlockList())
    for (MemEntity* e : b->MemEntities())
      if (auto* ref = e->AsBlockReference())
        if (doc_->FindBlock(ref->block_name_) == this)
          throw HostError(ErrorCode::kInUse,
                          "block \"" + name_ + "\" is inserted in the drawing");
  for (MemEntity* e : MemEntities()) {
    e->erased_ = true;
    doc_->OnErased(*e);
  }
  entities_.clear();
  erased_ = true;
  doc_->blocks_.Remove(this);
}

MemEntity& MemBlock::Adopt(std::unique_ptr<MemEntity> entity, uint64_t handle) {
  CheckAlive();
  MemEntity& e =
      static_cast<MemEntity&>(doc_->RegisterObject(std::move(entity), handle));
  e.owner_ = this;
  if (e.layer_.empty()) e.layer_ = "0";
  MemLayer* layer = doc_->FindLayer(e.layer_);
  if (layer == nullptr) layer = &doc_->AddLayer(e.layer_);
  e.layer_ = layer->name_;
  ++layer->use_count_;
  e.ForEachXDataApp([&](const std::string& app) { doc_->RegisterApp(app); });
  entities_.push_back(&e);
  doc_->IndexEntity(e);
  return e;
}

namespace {
template <class T>
std::unique_ptr<T> OnCurrentLayer(MemDocument& doc) {
  auto e = std::make_unique<T>();
  e->SetLayerUnchecked(doc.ActiveLayer().Name());
  return e;
}
}  // namespace

host::LwPolyline& MemBlock::AddLightWeightPolyline(
    const std::vector<double>& xy) {
  CheckAlive();
  if (xy.size() < 4 || xy.size() % 2 != 0)
    throw HostError(ErrorCode::kBadArgument,
                    "a polyline needs X, Y pairs for at least two vertices");
  for (double v : xy) CheckFinite(v, "a polyline coordinate");
  auto e = OnCurrentLayer<MemLwPolyline>(*doc_);
  e->xy_ = xy;
  e->bulges_.assign(xy.size() / 2, 0.0);
  e->widths_.assign(xy.size() / 2, {0.0, 0.0});
  return AddNew(std::move(e));
}

host::Line& MemBlock::AddLine(const Point3& start, const Point3& end) {
  CheckAlive();
  CheckFinite(start, "a start point");
  CheckFinite(end, "an end point");
  auto e = OnCurrentLayer<MemLine>(*doc_);
  e->start_ = start;
  e->end_ = end;
  return AddNew(std::move(e));
}

host::Point& MemBlock::AddPoint(const Point3& p) {
  CheckAlive();
  CheckFinite(p, "a point");
  auto e = OnCurrentLayer<MemPoint>(*doc_);
  e->position_ = p;
  return AddNew(std::move(e));
}

host::Circle& MemBlock::AddCircle(const Point3& center, double radius) {
  CheckAlive();
  CheckFinite(center, "a centre");
  if (!(radius > 0) || !std::isfinite(radius))
    throw HostError(ErrorCode::kBadArgument, "a radius must be positive");
  auto e = OnCurrentLayer<MemCircle>(*doc_);
  e->center_ = center;
  e->radius_ = radius;
  return AddNew(std::move(e));
}

host::Arc& MemBlock::AddArc(const Point3& center, double radius,
                            double start_angle, double end_angle) {
  CheckAlive();
  CheckFinite(center, "a centre");
  if (!(radius > 0) || !std::isfinite(radius))
    throw HostError(ErrorCode::kBadArgument, "a radius must be positive");
  CheckFinite(start_angle, "an angle");
  CheckFinite(end_angle, "an angle");
  auto e = OnCurrentLayer<MemArc>(*doc_);
  e->center_ = center;
  e->radius_ = radius;
  e->start_angle_ = start_angle;
  e->end_angle_ = end_angle;
  return AddNew(std::move(e));
}

host::Ellipse& MemBlock::AddEllipse(const Point3& center,
                                    const Point3& major_axis,
                                    double radius_ratio) {
  CheckAlive();
  CheckFinite(center, "a centre");
  CheckFinite(major_axis, "a major axis");
  if (major_axis.x == 0 && major_axis.y == 0)
    throw HostError(ErrorCode::kBadArgument, "a major axis cannot be zero");
  if (!(radius_ratio > 0 && radius_ratio <= 1))
    throw HostError(ErrorCode::kBadArgument,
                    "a radius ratio lies between 0 (excluded) and 1");
  auto e = OnCurrentLayer<MemEllipse>(*doc_);
  e->center_ = center;
  e->major_axis_ = major_axis;
  e->ratio_ = radius_ratio;
  return AddNew(std::move(e));
}

host::Text& MemBlock::AddText(const std::string& text,
                              const Point3& insertion_point, double height) {
  CheckAlive();
  CheckFinite(insertion_point, "an insertion point");
  if (!(height > 0) || !std::isfinite(height))
    throw HostError(ErrorCode::kBadArgument, "a text height must be positive");
  auto e = OnCurrentLayer<MemText>(*doc_);
  auto& style = static_cast<MemTextStyle&>(doc_->ActiveTextStyle());
  e->text_ = text;
  e->insertion_ = insertion_point;
  e->height_ = height;
  e->style_ = style.name_;
  e->width_factor_ = style.width_;
  e->oblique_ = style.oblique_;
  return AddNew(std::move(e));
}

host::AttributeDefinition& MemBlock::AddAttribute(double height, int mode,
                                                  const std::string& prompt,
                                                  const Point3& insertion_point,
                                                  const std::string& tag,
                                                  const std::string& value) {
  CheckAlive();
  CheckFinite(insertion_point, "an insertion point");
  if (!(height > 0) || !std::isfinite(height))
    throw HostError(ErrorCode::kBadArgument, "a text height must be positive");
  if (tag.empty() || tag.find(' ') != std::string::npos)
    throw HostError(ErrorCode::kBadArgument,
                    "an attribute tag must be non-empty and hold no blanks");
  if (mode < 0 || mode > 15)
    throw HostError(ErrorCode::kBadArgument,
                    "attribute mode " + std::to_string(mode) + " is not valid");
  auto e = OnCurrentLayer<MemAttributeDefinition>(*doc_);
  auto& style = static_cast<MemTextStyle&>(doc_->ActiveTextStyle());
  e->text_ = value;
  e->insertion_ = insertion_point;
  e->height_ = height;
  e->style_ = style.name_;
  e->width_factor_ = style.width_;
  e->tag_ = tag;
  e->prompt_ = prompt;
  e->mode_ = mode;
  return AddNew(std::move(e));
}

host::Hatch& MemBlock::AddHatch(int pattern_type,
                                const std::string& pattern_name,
                                bool associativity) {
  CheckAlive();
  if (pattern_type < 0 || pattern_type > 2)
    throw HostError(
        ErrorCode::kBadArgument,
        "hatch pattern type " + std::to_string(pattern_type) + " is not valid");
  if (pattern_name.empty())
    throw HostError(ErrorCode::kBadArgument, "a hatch needs a pattern name");
  auto e = OnCurrentLayer<MemHatch>(*doc_);
  e->pattern_type_ = pattern_type;
  e->pattern_name_ = pattern_name;
  e->associative_ = associativity;
  return AddNew(std::move(e));
}

host::BlockReference& MemBlock::InsertBlock(const Point3& insertion_point,
                                            const std::string& name,
                                            double x_scale, double y_scale,
                                            double z_scale, double rotation) {
  CheckAlive();
  CheckFinite(insertion_point, "an insertion point");
  CheckFinite(rotation, "a rotation");
  MemBlock* def = doc_->FindBlock(name);
  if (def == nullptr)
    throw HostError(ErrorCode::kNoSuchKey, "no block named \"" + name + "\"");
  if (def->is_layout_ || def == this)
    throw HostError(ErrorCode::kBadArgument,
                    "block \"" + name + "\" cannot be inserted here");
  if (x_scale == 0 || y_scale == 0 || z_scale == 0 || !std::isfinite(x_scale) ||
      !std::isfinite(y_scale) || !std::isfinite(z_scale))
    throw HostError(ErrorCode::kBadArgument, "scale factors cannot be zero");
  auto e = OnCurrentLayer<MemBlockReference>(*doc_);
  e->block_name_ = def->name_;
  e->insertion_ = insertion_point;
  e->sx_ = x_scale;
  e->sy_ = y_scale;
  e->sz_ = z_scale;
  e->rotation_ = rotation;
  auto& ref = AddNew(std::move(e));
  Affine t = ref.BlockTransform();
  for (MemEntity* item : def->MemEntities()) {
    auto* attdef = dynamic_cast<MemAttributeDefinition*>(item);
    if (attdef == nullptr || (attdef->mode_ & 2) != 0) continue;  // constant
    auto attr = std::make_unique<MemAttributeReference>();
    attr->text_ = attdef->text_;
    attr->height_ = attdef->height_;
    attr->alignment_ = attdef->alignment_;
    attr->insertion_ = attdef->insertion_;
    attr->alignment_point_ = attdef->alignment_point_;
    attr->rotation_ = attdef->rotation_;
    attr->style_ = attdef->style_;
    attr->width_factor_ = attdef->width_factor_;
    attr->oblique_ = attdef->oblique_;
    attr->color_ = attdef->color_;
    if (FacingOf(attdef->normal_) != Facing::kTilted)
      attr->normal_ = attdef->normal_;
    attr->tag_ = attdef->tag_;
    attr->invisible_ = (attdef->mode_ & 1) != 0;
    // Attributes defined on layer 0 take the layer of the reference.
    attr->SetLayerUnchecked(attdef->layer_ == "0" ? ref.layer_
                                                  : attdef->layer_);
    attr->Transform(t);
    auto& a = static_cast<MemAttributeReference&>(
        doc_->RegisterObject(std::move(attr), 0));
    ref.AttachAttribute(a);
    doc_->OnLayerChanged(a, "", a.layer_);
  }
  return ref;
}

}  // namespace kestrana::memhost
