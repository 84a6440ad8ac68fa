#include "core/project_setup.h"

#include <stdexcept>
#include <string>

#include "core/general.h"
#include "core/guards.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/project_defaults.h"
#include "core/project_record.h"
#include "core/values.h"
#include "host/host.h"

namespace kestrana::core {

namespace {

// Crossings with a clearance below a negative threshold do not exist, so
// every crossing of an enabled pair is shown.
constexpr char kShowAllCrossings[] = "-1";

}  // namespace

host::Point& AddMarkerPoint(host::Document& document,
                            const host::XRecord& record) {
  host::Point& point = document.ModelSpace().AddPoint({0, 0, 0});
  point.SetLayer("0");
  point.SetVisible(false);
  point.SetXData(record);
  return point;
}

ProjectMarkers CreateProjectRecord(host::Document& document,
                                   std::string_view units) {
  if (units != kMetric && units != kUS)
    throw std::invalid_argument("units must be \"Metric\" or \"US\", not \"" +
                                std::string(units) + "\"");
  if (FindProjectRecord(document)) throw RefusedError(kProjectExistsMessage);
  const bool metric = units == kMetric;

  UnlockedLayers unlocked(document);
  ProjectMarkers markers;
  markers.profile_style =
      AddMarkerPoint(document, StandardProfileStyleRecord(metric)).ObjectID();

  Record record = Record::WithCodes(kProjectRecordCodes);
  // The view style markers follow once they exist.
  record.SetText(ProjectField::kViewStyles,
                 ViewStylesField{kStandardStyleName, "", {}}.Format());
  record.SetInt16(ProjectField::kEventsFlag, 1);
  record.SetText(ProjectField::kModelUnits, units);
  record.SetText(ProjectField::kCrossingSettings, kShowAllCrossings);
  record.SetText(ProjectField::kProfileStyles,
                 IdListEntry(markers.profile_style));
  record.SetText(ProjectField::kProjectVersion, kProgramVersion);
  WriteProjectRecord(document, record);
  return markers;
}

}  // namespace kestrana::core
