#include "viewstyle/annotation_layout.h"

#include <cstring>

#include "core/names.h"
#include "core/text.h"
#include "viewstyle/annotation_record.h"
#include "viewstyle/view_style.h"

namespace kestrana::viewstyle {

namespace {
// ";RelatedTo" in front of a linked ID.
const size_t kLinkPrefixLength = 1 + std::strlen(core::kRelatedTo);
// Lines above a pressure pipe: one more than half when the count is odd.
constexpr double kUpperHalfBias = 0.1;
constexpr double kPitchPerHeight = 1.5;
}  // namespace

const char* AttributeBlockName(ElementKind kind) {
  switch (kind) {
    case ElementKind::kGravityPipe:
      return kGravityPipeAttributeBlock;
    case ElementKind::kPressurePipe:
      return kPressurePipeAttributeBlock;
    case ElementKind::kGravityNode:
      return kGravityNodeAttributeBlock;
    case ElementKind::kPressureNode:
      return kPressureNodeAttributeBlock;
  }
  return "";
}

int DefinitionMiddleIndex(ElementKind kind, int count) {
  if (kind == ElementKind::kGravityPipe)
    return static_cast<int>(core::RoundHalfEven(count / 2.0, 0));
  return PlacementMiddleIndex(kind, count);
}

int PlacementMiddleIndex(ElementKind kind, int count) {
  if (!IsPipe(kind)) return count;
  return static_cast<int>(core::RoundHalfEven(count / 2.0 + kUpperHalfBias, 0));
}

std::vector<double> LineOffsets(int count, int middle, double pitch) {
  std::vector<double> offsets;
  double y = middle * pitch;
  for (int i = 0; i < count; ++i) {
    if (i == middle) y -= pitch;  // the gap the pipe line passes through
    offsets.push_back(y);
    y -= pitch;
  }
  return offsets;
}

double LinePitch(double text_height) { return kPitchPerHeight * text_height; }

double StyleTextHeight(const core::TextTable& format) {
  return core::NumericValue(format(
      static_cast<int>(ViewStyleField::kTextHeight), format_column::kShow));
}

host::ObjectId LinkedObjectId(std::string_view link) {
  std::string_view id =
      link.size() > kLinkPrefixLength ? link.substr(kLinkPrefixLength) : "";
  return core::ToInt32(core::NumericValue(id));
}

}  // namespace kestrana::viewstyle
