#include "commands/move.h"

#include <cmath>
#include <set>
#include <string>
#include <vector>

#include "commands/command.h"
#include "commands/elements.h"
#include "core/general.h"
#include "core/guards.h"
#include "core/lists.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "core/references.h"
#include "events/events.h"
#include "host/host.h"
#include "profile/profile_record.h"

namespace kestrana::commands {

namespace {

using core::General;
using core::PipeField;
using core::Record;

// The editor leaves entities on locked layers where they are.
void RequireUnlocked(host::Document& document, const host::Entity& entity,
                     const std::string& what) {
  const host::Layer* layer = document.GetLayers().Find(entity.Layer());
  if (layer != nullptr && layer->Lock())
    throw RefusedError(what + " is on the locked layer \"" + entity.Layer() +
                       "\"; unlock the layer to move it");
}

void RequireFinite(double x, double y, const std::string& what) {
  if (!std::isfinite(x) || !std::isfinite(y))
    throw OptionError(what + " must be two finite numbers");
}

// Each entity once, in the order first named; refused when the editor
// could not move it.
void AddOnce(host::Document& document, std::vector<host::Entity*>& chosen,
             host::Entity& entity, const std::string& what) {
  for (host::Entity* e : chosen)
    if (e == &entity) return;
  RequireUnlocked(document, entity, what);
  chosen.push_back(&entity);
}

std::vector<host::Entity*> Chosen(host::Document& document,
                                  const MoveOptions& options) {
  std::vector<host::Entity*> chosen;
  if (!options.pipes.empty() || !options.nodes.empty()) {
    if (!options.network)
      throw OptionError("--pipes and --nodes need the --network they are in");
    RequireNetwork(document, *options.network);
    for (ElementKind kind : {ElementKind::kPipe, ElementKind::kNode}) {
      const bool pipes = kind == ElementKind::kPipe;
      const std::vector<std::string>& labels =
          pipes ? options.pipes : options.nodes;
      const std::vector<host::Entity*> found =
          FindElements(document, *options.network, kind, labels);
      for (size_t i = 0; i < found.size(); ++i)
        AddOnce(document, chosen, *found[i],
                std::string(pipes ? "the pipe \"" : "the node \"") + labels[i] +
                    "\"");
    }
  }
  for (const std::string& handle : options.handles) {
    host::Entity& entity = EntityOfHandle(document, handle);
    if (&entity.OwnerBlock() != &document.ModelSpace())
      throw NotFoundError("the handle \"" + handle +
                          "\" names an entity inside a block definition, not "
                          "one of the drawing's");
    AddOnce(document, chosen, entity,
            "the entity with the handle \"" + handle + "\"");
  }
  if (chosen.empty())
    throw OptionError("name what to move with --pipes, --nodes or --handles");
  return chosen;
}

MoveResult Outcome(host::Document& document, int moved,
                   const std::vector<host::Entity*>& reshaped) {
  MoveResult result;
  result.moved = moved;
  std::set<std::string> crossings, profiles;
  for (host::Entity* pipe : reshaped) {
    const Record record = Record::ReadRequired(*pipe);
    result.reshaped_pipes.push_back(General::GetElementNetwork(*pipe) + " " +
                                    ElementLabel(*pipe));
    for (const std::string& id :
         core::ReferenceValues(record.Text(PipeField::kCrossingOIDRefs)))
      crossings.insert(id);
    for (const std::string& id :
         core::ReferenceValues(record.Text(PipeField::kProfileOIDRefs)))
      profiles.insert(General::EntityLabelFromCombined(
          Record::ReadRequired(core::EntityFromIdText(document, id))
              .Text(profile::ProfileField::kCombinedLabel)));
  }
  result.crossings = static_cast<int>(crossings.size());
  result.profiles_to_update.assign(profiles.begin(), profiles.end());
  return result;
}

}  // namespace

MoveResult Move(host::Document& document, const MoveOptions& options) {
  RequireFinite(options.dx, options.dy, "the offset");
  const std::vector<host::Entity*> chosen = Chosen(document, options);
  const events::PipeCourses before =
      events::CoursesBeforeMove(document, chosen);
  // The editor's part: the entities move, nothing else does.
  for (host::Entity* entity : chosen)
    entity->Move({0, 0, 0}, {options.dx, options.dy, 0});
  // The add-on's part may touch anything that hangs on them.
  core::UnlockedLayers unlocked(document);
  return Outcome(document, static_cast<int>(chosen.size()),
                 events::ReactToMove(document, chosen, before));
}

MoveResult Stretch(host::Document& document, const StretchOptions& options) {
  RequireFinite(options.x, options.y, "the point");
  RequireNetwork(document, options.network);
  host::Entity& pipe =
      FindElement(document, options.network, ElementKind::kPipe, options.pipe);
  auto& polyline = host::As<host::LwPolyline>(pipe);
  std::vector<double> xy = polyline.Coordinates();
  const int count = static_cast<int>(xy.size() / 2);
  if (options.vertex < 0 || options.vertex >= count)
    throw InvalidInputError(
        "the pipe \"" + options.pipe + "\" has " + std::to_string(count) +
        " vertices, numbered 0 to " + std::to_string(count - 1) +
        "; there is no vertex " + std::to_string(options.vertex));
  RequireUnlocked(document, pipe, "the pipe \"" + options.pipe + "\"");
  const events::PipeCourses before =
      events::CoursesBeforeMove(document, {&pipe});
  xy[2 * options.vertex] = options.x;
  xy[2 * options.vertex + 1] = options.y;
  polyline.SetCoordinates(xy);
  core::UnlockedLayers unlocked(document);
  return Outcome(document, 1, events::ReactToMove(document, {&pipe}, before));
}

}  // namespace kestrana::commands
