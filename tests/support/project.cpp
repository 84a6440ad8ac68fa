#include "support/project.h"

#include "core/project_record.h"
#include "core/record.h"

namespace kestrana::test {

void WriteBareProjectRecord(host::Document& document, const std::string& units,
                            const std::string& version) {
  using core::ProjectField;
  core::Record record = core::Record::WithCodes(core::kProjectRecordCodes);
  record.SetText(ProjectField::kViewStyles, "Standard;;");
  record.SetInt16(ProjectField::kEventsFlag, 1);
  record.SetText(ProjectField::kModelUnits, units);
  record.SetText(ProjectField::kProjectVersion, version);
  core::WriteProjectRecord(document, record);
}

std::unique_ptr<memhost::MemDocument> NewProjectDocument(
    const std::string& units) {
  auto document = std::make_unique<memhost::MemDocument>();
  WriteBareProjectRecord(*document, units);
  return document;
}

std::unique_ptr<memhost::MemDocument> SampleDrawing() {
  auto doc = std::make_unique<memhost::MemDocument>();
  doc->ModelSpace().SetXData(
      {{1001, "Kestrana"}, {1000, "2.00"}, {1070, int16_t{1}}});
  auto& layer = doc->GetLayers().Add("Sewer - Network");
  doc->SetActiveLayer(layer);
  doc->ModelSpace()
      .AddLightWeightPolyline({0, 0, 10, 0})
      .SetXData({{1001, "Kestrana"}, {1000, "Pipe;Sewer;P-1"}, {1040, 200.0}});
  doc->ModelSpace().AddLine({0, 0, 0}, {1, 1, 0});
  doc->ModelSpace().AddLine({0, 0, 0}, {2, 1, 0});
  layer.SetLock(true);
  return doc;
}

}  // namespace kestrana::test
