// The crossing settings (clearance threshold and enabled network pairs) and
// their application to annotations.
#include <unordered_set>

#include "core/general.h"
#include "core/lists.h"
#include "core/project_record.h"
#include "core/references.h"
#include "core/text.h"
#include "core/values.h"
#include "crossing/annotation_texts.h"
#include "crossing/crossing.h"
#include "crossing/crossing_record.h"
#include "crossing/pair_key.h"
#include "host/host.h"

namespace kestrana::crossing {

using core::General;
using core::ProjectField;

namespace {

using namespace settings_table;

std::string NetworkPairKey(std::string_view a, std::string_view b) {
  return PairKey(a, "", b, "");
}

// The pairs a settings table enables.
std::unordered_set<std::string> EnabledPairs(const core::TextTable& table) {
  std::unordered_set<std::string> pairs;
  for (int row = kThresholdRow + 1; row < table.Rows(); ++row)
    if (table(row, kEnabled) == kEnabledMark)
      pairs.insert(NetworkPairKey(table(row, kFirstNetwork),
                                  table(row, kSecondNetwork)));
  return pairs;
}

// Back to the standard place: rotation 0 at the offset from the crossing
// point, then turned with the user coordinate system.
void ResetLocation(host::BlockReference& annotation, host::Line& line,
                   const core::Record& record, double angle) {
  const host::Point3 at =
      core::CrossingPoint::Parse(record.Text(CrossingAnnoField::kPoint))
          .ToPoint();
  const host::Point3 anchor{at.x + kAnnotationOffset, at.y + kAnnotationOffset,
                            0};
  annotation.SetInsertionPoint(anchor);
  annotation.Rotate(annotation.InsertionPoint(), -annotation.Rotation());
  line.SetStartPoint(at);
  line.SetEndPoint(anchor);
  annotation.Rotate(at, angle);
  line.Rotate(at, angle);
}

}  // namespace

core::TextTable Crossing::GetCrossingSettings(host::Document& document) {
  core::Record project = core::ReadProjectRecord(document);
  const std::vector<std::string> networks =
      core::ListEntries(project.Text(ProjectField::kNetworkNames));
  const core::CrossingSettingsField stored = core::CrossingSettingsField::Parse(
      project.Text(ProjectField::kCrossingSettings));
  // Names that are no longer networks match no row and drop out.
  std::unordered_set<std::string> enabled;
  for (const auto& [first, second] : stored.pairs)
    enabled.insert(NetworkPairKey(first, second));

  const int n = static_cast<int>(networks.size());
  core::TextTable table(1 + n * (n - 1) / 2, kColumns);
  table(kThresholdRow, 0) = stored.threshold;
  int row = kThresholdRow + 1;
  for (int i = 0; i < n; ++i) {
    for (int j = i + 1; j < n; ++j, ++row) {
      table(row, kFirstNetwork) = networks[i];
      table(row, kSecondNetwork) = networks[j];
      if (enabled.contains(NetworkPairKey(networks[i], networks[j])))
        table(row, kEnabled) = kEnabledMark;
    }
  }
  return table;
}

void Crossing::SetCrossingSettings(
    host::Document& document, const core::TextTable& ar_crossing_settings) {
  const core::TextTable& table = ar_crossing_settings;
  core::CrossingSettingsField field{table(kThresholdRow, 0), {}};
  for (int row = kThresholdRow + 1; row < table.Rows(); ++row)
    if (table(row, kEnabled) == kEnabledMark)
      field.pairs.emplace_back(table(row, kFirstNetwork),
                               table(row, kSecondNetwork));
  core::Record project = core::ReadProjectRecord(document);
  project.SetText(ProjectField::kCrossingSettings, field.Format());
  core::WriteProjectRecord(document, project);
}

void Crossing::ApplyCrossingSettings(host::Document& document,
                                     host::SelectionSet& set_crossing_anno,
                                     bool reset_locations) {
  const core::TextTable settings = GetCrossingSettings(document);
  const double threshold = core::NumericValue(settings(kThresholdRow, 0));
  const std::unordered_set<std::string> enabled = EnabledPairs(settings);
  const double angle = General::GetCorrectionAngleForCS(document);
  for (host::Entity* entity : set_crossing_anno.Entities()) {
    // Sets of drawn crossings hold the leader lines too; each line follows
    // its annotation.
    if (General::GetElementType(*entity) != kCrossingPointAnnotation) continue;
    core::Record record = core::ReadRecordWithFields(
        *entity, kCrossingAnnoRecordLength, "crossing annotation");
    const double clearance = record.Number(CrossingAnnoField::kClearance);
    const bool shown = (threshold < 0 || clearance < threshold) &&
                       enabled.contains(NetworkPairKey(
                           record.Text(CrossingAnnoField::kPipe1Net),
                           record.Text(CrossingAnnoField::kPipe2Net)));
    host::Entity& line = core::EntityFromReference(
        document, record.Text(CrossingAnnoField::kLineOIDRef));
    entity->SetVisible(shown);
    line.SetVisible(shown);
    if (reset_locations)
      ResetLocation(host::As<host::BlockReference>(*entity),
                    host::As<host::Line>(line), record, angle);
  }
}

}  // namespace kestrana::crossing
