// The two library records: XData of the materials marker and of the
// section-sizes marker, hidden points named by project fields 5 and 6.
#pragma once

#include <array>
#include <cstdint>

#include "core/record.h"

namespace kestrana::library {

// Field 2 of the marker records; object-ID renewal finds the markers by it.
inline constexpr char kMaterialLibraryPoint[] = "MaterialLibraryPoint";
inline constexpr char kSectionSizeLibraryPoint[] = "SectionSizeLibraryPoint";

// Field 1: the marker's own label.
inline constexpr char kMaterialLibraryLabel[] = "MaterialLibrary";
inline constexpr char kSectionSizeLibraryLabel[] = "SectionSizeLibrary";

enum class MaterialLibraryField : int {
  kApplicationName = 0,
  kLabel = 1,
  kElementType = 2,  // "MaterialLibraryPoint"
  kNames = 3,        // "PVC;Concrete;"
  kCounts = 4,       // "12;0;", in step with the names
};

inline constexpr int kMaterialLibraryRecordLength = 5;

// Box keys are "<span>x<rise>"; metric lists in millimetres, the others in
// inches (circular) and feet (box).
enum class SizeLibraryField : int {
  kApplicationName = 0,
  kLabel = 1,
  kElementType = 2,  // "SectionSizeLibraryPoint"
  kMetricCircular = 3,
  kMetricCircularCounts = 4,
  kMetricBox = 5,
  kMetricBoxCounts = 6,
  kUsCircular = 7,
  kUsCircularCounts = 8,
  kUsBox = 9,
  kUsBoxCounts = 10,
};

inline constexpr int kSizeLibraryRecordLength = 11;

// One list of the size library with the field of its counts.
struct SizeListFields {
  SizeLibraryField sizes;
  SizeLibraryField counts;
};
inline constexpr SizeListFields kMetricCircularList = {
    SizeLibraryField::kMetricCircular, SizeLibraryField::kMetricCircularCounts};
inline constexpr SizeListFields kMetricBoxList = {
    SizeLibraryField::kMetricBox, SizeLibraryField::kMetricBoxCounts};
inline constexpr SizeListFields kUsCircularList = {
    SizeLibraryField::kUsCircular, SizeLibraryField::kUsCircularCounts};
inline constexpr SizeListFields kUsBoxList = {SizeLibraryField::kUsBox,
                                              SizeLibraryField::kUsBoxCounts};

// Every field after the application name is a text.
inline constexpr std::array<int16_t, kMaterialLibraryRecordLength - 1>
    kMaterialLibraryRecordCodes = {core::code::kText, core::code::kText,
                                   core::code::kText, core::code::kText};
inline constexpr std::array<int16_t, kSizeLibraryRecordLength - 1>
    kSizeLibraryRecordCodes = {core::code::kText, core::code::kText,
                               core::code::kText, core::code::kText,
                               core::code::kText, core::code::kText,
                               core::code::kText, core::code::kText,
                               core::code::kText, core::code::kText};

// What a new project starts with: the usual materials, and circular and box
// sizes of both unit systems, every count 0.
core::Record DefaultMaterialLibraryRecord();
core::Record DefaultSectionSizeLibraryRecord();

}  // namespace kestrana::library
