// Texts, attribute references and attribute definitions.
#include <algorithm>
#include <cmath>

#include "memhost/document.h"
#include "memhost/entity_support.h"
#include "memhost/text_metrics.h"

namespace kestrana::memhost {

using host::ErrorCode;
using host::HostError;
using host::TextAlignment;
using namespace support;

namespace {

// Offsets of the baseline start from the anchor, in the text's frame.
void AlignmentOffset(TextAlignment a, double w, double h, double& dx,
                     double& dy) {
  switch (a) {
    case TextAlignment::kCenter:
    case TextAlignment::kMiddle:
    case TextAlignment::kTopCenter:
    case TextAlignment::kMiddleCenter:
    case TextAlignment::kBottomCenter:
      dx = -w / 2;
      break;
    case TextAlignment::kRight:
    case TextAlignment::kTopRight:
    case TextAlignment::kMiddleRight:
    case TextAlignment::kBottomRight:
      dx = -w;
      break;
    default:
      dx = 0;
  }
  switch (a) {
    case TextAlignment::kMiddle:
    case TextAlignment::kMiddleLeft:
    case TextAlignment::kMiddleCenter:
    case TextAlignment::kMiddleRight:
      dy = -h / 2;
      break;
    case TextAlignment::kTopLeft:
    case TextAlignment::kTopCenter:
    case TextAlignment::kTopRight:
      dy = -h;
      break;
    default:
      dy = 0;  // baseline; bottom alignments sit on the baseline as well
  }
}

bool AnchoredAtInsertion(TextAlignment a) {
  return a == TextAlignment::kLeft || a == TextAlignment::kAligned ||
         a == TextAlignment::kFit;
}

}  // namespace

template <class Base>
double TextImpl<Base>::DisplayWidth() const {
  return TextWidth(text_, height_, width_factor_);
}

namespace {
// Which side of its baseline a text's letters stand on, seen from above:
// 1 to the left, -1 to the right for a text facing down.
double UpSide(const Point3& normal) {
  return FacingOf(normal) == Facing::kDown ? -1.0 : 1.0;
}
}  // namespace

template <class Base>
Point3 TextImpl<Base>::BaselineStart() const {
  if (AnchoredAtInsertion(alignment_)) return insertion_;
  double dx = 0, dy = 0;
  AlignmentOffset(alignment_, DisplayWidth(), height_, dx, dy);
  dy *= UpSide(normal_);
  double c = std::cos(rotation_), s = std::sin(rotation_);
  return Point3{alignment_point_.x + c * dx - s * dy,
                alignment_point_.y + s * dx + c * dy, alignment_point_.z};
}

template <class Base>
std::array<Point3, 4> TextImpl<Base>::Corners() const {
  Point3 start = BaselineStart();
  double w = DisplayWidth();
  double angle = rotation_;
  if (alignment_ == TextAlignment::kAligned ||
      alignment_ == TextAlignment::kFit) {
    w = Distance2d(insertion_, alignment_point_);
    if (w > 0)
      angle = std::atan2(alignment_point_.y - insertion_.y,
                         alignment_point_.x - insertion_.x);
  }
  double c = std::cos(angle), s = std::sin(angle);
  double h = height_ * UpSide(normal_);
  auto at = [&](double x, double y) {
    return Point3{start.x + c * x - s * y, start.y + s * x + c * y, start.z};
  };
  return {at(0, 0), at(w, 0), at(w, h), at(0, h)};
}

template <class Base>
std::string TextImpl<Base>::TextString() const {
  this->CheckAlive();
  return text_;
}
template <class Base>
void TextImpl<Base>::SetTextString(const std::string& text) {
  this->CheckWritable();
  text_ = text;
}
template <class Base>
double TextImpl<Base>::Height() const {
  this->CheckAlive();
  return height_;
}
template <class Base>
void TextImpl<Base>::SetHeight(double height) {
  this->CheckWritable();
  if (!(height > 0) || !std::isfinite(height))
    throw HostError(ErrorCode::kBadArgument, "a text height must be positive");
  height_ = height;
}
template <class Base>
TextAlignment TextImpl<Base>::Alignment() const {
  this->CheckAlive();
  return alignment_;
}
template <class Base>
void TextImpl<Base>::SetAlignment(TextAlignment alignment) {
  this->CheckWritable();
  int code = static_cast<int>(alignment);
  if (code < 0 || code > 14)
    throw HostError(ErrorCode::kBadArgument,
                    "text alignment " + std::to_string(code) + " is not valid");
  // The text keeps its place: the old anchor becomes the new one.
  Point3 anchor =
      AnchoredAtInsertion(alignment_) ? insertion_ : alignment_point_;
  Point3 start = BaselineStart();
  if (AnchoredAtInsertion(alignment)) {
    insertion_ = AnchoredAtInsertion(alignment_) ? insertion_ : start;
  } else {
    alignment_point_ = anchor;
  }
  alignment_ = alignment;
}
template <class Base>
Point3 TextImpl<Base>::InsertionPoint() const {
  this->CheckAlive();
  return BaselineStart();
}
template <class Base>
void TextImpl<Base>::SetInsertionPoint(const Point3& p) {
  this->CheckWritable();
  CheckFinite(p, "an insertion point");
  if (AnchoredAtInsertion(alignment_)) {
    if (alignment_ != TextAlignment::kLeft) {
      alignment_point_.x += p.x - insertion_.x;
      alignment_point_.y += p.y - insertion_.y;
    }
    insertion_ = p;
    return;
  }
  Point3 start = BaselineStart();
  alignment_point_.x += p.x - start.x;
  alignment_point_.y += p.y - start.y;
  alignment_point_.z = p.z;
}
template <class Base>
Point3 TextImpl<Base>::TextAlignmentPoint() const {
  this->CheckAlive();
  return alignment_point_;
}
template <class Base>
void TextImpl<Base>::SetTextAlignmentPoint(const Point3& p) {
  this->CheckWritable();
  CheckFinite(p, "an alignment point");
  alignment_point_ = p;
}
template <class Base>
double TextImpl<Base>::Rotation() const {
  this->CheckAlive();
  return rotation_;
}
template <class Base>
void TextImpl<Base>::SetRotation(double angle) {
  this->CheckWritable();
  CheckFinite(angle, "a rotation");
  rotation_ = angle;
}
template <class Base>
std::string TextImpl<Base>::StyleName() const {
  this->CheckAlive();
  return style_;
}
template <class Base>
void TextImpl<Base>::SetStyleName(const std::string& style) {
  this->CheckWritable();
  MemTextStyle* s = this->doc_->FindTextStyle(style);
  if (s == nullptr)
    throw HostError(ErrorCode::kNoSuchKey,
                    "no text style named \"" + style + "\"");
  style_ = s->name_;
}
template <class Base>
double TextImpl<Base>::ScaleFactor() const {
  this->CheckAlive();
  return width_factor_;
}
template <class Base>
void TextImpl<Base>::SetScaleFactor(double factor) {
  this->CheckWritable();
  if (!(factor > 0) || !std::isfinite(factor))
    throw HostError(ErrorCode::kBadArgument, "a width factor must be positive");
  width_factor_ = factor;
}
template <class Base>
double TextImpl<Base>::ObliqueAngle() const {
  this->CheckAlive();
  return oblique_;
}
template <class Base>
void TextImpl<Base>::SetObliqueAngle(double angle) {
  this->CheckWritable();
  CheckFinite(angle, "an oblique angle");
  oblique_ = angle;
}
template <class Base>
void TextImpl<Base>::Transform(const Affine& m) {
  this->CheckFlat(normal_);
  insertion_ = m.Apply(insertion_);
  alignment_point_ = m.Apply(alignment_point_);
  rotation_ += m.RotationAngle();
  height_ *= m.ScaleY();
  width_factor_ *= m.ScaleY() > 0 ? m.ScaleX() / m.ScaleY() : 1.0;
}
template <class Base>
void TextImpl<Base>::AddExtents(const Affine& m, Box2& box) const {
  Affine t = PlaneThen(normal_, insertion_.z, m);
  for (const Point3& p : Corners()) AddPoint(t, p, box);
}

std::unique_ptr<MemEntity> MemText::CloneState() const {
  return std::make_unique<MemText>(*this);
}

std::string MemAttributeReference::TagString() const {
  CheckAlive();
  return tag_;
}
void MemAttributeReference::SetTagString(const std::string& tag) {
  CheckWritable();
  if (tag.empty() || tag.find(' ') != std::string::npos)
    throw HostError(ErrorCode::kBadArgument,
                    "an attribute tag must be non-empty and hold no blanks");
  tag_ = tag;
}
bool MemAttributeReference::Invisible() const {
  CheckAlive();
  return invisible_;
}
void MemAttributeReference::SetInvisible(bool invisible) {
  CheckWritable();
  invisible_ = invisible;
}
void MemAttributeReference::CheckWritable() const {
  CheckModifiable();
  if (insert_ != nullptr && !doc_->Loading()) {
    MemLayer* layer = doc_->FindLayer(insert_->LayerName());
    if (layer != nullptr && layer->locked_)
      throw HostError(ErrorCode::kLockedLayer,
                      "the block reference of attribute " +
                          std::to_string(id_) + " is on locked layer \"" +
                          layer->name_ + "\"");
  }
}
std::unique_ptr<MemEntity> MemAttributeReference::CloneState() const {
  auto copy = std::make_unique<MemAttributeReference>(*this);
  copy->insert_ = nullptr;
  return copy;
}

std::string MemAttributeDefinition::TagString() const {
  CheckAlive();
  return tag_;
}
void MemAttributeDefinition::SetTagString(const std::string& tag) {
  CheckWritable();
  if (tag.empty() || tag.find(' ') != std::string::npos)
    throw HostError(ErrorCode::kBadArgument,
                    "an attribute tag must be non-empty and hold no blanks");
  tag_ = tag;
}
std::string MemAttributeDefinition::PromptString() const {
  CheckAlive();
  return prompt_;
}
void MemAttributeDefinition::SetPromptString(const std::string& prompt) {
  CheckWritable();
  prompt_ = prompt;
}
int MemAttributeDefinition::Mode() const {
  CheckAlive();
  return mode_;
}
void MemAttributeDefinition::SetMode(int mode) {
  CheckWritable();
  if (mode < 0 || mode > 15)
    throw HostError(ErrorCode::kBadArgument,
                    "attribute mode " + std::to_string(mode) + " is not valid");
  mode_ = mode;
}
std::unique_ptr<MemEntity> MemAttributeDefinition::CloneState() const {
  return std::make_unique<MemAttributeDefinition>(*this);
}


template class TextImpl<host::Text>;
template class TextImpl<host::AttributeReference>;
template class TextImpl<host::AttributeDefinition>;

}  // namespace kestrana::memhost
