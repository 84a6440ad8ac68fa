#include "cli/crossings.h"

#include <set>
#include <sstream>

#include "cli/command.h"
#include "cli/project.h"
#include "core/filters.h"
#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/record.h"
#include "core/references.h"
#include "core/text.h"
#include "crossing/crossing.h"
#include "crossing/crossing_record.h"
#include "host/host.h"
#include "memhost/text_metrics.h"

namespace kestrana::cli {

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
    throw UsageError("a network pair is written A:B, not '" + text + "'");
  return {text.substr(0, at), text.substr(at + 1)};
}

void RequireNetwork(host::Document& document, const std::string& name) {
  if (!General::CheckNetworkExists(document, name))
    throw CommandError("The project has no network named \"" + name + "\"");
}

// The settings row of a pair, in either order; the pair's networks exist.
int PairRow(const core::TextTable& table, const std::string& a,
            const std::string& b) {
  for (int row = 1; row < table.Rows(); ++row)
    if ((table(row, 0) == a && table(row, 1) == b) ||
        (table(row, 0) == b && table(row, 1) == a))
      return row;
  throw CommandError("\"" + a + "\" and \"" + b +
                     "\" are not two networks of the project");
}

// The value of an attribute text such as "I.L.= 98.123".
std::optional<double> ShownLevel(const std::string& text) {
  std::string_view value(text);
  if (value.rfind(kInvertCaption, 0) == 0)
    value.remove_prefix(std::string_view(kInvertCaption).size());
  return core::ParseNumber(value);
}

std::string Number(double value) {
  return core::FormatNumber(core::RoundHalfEven(value, 3), "0.000");
}

std::string OptionalNumber(const std::optional<double>& value) {
  return value ? Number(*value) : "-";
}

std::string JsonNumber(const std::optional<double>& value) {
  return value ? core::GeneralText(*value) : "null";
}

bool ChangesDrawing(const CrossingsOptions& o) {
  return o.threshold || !o.enable.empty() || !o.disable.empty() || o.build ||
         o.apply || o.reset_locations;
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

}  // namespace

void ChangeCrossingSettings(host::Document& document,
                            const std::optional<std::string>& threshold,
                            const std::vector<std::string>& enable,
                            const std::vector<std::string>& disable) {
  core::TextTable settings = Crossing::GetCrossingSettings(document);
  if (threshold) {
    std::optional<double> value = core::ParseNumber(*threshold);
    if (!value)
      throw UsageError("--threshold: '" + *threshold + "' is not a number");
    settings(0, 0) = core::GeneralText(*value);
  }
  auto row_of = [&](const std::string& text) {
    auto [a, b] = ParsePair(text);
    RequireNetwork(document, a);
    RequireNetwork(document, b);
    return PairRow(settings, a, b);
  };
  std::set<int> enabled_rows;
  for (const std::string& text : enable) {
    const int row = row_of(text);
    enabled_rows.insert(row);
    settings(row, kEnabledColumn) = "1";
  }
  for (const std::string& text : disable) {
    const int row = row_of(text);
    if (enabled_rows.contains(row))
      throw UsageError("the pair " + text + " is both enabled and disabled");
    settings(row, kEnabledColumn) = "";
  }
  Crossing::SetCrossingSettings(document, settings);
}

int BuildAllCrossings(host::Document& document) {
  const int before =
      Crossing::GetExistingCrossingPointsSet(document, "").Count();
  std::vector<std::string> locked = General::UnlockAllLayers(document);
  host::SelectionSet& pipes =
      General::InitializeSelectionSet(document, "SetPipesForCrossing");
  pipes.Select(host::SelectMode::kAll, {}, {}, core::AllPipesFilter());
  Crossing::BuildCrossingPointsAfterImporting(document, pipes,
                                              General::GetModelUnits(document));
  General::RestoreLockedLayers(document, locked);
  return Crossing::GetExistingCrossingPointsSet(document, "").Count() - before;
}

void ApplySettingsToAllCrossings(host::Document& document,
                                 bool reset_locations) {
  std::vector<std::string> locked = General::UnlockAllLayers(document);
  Crossing::ApplyCrossingSettings(
      document, Crossing::GetExistingCrossingPointsSet(document, ""),
      reset_locations);
  General::RestoreLockedLayers(document, locked);
}

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

CrossingsResult Crossings(const CrossingsOptions& options) {
  CrossingsResult result;
  if (!ChangesDrawing(options)) {
    Summarize(*OpenProjectDrawing(options.drawing), result, options.list);
    return result;
  }
  EditProjectDrawing(
      options.drawing, options.output, [&](memhost::MemDocument& document) {
        ChangeCrossingSettings(document, options.threshold, options.enable,
                               options.disable);
        if (options.build) result.drawn = BuildAllCrossings(document);
        ApplySettingsToAllCrossings(document, options.reset_locations);
        Summarize(document, result, options.list);
      });
  result.written = options.output.value_or(options.drawing);
  return result;
}

std::string CrossingsText(const CrossingsResult& r) {
  std::ostringstream out;
  if (!r.written.empty()) {
    if (r.drawn > 0)
      out << "drew " << r.drawn << " new crossing annotation"
          << (r.drawn == 1 ? "" : "s") << "\n";
    out << "wrote " << r.written << "\n";
  }
  const double threshold = core::NumericValue(r.threshold);
  out << "threshold: " << (r.threshold.empty() ? "(none)" : r.threshold)
      << (threshold < 0 ? " (every crossing of an enabled pair is shown)"
                        : " (crossings with less clearance are shown)")
      << "\n";
  out << "network pairs:";
  if (r.pairs.empty()) out << " (fewer than two networks)";
  out << "\n";
  for (const NetworkPair& p : r.pairs)
    out << "  " << p.first << ":" << p.second << "  "
        << (p.enabled ? "enabled" : "disabled") << "\n";
  out << "crossing annotations: " << r.annotations << " (" << r.shown
      << " shown)\n";
  for (const CrossingListing& c : r.crossings)
    out << "  " << c.network1 << " " << c.label1 << " ("
        << memhost::DisplayText(c.size1) << ", I.L. "
        << OptionalNumber(c.invert1) << ") x " << c.network2 << " " << c.label2
        << " (" << memhost::DisplayText(c.size2) << ", I.L. "
        << OptionalNumber(c.invert2) << ")  clearance " << Number(c.clearance)
        << "  at " << core::GeneralText(c.easting) << ", "
        << core::GeneralText(c.northing) << (c.shown ? "" : "  hidden") << "\n";
  return out.str();
}

std::string CrossingsJson(const CrossingsResult& r) {
  std::ostringstream out;
  out << "{\"threshold\": " << JsonString(r.threshold) << ", \"pairs\": [";
  for (size_t i = 0; i < r.pairs.size(); ++i)
    out << (i ? ", " : "") << "{\"networks\": [" << JsonString(r.pairs[i].first)
        << ", " << JsonString(r.pairs[i].second)
        << "], \"enabled\": " << (r.pairs[i].enabled ? "true" : "false") << "}";
  out << "], \"annotations\": " << r.annotations << ", \"shown\": " << r.shown
      << ", \"drawn\": " << r.drawn;
  if (!r.written.empty()) out << ", \"written\": " << JsonString(r.written);
  out << ", \"crossings\": [";
  for (size_t i = 0; i < r.crossings.size(); ++i) {
    const CrossingListing& c = r.crossings[i];
    out << (i ? ",\n  " : "")
        << "{\"pipe1\": {\"network\": " << JsonString(c.network1)
        << ", \"label\": " << JsonString(c.label1)
        << ", \"size\": " << JsonString(c.size1)
        << ", \"invert\": " << JsonNumber(c.invert1)
        << "}, \"pipe2\": {\"network\": " << JsonString(c.network2)
        << ", \"label\": " << JsonString(c.label2)
        << ", \"size\": " << JsonString(c.size2)
        << ", \"invert\": " << JsonNumber(c.invert2)
        << "}, \"clearance\": " << core::GeneralText(c.clearance)
        << ", \"easting\": " << core::GeneralText(c.easting)
        << ", \"northing\": " << core::GeneralText(c.northing)
        << ", \"shown\": " << (c.shown ? "true" : "false") << "}";
  }
  out << "]}\n";
  return out.str();
}

namespace {

int Run(const std::vector<std::string>& args, Io& io) {
  Args a(args, {"build", "apply", "reset-locations", "list", "json"},
         {"threshold", "enable", "disable", "output"});
  a.ExpectPositionals(1);
  CrossingsOptions options;
  options.drawing = a.Positional(0, "the drawing (DRAWING.dxf)");
  options.output = a.Option("output");
  options.threshold = a.Option("threshold");
  options.enable = a.Options("enable");
  options.disable = a.Options("disable");
  options.build = a.Flag("build");
  options.apply = a.Flag("apply");
  options.reset_locations = a.Flag("reset-locations");
  options.list = a.Flag("list");
  CrossingsResult result = Crossings(options);
  io.out << (a.Flag("json") ? CrossingsJson(result) : CrossingsText(result));
  return 0;
}

Registrar crossings_command(
    {"crossings", "crossing points of networks: settings, build, list",
     "Usage: kestrana crossings DRAWING [--threshold T] [--enable A:B]...\n"
     "         [--disable A:B]... [--build] [--apply] [--reset-locations]\n"
     "         [--list] [--json] [-o OUT]\n\n"
     "Where pipes of two networks cross in plan, an annotation shows the size\n"
     "and invert of both pipes and the clearance between them. Annotations of\n"
     "enabled network pairs are shown; with a threshold of 0 or more only\n"
     "those whose clearance is below it. Without options the settings and\n"
     "the number of annotations are printed and DRAWING is only read.\n"
     "Changing the settings applies them to every crossing annotation.\n\n"
     "  --threshold T       show only crossings with clearance below T\n"
     "                      (a negative T shows all of enabled pairs)\n"
     "  --enable A:B        show the crossings of networks A and B\n"
     "  --disable A:B       hide them (both options may repeat)\n"
     "  --build             find and draw the crossings of all pipes that\n"
     "                      have no annotation yet\n"
     "  --apply             apply the settings again without changing them\n"
     "  --reset-locations   put every annotation back at its standard place\n"
     "  --list              list every crossing: networks, pipes, sizes,\n"
     "                      inverts, clearance, point, shown or hidden\n"
     "  --json              print JSON instead of text\n"
     "  -o, --output OUT    write to OUT instead of DRAWING\n",
     Run});

}  // namespace

}  // namespace kestrana::cli
