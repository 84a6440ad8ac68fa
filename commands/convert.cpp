#include "commands/convert.h"

#include "commands/command.h"
#include "commands/elements.h"
#include "commands/networks.h"
#include "core/filters.h"
#include "core/general.h"
#include "core/names.h"
#include "core/record.h"
#include "core/text.h"
#include "core/user_names.h"
#include "crossing/crossing.h"
#include "editing/conversion.h"
#include "editing/editing.h"
#include "host/host.h"
#include "lowhigh/lowhigh.h"
#include "memhost/document.h"

namespace kestrana::commands {

using core::General;
using editing::Editing;

namespace {

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
        {{core::code::kLayer, core::EscapeWildcards(*selection.layer)}});
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

// What the selection covers before the conversion's own filter: what the
// user pointed at.
std::vector<memhost::MemEntity*> Covered(memhost::MemDocument& document,
                                         const ConvertSelection& selection) {
  if (selection.layer)
    return document.SelectAll(
        {{core::code::kLayer, core::EscapeWildcards(*selection.layer)}});
  if (!selection.handles.empty()) {
    std::vector<memhost::MemEntity*> entities;
    for (const std::string& handle : selection.handles)
      if (auto* object = document.FindById(EntityOfHandle(document, handle)))
        if (memhost::MemEntity* entity = object->AsMemEntity())
          entities.push_back(entity);
    return entities;
  }
  if (selection.window) {
    const auto& w = *selection.window;
    return document.SelectWindow({w[0], w[1], 0}, {w[2], w[3], 0}, false, {});
  }
  return document.SelectAll({});
}

// A line or polyline of no length has no direction, slope or crossing
// station: the selection is refused, naming every such entity by the
// handle it has in the file.
void CheckLengths(const std::vector<memhost::MemEntity*>& covered) {
  std::vector<std::string> empty;
  for (memhost::MemEntity* e : covered) {
    host::Entity& entity = e->AsHostEntity();
    if (entity.GetXData(core::kAppName)) continue;  // an element stays
    double length = -1;
    if (auto* line = dynamic_cast<host::Line*>(&entity))
      length = line->Length();
    else if (auto* polyline = dynamic_cast<host::LwPolyline*>(&entity))
      length = polyline->Length();
    if (length == 0)
      empty.push_back(entity.EntityName() + " " + entity.Handle());
  }
  if (empty.size() == 1)
    throw RefusedError("the " + empty[0].substr(0, empty[0].find(' ')) +
                       " with the handle " +
                       empty[0].substr(empty[0].find(' ') + 1) +
                       " has no length and cannot become a pipe; leave it "
                       "out of the selection");
  if (!empty.empty()) {
    std::string list;
    for (const std::string& e : empty) list += (list.empty() ? "" : ", ") + e;
    throw RefusedError(std::to_string(empty.size()) +
                       " entities have no length and cannot become pipes: " +
                       list + "; leave them out of the selection");
  }
}

// Classic POLYLINE entities the conversion passes over.
int ClassicPolylines(const std::vector<memhost::MemEntity*>& covered) {
  int n = 0;
  for (memhost::MemEntity* e : covered)
    n += e->AsHostEntity().EntityName() == "POLYLINE";
  return n;
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
  const std::vector<memhost::MemEntity*> covered =
      Covered(document, options.selection);
  CheckLengths(covered);
  result.classic_polylines_left_out = ClassicPolylines(covered);
  if (!existing) AddNetwork(document, {options.network, result.type});
  result.new_network = !existing;

  document.GetSession().Push(std::move(answer));
  host::SelectionSet& selected = Editing::GetEntitiesToConvert(document);
  if (selected.Count() == 0)
    throw RefusedError(
        "nothing to convert: the selection holds no line or polyline that is "
        "not already part of a network");
  // The conversion counts what it makes; nothing is counted again.
  const editing::ConversionCounts made = editing::ConvertEntities(
      document, selected, existing, options.network, result.type,
      editing::ConversionPath::kBatch);
  result.pipes = made.pipes;
  result.nodes = made.nodes;
  result.crossings = made.crossings;
  result.low_high_points =
      lowhigh::LowHigh::GetExistingLowHighPointsSet(document, options.network)
          .Count();
  return result;
}

}  // namespace kestrana::commands
