// The drawing host: the only way the logic touches a drawing.
//
// Pure abstract classes mirroring the CAD host's automation objects. Members
// keep the host's names; getters are the property names, setters carry a
// "Set" prefix. Objects are owned by their document: references and pointers
// handed out stay valid as long as the document lives, and using an erased
// object raises HostError(kErased).
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "host/types.h"

namespace kestrana::host {

class Application;
class Block;
class Document;

enum class EntityKind {
  kLwPolyline,
  kLine,
  kPoint,
  kText,
  kCircle,
  kEllipse,
  kArc,
  kHatch,
  kBlockReference,
  kAttributeReference,
  kAttributeDefinition,
  kOther,  // kinds the system does not model (dimensions, splines, ...)
};

// The host's acExtendOption for IntersectWith.
enum class ExtendOption { kNone = 0, kThis = 1, kOther = 2, kBoth = 3 };

// The host's acSelect modes used with SelectionSet::Select.
enum class SelectMode { kWindow = 0, kCrossing = 1, kAll = 5 };

struct BoundingBox {
  Point3 min;
  Point3 max;
};

// Anything that lives in the drawing database and may carry XData.
class Object {
 public:
  virtual ~Object() = default;
  virtual ObjectId ObjectID() const = 0;
  // The class name, such as "AcDbLine" or "AcDbBlockReference".
  virtual std::string ObjectName() const = 0;
  // The drawing-file handle as upper-case hexadecimal text.
  virtual std::string Handle() const = 0;
  virtual bool Erased() const = 0;
  virtual Document& OwnerDocument() const = 0;

  // The record stored under `app`, or nullopt when the object has none.
  virtual std::optional<XRecord> GetXData(const std::string& app) const = 0;
  // Replaces the record named by item 0 ({1001, app}); registers the app.
  virtual void SetXData(const XRecord& record) = 0;
  // Every record of every application, in stored order.
  virtual std::vector<XRecord> GetAllXData() const = 0;
};

class Entity : public Object {
 public:
  virtual EntityKind Kind() const = 0;
  // The file type name used by selection filters (group code 0): "LINE".
  virtual std::string EntityName() const = 0;
  virtual Block& OwnerBlock() const = 0;

  virtual std::string Layer() const = 0;
  virtual void SetLayer(const std::string& layer) = 0;
  // Index colour; color::kByLayer unless set.
  virtual int TrueColor() const = 0;
  virtual void SetTrueColor(int color_index) = 0;
  virtual bool Visible() const = 0;
  virtual void SetVisible(bool visible) = 0;

  virtual void Delete() = 0;
  virtual void Update() = 0;

  virtual BoundingBox GetBoundingBox() const = 0;
  // Intersection points as a flat X, Y, Z list in the order documented by
  // the host implementation.
  virtual std::vector<double> IntersectWith(const Entity& other,
                                            ExtendOption option) const = 0;
  virtual void Move(const Point3& from, const Point3& to) = 0;
  virtual void Rotate(const Point3& base, double angle) = 0;
  // A copy in the same block with a new ID and handle, XData included.
  virtual Entity& Copy() const = 0;
};

class LwPolyline : public Entity {
 public:
  // Flat X0, Y0, X1, Y1, ... list.
  virtual std::vector<double> Coordinates() const = 0;
  virtual void SetCoordinates(const std::vector<double>& xy) = 0;
  virtual int NumberOfVertices() const = 0;
  virtual double Length() const = 0;
  virtual bool Closed() const = 0;
  virtual void SetClosed(bool closed) = 0;
  virtual double GetBulge(int index) const = 0;
  virtual void SetBulge(int index, double bulge) = 0;
  virtual double ConstantWidth() const = 0;
  virtual void SetConstantWidth(double width) = 0;
  virtual std::pair<double, double> GetWidth(int index) const = 0;
  virtual void SetWidth(int index, double start_width, double end_width) = 0;
  virtual double Elevation() const = 0;
  virtual void SetElevation(double elevation) = 0;
};

class Line : public Entity {
 public:
  virtual Point3 StartPoint() const = 0;
  virtual void SetStartPoint(const Point3& p) = 0;
  virtual Point3 EndPoint() const = 0;
  virtual void SetEndPoint(const Point3& p) = 0;
  virtual double Length() const = 0;
};

class Point : public Entity {
 public:
  virtual Point3 Coordinates() const = 0;
  virtual void SetCoordinates(const Point3& p) = 0;
};

class Circle : public Entity {
 public:
  virtual Point3 Center() const = 0;
  virtual void SetCenter(const Point3& p) = 0;
  virtual double Radius() const = 0;
  virtual void SetRadius(double r) = 0;
};

// A circular arc, counter-clockwise from the start to the end angle.
class Arc : public Entity {
 public:
  virtual Point3 Center() const = 0;
  virtual void SetCenter(const Point3& p) = 0;
  virtual double Radius() const = 0;
  virtual void SetRadius(double r) = 0;
  // Radians from the X axis. Equal angles make an empty arc; angles a
  // whole turn apart (0 and 2π) make a whole circle.
  virtual double StartAngle() const = 0;
  virtual void SetStartAngle(double angle) = 0;
  virtual double EndAngle() const = 0;
  virtual void SetEndAngle(double angle) = 0;
  virtual Point3 StartPoint() const = 0;
  virtual Point3 EndPoint() const = 0;
  // The arc's own length, radius times the swept angle.
  virtual double Length() const = 0;
};

class Ellipse : public Entity {
 public:
  virtual Point3 Center() const = 0;
  virtual void SetCenter(const Point3& p) = 0;
  // End point of the major axis relative to the centre.
  virtual Point3 MajorAxis() const = 0;
  virtual void SetMajorAxis(const Point3& v) = 0;
  virtual double RadiusRatio() const = 0;
  virtual void SetRadiusRatio(double ratio) = 0;
  // Parameters in radians; 0 and 2π for a full ellipse.
  virtual double StartParameter() const = 0;
  virtual double EndParameter() const = 0;
  virtual void SetParameters(double start, double end) = 0;
};

// One edge of a hatch boundary loop.
struct HatchEdge {
  enum class Type { kLine = 1, kArc = 2, kEllipseArc = 3, kSpline = 4 };
  Type type = Type::kLine;
  Point3 start, end;         // kLine
  Point3 center;             // kArc, kEllipseArc
  double radius = 0.0;       // kArc
  Point3 major_axis;         // kEllipseArc, relative to the centre
  double ratio = 1.0;        // kEllipseArc
  double start_angle = 0.0;  // radians
  double end_angle = 0.0;    // radians
  bool counter_clockwise = true;
  std::vector<Point3> control_points;  // kSpline (drawn through as a polygon)
};

struct HatchLoop {
  int flags = 0;  // the file's boundary path type flags
  bool is_polyline = false;
  std::vector<double> vertices;  // flat X, Y when is_polyline
  std::vector<double> bulges;    // one per vertex when is_polyline
  bool closed = true;
  std::vector<HatchEdge> edges;   // when !is_polyline
  std::vector<ObjectId> sources;  // boundary objects of an associative hatch
};

class Hatch : public Entity {
 public:
  // 0 user defined, 1 predefined, 2 custom.
  virtual int PatternType() const = 0;
  virtual std::string PatternName() const = 0;
  virtual bool AssociativeHatch() const = 0;
  virtual bool IsSolidFill() const = 0;
  // The first loop appended is the outer one. Accepts lines, polylines,
  // circles, arcs and ellipses.
  virtual void AppendOuterLoop(const std::vector<Entity*>& objects) = 0;
  virtual void AppendInnerLoop(const std::vector<Entity*>& objects) = 0;
  virtual int NumberOfLoops() const = 0;
  virtual std::vector<HatchLoop> Loops() const = 0;
  virtual void Evaluate() = 0;
};

// Texts, attribute references and attribute definitions share these.
class TextEntity : public Entity {
 public:
  virtual std::string TextString() const = 0;
  virtual void SetTextString(const std::string& text) = 0;
  virtual double Height() const = 0;
  virtual void SetHeight(double height) = 0;
  virtual TextAlignment Alignment() const = 0;
  virtual void SetAlignment(TextAlignment alignment) = 0;
  // For left alignment the insertion point is the anchor; for every other
  // alignment the alignment point is, and the insertion point follows it.
  virtual Point3 InsertionPoint() const = 0;
  virtual void SetInsertionPoint(const Point3& p) = 0;
  virtual Point3 TextAlignmentPoint() const = 0;
  virtual void SetTextAlignmentPoint(const Point3& p) = 0;
  virtual double Rotation() const = 0;
  virtual void SetRotation(double angle) = 0;
  virtual std::string StyleName() const = 0;
  virtual void SetStyleName(const std::string& style) = 0;
  // Width factor.
  virtual double ScaleFactor() const = 0;
  virtual void SetScaleFactor(double factor) = 0;
  virtual double ObliqueAngle() const = 0;
  virtual void SetObliqueAngle(double angle) = 0;
};

class Text : public TextEntity {};

class AttributeReference : public TextEntity {
 public:
  virtual std::string TagString() const = 0;
  virtual void SetTagString(const std::string& tag) = 0;
  virtual bool Invisible() const = 0;
  virtual void SetInvisible(bool invisible) = 0;
};

class AttributeDefinition : public TextEntity {
 public:
  virtual std::string TagString() const = 0;
  virtual void SetTagString(const std::string& tag) = 0;
  virtual std::string PromptString() const = 0;
  virtual void SetPromptString(const std::string& prompt) = 0;
  // Bit set: 1 invisible, 2 constant, 4 verify, 8 preset.
  virtual int Mode() const = 0;
  virtual void SetMode(int mode) = 0;
};

class BlockReference : public Entity {
 public:
  // The name of the block definition inserted.
  virtual std::string Name() const = 0;
  // Setting the insertion point or rotation moves the attributes along.
  virtual Point3 InsertionPoint() const = 0;
  virtual void SetInsertionPoint(const Point3& p) = 0;
  virtual double Rotation() const = 0;
  virtual void SetRotation(double angle) = 0;
  virtual double XScaleFactor() const = 0;
  virtual double YScaleFactor() const = 0;
  virtual double ZScaleFactor() const = 0;
  virtual void SetScaleFactors(double x, double y, double z) = 0;
  virtual bool HasAttributes() const = 0;
  // In the order of the definition's attribute definitions.
  virtual std::vector<AttributeReference*> GetAttributes() const = 0;
};

// An entity the system does not model, kept as the file had it.
class OtherEntity : public Entity {};

// A block definition; model space and paper space layouts are blocks too.
class Block : public Object {
 public:
  virtual std::string Name() const = 0;
  virtual Point3 Origin() const = 0;
  virtual void SetOrigin(const Point3& p) = 0;
  virtual bool IsLayout() const = 0;
  virtual bool IsXRef() const = 0;
  virtual int Count() const = 0;
  virtual Entity& Item(int index) const = 0;
  // The live entities in drawing order.
  virtual std::vector<Entity*> Entities() const = 0;
  // Deletes the definition; refused for layouts and blocks in use.
  virtual void Delete() = 0;

  virtual LwPolyline& AddLightWeightPolyline(const std::vector<double>& xy) = 0;
  virtual Line& AddLine(const Point3& start, const Point3& end) = 0;
  virtual Point& AddPoint(const Point3& p) = 0;
  virtual Circle& AddCircle(const Point3& center, double radius) = 0;
  // Angles in radians; the arc runs counter-clockwise from start to end.
  virtual Arc& AddArc(const Point3& center, double radius, double start_angle,
                      double end_angle) = 0;
  virtual Ellipse& AddEllipse(const Point3& center, const Point3& major_axis,
                              double radius_ratio) = 0;
  virtual Text& AddText(const std::string& text, const Point3& insertion_point,
                        double height) = 0;
  // The tag must be non-empty and hold no blanks, as the host requires.
  virtual AttributeDefinition& AddAttribute(double height, int mode,
                                            const std::string& prompt,
                                            const Point3& insertion_point,
                                            const std::string& tag,
                                            const std::string& value) = 0;
  virtual Hatch& AddHatch(int pattern_type, const std::string& pattern_name,
                          bool associativity) = 0;
  virtual BlockReference& InsertBlock(const Point3& insertion_point,
                                      const std::string& name, double x_scale,
                                      double y_scale, double z_scale,
                                      double rotation) = 0;
};

class Blocks {
 public:
  virtual ~Blocks() = default;
  virtual int Count() const = 0;
  // Position 0 is model space.
  virtual Block& Item(int index) const = 0;
  virtual Block& Item(const std::string& name) const = 0;
  // nullptr when there is no such definition (names ignore letter case).
  virtual Block* Find(const std::string& name) const = 0;
  virtual Block& Add(const Point3& origin, const std::string& name) = 0;
};

class Layer : public Object {
 public:
  virtual std::string Name() const = 0;
  virtual bool Freeze() const = 0;
  virtual void SetFreeze(bool frozen) = 0;
  virtual bool Lock() const = 0;
  virtual void SetLock(bool locked) = 0;
  virtual bool LayerOn() const = 0;
  virtual void SetLayerOn(bool on) = 0;
  virtual int TrueColor() const = 0;
  virtual void SetTrueColor(int color_index) = 0;
  // Refused for layer "0", the current layer and layers in use.
  virtual void Delete() = 0;
};

class Layers {
 public:
  virtual ~Layers() = default;
  virtual int Count() const = 0;
  virtual Layer& Item(int index) const = 0;
  virtual Layer& Item(const std::string& name) const = 0;
  virtual Layer* Find(const std::string& name) const = 0;
  // Returns the existing layer when the name is taken, as the host does.
  virtual Layer& Add(const std::string& name) = 0;
};

class TextStyle : public Object {
 public:
  virtual std::string Name() const = 0;
  virtual double Height() const = 0;  // 0 when the height is not fixed
  virtual void SetHeight(double height) = 0;
  virtual double Width() const = 0;  // width factor
  virtual void SetWidth(double factor) = 0;
  virtual std::string FontFile() const = 0;
  virtual void SetFontFile(const std::string& file) = 0;
  virtual double ObliqueAngle() const = 0;
  virtual void SetObliqueAngle(double angle) = 0;
};

class TextStyles {
 public:
  virtual ~TextStyles() = default;
  virtual int Count() const = 0;
  virtual TextStyle& Item(int index) const = 0;
  virtual TextStyle& Item(const std::string& name) const = 0;
  virtual TextStyle* Find(const std::string& name) const = 0;
  virtual TextStyle& Add(const std::string& name) = 0;
};

class SelectionSet {
 public:
  virtual ~SelectionSet() = default;
  virtual std::string Name() const = 0;
  virtual int Count() const = 0;
  virtual Entity& Item(int index) const = 0;
  virtual std::vector<Entity*> Entities() const = 0;
  // Adds entities not yet in the set, in order.
  virtual void AddItems(const std::vector<Entity*>& entities) = 0;
  virtual void RemoveItems(const std::vector<Entity*>& entities) = 0;
  virtual void Clear() = 0;
  // Adds what the mode selects (window and crossing use the two corners)
  // and the filter accepts, in drawing order.
  virtual void Select(SelectMode mode, const Point3& corner1,
                      const Point3& corner2, const Filter& filter) = 0;
  // Lets the user pick; the filter applies to what is picked.
  virtual void SelectOnScreen(const Filter& filter) = 0;
  // Erases every entity of the set.
  virtual void Erase() = 0;
  // Removes the set itself from the drawing's collection.
  virtual void Delete() = 0;
};

class SelectionSets {
 public:
  virtual ~SelectionSets() = default;
  virtual int Count() const = 0;
  virtual SelectionSet& Item(int index) const = 0;
  // A name already in use is refused.
  virtual SelectionSet& Add(const std::string& name) = 0;
};

// An entity picked by the user with the point used to pick it.
struct EntityPick {
  Entity* entity = nullptr;
  Point3 pick_point;
};

class Utility {
 public:
  virtual ~Utility() = default;
  virtual void Prompt(const std::string& text) = 0;
  // Raises HostError(kUserCancelled) when the user cancels.
  virtual Point3 GetPoint(const std::optional<Point3>& base,
                          const std::string& prompt) = 0;
  virtual EntityPick GetEntity(const std::string& prompt) = 0;
};

// System variables hold integers, reals, texts or points.
using SysVar = std::variant<int, double, std::string, Point3>;

class Document {
 public:
  virtual ~Document() = default;
  virtual Application& GetApplication() = 0;
  virtual std::string Name() const = 0;
  virtual Block& ModelSpace() = 0;
  virtual Blocks& GetBlocks() = 0;
  virtual Layers& GetLayers() = 0;
  virtual TextStyles& GetTextStyles() = 0;
  virtual SelectionSets& GetSelectionSets() = 0;
  virtual Utility& GetUtility() = 0;

  // Raises HostError(kNoSuchObject) when no live object has the ID.
  virtual Object& ObjectIdToObject(ObjectId id) = 0;
  virtual Object& HandleToObject(const std::string& handle) = 0;

  virtual Layer& ActiveLayer() = 0;
  virtual void SetActiveLayer(Layer& layer) = 0;
  virtual TextStyle& ActiveTextStyle() = 0;
  virtual void SetActiveTextStyle(TextStyle& style) = 0;

  // "UCSXDIR" and "UCSYDIR" are points; unknown names raise kNoSuchKey.
  virtual SysVar GetVariable(const std::string& name) const = 0;
  virtual void SetVariable(const std::string& name, const SysVar& value) = 0;
  // Sends text to the command line ("\x1b" cancels a running command).
  virtual void SendCommand(const std::string& text) = 0;
};

// The civil-engineering extension, reached by programmatic identifier.
class Surface {
 public:
  virtual ~Surface() = default;
  virtual std::string Name() const = 0;
  // Raises HostError(kOutsideSurface) outside the surface.
  virtual double FindElevationAtXY(double x, double y) const = 0;
};

class Surfaces {
 public:
  virtual ~Surfaces() = default;
  virtual int Count() const = 0;
  virtual Surface& Item(int index) const = 0;
  virtual Surface& Item(const std::string& name) const = 0;
};

class CivilDocument {
 public:
  virtual ~CivilDocument() = default;
  virtual Surfaces& GetSurfaces() = 0;
};

class CivilApplication {
 public:
  virtual ~CivilApplication() = default;
  virtual CivilDocument& ActiveDocument() = 0;
};

class Application {
 public:
  virtual ~Application() = default;
  // Such as "17.1s (LMS Tech)".
  virtual std::string Version() const = 0;
  // Raises HostError when no object is registered under the identifier.
  virtual CivilApplication& GetInterfaceObject(const std::string& prog_id) = 0;
  // A modal message box; returns the answer code (msgbox::kAnswer...).
  virtual int MessageBox(const std::string& text, int buttons, int icon,
                         const std::string& title) = 0;
};

// Controls of the add-on's dialogs, driven by name.
class ComboBox {
 public:
  virtual ~ComboBox() = default;
  virtual int ListCount() const = 0;
  virtual std::string List(int index) const = 0;
  virtual void AddItem(const std::string& item) = 0;
  virtual void Clear() = 0;
  virtual int ListIndex() const = 0;  // -1 when nothing is chosen
  virtual void SetListIndex(int index) = 0;
  virtual std::string Text() const = 0;
  virtual void SetText(const std::string& text) = 0;
};

class CheckBox {
 public:
  virtual ~CheckBox() = default;
  virtual int Value() const = 0;  // 0 or 1
  virtual void SetValue(int value) = 0;
};

class CommandButton {
 public:
  virtual ~CommandButton() = default;
  virtual bool Enabled() const = 0;
  virtual void SetEnabled(bool enabled) = 0;
};

class TextBox {
 public:
  virtual ~TextBox() = default;
  virtual std::string Text() const = 0;
  virtual void SetText(const std::string& text) = 0;
};

class Form {
 public:
  virtual ~Form() = default;
  // Raise HostError(kNoSuchKey) for a name the form lacks.
  virtual ComboBox& GetComboBox(const std::string& name) = 0;
  virtual CheckBox& GetCheckBox(const std::string& name) = 0;
  virtual CommandButton& GetCommandButton(const std::string& name) = 0;
  virtual TextBox& GetTextBox(const std::string& name) = 0;
};

class DataGrid {
 public:
  virtual ~DataGrid() = default;
  virtual int ColumnCount() const = 0;
  virtual int RowCount() const = 0;
  virtual std::string Value(int row, int column) const = 0;
};

// Casts an object to the kind a caller needs, or raises kWrongKind.
template <class T>
T& As(Object& object) {
  if (auto* typed = dynamic_cast<T*>(&object)) return *typed;
  throw HostError(ErrorCode::kWrongKind,
                  "object " + std::to_string(object.ObjectID()) + " (" +
                      object.ObjectName() + ") is not of the kind expected");
}

}  // namespace kestrana::host
