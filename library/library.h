// Class Library: the materials and section sizes a project's pipes may use,
// each with the number of pipes that use it. Both lists live on hidden
// marker points named by project-record fields 5 and 6; nothing is kept
// between calls.
#pragma once

#include <string>
#include <string_view>

#include "core/text_table.h"
#include "host/types.h"

namespace kestrana::host {
class Document;
class SelectionSet;
}  // namespace kestrana::host

namespace kestrana::core {
class Record;
}

namespace kestrana::library {

// Columns of the tables the operations take and answer.
namespace materials_column {
inline constexpr int kName = 0;
inline constexpr int kCount = 1;  // usage count, or its change
inline constexpr int kColumns = 2;
}  // namespace materials_column

namespace sizes_column {
inline constexpr int kSize = 0;   // "200", or a box as "1200 x 800"
inline constexpr int kCount = 1;  // usage count
inline constexpr int kArea = 2;   // cross-section area in the list's units
inline constexpr int kColumns = 3;
}  // namespace sizes_column

namespace size_change_column {
inline constexpr int kKey = 0;     // "200", or a box as "1200x800"
inline constexpr int kShape = 1;   // "Circular" or "Box"
inline constexpr int kChange = 2;  // "-1", "1", ...
inline constexpr int kColumns = 3;
}  // namespace size_change_column

// Shape words of the sizes tables and size changes.
inline constexpr char kCircular[] = "Circular";
inline constexpr char kBox[] = "Box";

// The library key of a pipe's size and its shape word: ("200", "Circular")
// or ("1200x800", "Box"), numbers in their general form.
struct PipeSize {
  std::string key;
  std::string shape;
  friend bool operator==(const PipeSize&, const PipeSize&) = default;
};
PipeSize PipeSizeOf(const core::Record& pipe);

// The object IDs of the two markers of a project.
struct LibraryMarkers {
  host::ObjectId materials = 0;
  host::ObjectId sizes = 0;
};

class Library {
 public:
  // One row per material (name, count), in library order.
  static core::TextTable GetMaterialsArray(host::Document& document);
  // Applies the change table (name, change) to the materials table and
  // writes the library back. Unknown names are appended with the change as
  // their count; entries are never removed.
  static void UpdateMaterialUsage(host::Document& document,
                                  const core::TextTable& ar_materials,
                                  const core::TextTable& ar_material_change);
  // The sizes of one shape ("Circular" or "Box") in the project's units:
  // (size, count, area) sorted by area. No rows for other shapes or units.
  static core::TextTable GetSizesArray(host::Document& document,
                                       std::string_view section_shape);
  // Applies the change table (key, shape, change) to the two sizes tables
  // and writes both lists of the project's units back.
  static void UpdateSizeUsage(host::Document& document,
                              const core::TextTable& ar_circular_sizes,
                              const core::TextTable& ar_box_sizes,
                              const core::TextTable& ar_size_change);
  // Ascending by area; rows of equal area keep their order.
  static core::TextTable SortSizesArray(core::TextTable strings);
  // Every pipe of the set counts `change_per_pipe` uses more of its
  // material and size (negative: fewer); other objects are not counted.
  static void UpdateLibrariesForPipes(host::Document& document,
                                      host::SelectionSet& pipes,
                                      int change_per_pipe);
  static void UpdateMaterialsForPipes(host::Document& document,
                                      host::SelectionSet& pipes,
                                      int change_per_pipe);
  static void UpdateSizesForPipes(host::Document& document,
                                  host::SelectionSet& pipes,
                                  int change_per_pipe);
  // One use less for every pipe of a network about to be erased.
  static void UpdateMaterialLibraryForDeleteNetwork(
      host::Document& document, host::SelectionSet& network_set);
  static void UpdateSizeLibraryForDeleteNetwork(
      host::Document& document, host::SelectionSet& network_set);

  // Adds the two markers with the default libraries and names them in the
  // project record (fields 5 and 6); a new project's set-up calls it.
  static LibraryMarkers CreateLibraries(host::Document& document);
};

}  // namespace kestrana::library
