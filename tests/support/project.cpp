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

}  // namespace kestrana::test
