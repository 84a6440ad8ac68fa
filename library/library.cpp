#include "library/library.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/geometry.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/pipe_record.h"
#include "core/project_record.h"
#include "core/project_setup.h"
#include "core/record.h"
#include "core/text.h"
#include "host/host.h"
#include "library/library_record.h"

namespace kestrana::library {

namespace {

using core::GeneralText;
using core::NumericValue;
using core::TextTable;

// One library list: names (or size keys) with their usage counts.
struct Entry {
  std::string name;
  std::string count;
};
using Entries = std::vector<Entry>;

// The marker named by a project-record field, with its record.
struct Marker {
  host::Object* object;
  core::Record record;
};

Marker ReadMarker(host::Document& document, core::ProjectField field) {
  core::Record project = core::ReadProjectRecord(document);
  host::ObjectId id = core::ToInt32(project.Number(field));
  host::Object& object = document.ObjectIdToObject(id);
  return {&object, core::Record::ReadRequired(object)};
}

Entries ReadEntries(const core::Record& record, core::Field names,
                    core::Field counts) {
  std::vector<std::string> keys = core::ListEntries(record.Text(names));
  std::vector<std::string> uses = core::ListEntries(record.Text(counts));
  Entries entries;
  for (size_t i = 0; i < keys.size(); ++i)
    entries.push_back({keys[i], i < uses.size() ? uses[i] : ""});
  return entries;
}

void WriteEntries(core::Record& record, core::Field names, core::Field counts,
                  const Entries& entries) {
  std::vector<std::string> keys, uses;
  for (const Entry& entry : entries) {
    keys.push_back(entry.name);
    uses.push_back(entry.count);
  }
  record.SetText(names, core::JoinEntries(keys));
  record.SetText(counts, core::JoinEntries(uses));
}

// Adds a change to the entry of that name, or appends the name with the
// change as its count. Names appended earlier in the same update are found
// too, so one new name never appears twice.
void ApplyChange(Entries& entries, const std::string& name,
                 const std::string& change) {
  for (Entry& entry : entries) {
    if (entry.name != name) continue;
    entry.count = GeneralText(NumericValue(entry.count) + NumericValue(change));
    return;
  }
  entries.push_back({name, GeneralText(NumericValue(change))});
}

// "1200 x 800" or "1200x800" back to the key "1200x800".
std::string BoxKey(const std::string& shown) {
  std::vector<std::string> parts = core::Split(shown, 'x');
  std::string rise = parts.size() > 1 ? parts[1] : "";
  return GeneralText(NumericValue(parts[0])) + "x" +
         GeneralText(NumericValue(rise));
}

// The rows of a materials or sizes table (name or size, then count) as
// library entries; box sizes are turned back into keys.
static_assert(materials_column::kName == sizes_column::kSize &&
              materials_column::kCount == sizes_column::kCount);
Entries EntriesOfTable(const TextTable& table, bool box_sizes) {
  Entries entries;
  for (int row = 0; row < table.Rows(); ++row) {
    const std::string& name = table(row, materials_column::kName);
    entries.push_back({box_sizes ? BoxKey(name) : name,
                       table(row, materials_column::kCount)});
  }
  return entries;
}

bool IsPipe(const std::string& type) {
  return type == core::kGravityPipe || type == core::kPressurePipe;
}

// The pipes of a set, counted per key in the order keys are first met,
// each pipe `step` uses more (negative: fewer).
template <class KeyOf>
auto Tally(host::SelectionSet& set, KeyOf key_of, int step) {
  using Key = decltype(key_of(std::declval<const core::Record&>()));
  std::vector<std::pair<Key, int>> tally;
  for (host::Entity* entity : set.Entities()) {
    std::optional<core::Record> record = core::Record::Read(*entity);
    if (!record || !record->Has(core::PipeField::kMaterial) ||
        !IsPipe(record->Text(core::PipeField::kElementType)))
      continue;
    Key key = key_of(*record);
    auto found = std::find_if(tally.begin(), tally.end(),
                              [&](const auto& t) { return t.first == key; });
    if (found == tally.end())
      tally.emplace_back(key, step);
    else
      found->second += step;
  }
  return tally;
}

// The list of the project's units for a shape word; nullopt for other
// units or shapes.
std::optional<SizeListFields> SizeList(const std::string& units,
                                       std::string_view shape) {
  bool circular = shape == kCircular;
  if (!circular && shape != kBox) return std::nullopt;
  if (units == core::kMetric)
    return circular ? kMetricCircularList : kMetricBoxList;
  if (units == core::kUS) return circular ? kUsCircularList : kUsBoxList;
  return std::nullopt;
}

}  // namespace

PipeSize PipeSizeOf(const core::Record& pipe) {
  using core::PipeField;
  if (pipe.Text(PipeField::kSectionShape) == core::kSectionShapeBox)
    return {GeneralText(pipe.Number(PipeField::kSpan)) + "x" +
                GeneralText(pipe.Number(PipeField::kRise)),
            kBox};
  return {GeneralText(pipe.Number(PipeField::kSpan)), kCircular};
}

TextTable Library::GetMaterialsArray(host::Document& document) {
  Marker marker = ReadMarker(document, core::ProjectField::kMaterialsLibrary);
  Entries entries = ReadEntries(marker.record, MaterialLibraryField::kNames,
                                MaterialLibraryField::kCounts);
  TextTable table(static_cast<int>(entries.size()), materials_column::kColumns);
  for (int row = 0; row < table.Rows(); ++row) {
    table(row, materials_column::kName) = entries[row].name;
    table(row, materials_column::kCount) = entries[row].count;
  }
  return table;
}

void Library::UpdateMaterialUsage(host::Document& document,
                                  const TextTable& ar_materials,
                                  const TextTable& ar_material_change) {
  Entries entries = EntriesOfTable(ar_materials, false);
  for (int row = 0; row < ar_material_change.Rows(); ++row)
    ApplyChange(entries, ar_material_change(row, materials_column::kName),
                ar_material_change(row, materials_column::kCount));
  Marker marker = ReadMarker(document, core::ProjectField::kMaterialsLibrary);
  WriteEntries(marker.record, MaterialLibraryField::kNames,
               MaterialLibraryField::kCounts, entries);
  marker.record.Write(*marker.object);
}

TextTable Library::GetSizesArray(host::Document& document,
                                 std::string_view section_shape) {
  std::string units =
      core::ReadProjectRecord(document).Text(core::ProjectField::kModelUnits);
  Marker marker = ReadMarker(document, core::ProjectField::kSizesLibrary);
  std::optional<SizeListFields> list = SizeList(units, section_shape);
  if (!list) return TextTable(0, sizes_column::kColumns);
  const bool box = section_shape == kBox;
  Entries entries = ReadEntries(marker.record, list->sizes, list->counts);
  TextTable table(static_cast<int>(entries.size()), sizes_column::kColumns);
  for (int row = 0; row < table.Rows(); ++row) {
    std::vector<std::string> parts = core::Split(entries[row].name, 'x');
    double span = NumericValue(parts[0]);
    double rise = parts.size() > 1 ? NumericValue(parts[1]) : 0.0;
    table(row, sizes_column::kSize) =
        box ? GeneralText(span) + " x " + GeneralText(rise) : entries[row].name;
    table(row, sizes_column::kCount) = entries[row].count;
    table(row, sizes_column::kArea) =
        GeneralText(box ? span * rise : core::kPi * span * span / 4);
  }
  return SortSizesArray(std::move(table));
}

void Library::UpdateSizeUsage(host::Document& document,
                              const TextTable& ar_circular_sizes,
                              const TextTable& ar_box_sizes,
                              const TextTable& ar_size_change) {
  Entries circular = EntriesOfTable(ar_circular_sizes, false);
  Entries box = EntriesOfTable(ar_box_sizes, true);
  for (int row = 0; row < ar_size_change.Rows(); ++row) {
    bool is_circular =
        ar_size_change(row, size_change_column::kShape) == kCircular;
    ApplyChange(is_circular ? circular : box,
                ar_size_change(row, size_change_column::kKey),
                ar_size_change(row, size_change_column::kChange));
  }
  std::string units =
      core::ReadProjectRecord(document).Text(core::ProjectField::kModelUnits);
  const bool metric = units == core::kMetric;
  Marker marker = ReadMarker(document, core::ProjectField::kSizesLibrary);
  const SizeListFields circular_list =
      metric ? kMetricCircularList : kUsCircularList;
  const SizeListFields box_list = metric ? kMetricBoxList : kUsBoxList;
  WriteEntries(marker.record, circular_list.sizes, circular_list.counts,
               circular);
  WriteEntries(marker.record, box_list.sizes, box_list.counts, box);
  marker.record.Write(*marker.object);
}

TextTable Library::SortSizesArray(TextTable strings) {
  auto area = [&](int row) {
    return NumericValue(strings(row, sizes_column::kArea));
  };
  bool swapped = true;
  while (swapped) {
    swapped = false;
    for (int row = 0; row + 1 < strings.Rows(); ++row) {
      if (area(row) <= area(row + 1)) continue;
      for (int column = 0; column < strings.Columns(); ++column)
        std::swap(strings(row, column), strings(row + 1, column));
      swapped = true;
    }
  }
  return strings;
}

void Library::UpdateLibrariesForPipes(host::Document& document,
                                      host::SelectionSet& pipes,
                                      int change_per_pipe) {
  UpdateMaterialsForPipes(document, pipes, change_per_pipe);
  UpdateSizesForPipes(document, pipes, change_per_pipe);
}

void Library::UpdateMaterialsForPipes(host::Document& document,
                                      host::SelectionSet& pipes,
                                      int change_per_pipe) {
  auto tally = Tally(
      pipes,
      [](const core::Record& pipe) {
        return pipe.Text(core::PipeField::kMaterial);
      },
      change_per_pipe);
  TextTable change(static_cast<int>(tally.size()), materials_column::kColumns);
  for (int row = 0; row < change.Rows(); ++row) {
    change(row, materials_column::kName) = tally[row].first;
    change(row, materials_column::kCount) = std::to_string(tally[row].second);
  }
  UpdateMaterialUsage(document, GetMaterialsArray(document), change);
}

void Library::UpdateSizesForPipes(host::Document& document,
                                  host::SelectionSet& pipes,
                                  int change_per_pipe) {
  auto tally = Tally(pipes, PipeSizeOf, change_per_pipe);
  TextTable change(static_cast<int>(tally.size()),
                   size_change_column::kColumns);
  for (int row = 0; row < change.Rows(); ++row) {
    change(row, size_change_column::kKey) = tally[row].first.key;
    change(row, size_change_column::kShape) = tally[row].first.shape;
    change(row, size_change_column::kChange) =
        std::to_string(tally[row].second);
  }
  UpdateSizeUsage(document, GetSizesArray(document, kCircular),
                  GetSizesArray(document, kBox), change);
}

void Library::UpdateMaterialLibraryForDeleteNetwork(
    host::Document& document, host::SelectionSet& network_set) {
  UpdateMaterialsForPipes(document, network_set, -1);
}

void Library::UpdateSizeLibraryForDeleteNetwork(
    host::Document& document, host::SelectionSet& network_set) {
  UpdateSizesForPipes(document, network_set, -1);
}

LibraryMarkers Library::CreateLibraries(host::Document& document) {
  LibraryMarkers markers;
  markers.materials =
      core::AddMarkerPoint(document, DefaultMaterialLibraryRecord().Items())
          .ObjectID();
  markers.sizes =
      core::AddMarkerPoint(document, DefaultSectionSizeLibraryRecord().Items())
          .ObjectID();
  core::Record project = core::ReadProjectRecord(document);
  project.SetText(core::ProjectField::kMaterialsLibrary,
                  core::IdText(markers.materials));
  project.SetText(core::ProjectField::kSizesLibrary,
                  core::IdText(markers.sizes));
  core::WriteProjectRecord(document, project);
  return markers;
}

}  // namespace kestrana::library
