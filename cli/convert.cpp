// kestrana convert: lines and polylines of a drawing become pipes and nodes.
#include <sstream>

#include "cli/command.h"
#include "cli/editing.h"
#include "cli/editing_support.h"
#include "cli/project.h"
#include "core/filters.h"
#include "core/general.h"
#include "core/names.h"
#include "core/text.h"
#include "crossing/crossing.h"
#include "editing/editing.h"
#include "host/host.h"
#include "lowhigh/lowhigh.h"
#include "memhost/document.h"

namespace kestrana::cli {

using core::General;
using editing::Editing;

namespace {

constexpr int16_t kLayerCode = 8;

int CountOf(host::SelectionSet& set) { return set.Count(); }

std::string Describe(const std::array<double, 4>& w) {
  return core::GeneralText(w[0]) + "," + core::GeneralText(w[1]) + "," +
         core::GeneralText(w[2]) + "," + core::GeneralText(w[3]);
}

// The answer to the selection prompt, checked against the drawing first so
// that a mistake is named rather than met as an empty selection.
memhost::Input SelectionInput(memhost::MemDocument& document,
                              const ConvertSelection& selection) {
  const int given = selection.layer.has_value() + !selection.handles.empty() +
                    selection.window.has_value() + selection.all;
  if (given != 1)
    throw UsageError(
        "choose what to convert with one of --layer, --handles, --window, "
        "--all");
  if (selection.layer) {
    if (document.FindLayer(*selection.layer) == nullptr)
      throw CommandError("the drawing has no layer \"" + *selection.layer +
                         "\"");
    return memhost::Input::All(
        {{kLayerCode, core::EscapeWildcards(*selection.layer)}});
  }
  if (!selection.handles.empty()) {
    std::vector<host::ObjectId> ids;
    for (const std::string& handle : selection.handles) {
      host::Object* object = nullptr;
      try {
        object = &document.HandleToObject(handle);
      } catch (const host::HostError&) {
      }
      auto* entity = dynamic_cast<memhost::MemEntity*>(
          object ? document.FindById(object->ObjectID()) : nullptr);
      if (entity == nullptr || !entity->InLayout())
        throw CommandError("no entity of the drawing has the handle \"" +
                           handle + "\"");
      ids.push_back(object->ObjectID());
    }
    return memhost::Input::Objects(std::move(ids));
  }
  if (selection.window) {
    const auto& w = *selection.window;
    const host::Point3 c1{w[0], w[1], 0}, c2{w[2], w[3], 0};
    if (document.SelectWindow(c1, c2, false, {}).empty())
      throw CommandError("the window " + Describe(w) + " holds no entity");
    return memhost::Input::Window(c1, c2);
  }
  return memhost::Input::All();
}

}  // namespace

ConvertResult ConvertInDocument(memhost::MemDocument& document,
                                const ConvertOptions& options) {
  ConvertResult result;
  result.network = options.network;
  if (options.type && *options.type != core::kGravity &&
      *options.type != core::kPressure)
    throw UsageError("--type must be Gravity or Pressure, not '" +
                     *options.type + "'");
  const bool existing = General::CheckNetworkExists(document, options.network);
  if (existing) {
    result.type = NetworkType(document, options.network);
    if (options.type && *options.type != result.type)
      throw CommandError("\"" + options.network + "\" is a " + result.type +
                         " network, not a " + *options.type + " one");
  } else {
    if (!options.type)
      throw UsageError("the network \"" + options.network +
                       "\" is new: give its --type (Gravity or Pressure)");
    result.type = *options.type;
  }
  memhost::Input answer = SelectionInput(document, options.selection);
  if (!existing) AddNetwork(document, options.network, result.type);
  result.new_network = !existing;

  const int pipes_before =
      CountOf(General::GetNetworkSet(document, options.network, 1));
  const int nodes_before =
      CountOf(General::GetNetworkSet(document, options.network, 2));
  const int crossings_before =
      CountOf(crossing::Crossing::GetExistingCrossingPointsSet(document, ""));

  document.GetSession().Push(std::move(answer));
  host::SelectionSet& selected = Editing::GetEntitiesToConvert(document);
  if (selected.Count() == 0)
    throw CommandError(
        "nothing to convert: the selection holds no line or polyline that is "
        "not already part of a network");
  // A pipe of no length has no direction, slope or crossing station.
  for (host::Entity* entity : selected.Entities())
    if (host::As<host::LwPolyline>(*entity).Length() == 0)
      throw CommandError("the polyline with the handle " + entity->Handle() +
                         " has no length and cannot become a pipe; leave it "
                         "out of the selection");
  Editing::CreateElementsInNetwork(document, selected, existing,
                                   options.network, result.type);

  result.pipes = CountOf(General::GetNetworkSet(document, options.network, 1)) -
                 pipes_before;
  result.nodes = CountOf(General::GetNetworkSet(document, options.network, 2)) -
                 nodes_before;
  result.crossings =
      CountOf(crossing::Crossing::GetExistingCrossingPointsSet(document, "")) -
      crossings_before;
  result.low_high_points = CountOf(
      lowhigh::LowHigh::GetExistingLowHighPointsSet(document, options.network));
  return result;
}

ConvertResult Convert(const ConvertOptions& options) {
  ConvertResult result;
  EditProjectDrawing(options.drawing, options.output,
                     [&](memhost::MemDocument& document) {
                       result = ConvertInDocument(document, options);
                     });
  result.written = options.output.value_or(options.drawing);
  return result;
}

namespace {

int Run(const std::vector<std::string>& args, Io& io) {
  Args a(args, {"all"},
         {"network", "type", "layer", "handles", "window", "output"});
  a.ExpectPositionals(1);
  ConvertOptions options;
  options.drawing = a.Positional(0, "the drawing (DRAWING.dxf)");
  options.output = a.Option("output");
  options.network = a.Required("network");
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
  ConvertResult r = Convert(options);
  io.out << "converted " << r.pipes << " pipe" << (r.pipes == 1 ? "" : "s")
         << " and " << r.nodes << " new node" << (r.nodes == 1 ? "" : "s")
         << " into the " << r.type << " network \"" << r.network << "\""
         << (r.new_network ? " (new)" : "") << "; " << r.crossings
         << " new crossing" << (r.crossings == 1 ? "" : "s");
  if (r.type == core::kPressure)
    io.out << "; " << r.low_high_points << " low/high points";
  io.out << "\nwrote " << r.written << "\n";
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
     "with the smallest free numbers, annotated in the active view style,\n"
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
