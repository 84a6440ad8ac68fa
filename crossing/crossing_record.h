// The records of a crossing: XData of the annotation block reference and of
// its leader line under "Kestrana".
#pragma once

#include <array>
#include <cstdint>

#include "core/record.h"

namespace kestrana::crossing {

enum class CrossingAnnoField : int {
  kApplicationName = 0,
  kCombinedLabel = 1,  // "CPA;;" & annotation label
  kElementType = 2,    // "CrossingPointAnnotation"
  kPipe1Net = 3,
  kPipe2Net = 4,
  kPipe1LabelRef = 5,  // ";RelatedTo" & label of pipe 1
  kPipe2LabelRef = 6,
  kPipe1Rise = 7,  // level units
  kPipe2Rise = 8,
  kPipe1SizeString = 9,
  kPipe2SizeString = 10,
  kClearance = 11,
  kPipe1OIDRef = 12,  // ";RelatedTo" & ID of pipe 1
  kPipe2OIDRef = 13,
  kLineLabelRef = 14,  // ";RelatedTo" & line label
  kLineOIDRef = 15,    // ";RelatedTo" & ID of the leader line
  kPoint = 16,         // Easting & ";" & Northing
};

inline constexpr int kCrossingAnnoRecordLength = 17;

// Group codes of fields 1 to 16.
inline constexpr std::array<int16_t, kCrossingAnnoRecordLength - 1>
    kCrossingAnnoRecordCodes = {
        core::code::kText, core::code::kText, core::code::kText,
        core::code::kText, core::code::kText, core::code::kText,
        core::code::kReal, core::code::kReal, core::code::kText,
        core::code::kText, core::code::kReal, core::code::kText,
        core::code::kText, core::code::kText, core::code::kText,
        core::code::kText};

enum class CrossingLineField : int {
  kApplicationName = 0,
  kCombinedLabel = 1,  // "CPL;;" & line label
  kElementType = 2,    // "CrossingPointLine"
  kAnnoLabelRef = 3,   // ";RelatedTo" & annotation label
  kAnnoOIDRef = 4,     // ";RelatedTo" & ID of the annotation
};

inline constexpr int kCrossingLineRecordLength = 5;

inline constexpr std::array<int16_t, kCrossingLineRecordLength - 1>
    kCrossingLineRecordCodes = {core::code::kText, core::code::kText,
                                core::code::kText, core::code::kText};

// The attributes of the annotation blocks, by position: the crossed pipe of
// the other network (pipe 2) is shown first.
enum class CrossingAttribute : int {
  kPipe2Size = 0,
  kPipe2Invert = 1,
  kPipe1Size = 2,
  kPipe1Invert = 3,
  kClearance = 4,
};

inline constexpr int kCrossingAttributeCount = 5;

// Kinds of the combined labels and the element types of the two records.
inline constexpr char kAnnoKind[] = "CPA";
inline constexpr char kLineKind[] = "CPL";
inline constexpr char kCrossingPointAnnotation[] = "CrossingPointAnnotation";
inline constexpr char kCrossingPointLine[] = "CrossingPointLine";

// Labels end with these: "<net1><label1><net2><label2>Annotation".
inline constexpr char kAnnoLabelSuffix[] = "Annotation";
inline constexpr char kLineLabelSuffix[] = "Line";

}  // namespace kestrana::crossing
