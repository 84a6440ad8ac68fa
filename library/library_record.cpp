#include "library/library_record.h"

#include <string>
#include <vector>

#include "core/lists.h"

namespace kestrana::library {

namespace {

using Entries = std::vector<std::string>;

// A zero count for every entry: "0;0;0;".
std::string ZeroCounts(const Entries& entries) {
  return core::JoinEntries(Entries(entries.size(), "0"));
}

const Entries kMaterials = {
    "PVC", "PE", "Ductile Iron", "Concrete", "Vitrified Clay", "Steel"};
// Millimetres.
const Entries kMetricCircular = {
    "100", "150", "200", "250",  "300",  "350",  "400",  "450",  "500", "600",
    "700", "800", "900", "1000", "1200", "1400", "1600", "1800", "2000"};
const Entries kMetricBox = {"600x600",   "800x600",   "1000x800", "1200x800",
                            "1500x1000", "2000x1500", "2500x2000"};
// Inches for circular sections, feet for boxes.
const Entries kUsCircular = {"4",  "6",  "8",  "10", "12", "15", "18", "21",
                             "24", "30", "36", "42", "48", "54", "60", "72"};
const Entries kUsBox = {"2x2", "3x2", "4x3", "5x3", "6x4", "8x5", "10x6"};

}  // namespace

core::Record DefaultMaterialLibraryRecord() {
  using F = MaterialLibraryField;
  core::Record record = core::Record::WithCodes(kMaterialLibraryRecordCodes);
  record.SetText(F::kLabel, kMaterialLibraryLabel);
  record.SetText(F::kElementType, kMaterialLibraryPoint);
  record.SetText(F::kNames, core::JoinEntries(kMaterials));
  record.SetText(F::kCounts, ZeroCounts(kMaterials));
  return record;
}

core::Record DefaultSectionSizeLibraryRecord() {
  using F = SizeLibraryField;
  core::Record record = core::Record::WithCodes(kSizeLibraryRecordCodes);
  record.SetText(F::kLabel, kSectionSizeLibraryLabel);
  record.SetText(F::kElementType, kSectionSizeLibraryPoint);
  const std::pair<SizeListFields, const Entries*> lists[] = {
      {kMetricCircularList, &kMetricCircular},
      {kMetricBoxList, &kMetricBox},
      {kUsCircularList, &kUsCircular},
      {kUsBoxList, &kUsBox}};
  for (const auto& [fields, entries] : lists) {
    record.SetText(fields.sizes, core::JoinEntries(*entries));
    record.SetText(fields.counts, ZeroCounts(*entries));
  }
  return record;
}

}  // namespace kestrana::library
