// The pipe record: XData of a pipe polyline under "Kestrana".
#pragma once

#include <array>
#include <cstdint>

#include "core/record.h"

namespace kestrana::core {

enum class PipeField : int {
  kApplicationName = 0,
  kCombinedLabel = 1,  // "Pipe;<network>;<label>"
  kElementType = 2,    // "GravityPipe" or "PressurePipe"
  kSectionShape = 3,   // "SectionShape_Circular" or "SectionShape_Box"
  kSpan = 4,           // mm; inches (circular) or feet (box) in US
  kRise = 5,           // same units as the span
  kPipeReserved1 = 6,
  kPipeReserved2 = 7,
  kNumCells = 8,     // 16-bit
  kStartInvert = 9,  // at the first vertex
  kEndInvert = 10,   // at the last vertex
  kMaterial = 11,
  kStartNodeLabel = 12,  // ";RelatedTo<label>"
  kEndNodeLabel = 13,
  kStartNodeOID = 14,  // ";RelatedTo<ID>"
  kEndNodeOID = 15,
  kAnnotationLabelRef = 16,
  kArrowLabelRef = 17,
  kAnnotationOIDRef = 18,
  kArrowOIDRef = 19,
  kCrossingRefs = 20,
  kCrossingOIDRefs = 21,  // in step with kCrossingRefs
  kProfileRefs = 22,
  kProfileOIDRefs = 23,  // in step with kProfileRefs
};

inline constexpr int kPipeRecordLength = 24;

// The crossing annotations on a pipe, and the profiles that show it.
inline constexpr LinkFields kCrossingLinks{PipeField::kCrossingRefs,
                                           PipeField::kCrossingOIDRefs};
inline constexpr LinkFields kProfileLinks{PipeField::kProfileRefs,
                                          PipeField::kProfileOIDRefs};

// Group codes of fields 1 to 23.
inline constexpr std::array<int16_t, kPipeRecordLength - 1> kPipeRecordCodes = {
    code::kText, code::kText, code::kText,  code::kReal, code::kReal,
    code::kReal, code::kReal, code::kInt16, code::kReal, code::kReal,
    code::kText, code::kText, code::kText,  code::kText, code::kText,
    code::kText, code::kText, code::kText,  code::kText, code::kText,
    code::kText, code::kText, code::kText};

}  // namespace kestrana::core
