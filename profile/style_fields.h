// The fields inside the items of a profile style record that gathering
// reads (each item is a ";"-separated list; see profile_style_file.cpp for
// all of them by name).
#pragma once

#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "core/text.h"

namespace kestrana::profile {

// One item of a style record taken apart at ";"; a field beyond the end
// reads as "".
class ItemFields {
 public:
  explicit ItemFields(std::string_view item) : fields_(core::Split(item)) {}

  template <class E>
  requires std::is_enum_v<E> std::string Text(E field)
  const {
    const size_t at = static_cast<size_t>(field);
    return at < fields_.size() ? fields_[at] : std::string();
  }
  template <class E>
  requires std::is_enum_v<E>
  double Number(E field) const { return core::NumericValue(Text(field)); }
  // A switch: "1" is on, "0" off.
  template <class E>
  requires std::is_enum_v<E>
  bool On(E field) const { return Number(field) != 0; }

 private:
  std::vector<std::string> fields_;
};

// Item 6.
enum class PartSplittingField : int { kSwitch = 0, kMaximumLength = 1 };

// Fields 0 and 1 of every band item (10 to 19).
enum class BandField : int { kPosition = 0, kLabel = 1 };

// A band at this position is not drawn.
inline constexpr double kBandNotDrawn = 999;

// Item 18.
enum class StationBandField : int {
  kPosition = 0,
  kLabel = 1,
  kPrecision = 2,
  kDecimals = 3,
  kFormat = 4,
  kInterval = 5,
  kValuesAtStations = 6,
};

// Item 19.
enum class CoordinateBandField : int {
  kPosition = 0,
  kLabel = 1,
  kSwitch = 2,
  kAtStations = 3,
  kAtNodes = 4,
  kAtVertices = 5,
};

}  // namespace kestrana::profile
