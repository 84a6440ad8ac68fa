// The low/high point record: XData of a marker block reference.
#pragma once

#include <array>
#include <cstdint>

#include "core/record.h"

namespace kestrana::lowhigh {

enum class LowHighField : int {
  kApplicationName = 0,
  kCombinedLabel = 1,  // "LowHigh;<network>;<node label>LowHigh"
  kElementType = 2,    // "LowHighPoint"
  kNodeLabelRef = 3,   // ";RelatedTo<node label>"
  kNodeOIDRef = 4,     // ";RelatedTo<node ID>"
};

inline constexpr int kLowHighRecordLength = 5;

inline constexpr std::array<int16_t, kLowHighRecordLength - 1>
    kLowHighRecordCodes = {core::code::kText, core::code::kText,
                           core::code::kText, core::code::kText};

inline constexpr char kLowHighKind[] = "LowHigh";
inline constexpr char kLowHighPoint[] = "LowHighPoint";
// The marker label is the node label followed by this.
inline constexpr char kMarkerSuffix[] = "LowHigh";

// What the analysis finds at a node.
enum class LowHighCode : int16_t { kNone = 0, kLow = 1, kHigh = 2 };

}  // namespace kestrana::lowhigh
