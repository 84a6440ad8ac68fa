#include "commands/pipes.h"
#include "core/general.h"
#include "core/guards.h"
#include "editing/editing.h"
#include "host/host.h"
#include "memhost/document.h"

namespace kestrana::commands {

using editing::Editing;

SplitResult SplitPipe(memhost::MemDocument& document,
                      const SplitOptions& typed) {
  const SplitOptions options = WithStoredNetwork(document, typed);
  RequireNetwork(document, options.network);
  host::Entity& chosen =
      FindElement(document, options.network, ElementKind::kPipe, options.label);
  const host::Point3 at{options.x, options.y, 0};
  // A point the prompt would refuse is refused here with its message.
  switch (core::General::PointIsOnPolyline(
      at, host::As<host::LwPolyline>(chosen))) {
    case 0:
      throw RefusedError(editing::kPointOffPipeMessage);
    case 1:
      throw RefusedError(editing::kPointAtPipeEndMessage);
    default:
      break;
  }
  document.GetSession().Push(memhost::Input::EntityAt(chosen.ObjectID(), at));
  document.GetSession().Push(memhost::Input::PointAt(at.x, at.y));
  host::Entity* pipe = nullptr;
  host::Point3 point;
  if (!Editing::GetSplitPipeAndPoint(document, pipe, point))
    throw RefusedError("the split was cancelled");

  core::UnlockedLayers unlocked(document);
  host::LwPolyline *first = nullptr, *second = nullptr;
  host::BlockReference* node = nullptr;
  Editing::CreateSplitEntities(document, *pipe, point, first, second, node);
  Editing::AssignSplitXdata(document, *pipe, point, *first, *second, *node);
  Editing::UpdateLibrariesAfterSplitting(document, *pipe);
  Editing::UpdateCrossingsAfterSplitting(document, *pipe, *first, *second);
  Editing::UpdateProfilesAfterSplitting(document, *pipe, *first, *second);
  Editing::DeleteSplitPipe(document, *pipe);
  // Low and high points around the new node, as after any edit.
  host::SelectionSet& touched =
      core::General::InitializeSelectionSet(document, "SetNodesForLowHigh");
  touched.AddItems({node});
  AnalyseLowHighAfterEdit(document, options.network, touched);
  return {ElementLabel(*first), ElementLabel(*second), ElementLabel(*node)};
}

}  // namespace kestrana::commands
