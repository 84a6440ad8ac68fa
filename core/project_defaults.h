// What a new project starts with: the materials and section-sizes libraries
// and a "Standard" view style and profile style. Each is a whole record for
// its marker point; the record layouts belong to the library, view style and
// profile subsystems, and these builders only fill them.
#pragma once

#include "host/types.h"

namespace kestrana::core {

// Field 2 of the marker records.
inline constexpr char kMaterialLibraryPoint[] = "MaterialLibraryPoint";
inline constexpr char kSectionSizeLibraryPoint[] = "SectionSizeLibraryPoint";
inline constexpr char kViewStylePoint[] = "ViewStylePoint";
inline constexpr char kProfileStylePoint[] = "ProfileStylePoint";

// Field 1 of a view style record is the style name behind this prefix.
inline constexpr char kViewStyleNamePrefix[] = "VS";
inline constexpr char kStandardStyleName[] = "Standard";

// Materials with zero use: names in field 3, counts in field 4.
host::XRecord DefaultMaterialLibraryRecord();
// Circular and box sizes of both unit systems with zero use (fields 3-10).
host::XRecord DefaultSectionSizeLibraryRecord();
// The 43-field "Standard" view style; heights and unit suffixes follow the
// units.
host::XRecord StandardViewStyleRecord(bool metric);
// The 21-item "Standard" profile style.
host::XRecord StandardProfileStyleRecord(bool metric);

}  // namespace kestrana::core
