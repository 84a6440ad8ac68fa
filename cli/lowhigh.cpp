// kestrana lowhigh: the low and high points of pressure networks.
#include "commands/lowhigh.h"

#include <sstream>

#include "cli/command.h"
#include "cli/json.h"
#include "cli/session.h"
#include "core/text.h"
#include "memhost/document.h"

namespace kestrana::cli {

namespace {

using commands::LowHighListing;
using commands::LowHighNetwork;
using commands::LowHighResult;

std::string LowHighText(const LowHighResult& r,
                        const std::optional<std::string>& written) {
  std::ostringstream out;
  if (written) out << "wrote " << *written << "\n";
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

std::string LowHighJson(const LowHighResult& r,
                        const std::optional<std::string>& written) {
  JsonWriter json;
  json.BeginObject();
  json.Key("networks").BeginArray();
  for (const LowHighNetwork& n : r.networks) {
    json.BeginObject();
    json.Key("name").String(n.name);
    json.Key("shown").Bool(n.shown);
    json.EndObject();
  }
  json.EndArray();
  json.Key("low").Int(r.low);
  json.Key("high").Int(r.high);
  if (written) json.Key("written").String(*written);
  json.Key("points").BeginArray();
  for (const LowHighListing& p : r.points) {
    json.BeginObject();
    json.Key("kind").String(p.kind);
    json.Key("network").String(p.network);
    json.Key("node").String(p.node);
    json.Key("x").Real(p.x);
    json.Key("y").Real(p.y);
    json.Key("shown").Bool(p.shown);
    json.EndObject();
  }
  json.EndArray().EndObject();
  return json.Text();
}

int Run(const std::vector<std::string>& args, Io& io) {
  Args a(args, {"build", "list", "json"}, {"show", "hide", "output"});
  a.ExpectPositionals(1);
  a.Drawing();
  commands::LowHighOptions options;
  options.show = a.Options("show");
  options.hide = a.Options("hide");
  options.build = a.Flag("build");
  options.list = a.Flag("list");
  const auto [result, written] =
      ReadOrEditProject(a, options.Changes(), commands::LowHighPoints, options);
  io.out << (a.Json() ? LowHighJson(result, written)
                      : LowHighText(result, written));
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
