// Annotation and direction-arrow records (XData of their block references)
// and the five block definitions annotations are inserted from.
#pragma once

#include <array>
#include <cstdint>

#include "core/record.h"

namespace kestrana::viewstyle {

// Both records have this layout; field 2 tells them apart.
enum class AnnotationField : int {
  kApplicationName = 0,
  kCombinedLabel = 1,    // ";<network>;<element label>Annotation" (or "Arrow")
  kElementType = 2,      // "Annotation" or "Arrow"
  kElementLabelRef = 3,  // ";RelatedTo<element label>"
  kElementOIDRef = 4,    // ";RelatedTo<element ID>"
};

inline constexpr int kAnnotationRecordLength = 5;
inline constexpr std::array<int16_t, kAnnotationRecordLength - 1>
    kAnnotationRecordCodes = {core::code::kText, core::code::kText,
                              core::code::kText, core::code::kText};

// Field 2 of the records, and the suffix of their labels.
inline constexpr char kAnnotation[] = "Annotation";
inline constexpr char kArrow[] = "Arrow";

inline constexpr char kGravityPipeAttributeBlock[] =
    "Kestrana_GravityPipeAttribute";
inline constexpr char kPressurePipeAttributeBlock[] =
    "Kestrana_PressurePipeAttribute";
inline constexpr char kGravityNodeAttributeBlock[] =
    "Kestrana_GravityNodeAttribute";
inline constexpr char kPressureNodeAttributeBlock[] =
    "Kestrana_PressureNodeAttribute";
inline constexpr char kDirectionArrowBlock[] = "Kestrana_DirectionArrow";

// Attribute k (from 1) of an annotation block has the prompt "Attribute k";
// its tag is "Attribute_k", since the host takes no blanks in tags.
inline constexpr char kAttributePrompt[] = "Attribute ";
inline constexpr char kAttributeTag[] = "Attribute_";

}  // namespace kestrana::viewstyle
