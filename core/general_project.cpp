// Project record, versions and units.
#include <optional>
#include <stdexcept>

#include "core/general.h"
#include "core/messages.h"
#include "core/names.h"
#include "core/project_record.h"
#include "core/text.h"
#include "host/host.h"

namespace kestrana::core {

std::string General::GetAeccAppString(host::Application& acad_app) {
  // Rounded so that 17.1 x 10 compares equal to 171.
  double release = RoundHalfEven(NumericValue(acad_app.Version()) * 10, 6);
  if (release == 161) return "AeccXUiLand.AeccApplication.2.0";
  if (release == 162) return "AeccXUiLand.AeccApplication.3.0";
  if (release == 170) return "AeccXUiLand.AeccApplication.4.0";
  if (release == 171) return "AeccXUiLand.AeccApplication.5.0";
  if (release == 172) return "AeccXUiLand.AeccApplication.6.0";
  return "";
}

std::string NewerProjectMessage(std::string_view project_version) {
  return "This project was created with a Kestrana version that is newer "
         "than the installed one!\nInstall Kestrana V" +
         std::string(project_version) +
         "  or newer then re-open the project.\nRunning this project on the "
         "current version of Kestrana may permanently corrupt it.";
}

bool General::VerfiyVersionKestranaCompatibility(host::Document& document) {
  std::string project = GetKestranaProjectVersion(document);
  std::string program = GetKestranaProgramVersion();
  if (NumericValue(project) - NumericValue(program) < 0.1) return true;
  ShowMessage(document, NewerProjectMessage(project), host::msgbox::kCritical);
  return false;
}

std::string General::GetKestranaProjectVersion(host::Document& document) {
  std::optional<Record> record = FindProjectRecord(document);
  if (!record) {
    ShowMessage(document, kNoProjectMessage, host::msgbox::kCritical);
    return "";
  }
  return record->Text(ProjectField::kProjectVersion);
}

std::string General::GetKestranaProgramVersion() { return kProgramVersion; }

std::string General::GetModelUnits(host::Document& document) {
  return ReadProjectRecord(document).Text(ProjectField::kModelUnits);
}

namespace {
void SetEventsFlag(host::Document& document, int16_t value) {
  Record record = ReadProjectRecord(document);
  record.SetInt16(ProjectField::kEventsFlag, value);
  WriteProjectRecord(document, record);
}
}  // namespace

void General::TurnEventsOn(host::Document& document) {
  SetEventsFlag(document, 1);
}

void General::TurnEventsOff(host::Document& document) {
  SetEventsFlag(document, 0);
}

int16_t General::CheckEventsFlag(host::Document& document) {
  // The event handlers call this on every edit; it must never fail. A
  // drawing without a project, or whose record is too short or damaged to
  // hold the flag, has its events off.
  std::optional<Record> record = FindProjectRecord(document);
  if (!record || !record->Has(ProjectField::kEventsFlag)) return 0;
  try {
    return record->Int16(ProjectField::kEventsFlag);
  } catch (const std::overflow_error&) {
    return 0;
  }
}

}  // namespace kestrana::core
