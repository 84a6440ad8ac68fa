// The in-memory drawing: objects, tables, blocks, entities, selection sets.
//
// The document owns every object. Erasing marks an object erased; its memory
// stays, so references handed out never dangle, and further use raises
// HostError(kErased). Entities on a locked layer refuse every change.
//
// Object IDs: by default an object's ID is derived from its handle
// (2130000000 + handle while that fits, a mixed value otherwise), so the same
// file loaded twice gives the same IDs. With IdPolicy::kFresh every load
// hands out new IDs, as the real host does from one session to the next.
#pragma once

#include <any>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/host.h"
#include "memhost/flat_map.h"
#include "memhost/geometry.h"
#include "memhost/session.h"

namespace kestrana::memhost {

using host::BoundingBox;
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

  // What the file layer keeps of the object to write it back as read.
  std::any file_data;

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

class MemLwPolyline final : public EntityImpl<host::LwPolyline> {
 public:
  std::string ObjectName() const override { return "AcDbPolyline"; }
  EntityKind Kind() const override { return EntityKind::kLwPolyline; }
  std::string EntityName() const override { return "LWPOLYLINE"; }
  std::vector<double> Coordinates() const override;
  void SetCoordinates(const std::vector<double>& xy) override;
  int NumberOfVertices() const override;
  double Length() const override;
  bool Closed() const override;
  void SetClosed(bool closed) override;
  double GetBulge(int index) const override;
  void SetBulge(int index, double bulge) override;
  double ConstantWidth() const override;
  void SetConstantWidth(double width) override;
  std::pair<double, double> GetWidth(int index) const override;
  void SetWidth(int index, double start_width, double end_width) override;
  double Elevation() const override;
  void SetElevation(double elevation) override;

  void Transform(const Affine& m) override;
  void AddExtents(const Affine& m, Box2& box) const override;
  std::vector<CurvePiece> Pieces() const override;
  std::unique_ptr<MemEntity> CloneState() const override;

  // Plain state, for the file layer and renderer.
  std::vector<double> xy_;
  std::vector<double> bulges_;                     // one per vertex
  std::vector<std::pair<double, double>> widths_;  // one per vertex
  double constant_width_ = 0;
  bool closed_ = false;
  double elevation_ = 0;
  Point3 normal_{0, 0, 1};

 private:
  void CheckIndex(int index) const;
};

class MemLine final : public EntityImpl<host::Line> {
 public:
  std::string ObjectName() const override { return "AcDbLine"; }
  EntityKind Kind() const override { return EntityKind::kLine; }
  std::string EntityName() const override { return "LINE"; }
  Point3 StartPoint() const override;
  void SetStartPoint(const Point3& p) override;
  Point3 EndPoint() const override;
  void SetEndPoint(const Point3& p) override;
  double Length() const override;

  void Transform(const Affine& m) override;
  void AddExtents(const Affine& m, Box2& box) const override;
  std::vector<CurvePiece> Pieces() const override;
  std::unique_ptr<MemEntity> CloneState() const override;

  Point3 start_, end_;
};

class MemPoint final : public EntityImpl<host::Point> {
 public:
  std::string ObjectName() const override { return "AcDbPoint"; }
  EntityKind Kind() const override { return EntityKind::kPoint; }
  std::string EntityName() const override { return "POINT"; }
  Point3 Coordinates() const override;
  void SetCoordinates(const Point3& p) override;

  void Transform(const Affine& m) override;
  void AddExtents(const Affine& m, Box2& box) const override;
  std::unique_ptr<MemEntity> CloneState() const override;

  Point3 position_;
};

class MemCircle final : public EntityImpl<host::Circle> {
 public:
  std::string ObjectName() const override { return "AcDbCircle"; }
  EntityKind Kind() const override { return EntityKind::kCircle; }
  std::string EntityName() const override { return "CIRCLE"; }
  Point3 Center() const override;
  void SetCenter(const Point3& p) override;
  double Radius() const override;
  void SetRadius(double r) override;

  void Transform(const Affine& m) override;
  void AddExtents(const Affine& m, Box2& box) const override;
  std::vector<CurvePiece> Pieces() const override;
  std::unique_ptr<MemEntity> CloneState() const override;

  Point3 center_;
  double radius_ = 0;
  // The plane's normal; see Facing. Tilted circles keep the centre in their
  // plane's coordinates.
  Point3 normal_{0, 0, 1};
};

class MemArc final : public EntityImpl<host::Arc> {
 public:
  std::string ObjectName() const override { return "AcDbArc"; }
  EntityKind Kind() const override { return EntityKind::kArc; }
  std::string EntityName() const override { return "ARC"; }
  Point3 Center() const override;
  void SetCenter(const Point3& p) override;
  double Radius() const override;
  void SetRadius(double r) override;
  double StartAngle() const override;
  void SetStartAngle(double angle) override;
  double EndAngle() const override;
  void SetEndAngle(double angle) override;
  Point3 StartPoint() const override;
  Point3 EndPoint() const override;
  double Length() const override;

  void Transform(const Affine& m) override;
  void AddExtents(const Affine& m, Box2& box) const override;
  std::vector<CurvePiece> Pieces() const override;
  std::unique_ptr<MemEntity> CloneState() const override;

  Point3 center_;
  double radius_ = 0;
  double start_angle_ = 0;  // radians, counter-clockwise seen from above
  double end_angle_ = 0;
  // As for circles; a tilted arc's angles are those of its own plane.
  Point3 normal_{0, 0, 1};
};

class MemEllipse final : public EntityImpl<host::Ellipse> {
 public:
  std::string ObjectName() const override { return "AcDbEllipse"; }
  EntityKind Kind() const override { return EntityKind::kEllipse; }
  std::string EntityName() const override { return "ELLIPSE"; }
  Point3 Center() const override;
  void SetCenter(const Point3& p) override;
  Point3 MajorAxis() const override;
  void SetMajorAxis(const Point3& v) override;
  double RadiusRatio() const override;
  void SetRadiusRatio(double ratio) override;
  double StartParameter() const override;
  double EndParameter() const override;
  void SetParameters(double start, double end) override;

  void Transform(const Affine& m) override;
  void AddExtents(const Affine& m, Box2& box) const override;
  std::unique_ptr<MemEntity> CloneState() const override;

  Point3 center_;
  Point3 major_axis_{1, 0, 0};
  double ratio_ = 1;
  double start_param_ = 0;
  double end_param_ = 6.283185307179586;
  // Centre and axis are world values whatever the plane; parameters run
  // counter-clockwise seen from above unless the ellipse is tilted.
  Point3 normal_{0, 0, 1};
};

class MemHatch final : public EntityImpl<host::Hatch> {
 public:
  std::string ObjectName() const override { return "AcDbHatch"; }
  EntityKind Kind() const override { return EntityKind::kHatch; }
  std::string EntityName() const override { return "HATCH"; }
  int PatternType() const override;
  std::string PatternName() const override;
  bool AssociativeHatch() const override;
  bool IsSolidFill() const override;
  void AppendOuterLoop(const std::vector<host::Entity*>& objects) override;
  void AppendInnerLoop(const std::vector<host::Entity*>& objects) override;
  int NumberOfLoops() const override;
  std::vector<host::HatchLoop> Loops() const override;
  void Evaluate() override { CheckAlive(); }

  void Transform(const Affine& m) override;
  void AddExtents(const Affine& m, Box2& box) const override;
  std::unique_ptr<MemEntity> CloneState() const override;

  int pattern_type_ = 1;
  std::string pattern_name_ = "SOLID";
  bool associative_ = false;
  double pattern_angle_ = 0;
  double pattern_scale_ = 1;
  double elevation_ = 0;
  std::vector<host::HatchLoop> loops_;
  // As for circles: a tilted hatch keeps its boundary in its plane.
  Point3 normal_{0, 0, 1};

 private:
  void AppendLoop(const std::vector<host::Entity*>& objects, int flags);
};

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

class MemBlock final : public ObjectImpl<host::Block> {
 public:
  std::string ObjectName() const override { return "AcDbBlockTableRecord"; }
  std::string Name() const override;
  Point3 Origin() const override;
  void SetOrigin(const Point3& p) override;
  bool IsLayout() const override;
  bool IsXRef() const override;
  int Count() const override;
  host::Entity& Item(int index) const override;
  std::vector<host::Entity*> Entities() const override;
  void Delete() override;

  host::LwPolyline& AddLightWeightPolyline(
      const std::vector<double>& xy) override;
  host::Line& AddLine(const Point3& start, const Point3& end) override;
  host::Point& AddPoint(const Point3& p) override;
  host::Circle& AddCircle(const Point3& center, double radius) override;
  host::Arc& AddArc(const Point3& center, double radius, double start_angle,
                    double end_angle) override;
  host::Ellipse& AddEllipse(const Point3& center, const Point3& major_axis,
                            double radius_ratio) override;
  host::Text& AddText(const std::string& text, const Point3& insertion_point,
                      double height) override;
  host::AttributeDefinition& AddAttribute(double height, int mode,
                                          const std::string& prompt,
                                          const Point3& insertion_point,
                                          const std::string& tag,
                                          const std::string& value) override;
  host::Hatch& AddHatch(int pattern_type, const std::string& pattern_name,
                        bool associativity) override;
  host::BlockReference& InsertBlock(const Point3& insertion_point,
                                    const std::string& name, double x_scale,
                                    double y_scale, double z_scale,
                                    double rotation) override;

  // Adds an entity of any kind (the file reader's way in) with `handle`
  // (0: a new one); it goes on the current layer unless its layer is set.
  template <class T>
  T& AddNew(std::unique_ptr<T> entity, uint64_t handle = 0) {
    return static_cast<T&>(Adopt(std::move(entity), handle));
  }
  // Live entities, in drawing order, as the memhost type.
  std::vector<MemEntity*> MemEntities() const;

  std::string name_;
  Point3 origin_;
  bool is_layout_ = false;
  bool is_xref_ = false;

 private:
  friend class MemDocument;
  template <class B>
  friend class EntityImpl;
  MemEntity& Adopt(std::unique_ptr<MemEntity> entity, uint64_t handle);
  void Compact() const;
  mutable std::vector<MemEntity*> entities_;
  mutable size_t erased_count_ = 0;
};

class MemLayer final : public ObjectImpl<host::Layer> {
 public:
  std::string ObjectName() const override { return "AcDbLayerTableRecord"; }
  std::string Name() const override;
  bool Freeze() const override;
  void SetFreeze(bool frozen) override;
  bool Lock() const override;
  void SetLock(bool locked) override;
  bool LayerOn() const override;
  void SetLayerOn(bool on) override;
  int TrueColor() const override;
  void SetTrueColor(int color_index) override;
  void Delete() override;

  std::string name_;
  bool frozen_ = false;
  bool locked_ = false;
  bool on_ = true;
  int color_ = host::color::kWhite;
  // Live entities on the layer (the layer cannot be deleted while any).
  int use_count_ = 0;
};

class MemTextStyle final : public ObjectImpl<host::TextStyle> {
 public:
  std::string ObjectName() const override { return "AcDbTextStyleTableRecord"; }
  std::string Name() const override;
  double Height() const override;
  void SetHeight(double height) override;
  double Width() const override;
  void SetWidth(double factor) override;
  std::string FontFile() const override;
  void SetFontFile(const std::string& file) override;
  double ObliqueAngle() const override;
  void SetObliqueAngle(double angle) override;

  std::string name_;
  double height_ = 0;
  double width_ = 1;
  std::string font_file_ = "txt";
  double oblique_ = 0;
};

class MemSelectionSet final : public host::SelectionSet {
 public:
  MemSelectionSet(MemDocument& doc, std::string name)
      : doc_(&doc), name_(std::move(name)) {}
  std::string Name() const override;
  int Count() const override;
  host::Entity& Item(int index) const override;
  std::vector<host::Entity*> Entities() const override;
  void AddItems(const std::vector<host::Entity*>& entities) override;
  void RemoveItems(const std::vector<host::Entity*>& entities) override;
  void Clear() override;
  void Select(host::SelectMode mode, const Point3& corner1,
              const Point3& corner2, const host::Filter& filter) override;
  void SelectOnScreen(const host::Filter& filter) override;
  void Erase() override;
  void Delete() override;

  bool IsDeleted() const { return deleted_; }

 private:
  void CheckLive() const;
  void Add(MemEntity* e);
  MemDocument* doc_;
  std::string name_;
  bool deleted_ = false;
  std::vector<MemEntity*> items_;
  std::unordered_map<const MemEntity*, size_t> positions_;
};

class MemBlocks final : public host::Blocks {
 public:
  explicit MemBlocks(MemDocument& doc) : doc_(doc) {}
  int Count() const override;
  host::Block& Item(int index) const override;
  host::Block& Item(const std::string& name) const override;
  host::Block* Find(const std::string& name) const override;
  host::Block& Add(const Point3& origin, const std::string& name) override;

 private:
  MemDocument& doc_;
};

class MemLayers final : public host::Layers {
 public:
  explicit MemLayers(MemDocument& doc) : doc_(doc) {}
  int Count() const override;
  host::Layer& Item(int index) const override;
  host::Layer& Item(const std::string& name) const override;
  host::Layer* Find(const std::string& name) const override;
  host::Layer& Add(const std::string& name) override;

 private:
  MemDocument& doc_;
};

class MemTextStyles final : public host::TextStyles {
 public:
  explicit MemTextStyles(MemDocument& doc) : doc_(doc) {}
  int Count() const override;
  host::TextStyle& Item(int index) const override;
  host::TextStyle& Item(const std::string& name) const override;
  host::TextStyle* Find(const std::string& name) const override;
  host::TextStyle& Add(const std::string& name) override;

 private:
  MemDocument& doc_;
};

class MemSelectionSets final : public host::SelectionSets {
 public:
  explicit MemSelectionSets(MemDocument& doc) : doc_(doc) {}
  int Count() const override;
  host::SelectionSet& Item(int index) const override;
  host::SelectionSet& Add(const std::string& name) override;

 private:
  friend class MemSelectionSet;
  MemDocument& doc_;
  std::vector<std::unique_ptr<MemSelectionSet>> sets_;
};

// Prompts and picks, answered by the application's input script.
class MemUtility final : public host::Utility {
 public:
  explicit MemUtility(MemDocument& doc) : doc_(doc) {}
  void Prompt(const std::string& text) override;
  Point3 GetPoint(const std::optional<Point3>& base,
                  const std::string& prompt) override;
  host::EntityPick GetEntity(const std::string& prompt) override;

 private:
  MemDocument& doc_;
};

// Entities in creation order, for one index key. New entities are the
// youngest, so adding is mostly appending; erased ones are skipped and
// dropped once they make up half of the list.
class SequenceIndex {
 public:
  // Adds `e` unless it is there.
  void Add(MemEntity* e);
  void Remove(MemEntity* e);
  // Live and erased entries (an upper bound of the live ones).
  size_t Size() const { return items_.size(); }
  // The live entities in order.
  template <class F>
  void ForEach(F&& f) const {
    size_t erased = 0;
    for (MemEntity* e : items_) {
      if (e->IsErased())
        ++erased;
      else
        f(e);
    }
    if (erased > 0 && erased * 2 >= items_.size()) Compact();
  }

 private:
  void Compact() const;
  mutable std::vector<MemEntity*> items_;
};

class MemDocument final : public host::Document {
 public:
  explicit MemDocument(std::shared_ptr<MemApplication> app = nullptr,
                       Options options = {});
  ~MemDocument() override;
  MemDocument(const MemDocument&) = delete;
  MemDocument& operator=(const MemDocument&) = delete;

  MemApplication& App() { return *app_; }
  Session& GetSession() { return app_->GetSession(); }
  const Options& GetOptions() const { return options_; }

  // host::Document
  host::Application& GetApplication() override { return *app_; }
  std::string Name() const override { return name_; }
  void SetName(std::string name) { name_ = std::move(name); }
  host::Block& ModelSpace() override;
  host::Blocks& GetBlocks() override { return blocks_view_; }
  host::Layers& GetLayers() override { return layers_view_; }
  host::TextStyles& GetTextStyles() override { return styles_view_; }
  host::SelectionSets& GetSelectionSets() override { return sets_view_; }
  host::Utility& GetUtility() override { return utility_; }
  host::Object& ObjectIdToObject(ObjectId id) override;
  host::Object& HandleToObject(const std::string& handle) override;
  host::Layer& ActiveLayer() override;
  void SetActiveLayer(host::Layer& layer) override;
  host::TextStyle& ActiveTextStyle() override;
  void SetActiveTextStyle(host::TextStyle& style) override;
  host::SysVar GetVariable(const std::string& name) const override;
  void SetVariable(const std::string& name, const host::SysVar& value) override;
  void SendCommand(const std::string& text) override;
  const std::map<std::string, host::SysVar>& Variables() const {
    return variables_;
  }

  // Typed access for the file layer, the renderer and tests.
  MemBlock& ModelSpaceBlock() { return *blocks_.front(); }
  MemBlock& PaperSpaceBlock() { return *blocks_[1]; }
  const std::vector<MemBlock*>& BlockList() const { return blocks_; }
  const std::vector<MemLayer*>& LayerList() const { return layers_; }
  const std::vector<MemTextStyle*>& TextStyleList() const { return styles_; }
  MemBlock* FindBlock(const std::string& name) const;
  MemLayer* FindLayer(const std::string& name) const;
  MemTextStyle* FindTextStyle(const std::string& name) const;
  MemLayer& AddLayer(const std::string& name, uint64_t handle = 0);
  MemTextStyle& AddTextStyle(const std::string& name, uint64_t handle = 0);
  MemBlock& AddBlock(const std::string& name, const Point3& origin,
                     uint64_t handle = 0);
  MemObject* FindById(ObjectId id) const;
  MemObject* FindByHandle(uint64_t handle) const;

  // Applications named in extended data, in registration order.
  const std::vector<std::string>& RegisteredApps() const { return apps_; }
  void RegisterApp(const std::string& app);

  // Handles: the next unused one is handed to each new object; the file
  // layer re-handles objects it reads and writes the seed back.
  uint64_t NextHandle();
  uint64_t HandleSeed() const;
  void Rehandle(MemObject& object, uint64_t handle);
  // Marks a handle as taken by something the file layer keeps outside the
  // object model (tables, block begin and end markers, OBJECTS, ...), so
  // that new objects never receive it. kDuplicateKey when it is in use.
  void ReserveHandle(uint64_t handle);
  // Sets where new handles start (the file layer, after a load that moved
  // objects about); handles in use are still skipped.
  void SetHandleSeed(uint64_t seed) { next_handle_ = seed == 0 ? 1 : seed; }

  // What the file layer keeps of the whole drawing to write it back.
  std::any file_data;

  // While loading, locked layers accept changes.
  class LoadScope {
   public:
    explicit LoadScope(MemDocument& doc) : doc_(doc) { ++doc_.loading_; }
    ~LoadScope() { --doc_.loading_; }
    LoadScope(const LoadScope&) = delete;
    LoadScope& operator=(const LoadScope&) = delete;

   private:
    MemDocument& doc_;
  };
  bool Loading() const { return loading_ > 0; }

  // Selection over the layouts' entities in drawing order.
  std::vector<MemEntity*> SelectAll(const host::Filter& filter) const;
  std::vector<MemEntity*> SelectWindow(const Point3& c1, const Point3& c2,
                                       bool crossing,
                                       const host::Filter& filter) const;

  // Internal bookkeeping called by objects.
  void OnXDataChanged(MemEntity& e, const std::string& app, bool present);
  void OnErased(MemEntity& e);
  void OnLayerChanged(MemEntity& e, const std::string& from,
                      const std::string& to);
  MemObject& RegisterObject(std::unique_ptr<MemObject> object, uint64_t handle);
  void IndexEntity(MemEntity& e);

 private:
  friend class MemSelectionSet;
  friend class MemSelectionSets;
  friend class MemBlock;
  friend class MemLayer;
  ObjectId IdFor(uint64_t handle);

  std::shared_ptr<MemApplication> app_;
  Options options_;
  std::string name_ = "Drawing";
  std::vector<std::unique_ptr<MemObject>> objects_;
  FlatMap<ObjectId, MemObject*> by_id_;
  // A handle may be taken by nothing of the model (a null entry).
  FlatMap<uint64_t, MemObject*> by_handle_;
  std::vector<MemBlock*> blocks_;
  std::vector<MemLayer*> layers_;
  std::vector<MemTextStyle*> styles_;
  MemBlocks blocks_view_{*this};
  MemLayers layers_view_{*this};
  MemTextStyles styles_view_{*this};
  MemSelectionSets sets_view_{*this};
  MemUtility utility_{*this};
  std::vector<std::string> apps_;
  std::map<std::string, host::SysVar> variables_;
  MemLayer* active_layer_ = nullptr;
  MemTextStyle* active_style_ = nullptr;
  uint64_t next_handle_ = 1;
  uint64_t next_seq_ = 1;
  uint64_t fresh_base_ = 0;
  uint64_t fresh_count_ = 0;
  int loading_ = 0;
  // Indexes of selectable entities (in layouts): all, by upper-case
  // application name, entity type and block name; ordered by sequence.
  SequenceIndex selectable_;
  std::unordered_map<std::string, SequenceIndex> by_app_;
  std::unordered_map<std::string, SequenceIndex> by_type_;
  std::unordered_map<std::string, SequenceIndex> by_block_;
};

}  // namespace kestrana::memhost
