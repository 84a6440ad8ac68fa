// kestrana convert: lines and polylines of a drawing become pipes and nodes.
#include "commands/convert.h"

#include <ostream>

#include "cli/command.h"
#include "cli/progress.h"
#include "cli/session.h"
#include "core/names.h"
#include "memhost/document.h"

namespace kestrana::cli {

namespace {

int Run(const std::vector<std::string>& args, Io& io) {
  Args a(args, {"all"},
         {"network", "type", "layer", "handles", "window", "output"});
  a.ExpectPositionals(1);
  a.Drawing();
  commands::ConvertOptions options;
  options.network = a.Network();
  if (options.network.empty()) throw UsageError("the network name is empty");
  options.type = a.Option("type");
  options.selection.layer = a.Option("layer");
  options.selection.all = a.Flag("all");
  if (auto handles = a.Option("handles")) {
    options.selection.handles = SplitAtCommas(*handles);
    for (const std::string& h : options.selection.handles)
      if (h.empty())
        throw UsageError("--handles: an empty handle in '" + *handles + "'");
  }
  if (auto window = a.Option("window")) {
    std::vector<std::string> corners = SplitAtCommas(*window);
    if (corners.size() != 4)
      throw UsageError("--window takes four numbers X1,Y1,X2,Y2, not '" +
                       *window + "'");
    std::array<double, 4> w{};
    for (int i = 0; i < 4; ++i) w[i] = ParseReal(corners[i], "--window");
    options.selection.window = w;
  }
  ProgressLine progress(io.err, IsTerminal(io.err));
  options.progress = progress.Callback();
  const commands::ConvertResult r = EditProject(a, commands::Convert, options);
  progress.Finish();
  io.out << "converted " << r.pipes << " pipe" << (r.pipes == 1 ? "" : "s")
         << " and " << r.nodes << " new node" << (r.nodes == 1 ? "" : "s")
         << " into the " << r.type << " network \"" << r.network << "\""
         << (r.new_network ? " (new)" : "") << "; " << r.crossings
         << " new crossing" << (r.crossings == 1 ? "" : "s");
  if (r.type == core::kPressure)
    io.out << "; " << r.low_high_points << " low/high points";
  io.out << "\nwrote " << a.Written() << "\n";
  return 0;
}

Registrar convert_command(
    {"convert", "turn lines and polylines into the pipes of a network",
     "Usage: kestrana convert DRAWING --network NAME [--type "
     "Gravity|Pressure]\n"
     "         (--layer L | --handles H,H,... | --window X1,Y1,X2,Y2 | --all)\n"
     "         [-o OUT]\n\n"
     "Answers \"Select Entities to Convert:\" with the chosen entities and\n"
     "turns each line and polyline among them into a pipe of the network\n"
     "NAME (lines become two-vertex polylines; entities that already belong\n"
     "to a network are left alone). Pipe ends that agree to 5 decimal\n"
     "places share a node; new pipes and nodes are labelled P-<n> and N-<n>\n"
     "with the smallest free numbers in the order of the selection: the\n"
     "polylines in the order they stand in the drawing (with --handles, in\n"
     "the order given), then the lines, so a line drawn before a polyline\n"
     "is still labelled after it. They are annotated in the active view "
     "style,\n"
     "and their crossings with other networks and, in a pressure network,\n"
     "the low and high points are drawn.\n\n"
     "  --network NAME        the network; made first when it is new\n"
     "  --type Gravity|Pressure\n"
     "                        the type of a new network (checked otherwise)\n"
     "  --layer L             every line and polyline on layer L\n"
     "  --handles H,H,...     these entities, by their DXF handles\n"
     "  --window X1,Y1,X2,Y2  the entities wholly inside the window\n"
     "  --all                 every line and polyline of the drawing\n"
     "  -o, --output OUT      write to OUT instead of DRAWING\n",
     Run});

}  // namespace

}  // namespace kestrana::cli
