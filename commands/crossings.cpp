#include "commands/crossings.h"

#include "commands/command.h"
#include "commands/switches.h"
#include "core/filters.h"
#include "core/general.h"
#include "core/guards.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/record.h"
#include "core/references.h"
#include "core/text.h"
#include "core/user_names.h"
#include "crossing/crossing.h"
#include "crossing/crossing_record.h"
#include "host/host.h"

namespace kestrana::commands {

using core::General;
using crossing::Crossing;
using crossing::CrossingAnnoField;

namespace {

constexpr char kInvertCaption[] = "I.L.= ";
constexpr int kEnabledColumn = 2;
constexpr char kPairSeparator = ':';

std::pair<std::string, std::string> ParsePair(const std::string& text) {
  const size_t at = text.find(kPairSeparator);
  if (at == std::string::npos || at == 0 || at + 1 == text.size() ||
      text.find(kPairSeparator, at + 1) != std::string::npos)
    throw OptionError("a network pair is written A:B, not '" + text + "'");
  return {text.substr(0, at), text.substr(at + 1)};
}

// The network as the project spells it.
std::string RequirePairNetwork(host::Document& document,
                               const std::string& name) {
  if (std::optional<std::string> stored = core::FindNetworkName(document, name))
    return *stored;
  throw NotFoundError("The project has no network named \"" + name + "\"");
}

// The settings row of a pair, in either order; the pair's networks exist.
int PairRow(const core::TextTable& table, const std::string& a,
            const std::string& b) {
  for (int row = 1; row < table.Rows(); ++row)
    if ((table(row, 0) == a && table(row, 1) == b) ||
        (table(row, 0) == b && table(row, 1) == a))
      return row;
  throw NotFoundError("\"" + a + "\" and \"" + b +
                      "\" are not two networks of the project");
}

// The value of an attribute text such as "I.L.= 98.123".
std::optional<double> ShownLevel(const std::string& text) {
  std::string_view value(text);
  if (value.rfind(kInvertCaption, 0) == 0)
    value.remove_prefix(std::string_view(kInvertCaption).size());
  return core::ParseNumber(value);
}

void Summarize(host::Document& document, CrossingsResult& result, bool list) {
  core::TextTable settings = Crossing::GetCrossingSettings(document);
  result.threshold = settings(0, 0);
  for (int row = 1; row < settings.Rows(); ++row)
    result.pairs.push_back({settings(row, 0), settings(row, 1),
                            settings(row, kEnabledColumn) == "1"});
  std::vector<CrossingListing> crossings = ListCrossings(document);
  result.annotations = static_cast<int>(crossings.size());
  for (const CrossingListing& c : crossings) result.shown += c.shown;
  if (list) result.crossings = std::move(crossings);
}

void ChangeCrossingSettings(host::Document& document,
                            const std::optional<std::string>& threshold,
                            const std::vector<std::string>& enable,
                            const std::vector<std::string>& disable) {
  core::TextTable settings = Crossing::GetCrossingSettings(document);
  if (threshold) {
    std::optional<double> value = core::ParseNumberInRange(*threshold);
    if (!value)
      throw OptionError("--threshold: '" + *threshold + "' is not a number " +
                        core::NumberRangeText());
    settings(0, 0) = core::GeneralText(*value);
  }
  auto row_of = [&](const std::string& text) {
    auto [a, b] = ParsePair(text);
    return PairRow(settings, RequirePairNetwork(document, a),
                   RequirePairNetwork(document, b));
  };
  SwitchRows(
      settings,
      {kEnabledColumn, "1", "", "the pair", "is both enabled and disabled"},
      enable, disable, row_of);
  Crossing::SetCrossingSettings(document, settings);
}

// Finds and draws the crossings of every pipe that are not annotated yet;
// answers how many were drawn.
int BuildAllCrossings(host::Document& document) {
  const int before =
      Crossing::GetExistingCrossingPointsSet(document, "").Count();
  {
    core::UnlockedLayers unlocked(document);
    host::SelectionSet& pipes =
        General::InitializeSelectionSet(document, "SetPipesForCrossing");
    pipes.Select(host::SelectMode::kAll, {}, {}, core::AllPipesFilter());
    Crossing::BuildCrossingPointsAfterImporting(
        document, pipes, General::GetModelUnits(document));
  }
  return Crossing::GetExistingCrossingPointsSet(document, "").Count() - before;
}

void ApplySettingsToAllCrossings(host::Document& document,
                                 bool reset_locations) {
  core::UnlockedLayers unlocked(document);
  Crossing::ApplyCrossingSettings(
      document, Crossing::GetExistingCrossingPointsSet(document, ""),
      reset_locations);
}

}  // namespace

std::vector<CrossingListing> ListCrossings(host::Document& document) {
  std::vector<CrossingListing> crossings;
  for (host::Entity* entity :
       Crossing::GetExistingCrossingPointsSet(document, "").Entities()) {
    core::Record record = core::ReadRecordWithFields(
        *entity, crossing::kCrossingAnnoRecordLength, "crossing annotation");
    auto first_value = [&](CrossingAnnoField field) {
      std::vector<std::string> values =
          core::ReferenceValues(record.Text(field));
      return values.empty() ? std::string() : values.front();
    };
    CrossingListing c;
    c.network1 = record.Text(CrossingAnnoField::kPipe1Net);
    c.network2 = record.Text(CrossingAnnoField::kPipe2Net);
    c.label1 = first_value(CrossingAnnoField::kPipe1LabelRef);
    c.label2 = first_value(CrossingAnnoField::kPipe2LabelRef);
    c.size1 = record.Text(CrossingAnnoField::kPipe1SizeString);
    c.size2 = record.Text(CrossingAnnoField::kPipe2SizeString);
    c.section1 = core::SectionSize::Parse(c.size1);
    c.section2 = core::SectionSize::Parse(c.size2);
    c.clearance = record.Number(CrossingAnnoField::kClearance);
    std::vector<std::string> point =
        core::Split(record.Text(CrossingAnnoField::kPoint));
    point.resize(2);
    c.easting = core::NumericValue(point[0]);
    c.northing = core::NumericValue(point[1]);
    c.shown = entity->Visible();
    std::vector<host::AttributeReference*> attributes =
        host::As<host::BlockReference>(*entity).GetAttributes();
    auto shown_level = [&](crossing::CrossingAttribute a) {
      const size_t i = static_cast<size_t>(a);
      return i < attributes.size() ? ShownLevel(attributes[i]->TextString())
                                   : std::nullopt;
    };
    c.invert1 = shown_level(crossing::CrossingAttribute::kPipe1Invert);
    c.invert2 = shown_level(crossing::CrossingAttribute::kPipe2Invert);
    crossings.push_back(std::move(c));
  }
  return crossings;
}

CrossingsResult Crossings(host::Document& document,
                          const CrossingsOptions& options) {
  core::ProgressScope progress(options.progress);
  CrossingsResult result;
  if (options.Changes()) {
    ChangeCrossingSettings(document, options.threshold, options.enable,
                           options.disable);
    if (options.build) result.drawn = BuildAllCrossings(document);
    ApplySettingsToAllCrossings(document, options.reset_locations);
  }
  Summarize(document, result, options.list);
  return result;
}

}  // namespace kestrana::commands
