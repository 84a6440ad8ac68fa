// The node record: XData of a "Kestrana_Node" block reference.
#pragma once

#include <array>
#include <cstdint>

#include "core/record.h"

namespace kestrana::core {

enum class NodeField : int {
  kApplicationName = 0,
  kCombinedLabel = 1,  // "Node;<network>;<label>"
  kElementType = 2,    // "GravityNode" or "PressureNode"
  kNodeReserved = 3,   // 16-bit
  kMatching = 4,       // 16-bit: 0 none, 1 centerlines, 2 soffits, 3 inverts
  kPipesAtStartLabels = 5,  // ";RelatedTo<label>..." of pipes starting here
  kPipesAtEndLabels = 6,
  kPipesAtStartOID = 7,  // in step with kPipesAtStartLabels
  kPipesAtEndOID = 8,    // in step with kPipesAtEndLabels
  kGroundLevel = 9,
  kSumpLevel = 10,
  kAnnotationLabelRef = 11,
  kAnnotationOIDRef = 12,
  kLowHighLabelRef = 13,
  kLowHighOIDRef = 14,
};

inline constexpr int kNodeRecordLength = 15;

// Group codes of fields 1 to 14.
inline constexpr std::array<int16_t, kNodeRecordLength - 1> kNodeRecordCodes = {
    code::kText, code::kText, code::kInt16, code::kInt16, code::kText,
    code::kText, code::kText, code::kText,  code::kReal,  code::kReal,
    code::kText, code::kText, code::kText,  code::kText};

}  // namespace kestrana::core
