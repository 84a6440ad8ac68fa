// The view style record: 43 texts on a hidden marker point, one record per
// style. Index 0 is the application name (code 1001), every other index a
// text (code 1000); the field number is the index. Fields 5 to 42 are the
// annotation items, ";"-lists whose first piece is the show flag.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrana::viewstyle {

// Field 2 of the marker record; object-ID renewal finds the markers by it.
inline constexpr char kViewStylePoint[] = "ViewStylePoint";
// Field 1 is the style name behind this two-character prefix.
inline constexpr char kViewStyleNamePrefix[] = "VS";
inline constexpr size_t kViewStyleNamePrefixLength = 2;

// The 43 texts of a record, as the settings dialog hands them over.
using ViewStyleSettings = std::vector<std::string>;

inline constexpr int kViewStyleRecordLength = 43;
// Records written before node coordinates existed end after field 40.
inline constexpr int kRecordLengthWithoutCoordinates = 41;
// What such a record gets for the coordinate items: not shown, 2 places.
inline constexpr char kCoordinatesDefault[] = "0;2;0";

enum class ViewStyleField : int {
  kApplicationName = 0,
  kStyleName = 1,    // "VS<name>"
  kElementType = 2,  // "ViewStylePoint"
  kTextStyle = 3,
  kTextHeight = 4,
  kGravityPipeItems = 5,  // first of 14, offsets by PipeItem
  kGravityPipeArrow = 18,
  kPressurePipeItems = 19,
  kPressurePipeArrow = 32,
  kGravityNodeItems = 33,  // first of 4, offsets by NodeItem
  kPressureNodeItems = 37,
  kGravityNodeCoordinates = 41,
  kPressureNodeCoordinates = 42,
};

// Offsets of a pipe's items from the first row of its kind. Start is the
// pipe's first vertex (upstream for gravity pipes), end its last.
enum class PipeItem : int {
  kLabel = 0,
  kLength = 1,
  kSize = 2,
  kSlope = 3,
  kMaterial = 4,
  kStartInvert = 5,
  kEndInvert = 6,
  kStartGround = 7,
  kEndGround = 8,
  kStartCover = 9,
  kEndCover = 10,
  kStartDepth = 11,
  kEndDepth = 12,
  kArrow = 13,  // not an annotation line
};
inline constexpr int kPipeTextItems = 13;

enum class NodeItem : int { kLabel = 0, kGround = 1, kSump = 2, kDepth = 3 };
inline constexpr int kNodeTextItems = 4;

enum class ElementKind {
  kGravityPipe,
  kPressurePipe,
  kGravityNode,
  kPressureNode
};
inline constexpr std::array<ElementKind, 4> kElementKinds = {
    ElementKind::kGravityPipe, ElementKind::kPressurePipe,
    ElementKind::kGravityNode, ElementKind::kPressureNode};

// The kind of an element type ("GravityPipe", ...); nullopt for anything
// that is not an element.
std::optional<ElementKind> KindOfElementType(std::string_view element_type);
// "gravity pipe", "pressure pipe", "gravity node", "pressure node".
const char* KindName(ElementKind kind);

inline constexpr bool IsPipe(ElementKind kind) {
  return kind == ElementKind::kGravityPipe ||
         kind == ElementKind::kPressurePipe;
}
// The record index of the kind's first item.
int FirstItemField(ElementKind kind);
// The record index of an item of a pipe or node kind.
int ItemField(ElementKind kind, PipeItem item);
int ItemField(ElementKind kind, NodeItem item);
// The arrow item of a pipe kind, the coordinates item of a node kind.
int ArrowField(ElementKind kind);
int CoordinatesField(ElementKind kind);

// The five shapes an item text takes.
enum class ItemForm {
  kText,         // show;prefix;suffix
  kNumber,       // show;prefix;suffix;precision;decimals
  kSlope,        // show;prefix;suffix;precision;decimals;notation
  kCoordinates,  // show;precision;decimals
  kFlag,         // show
};

// Piece positions inside an item text.
namespace item_piece {
inline constexpr int kShow = 0;
inline constexpr int kPrefix = 1;
inline constexpr int kSuffix = 2;
inline constexpr int kPrecision = 3;
inline constexpr int kDecimals = 4;
inline constexpr int kNotation = 5;
}  // namespace item_piece
namespace coordinates_piece {
inline constexpr int kShow = 0;
inline constexpr int kPrecision = 1;
inline constexpr int kDecimals = 2;
}  // namespace coordinates_piece

// Number of pieces of a form.
int PieceCount(ItemForm form);

inline constexpr char kShown[] = "1";
inline constexpr char kHidden[] = "0";

// Slope notations (the third argument of BuildSlopeString).
inline constexpr int kSlopeDecimal = 0;
inline constexpr int kSlopePercent = 1;
inline constexpr int kSlopeRatio = 2;

// One annotation item: where it lives, what it is called in the style file
// and on the settings dialog.
struct ItemInfo {
  int field;
  ElementKind kind;
  std::string name;  // "label", "upstream invert", ...
  ItemForm form;
  std::string check_box;  // "chk_LabelPipeGravity", ...
};
// Fields 5 to 42 in order.
const std::vector<ItemInfo>& Items();
// The item of a field from 5 to 42; std::out_of_range for others.
const ItemInfo& ItemOfField(int field);

// The style name of a record (field 1 after its prefix).
std::string StyleNameOf(const ViewStyleSettings& settings);
// Field 1 for a name.
std::string StyleNameField(std::string_view name);

// The "Standard" style every new project starts with, named `name`; text
// height and unit suffixes follow the units.
ViewStyleSettings StandardViewStyle(bool metric,
                                    std::string_view name = "Standard");

}  // namespace kestrana::viewstyle
