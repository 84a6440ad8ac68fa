#include "commands/lowhigh.h"

#include <algorithm>
#include <cctype>

#include "commands/command.h"
#include "commands/elements.h"
#include "commands/switches.h"
#include "core/general.h"
#include "core/guards.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/references.h"
#include "core/text.h"
#include "core/user_names.h"
#include "host/host.h"
#include "lowhigh/lowhigh.h"

namespace kestrana::commands {

using core::General;
using lowhigh::LowHigh;
using lowhigh::LowHighField;

namespace {

constexpr int kShownColumn = 1;

// Block names ignore letter case.
bool IsLowPointBlock(std::string_view name) {
  std::string_view low = core::kLowPointBlock;
  return std::equal(name.begin(), name.end(), low.begin(), low.end(),
                    [](char a, char b) {
                      return std::tolower(static_cast<unsigned char>(a)) ==
                             std::tolower(static_cast<unsigned char>(b));
                    });
}

void Summarize(host::Document& document, LowHighResult& result, bool list) {
  core::TextTable settings = LowHigh::GetLowHighSettings(document);
  for (int row = 0; row < settings.Rows(); ++row)
    result.networks.push_back(
        {settings(row, 0), settings(row, kShownColumn) == "1"});
  std::vector<LowHighListing> points = ListLowHighPoints(document);
  for (const LowHighListing& p : points)
    (p.kind == "low" ? result.low : result.high)++;
  if (list) result.points = std::move(points);
}

void ChangeLowHighSettings(host::Document& document,
                           const std::vector<std::string>& show,
                           const std::vector<std::string>& hide) {
  core::TextTable settings = LowHigh::GetLowHighSettings(document);
  auto row_of = [&](const std::string& typed) {
    const std::string name =
        core::FindNetworkName(document, typed).value_or(typed);
    for (int row = 0; row < settings.Rows(); ++row)
      if (settings(row, 0) == name) return row;
    throw NotFoundError("\"" + typed +
                        "\" is not a pressure network of the project");
  };
  SwitchRows(
      settings,
      {kShownColumn, "1", "0", "the network", "is both shown and hidden"}, show,
      hide, row_of);
  LowHigh::SetLowHighSettings(document, settings);
}

// Analyses every node of every pressure network.
void BuildAllLowHighPoints(host::Document& document) {
  core::UnlockedLayers unlocked(document);
  core::TextTable networks = General::GetNetworkDefinitions(document);
  for (int row = 0; row < networks.Rows(); ++row) {
    if (networks(row, 1) != core::kPressure) continue;
    const std::string& name = networks(row, 0);
    LowHigh::BuildLowHighPointsAfterImporting(
        document,
        LowHigh::GetInitialNodesOIDArrayForLowHigh(
            document, General::GetNetworkSet(document, name, kNodes)),
        name);
  }
}

void ApplySettingsToAllLowHighPoints(host::Document& document) {
  core::UnlockedLayers unlocked(document);
  LowHigh::ApplyLowHighSettings(
      document, LowHigh::GetExistingLowHighPointsSet(document, ""));
}

}  // namespace

std::vector<LowHighListing> ListLowHighPoints(host::Document& document) {
  std::vector<LowHighListing> points;
  for (host::Entity* entity :
       LowHigh::GetExistingLowHighPointsSet(document, "").Entities()) {
    core::Record record = core::ReadRecordWithFields(
        *entity, lowhigh::kLowHighRecordLength, "low/high point");
    auto& marker = host::As<host::BlockReference>(*entity);
    std::vector<std::string> node =
        core::ReferenceValues(record.Text(LowHighField::kNodeLabelRef));
    LowHighListing p;
    p.network = General::EntityNetworkFromCombined(
        record.Text(LowHighField::kCombinedLabel));
    p.node = node.empty() ? "" : node.front();
    p.kind = IsLowPointBlock(marker.Name()) ? "low" : "high";
    p.x = marker.InsertionPoint().x;
    p.y = marker.InsertionPoint().y;
    p.shown = marker.Visible();
    points.push_back(std::move(p));
  }
  return points;
}

LowHighResult LowHighPoints(host::Document& document,
                            const LowHighOptions& options) {
  LowHighResult result;
  if (options.Changes()) {
    ChangeLowHighSettings(document, options.show, options.hide);
    if (options.build) BuildAllLowHighPoints(document);
    ApplySettingsToAllLowHighPoints(document);
  }
  Summarize(document, result, options.list);
  return result;
}

}  // namespace kestrana::commands
