#include "commands/convert.h"

#include "commands/command.h"
#include "commands/elements.h"
#include "commands/networks.h"
#include "core/filters.h"
#include "core/general.h"
#include "core/names.h"
#include "core/text.h"
#include "core/user_names.h"
#include "crossing/crossing.h"
#include "editing/editing.h"
#include "host/host.h"
#include "lowhigh/lowhigh.h"
#include "memhost/document.h"

namespace kestrana::commands {

using core::General;
using editing::Editing;

namespace {

constexpr int16_t kLayerCode = 8;

std::string Describe(const std::array<double, 4>& w) {
  return core::GeneralText(w[0]) + "," + core::GeneralText(w[1]) + "," +
         core::GeneralText(w[2]) + "," + core::GeneralText(w[3]);
}

// The entity a handle names in the drawing's layouts, or null.
host::ObjectId EntityOfHandle(memhost::MemDocument& document,
                              const std::string& handle) {
  host::Object* object = nullptr;
  try {
    object = &document.HandleToObject(handle);
  } catch (const host::HostError&) {
    // No object has it.
  }
  auto* entity = dynamic_cast<memhost::MemEntity*>(
      object ? document.FindById(object->ObjectID()) : nullptr);
  if (entity == nullptr || !entity->InLayout())
    throw NotFoundError("no entity of the drawing has the handle \"" + handle +
                        "\"");
  return object->ObjectID();
}

// The answer to the selection prompt, checked against the drawing first so
// that a mistake is named rather than met as an empty selection.
memhost::Input SelectionInput(memhost::MemDocument& document,
                              const ConvertSelection& selection) {
  const int given = selection.layer.has_value() + !selection.handles.empty() +
                    selection.window.has_value() + selection.all;
  if (given != 1)
    throw OptionError(
        "choose what to convert with one of --layer, --handles, --window, "
        "--all");
  if (selection.layer) {
    if (document.FindLayer(*selection.layer) == nullptr)
      throw NotFoundError("the drawing has no layer \"" + *selection.layer +
                          "\"");
    return memhost::Input::All(
        {{kLayerCode, core::EscapeWildcards(*selection.layer)}});
  }
  if (!selection.handles.empty()) {
    std::vector<host::ObjectId> ids;
    for (const std::string& handle : selection.handles)
      ids.push_back(EntityOfHandle(document, handle));
    return memhost::Input::Objects(std::move(ids));
  }
  if (selection.window) {
    const auto& w = *selection.window;
    const host::Point3 c1{w[0], w[1], 0}, c2{w[2], w[3], 0};
    if (document.SelectWindow(c1, c2, false, {}).empty())
      throw NotFoundError("the window " + Describe(w) + " holds no entity");
    return memhost::Input::Window(c1, c2);
  }
  return memhost::Input::All();
}

// What the conversion is counted by.
struct Counts {
  int pipes, nodes, crossings;
};

Counts CountsOf(host::Document& document, const std::string& network) {
  return {
      General::GetNetworkSet(document, network, kPipes).Count(),
      General::GetNetworkSet(document, network, kNodes).Count(),
      crossing::Crossing::GetExistingCrossingPointsSet(document, "").Count()};
}

}  // namespace

ConvertResult Convert(memhost::MemDocument& document,
                      const ConvertOptions& typed) {
  ConvertOptions options = typed;
  // An existing network however it is typed; else a new one as typed.
  options.network =
      core::FindNetworkName(document, typed.network).value_or(typed.network);
  core::ProgressScope progress(options.progress);
  ConvertResult result;
  result.network = options.network;
  if (options.type && *options.type != core::kGravity &&
      *options.type != core::kPressure)
    throw OptionError("--type must be Gravity or Pressure, not '" +
                      *options.type + "'");
  const bool existing = General::CheckNetworkExists(document, options.network);
  if (existing) {
    result.type = NetworkType(document, options.network);
    if (options.type && *options.type != result.type)
      throw RefusedError("\"" + options.network + "\" is a " + result.type +
                         " network, not a " + *options.type + " one");
  } else {
    if (!options.type)
      throw OptionError("the network \"" + options.network +
                        "\" is new: give its --type (Gravity or Pressure)");
    result.type = *options.type;
  }
  memhost::Input answer = SelectionInput(document, options.selection);
  if (!existing) AddNetwork(document, {options.network, result.type});
  result.new_network = !existing;

  const Counts before = CountsOf(document, options.network);
  document.GetSession().Push(std::move(answer));
  host::SelectionSet& selected = Editing::GetEntitiesToConvert(document);
  if (selected.Count() == 0)
    throw RefusedError(
        "nothing to convert: the selection holds no line or polyline that is "
        "not already part of a network");
  // A pipe of no length has no direction, slope or crossing station.
  for (host::Entity* entity : selected.Entities())
    if (host::As<host::LwPolyline>(*entity).Length() == 0)
      throw RefusedError("the polyline with the handle " + entity->Handle() +
                         " has no length and cannot become a pipe; leave it "
                         "out of the selection");
  Editing::CreateElementsInNetwork(document, selected, existing,
                                   options.network, result.type);

  const Counts after = CountsOf(document, options.network);
  result.pipes = after.pipes - before.pipes;
  result.nodes = after.nodes - before.nodes;
  result.crossings = after.crossings - before.crossings;
  result.low_high_points =
      lowhigh::LowHigh::GetExistingLowHighPointsSet(document, options.network)
          .Count();
  return result;
}

}  // namespace kestrana::commands
