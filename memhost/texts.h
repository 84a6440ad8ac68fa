// Texts, attribute references and attribute definitions.
#pragma once

#include <array>

#include "memhost/object.h"

namespace kestrana::memhost {

// Shared state of texts, attribute references and attribute definitions.
template <class Base>
class TextImpl : public EntityImpl<Base> {
 public:
  std::string TextString() const override;
  void SetTextString(const std::string& text) override;
  double Height() const override;
  void SetHeight(double height) override;
  host::TextAlignment Alignment() const override;
  void SetAlignment(host::TextAlignment alignment) override;
  Point3 InsertionPoint() const override;
  void SetInsertionPoint(const Point3& p) override;
  Point3 TextAlignmentPoint() const override;
  void SetTextAlignmentPoint(const Point3& p) override;
  double Rotation() const override;
  void SetRotation(double angle) override;
  std::string StyleName() const override;
  void SetStyleName(const std::string& style) override;
  double ScaleFactor() const override;
  void SetScaleFactor(double factor) override;
  double ObliqueAngle() const override;
  void SetObliqueAngle(double angle) override;

  void Transform(const Affine& m) override;
  void AddExtents(const Affine& m, Box2& box) const override;

  // The four corners of the text's box (baseline to capital height), in
  // drawing units, for the renderer and bounding boxes.
  std::array<Point3, 4> Corners() const;
  // The start of the baseline after alignment is applied.
  Point3 BaselineStart() const;
  // The width of the displayed text.
  double DisplayWidth() const;

  std::string text_;
  double height_ = 2.5;
  host::TextAlignment alignment_ = host::TextAlignment::kLeft;
  Point3 insertion_;
  Point3 alignment_point_;
  double rotation_ = 0;
  std::string style_ = "Standard";
  double width_factor_ = 1;
  double oblique_ = 0;
  // A text facing down (a mirrored copy) reads backwards from above: its
  // rotation is the world angle of the baseline and its letters stand on
  // the other side of it. Tilted texts keep their plane's values.
  Point3 normal_{0, 0, 1};
};

class MemText final : public TextImpl<host::Text> {
 public:
  std::string ObjectName() const override { return "AcDbText"; }
  EntityKind Kind() const override { return EntityKind::kText; }
  std::string EntityName() const override { return "TEXT"; }
  std::unique_ptr<MemEntity> CloneState() const override;
};

class MemAttributeReference final : public TextImpl<host::AttributeReference> {
 public:
  std::string ObjectName() const override { return "AcDbAttribute"; }
  EntityKind Kind() const override { return EntityKind::kAttributeReference; }
  std::string EntityName() const override { return "ATTRIB"; }
  std::string TagString() const override;
  void SetTagString(const std::string& tag) override;
  bool Invisible() const override;
  void SetInvisible(bool invisible) override;
  std::unique_ptr<MemEntity> CloneState() const override;

  MemBlockReference* Insert() const { return insert_; }

  std::string tag_;
  bool invisible_ = false;

 protected:
  void CheckWritable() const override;

 private:
  friend class MemBlockReference;
  friend class MemBlock;
  friend class MemDocument;
  MemBlockReference* insert_ = nullptr;
};

class MemAttributeDefinition final
    : public TextImpl<host::AttributeDefinition> {
 public:
  std::string ObjectName() const override { return "AcDbAttributeDefinition"; }
  EntityKind Kind() const override { return EntityKind::kAttributeDefinition; }
  std::string EntityName() const override { return "ATTDEF"; }
  std::string TagString() const override;
  void SetTagString(const std::string& tag) override;
  std::string PromptString() const override;
  void SetPromptString(const std::string& prompt) override;
  int Mode() const override;
  void SetMode(int mode) override;
  std::unique_ptr<MemEntity> CloneState() const override;

  std::string tag_;
  std::string prompt_;
  int mode_ = 0;
};

}  // namespace kestrana::memhost
