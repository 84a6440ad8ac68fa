// kestrana ground: ground levels of whole networks from a LandXML surface.
#include "commands/ground.h"

#include <algorithm>
#include <ostream>

#include "cli/command.h"
#include "cli/files.h"
#include "cli/json.h"
#include "cli/progress.h"
#include "cli/session.h"
#include "core/text.h"
#include "memhost/document.h"
#include "memhost/landxml.h"

namespace kestrana::cli {

namespace {

// How many nodes outside the surface a warning names; it counts the rest.
constexpr size_t kNamedOutside = 10;

std::string Level(double value) {
  return core::FormatNumber(core::RoundHalfEven(value, 2), "0.00");
}

std::string NodeName(const commands::NodeLevel& node) {
  return node.network + " " + node.label;
}

// The lowest and the highest level taken, with the nodes that took them.
std::string LevelRange(const std::vector<commands::NodeLevel>& levels) {
  auto [low, high] = std::minmax_element(
      levels.begin(), levels.end(),
      [](const auto& a, const auto& b) { return a.ground < b.ground; });
  if (levels.size() == 1) return Level(low->ground) + " at " + NodeName(*low);
  return Level(low->ground) + " (" + NodeName(*low) + ") to " +
         Level(high->ground) + " (" + NodeName(*high) + ")";
}

std::string GroundJson(const commands::GroundResult& r,
                       const std::string& written) {
  JsonWriter json;
  json.BeginObject();
  json.Key("surface").String(r.surface);
  json.Key("updated").Int(r.updated);
  json.Key("levels").BeginArray();
  for (const commands::NodeLevel& node : r.levels) {
    json.BeginObject();
    json.Key("network").String(node.network);
    json.Key("label").String(node.label);
    json.Key("ground").Number(node.ground, 2);
    json.EndObject();
  }
  json.EndArray();
  json.Key("outside").BeginArray();
  for (const std::string& node : r.outside) json.String(node);
  json.EndArray();
  json.Key("written").String(written);
  json.EndObject();
  return json.Text();
}

int Run(const std::vector<std::string>& args, Io& io) {
  Args a(args, {"json"}, {"surface", "surface-name", "networks", "output"});
  a.ExpectPositionals(1);
  a.Drawing();
  commands::GroundOptions options;
  options.source = a.Required("surface");
  options.surface_name = a.Option("surface-name");
  options.networks = a.RequiredNames("networks");
  options.surfaces = memhost::ParseLandXmlSurfaces(
      ReadInput(options.source, InputKind::kSurface), options.source);
  ProgressLine progress(io.err, IsTerminal(io.err));
  options.progress = progress.Callback();
  const commands::GroundResult r =
      EditProject(a, commands::Ground, std::move(options));
  progress.Finish();
  if (a.Json()) {
    io.out << GroundJson(r, a.Written());
  } else {
    io.out << "ground levels of " << r.updated << " node"
           << (r.updated == 1 ? "" : "s") << " from the surface \"" << r.surface
           << "\": " << LevelRange(r.levels) << "\nwrote " << a.Written()
           << "\n";
  }
  if (!r.outside.empty()) {
    io.err << "kestrana ground: warning: " << r.outside.size() << " node"
           << (r.outside.size() == 1 ? " lies" : "s lie")
           << " outside the surface and keep"
           << (r.outside.size() == 1 ? "s its ground level"
                                     : " their ground levels")
           << ": ";
    const size_t named = std::min(r.outside.size(), kNamedOutside);
    for (size_t i = 0; i < named; ++i)
      io.err << (i ? ", " : "") << r.outside[i];
    if (r.outside.size() > named)
      io.err << " and " << r.outside.size() - named << " more";
    io.err << "\n";
  }
  return 0;
}

Registrar ground_command(
    {"ground", "ground levels of networks from a LandXML surface",
     "Usage: kestrana ground DRAWING --surface FILE.xml [--surface-name NAME]\n"
     "         --networks A,B,... [-o OUT] [--json]\n\n"
     "Takes the ground level of every node of the networks from a TIN\n"
     "surface of a LandXML file, and refreshes the annotations of the nodes\n"
     "and of their pipes (covers and depths follow the ground). A node\n"
     "outside the surface keeps its ground level; a warning names the first\n"
     "ten such nodes and counts the rest. When no node lies on the surface\n"
     "nothing is written. It says the lowest and highest level it took.\n\n"
     "  --surface FILE.xml    the LandXML file\n"
     "  --surface-name NAME   the surface to use when the file holds several\n"
     "  --networks A,B,...    the networks whose nodes take the levels\n"
     "  -o, --output OUT      write to OUT instead of DRAWING\n"
     "  --json                the levels taken and the nodes outside as JSON\n",
     Run});

}  // namespace

}  // namespace kestrana::cli
