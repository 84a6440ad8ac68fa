#include <set>

#include "commands/command.h"
#include "commands/copy_erase.h"
#include "commands/elements.h"
#include "core/guards.h"
#include "core/lists.h"
#include "core/project_record.h"
#include "events/events.h"
#include "host/host.h"
#include "profile/style_markers.h"
#include "viewstyle/project_styles.h"
#include "viewstyle/view_style_record.h"

namespace kestrana::commands {

namespace {

bool Names(std::string_view id_text, const host::Object& object) {
  const std::optional<host::ObjectId> id = core::ParseObjectId(id_text);
  return id && *id == object.ObjectID();
}

// The project's own objects (library and style markers) hold what its
// commands read; erased by handle they would leave a project whose every
// command fails. What the object is and how it goes, or nullopt for an
// object of the drawing.
std::optional<std::string> ProjectObject(host::Document& document,
                                         const host::Entity& entity) {
  const std::optional<core::Record> project = core::FindProjectRecord(document);
  if (!project) return std::nullopt;
  const std::string kept =
      "; the project cannot work without it, and no command removes it";
  if (Names(project->Text(core::ProjectField::kMaterialsLibrary), entity))
    return "the marker of the project's materials library" + kept;
  if (Names(project->Text(core::ProjectField::kSizesLibrary), entity))
    return "the marker of the project's section-sizes library" + kept;
  const std::vector<std::string> view_markers =
      viewstyle::StyleField::Parse(
          project->Text(core::ProjectField::kViewStyles))
          .markers;
  for (const std::string& marker : view_markers)
    if (Names(marker, entity)) {
      std::string name;
      try {
        name = " \"" +
               viewstyle::StyleNameOf(
                   viewstyle::ReadMarkerSettings(document, marker)) +
               "\"";
      } catch (const Error&) {
        // A damaged marker is still the project's.
      }
      return "the marker of the view style" + name +
             "; view styles stay with the project (kestrana style list shows "
             "them), and no command removes one";
    }
  for (const std::string& marker :
       core::ListEntries(project->Text(core::ProjectField::kProfileStyles)))
    if (Names(marker, entity)) {
      std::string name;
      try {
        for (const profile::StyleMarker& style :
             profile::ReadStyleMarkers(document))
          if (style.marker->ObjectID() == entity.ObjectID())
            name = " \"" + style.name + "\"";
      } catch (const Error&) {
        // A damaged marker is still the project's.
      }
      return "the marker of the profile style" + name +
             "; remove the style with kestrana profile style delete";
    }
  return std::nullopt;
}

std::vector<host::Entity*> Chosen(host::Document& document,
                                  const EraseOptions& options) {
  std::vector<host::Entity*> chosen;
  if (!options.pipes.empty() || !options.nodes.empty()) {
    if (!options.network)
      throw OptionError("--pipes and --nodes need the --network they are in");
    const std::string network = RequireNetwork(document, *options.network);
    for (const std::string& label : options.pipes)
      chosen.push_back(
          &FindElement(document, network, ElementKind::kPipe, label));
    for (const std::string& label : options.nodes)
      chosen.push_back(
          &FindElement(document, network, ElementKind::kNode, label));
  }
  for (const std::string& handle : options.handles) {
    host::Entity& entity = EntityOfHandle(document, handle);
    if (std::optional<std::string> what = ProjectObject(document, entity))
      throw RefusedError("the handle " + entity.Handle() + " is " + *what);
    chosen.push_back(&entity);
  }
  if (chosen.empty())
    throw OptionError("name what to erase with --pipes, --nodes or --handles");
  return chosen;
}

}  // namespace

EraseResult Erase(host::Document& document, const EraseOptions& options) {
  std::vector<host::Entity*> chosen = Chosen(document, options);
  core::UnlockedLayers unlocked(document);
  EraseResult result;
  result.chosen = static_cast<int>(
      std::set<host::Entity*>(chosen.begin(), chosen.end()).size());
  result.erased = events::EraseWithReactions(document, chosen);
  return result;
}

}  // namespace kestrana::commands
