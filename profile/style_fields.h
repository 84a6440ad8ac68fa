// The fields inside the items of a profile style record that gathering
// reads (each item is a ";"-separated list; see profile_style_file.cpp for
// all of them by name).
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/record.h"
#include "core/text.h"

namespace kestrana::profile {

// One item of a style record taken apart at ";"; a field beyond the end
// reads as "".
class ItemFields {
 public:
  explicit ItemFields(std::string_view item) : fields_(core::Split(item)) {}

  std::string Text(core::Field field) const {
    const size_t at = static_cast<size_t>(field.index);
    return at < fields_.size() ? fields_[at] : std::string();
  }
  double Number(core::Field field) const {
    return core::NumericValue(Text(field));
  }
  // A switch: "1" is on, "0" off.
  bool On(core::Field field) const { return Number(field) != 0; }

 private:
  std::vector<std::string> fields_;
};

// Item 7: the node label switch also shows the texts of connected and
// crossing pipes.
enum class DrawingSetting : int { kNodeLabels = 2, kExaggeration = 3 };

// Item 6.
enum class PartSplittingSetting : int { kSwitch = 0, kMaximumLength = 1 };

// A band (items 10 to 19) at this position (field 0) is not drawn.
inline constexpr double kBandNotDrawn = 999;

// Item 18.
enum class StationBandSetting : int {
  kPosition = 0,
  kLabel = 1,
  kPrecision = 2,
  kDecimals = 3,
  kFormat = 4,
  kInterval = 5,
  kValuesAtStations = 6,
};

// Item 19.
enum class CoordinateBandSetting : int {
  kPosition = 0,
  kLabel = 1,
  kSwitch = 2,
  kAtStations = 3,
  kAtNodes = 4,
  kAtVertices = 5,
};

}  // namespace kestrana::profile
