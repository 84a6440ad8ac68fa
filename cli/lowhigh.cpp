#include "cli/lowhigh.h"

#include <algorithm>
#include <cctype>
#include <set>
#include <sstream>

#include "cli/command.h"
#include "cli/project.h"
#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/references.h"
#include "core/text.h"
#include "host/host.h"
#include "lowhigh/lowhigh.h"

namespace kestrana::cli {

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

}  // namespace

void ChangeLowHighSettings(host::Document& document,
                           const std::vector<std::string>& show,
                           const std::vector<std::string>& hide) {
  core::TextTable settings = LowHigh::GetLowHighSettings(document);
  auto row_of = [&](const std::string& name) {
    for (int row = 0; row < settings.Rows(); ++row)
      if (settings(row, 0) == name) return row;
    throw CommandError("\"" + name +
                       "\" is not a pressure network of the project");
  };
  std::set<int> shown;
  for (const std::string& name : show) {
    const int row = row_of(name);
    shown.insert(row);
    settings(row, kShownColumn) = "1";
  }
  for (const std::string& name : hide) {
    const int row = row_of(name);
    if (shown.contains(row))
      throw UsageError("the network " + name + " is both shown and hidden");
    settings(row, kShownColumn) = "0";
  }
  LowHigh::SetLowHighSettings(document, settings);
}

void BuildAllLowHighPoints(host::Document& document) {
  std::vector<std::string> locked = General::UnlockAllLayers(document);
  core::TextTable networks = General::GetNetworkDefinitions(document);
  for (int row = 0; row < networks.Rows(); ++row) {
    if (networks(row, 1) != core::kPressure) continue;
    const std::string& name = networks(row, 0);
    LowHigh::BuildLowHighPointsAfterImporting(
        document,
        LowHigh::GetInitialNodesOIDArrayForLowHigh(
            document, General::GetNetworkSet(document, name, 2)),
        name);
  }
  General::RestoreLockedLayers(document, locked);
}

void ApplySettingsToAllLowHighPoints(host::Document& document) {
  std::vector<std::string> locked = General::UnlockAllLayers(document);
  LowHigh::ApplyLowHighSettings(
      document, LowHigh::GetExistingLowHighPointsSet(document, ""));
  General::RestoreLockedLayers(document, locked);
}

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

LowHighResult LowHighPoints(const LowHighOptions& options) {
  LowHighResult result;
  if (options.show.empty() && options.hide.empty() && !options.build) {
    Summarize(*OpenProjectDrawing(options.drawing), result, options.list);
    return result;
  }
  EditProjectDrawing(
      options.drawing, options.output, [&](memhost::MemDocument& document) {
        ChangeLowHighSettings(document, options.show, options.hide);
        if (options.build) BuildAllLowHighPoints(document);
        ApplySettingsToAllLowHighPoints(document);
        Summarize(document, result, options.list);
      });
  result.written = options.output.value_or(options.drawing);
  return result;
}

std::string LowHighText(const LowHighResult& r) {
  std::ostringstream out;
  if (!r.written.empty()) out << "wrote " << r.written << "\n";
  out << "pressure networks:";
  if (r.networks.empty()) out << " (none)";
  out << "\n";
  for (const LowHighNetwork& n : r.networks)
    out << "  " << n.name << "  " << (n.shown ? "shown" : "hidden") << "\n";
  out << "low points: " << r.low << ", high points: " << r.high << "\n";
  for (const LowHighListing& p : r.points)
    out << "  " << p.kind << "  " << p.network << " " << p.node << "  at "
        << core::GeneralText(p.x) << ", " << core::GeneralText(p.y)
        << (p.shown ? "" : "  hidden") << "\n";
  return out.str();
}

std::string LowHighJson(const LowHighResult& r) {
  std::ostringstream out;
  out << "{\"networks\": [";
  for (size_t i = 0; i < r.networks.size(); ++i)
    out << (i ? ", " : "") << "{\"name\": " << JsonString(r.networks[i].name)
        << ", \"shown\": " << (r.networks[i].shown ? "true" : "false") << "}";
  out << "], \"low\": " << r.low << ", \"high\": " << r.high;
  if (!r.written.empty()) out << ", \"written\": " << JsonString(r.written);
  out << ", \"points\": [";
  for (size_t i = 0; i < r.points.size(); ++i) {
    const LowHighListing& p = r.points[i];
    out << (i ? ",\n  " : "") << "{\"kind\": " << JsonString(p.kind)
        << ", \"network\": " << JsonString(p.network)
        << ", \"node\": " << JsonString(p.node)
        << ", \"x\": " << core::GeneralText(p.x)
        << ", \"y\": " << core::GeneralText(p.y)
        << ", \"shown\": " << (p.shown ? "true" : "false") << "}";
  }
  out << "]}\n";
  return out.str();
}

namespace {

int Run(const std::vector<std::string>& args, Io& io) {
  Args a(args, {"build", "list", "json"}, {"show", "hide", "output"});
  a.ExpectPositionals(1);
  LowHighOptions options;
  options.drawing = a.Positional(0, "the drawing (DRAWING.dxf)");
  options.output = a.Option("output");
  options.show = a.Options("show");
  options.hide = a.Options("hide");
  options.build = a.Flag("build");
  options.list = a.Flag("list");
  LowHighResult result = LowHighPoints(options);
  io.out << (a.Flag("json") ? LowHighJson(result) : LowHighText(result));
  return 0;
}

Registrar lowhigh_command(
    {"lowhigh", "low and high points of pressure networks",
     "Usage: kestrana lowhigh DRAWING [--show NET]... [--hide NET]...\n"
     "         [--build] [--list] [--json] [-o OUT]\n\n"
     "A node of a pressure network that lies at or below all its neighbours\n"
     "is a low point (a wash-out), one at or above all of them a high point\n"
     "(an air valve); each gets a marker on \"<network> - Low&High Points\".\n"
     "Without options the settings and the number of markers are printed\n"
     "and DRAWING is only read.\n\n"
     "  --show NET          show the markers of the pressure network NET\n"
     "  --hide NET          hide them (both options may repeat); markers are\n"
     "                      kept either way\n"
     "  --build             analyse every node of every pressure network and\n"
     "                      draw, move or remove markers to match\n"
     "  --list              list every marker: low or high, network, node,\n"
     "                      point, shown or hidden\n"
     "  --json              print JSON instead of text\n"
     "  -o, --output OUT    write to OUT instead of DRAWING\n",
     Run});

}  // namespace

}  // namespace kestrana::cli
