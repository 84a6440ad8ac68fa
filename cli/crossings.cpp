// kestrana crossings: the crossing settings of a project, building and
// listing the crossings.
#include "commands/crossings.h"

#include <sstream>

#include "cli/command.h"
#include "cli/json.h"
#include "cli/progress.h"
#include "cli/session.h"
#include "core/text.h"
#include "memhost/document.h"
#include "memhost/text_metrics.h"

namespace kestrana::cli {

namespace {

using commands::CrossingListing;
using commands::CrossingsResult;
using commands::NetworkPair;

// Levels and clearances, in every form.
constexpr int kPlaces = 3;

std::string Number(double value) {
  return core::FormatNumber(core::RoundHalfEven(value, kPlaces), "0.000");
}

std::string OptionalNumber(const std::optional<double>& value) {
  return value ? Number(*value) : "-";
}

std::string CrossingsText(const CrossingsResult& r,
                          const std::optional<std::string>& written) {
  std::ostringstream out;
  if (written) {
    if (r.drawn > 0)
      out << "drew " << r.drawn << " new crossing annotation"
          << (r.drawn == 1 ? "" : "s") << "\n";
    out << "wrote " << *written << "\n";
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

void PipeJson(JsonWriter& json, const std::string& network,
              const std::string& label,
              const std::optional<core::SectionSize>& size,
              const std::optional<double>& invert) {
  json.BeginObject();
  json.Key("network").String(network);
  json.Key("label").String(label);
  json.Key("size");
  size ? json.Size(*size) : json.Null();
  json.Key("invert");
  invert ? json.Number(*invert, kPlaces) : json.Null();
  json.EndObject();
}

std::string CrossingsJson(const CrossingsResult& r,
                          const std::optional<std::string>& written) {
  JsonWriter json;
  json.BeginObject();
  json.Key("threshold");
  if (r.threshold.empty())
    json.Null();
  else
    json.Real(core::NumericValue(r.threshold));
  json.Key("pairs").BeginArray();
  for (const NetworkPair& p : r.pairs) {
    json.BeginObject();
    json.Key("networks").BeginArray().String(p.first).String(p.second);
    json.EndArray();
    json.Key("enabled").Bool(p.enabled);
    json.EndObject();
  }
  json.EndArray();
  json.Key("annotations").Int(r.annotations);
  json.Key("shown").Int(r.shown);
  json.Key("drawn").Int(r.drawn);
  if (written) json.Key("written").String(*written);
  json.Key("crossings").BeginArray();
  for (const CrossingListing& c : r.crossings) {
    json.BeginObject();
    json.Key("pipe1");
    PipeJson(json, c.network1, c.label1, c.section1, c.invert1);
    json.Key("pipe2");
    PipeJson(json, c.network2, c.label2, c.section2, c.invert2);
    json.Key("clearance").Number(c.clearance, kPlaces);
    json.Key("easting").Real(c.easting);
    json.Key("northing").Real(c.northing);
    json.Key("shown").Bool(c.shown);
    json.EndObject();
  }
  json.EndArray().EndObject();
  return json.Text();
}

int Run(const std::vector<std::string>& args, Io& io) {
  Args a(args, {"build", "apply", "reset-locations", "list", "json"},
         {"threshold", "enable", "disable", "output"});
  a.ExpectPositionals(1);
  a.Drawing();
  commands::CrossingsOptions options;
  options.threshold = a.Option("threshold");
  options.enable = a.Options("enable");
  options.disable = a.Options("disable");
  options.build = a.Flag("build");
  options.apply = a.Flag("apply");
  options.reset_locations = a.Flag("reset-locations");
  options.list = a.Flag("list");
  ProgressLine progress(io.err, IsTerminal(io.err));
  options.progress = progress.Callback();
  const auto [result, written] =
      ReadOrEditProject(a, options.Changes(), commands::Crossings, options);
  progress.Finish();
  io.out << (a.Json() ? CrossingsJson(result, written)
                      : CrossingsText(result, written));
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
