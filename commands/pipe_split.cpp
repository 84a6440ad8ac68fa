#include "commands/pipes.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "commands/pipe_crossings.h"
#include "core/general.h"
#include "core/guards.h"
#include "editing/editing.h"
#include "host/host.h"
#include "memhost/document.h"

namespace kestrana::commands {

using editing::Editing;

namespace {

host::Point3 NearestOnLine(const std::vector<double>& xy,
                           const host::Point3& p) {
  host::Point3 best = p;
  double best_distance = std::numeric_limits<double>::infinity();
  for (size_t i = 0; i + 3 < xy.size(); i += 2) {
    const double ax = xy[i], ay = xy[i + 1];
    const double dx = xy[i + 2] - ax, dy = xy[i + 3] - ay;
    const double length2 = dx * dx + dy * dy;
    double t = length2 > 0 ? ((p.x - ax) * dx + (p.y - ay) * dy) / length2 : 0;
    t = std::clamp(t, 0.0, 1.0);
    const host::Point3 q{ax + t * dx, ay + t * dy, p.z};
    const double distance = std::hypot(p.x - q.x, p.y - q.y);
    if (distance < best_distance) best = q, best_distance = distance;
  }
  return best;
}

}  // namespace

SplitResult SplitPipe(memhost::MemDocument& document,
                      const SplitOptions& typed) {
  const SplitOptions options = WithStoredNetwork(document, typed);
  RequireNetwork(document, options.network);
  host::Entity& chosen =
      FindElement(document, options.network, ElementKind::kPipe, options.label);
  // A point the prompt would refuse is refused here with its message.
  const host::Point3 picked{options.x, options.y, 0};
  switch (core::General::PointIsOnPolyline(
      picked, host::As<host::LwPolyline>(chosen))) {
    case 0:
      throw RefusedError(editing::kPointOffPipeMessage);
    case 1:
      throw RefusedError(editing::kPointAtPipeEndMessage);
    default:
      break;
  }
  // Taken onto the line, as the editor's nearest-point snap picks it: a
  // point typed a hair beside the pipe would bend both parts away from the
  // old line, and crossings on it would no longer lie on the part they
  // belong to.
  const host::Point3 at =
      NearestOnLine(host::As<host::LwPolyline>(chosen).Coordinates(), picked);
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
  CrossNewPipes(document, {first, second});
  // Low and high points around the new node, as after any edit.
  host::SelectionSet& touched =
      core::General::InitializeSelectionSet(document, "SetNodesForLowHigh");
  touched.AddItems({node});
  AnalyseLowHighAfterEdit(document, options.network, touched);
  return {ElementLabel(*first), ElementLabel(*second), ElementLabel(*node)};
}

}  // namespace kestrana::commands
