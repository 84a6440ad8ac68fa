// kestrana profile data: the sorted run of a profile and the data of each
// of its parts.
#include "commands/profile_data.h"

#include <algorithm>
#include <sstream>

#include "cli/command.h"
#include "cli/files.h"
#include "cli/json.h"
#include "cli/profile_options.h"
#include "cli/session.h"
#include "core/names.h"
#include "core/text.h"
#include "host/errors.h"
#include "profile/part_data.h"

namespace kestrana::cli {

namespace {

using commands::SeriesValues;
using profile::PartData;
using profile::Series;

constexpr char kLevelPattern[] = "0.000";
constexpr int kDistancePlaces = 7;  // as the series count lengths
// Shape index, span, rise and cells of each pipe in the sections series.
constexpr size_t kSectionValues = 4;
constexpr char kSlopePattern[] = "0.00";

host::Point3 ParsePoint(const std::string& text) {
  const std::vector<std::string> xy = SplitAtCommas(text);
  if (xy.size() != 2)
    throw UsageError("--start: '" + text + "' is not a point X,Y");
  return {ParseReal(xy[0], "--start X"), ParseReal(xy[1], "--start Y"), 0};
}

// Whether a value of a series is a text: materials, node labels and the
// coordinate text after each distance. Every other value is a number.
bool IsText(Series series, size_t index) {
  return series == Series::kMaterials || series == Series::kNodeLabels ||
         (series == Series::kCoordinates && index % 2 == 1);
}

// Numbers as JSON numbers, as the series hold them (unrounded).
void Values(JsonWriter& json, const std::vector<std::string>& values,
            std::optional<Series> series = std::nullopt) {
  json.BeginArray();
  for (size_t i = 0; i < values.size(); ++i) {
    std::optional<double> number;
    if (series && !IsText(*series, i)) number = core::ParseNumber(values[i]);
    if (number)
      json.Real(*number);
    else
      json.String(values[i]);
  }
  json.EndArray();
}

std::string Json(const commands::ProfileDataResult& r) {
  JsonWriter json;
  json.BeginObject();
  json.Key("labels");
  Values(json, r.labels);
  json.Key("oids");
  Values(json, r.oids, Series::kPipeOIDs);
  json.Key("directions");
  Values(json, r.directions, Series::kDirections);
  json.Key("parts").BeginArray();
  for (const PartData& part : r.parts) {
    json.BeginObject().Key("series").BeginArray();
    for (size_t s = 0; s < part.series.size(); ++s)
      Values(json, SeriesValues(part.series[s]), static_cast<Series>(s));
    json.EndArray().EndObject();
  }
  json.EndArray().EndObject();
  return json.Text();
}

// Columns: the first left-aligned, the others right-aligned.
std::string Columns(const std::vector<std::vector<std::string>>& rows) {
  std::vector<size_t> widths;
  for (const auto& row : rows) {
    widths.resize(std::max(widths.size(), row.size()), 0);
    for (size_t c = 0; c < row.size(); ++c)
      widths[c] = std::max(widths[c], row[c].size());
  }
  std::string text;
  for (const auto& row : rows) {
    std::string line = " ";
    for (size_t c = 0; c < row.size(); ++c) {
      const std::string pad(widths[c] - row[c].size(), ' ');
      line += " " + (c == 0 ? row[c] + pad : pad + row[c]);
    }
    text += line + "\n";
  }
  return text;
}

std::string Level(const std::string& value) {
  return core::FormatNumber(core::NumericValue(value), kLevelPattern);
}

// A pipe's values in the sections series, in their order there.
struct Section {
  std::string shape;  // "0" circular, "1" box
  std::string span, rise, cells;
};

// "200 mm", "8 in", "1200 x 800 mm", "2 x 4 x 3 ft".
std::string SizeText(const Section& section, bool metric) {
  const bool circular = section.shape == "0";
  const char* unit = metric ? " mm" : (circular ? " in" : " ft");
  const std::string size =
      circular ? section.span : section.span + " x " + section.rise;
  return (core::NumericValue(section.cells) > 1 ? section.cells + " x " : "") +
         size + unit;
}

// One part's tables; its pipes are those of the run from `first_pipe` on.
std::string PartText(const commands::ProfileDataResult& r, size_t index,
                     double part_start, size_t first_pipe) {
  const PartData& part = r.parts[index];
  auto values = [&](Series s) { return SeriesValues(part[s]); };
  const std::vector<std::string> lengths = values(Series::kLengths);
  const std::vector<std::string> labels = values(Series::kNodeLabels);
  const std::vector<std::string> grounds = values(Series::kGroundAtNodes);
  const std::vector<std::string> sumps = values(Series::kSumps);
  const std::vector<std::string> inverts = values(Series::kInverts);
  const std::vector<std::string> depths = values(Series::kInvertDepths);
  const std::vector<std::string> sections = values(Series::kSections);
  const std::vector<std::string> slopes = values(Series::kSlopes);
  const bool metric = r.units == core::kMetric;

  std::vector<double> at{0};
  for (const std::string& length : lengths)
    at.push_back(core::RoundHalfEven(at.back() + core::NumericValue(length),
                                     kDistancePlaces));
  auto station = [&](double distance) {
    return core::FormatNumber(part_start + distance, r.station_pattern);
  };
  std::ostringstream out;
  out << "Part " << index + 1 << " of " << r.parts.size() << ": " << station(0)
      << " to " << station(at.back()) << "\n";
  std::vector<std::vector<std::string>> nodes{
      {"NODE", "DISTANCE", "STATION", "GROUND", "SUMP"}};
  for (size_t n = 0; n < labels.size() && n < at.size(); ++n)
    nodes.push_back({labels[n], core::FormatNumber(at[n], kLevelPattern),
                     station(at[n]), Level(grounds[n]), Level(sumps[n])});
  out << Columns(nodes) << "\n";

  std::vector<std::vector<std::string>> rows{
      {"PIPE", "FROM", "TO", "LENGTH", "SIZE", "SLOPE", "INVERT A", "INVERT B",
       "DEPTH A", "DEPTH B"}};
  for (size_t i = 0; i < lengths.size(); ++i) {
    const auto section = sections.begin() + kSectionValues * i;
    rows.push_back(
        {r.labels.at(first_pipe + i), labels[i], labels[i + 1],
         Level(lengths[i]),
         SizeText({section[0], section[1], section[2], section[3]}, metric),
         core::FormatNumber(core::NumericValue(slopes[i]) * 100,
                            kSlopePattern) +
             "%",
         Level(inverts[2 * i]), Level(inverts[2 * i + 1]), Level(depths[2 * i]),
         Level(depths[2 * i + 1])});
  }
  out << Columns(rows);
  const size_t connected =
      values(Series::kConnectedPipes).size() / profile::kPipeAtDistanceValues;
  const size_t crossing =
      values(Series::kCrossings).size() / profile::kPipeAtDistanceValues;
  out << "  connected pipes at the nodes: " << connected
      << "; crossing pipes: " << crossing << "\n";
  return out.str();
}

std::string Plain(const commands::ProfileDataResult& r) {
  std::ostringstream out;
  out << "profile of the network \"" << r.network << "\" with the style \""
      << r.style << "\"; ground "
      << (r.surface.empty() ? std::string("from the nodes' levels")
                            : "from the surface \"" + r.surface + "\"")
      << "\n"
      << r.labels.size() << (r.labels.size() == 1 ? " pipe" : " pipes")
      << " from the end nearest (" << core::FormatNumber(r.start.x, "0.00")
      << ", " << core::FormatNumber(r.start.y, "0.00") << "):";
  for (const std::string& label : r.labels) out << " " << label;
  out << "\n";
  double part_start = 0;
  size_t first_pipe = 0;
  for (size_t p = 0; p < r.parts.size(); ++p) {
    out << "\n" << PartText(r, p, part_start, first_pipe);
    for (const std::string& length :
         SeriesValues(r.parts[p][Series::kLengths])) {
      part_start += core::NumericValue(length);
      ++first_pipe;
    }
  }
  return out.str();
}

int Run(const std::vector<std::string>& args, Io& io) {
  Args a(args, {"json"},
         {"network", "pipes", "line", "start", "style", "surface",
          "surface-name"});
  a.ExpectPositionals(1);
  const std::string drawing = a.Positional(0, "the drawing (DRAWING.dxf)");
  commands::ProfileDataOptions options = ProfileRunOptions(a);
  const commands::ProfileDataResult result =
      commands::ProfileData(*OpenProjectDrawing(drawing), options);
  io.out << (a.Flag("json") ? Json(result) : Plain(result));
  return 0;
}

}  // namespace

commands::ProfileDataOptions ProfileRunOptions(const Args& a) {
  commands::ProfileDataOptions options;
  options.network = a.Required("network");
  options.pipes = a.Names("pipes");
  options.line = a.Option("line");
  if (options.pipes.empty() == !options.line)
    throw UsageError("give the run as --pipes P-1,P-2,... or as --line LINE");
  if (std::optional<std::string> start = a.Option("start"))
    options.start = ParsePoint(*start);
  options.style = a.Option("style");
  options.surface_name = a.Option("surface-name");
  if (std::optional<std::string> surface = a.Option("surface")) {
    options.surface_xml = ReadInput(*surface, InputKind::kSurface);
    options.surface_file = *surface;
  } else if (options.surface_name) {
    throw UsageError("--surface-name needs --surface FILE.xml");
  }
  return options;
}

namespace {

Registrar data_command(
    {"profile data", "the data of every part of a profile, as it is drawn",
     "Usage: kestrana profile data DRAWING --network N\n"
     "         (--pipes P-1,P-2,... | --line LINE) [--start X,Y] [--style S]\n"
     "         [--surface FILE.xml [--surface-name S]] [--json]\n\n"
     "Orders a run of pipes of the network N from its end nearest the\n"
     "start point and gathers, part by part as the style splits it, what a\n"
     "profile shows: lengths, inverts, sizes, slopes, materials, nodes with\n"
     "ground and sump levels, connected and crossing pipes, the ground line,\n"
     "stations and values at regular stations. The pipes must form one\n"
     "unbranched run. The drawing is not changed.\n\n"
     "  --network N          the network of the pipes\n"
     "  --pipes P-1,P-2,...  the pipes by label, in any order\n"
     "  --line LINE          a line as `kestrana profile lines` names it\n"
     "  --start X,Y          where the profile starts (default: the end of\n"
     "                       the run with the lowest invert)\n"
     "  --style S            the profile style (default \"Standard\")\n"
     "  --surface FILE.xml   the ground from a LandXML TIN surface, sampled\n"
     "                       every 3 m (10 ft); else from the nodes' levels\n"
     "  --surface-name S     the surface to use when the file holds several\n"
     "  --json               {\"labels\", \"oids\", \"directions\", "
     "\"parts\"}:\n"
     "                       the run in profile order, and per part its\n"
     "                       \"series\": 22 lists of value texts, series 0\n"
     "                       to 21 (docs/profile-style-file.md lists them)\n",
     Run});

}  // namespace

}  // namespace kestrana::cli
