#include "viewstyle/view_style_record.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>
#include <string>

#include "core/names.h"

namespace kestrana::viewstyle {

namespace {

using F = ViewStyleField;

constexpr int Index(F field) { return static_cast<int>(field); }

std::vector<ItemInfo> BuildItems() {
  using K = ElementKind;
  using M = ItemForm;
  struct PipeWords {
    K kind;
    std::string start, end;  // "upstream" for gravity, "start" for pressure
    std::string box_start, box_end;  // as the check boxes say: "US", "Start"
    std::string box_suffix;          // "PipeGravity"
  };
  const PipeWords pipes[] = {
      {K::kGravityPipe, "upstream", "downstream", "US", "DS", "PipeGravity"},
      {K::kPressurePipe, "start", "end", "Start", "End", "PipePressure"}};
  std::vector<ItemInfo> items;
  for (const PipeWords& p : pipes) {
    int field = FirstItemField(p.kind);
    auto add = [&](const std::string& name, ItemForm form,
                   const std::string& box) {
      items.push_back(
          {field++, p.kind, name, form, "chk_" + box + p.box_suffix});
    };
    add("label", M::kText, "Label");
    add("length", M::kNumber, "Length");
    add("size", M::kText, "Size");
    add("slope", M::kSlope, "Slope");
    add("material", M::kText, "Material");
    // Start and end alternate: invert, ground, cover, depth.
    for (const char* what : {"Invert", "Ground", "Cover", "Depth"}) {
      std::string word = what;
      std::string lower = word;
      lower[0] = static_cast<char>(std::tolower(lower[0]));
      add(p.start + " " + lower, M::kNumber, p.box_start + word);
      add(p.end + " " + lower, M::kNumber, p.box_end + word);
    }
    add("arrow", M::kFlag, "Arrow");
  }
  const std::pair<K, std::string> nodes[] = {
      {K::kGravityNode, "NodeGravity"}, {K::kPressureNode, "NodePressure"}};
  for (const auto& [kind, suffix] : nodes) {
    int field = FirstItemField(kind);
    for (const char* what : {"Label", "Ground", "Sump", "Depth"}) {
      std::string name = what;
      name[0] = static_cast<char>(std::tolower(name[0]));
      // The label is a text; the levels and the depth are numbers.
      ItemForm form = name == "label" ? M::kText : M::kNumber;
      items.push_back(
          {field++, kind, name, form, "chk_" + std::string(what) + suffix});
    }
    items.push_back({CoordinatesField(kind), kind, "coordinates",
                     M::kCoordinates, "chk_Coordinates" + suffix});
  }
  return items;
}

}  // namespace

std::optional<ElementKind> KindOfElementType(std::string_view element_type) {
  if (element_type == core::kGravityPipe) return ElementKind::kGravityPipe;
  if (element_type == core::kPressurePipe) return ElementKind::kPressurePipe;
  if (element_type == core::kGravityNode) return ElementKind::kGravityNode;
  if (element_type == core::kPressureNode) return ElementKind::kPressureNode;
  return std::nullopt;
}

const char* KindName(ElementKind kind) {
  switch (kind) {
    case ElementKind::kGravityPipe:
      return "gravity pipe";
    case ElementKind::kPressurePipe:
      return "pressure pipe";
    case ElementKind::kGravityNode:
      return "gravity node";
    case ElementKind::kPressureNode:
      return "pressure node";
  }
  return "";
}

int FirstItemField(ElementKind kind) {
  switch (kind) {
    case ElementKind::kGravityPipe:
      return Index(F::kGravityPipeItems);
    case ElementKind::kPressurePipe:
      return Index(F::kPressurePipeItems);
    case ElementKind::kGravityNode:
      return Index(F::kGravityNodeItems);
    case ElementKind::kPressureNode:
      return Index(F::kPressureNodeItems);
  }
  return 0;
}

int ItemField(ElementKind kind, PipeItem item) {
  if (!IsPipe(kind)) throw std::invalid_argument("a node has no pipe items");
  return FirstItemField(kind) + static_cast<int>(item);
}

int ItemField(ElementKind kind, NodeItem item) {
  if (IsPipe(kind)) throw std::invalid_argument("a pipe has no node items");
  return FirstItemField(kind) + static_cast<int>(item);
}

int ArrowField(ElementKind kind) { return ItemField(kind, PipeItem::kArrow); }

int CoordinatesField(ElementKind kind) {
  if (IsPipe(kind)) throw std::invalid_argument("a pipe has no coordinates");
  return Index(kind == ElementKind::kGravityNode ? F::kGravityNodeCoordinates
                                                 : F::kPressureNodeCoordinates);
}

int PieceCount(ItemForm form) {
  switch (form) {
    case ItemForm::kText:
      return 3;
    case ItemForm::kNumber:
      return 5;
    case ItemForm::kSlope:
      return 6;
    case ItemForm::kCoordinates:
      return 3;
    case ItemForm::kFlag:
      return 1;
  }
  return 0;
}

const std::vector<ItemInfo>& Items() {
  static const std::vector<ItemInfo> items = [] {
    std::vector<ItemInfo> built = BuildItems();
    std::sort(
        built.begin(), built.end(),
        [](const ItemInfo& a, const ItemInfo& b) { return a.field < b.field; });
    return built;
  }();
  return items;
}

const ItemInfo& ItemOfField(int field) {
  const std::vector<ItemInfo>& items = Items();
  int first = items.front().field;
  if (field < first || field > items.back().field)
    throw std::out_of_range("view style field " + std::to_string(field) +
                            " is not an annotation item");
  return items[field - first];
}

std::string StyleNameOf(const ViewStyleSettings& settings) {
  const std::string& field = settings.at(Index(F::kStyleName));
  return field.size() > kViewStyleNamePrefixLength
             ? field.substr(kViewStyleNamePrefixLength)
             : "";
}

std::string StyleNameField(std::string_view name) {
  return kViewStyleNamePrefix + std::string(name);
}

ViewStyleSettings StandardViewStyle(bool metric, std::string_view name) {
  const std::string unit = metric ? " m" : " ft";
  // Levels and lengths to two places.
  auto number = [](const char* show, const std::string& prefix,
                   const std::string& suffix) {
    return std::string(show) + ";" + prefix + ";" + suffix + ";2;0";
  };
  ViewStyleSettings s(kViewStyleRecordLength);
  s[Index(F::kApplicationName)] = core::kAppName;
  s[Index(F::kStyleName)] = StyleNameField(name);
  s[Index(F::kElementType)] = kViewStylePoint;
  s[Index(F::kTextStyle)] = "Standard";
  s[Index(F::kTextHeight)] = metric ? "2" : "6";
  for (ElementKind kind :
       {ElementKind::kGravityPipe, ElementKind::kPressurePipe}) {
    const bool gravity = kind == ElementKind::kGravityPipe;
    const std::string start = gravity ? "US " : "Start ";
    const std::string end = gravity ? "DS " : "End ";
    auto set = [&](PipeItem item, std::string text) {
      s[ItemField(kind, item)] = std::move(text);
    };
    set(PipeItem::kLabel, "1;;");
    set(PipeItem::kLength, number("0", "L=", unit));
    set(PipeItem::kSize, "1;;");
    // Slopes in percent to two places.
    set(PipeItem::kSlope, gravity ? "1;S=;;2;0;1" : "0;S=;;2;0;1");
    set(PipeItem::kMaterial, gravity ? "0;;" : "1;;");
    set(PipeItem::kStartInvert, number("0", start + "IL=", ""));
    set(PipeItem::kEndInvert, number("0", end + "IL=", ""));
    set(PipeItem::kStartGround, number("0", start + "GL=", ""));
    set(PipeItem::kEndGround, number("0", end + "GL=", ""));
    set(PipeItem::kStartCover, number("0", start + "Cover=", unit));
    set(PipeItem::kEndCover, number("0", end + "Cover=", unit));
    set(PipeItem::kStartDepth, number("0", start + "Depth=", unit));
    set(PipeItem::kEndDepth, number("0", end + "Depth=", unit));
    set(PipeItem::kArrow, gravity ? kShown : kHidden);
  }
  for (ElementKind kind :
       {ElementKind::kGravityNode, ElementKind::kPressureNode}) {
    const bool gravity = kind == ElementKind::kGravityNode;
    s[ItemField(kind, NodeItem::kLabel)] = "1;;";
    s[ItemField(kind, NodeItem::kGround)] = number("1", "GL=", "");
    s[ItemField(kind, NodeItem::kSump)] =
        number(gravity ? "1" : "0", "IL=", "");
    s[ItemField(kind, NodeItem::kDepth)] = number("0", "D=", unit);
    s[CoordinatesField(kind)] = kCoordinatesDefault;
  }
  return s;
}

}  // namespace kestrana::viewstyle
