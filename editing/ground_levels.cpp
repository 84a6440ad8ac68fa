// Ground levels of whole networks from a terrain surface.
#include "editing/ground_levels.h"

#include "core/general.h"
#include "core/guards.h"
#include "core/lists.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/progress.h"
#include "core/references.h"
#include "editing/editing.h"
#include "editing/pipe_matching.h"
#include "host/host.h"
#include "profile/profile.h"
#include "viewstyle/view_style.h"

namespace kestrana::editing {

using core::General;
using core::NodeField;
using core::PipeField;

namespace {

// The surface of the civil document, reached as the host version says.
const host::Surface& FindSurface(host::Document& document,
                                 std::string_view surface_name) {
  host::Application& application = document.GetApplication();
  return application.GetInterfaceObject(General::GetAeccAppString(application))
      .ActiveDocument()
      .GetSurfaces()
      .Item(std::string(surface_name));
}

}  // namespace

GroundLevelUpdate GroundLevelsFromSurface(
    host::Document& document, const std::vector<std::string>& network_names,
    std::string_view surface_name) {
  GroundLevelUpdate update;
  if (network_names.empty() || network_names.front().empty()) return update;
  const host::Surface& surface = FindSurface(document, surface_name);
  // Our own rewrite of whole networks must not wake the editor reactions.
  core::EventsOff events_off(document);
  core::UnlockedLayers unlocked(document);

  std::vector<std::vector<host::Entity*>> nodes;
  size_t total = 0, done = 0;
  for (const std::string& network : network_names) {
    nodes.push_back(General::GetNetworkSet(document, network, 2).Entities());
    total += nodes.back().size();
  }
  std::string changed_pipes, changed_nodes;
  for (const std::vector<host::Entity*>& network_nodes : nodes) {
    for (host::Entity* node : network_nodes) {
      core::ReportProgress(core::kGroundLevelsStage, ++done, total);
      const host::Point3 at =
          host::As<host::BlockReference>(*node).InsertionPoint();
      double elevation = 0;
      try {
        elevation = surface.FindElevationAtXY(at.x, at.y);
      } catch (const host::HostError&) {
        // Outside the surface: the node keeps its ground level.
        update.outside.push_back(node);
        continue;
      }
      core::Record record = ReadNode(*node);
      record.SetReal(NodeField::kGroundLevel, elevation);
      record.Write(*node);
      update.updated.push_back(node);
      changed_nodes += core::IdListEntry(node->ObjectID());
      for (NodeField list :
           {NodeField::kPipesAtStartOID, NodeField::kPipesAtEndOID})
        for (const std::string& pipe : core::ReferenceValues(record.Text(list)))
          changed_pipes += pipe + ";";
    }
  }

  if (!changed_pipes.empty() || !changed_nodes.empty())
    viewstyle::ViewStyle::UpdateAnnotationsAfterEditing(
        document, changed_pipes + changed_nodes, false);
  for (const std::string& pipe_id : core::ListEntries(changed_pipes))
    for (const std::string& profile : core::ReferenceValues(
             ReadPipe(core::EntityFromIdText(document, pipe_id))
                 .Text(PipeField::kProfileOIDRefs)))
      profile::Profile::FlagProfileForUpdate(document, profile);
  return update;
}

void Editing::UpdateGroundLevelsFromSurface(
    host::Document& document, const std::vector<std::string>& ar_net_names,
    std::string_view surface_name) {
  GroundLevelsFromSurface(document, ar_net_names, surface_name);
}

}  // namespace kestrana::editing
