// kestrana pipe split: a pipe cut in two at a point, with a new node there.
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "cli/command.h"
#include "cli/editing_support.h"
#include "cli/project.h"
#include "core/general.h"
#include "editing/editing.h"
#include "host/host.h"
#include "memhost/document.h"

namespace kestrana::cli {

namespace {

using editing::Editing;

struct PipeSplitOptions {
  std::string drawing;
  std::optional<std::string> output;
  std::string network;
  std::string label;
  double x = 0, y = 0;
};

struct PipeSplitResult {
  std::string first, second, node;
};

PipeSplitResult SplitInDocument(memhost::MemDocument& document,
                                const PipeSplitOptions& options) {
  RequireNetwork(document, options.network);
  host::Entity& chosen =
      FindElement(document, options.network, ElementKind::kPipe, options.label);
  const host::Point3 at{options.x, options.y, 0};
  // A point the prompt would refuse is refused here with its message.
  switch (core::General::PointIsOnPolyline(
      at, host::As<host::LwPolyline>(chosen))) {
    case 0:
      throw CommandError(editing::kPointOffPipeMessage);
    case 1:
      throw CommandError(editing::kPointAtPipeEndMessage);
    default:
      break;
  }
  document.GetSession().Push(memhost::Input::EntityAt(chosen.ObjectID(), at));
  document.GetSession().Push(memhost::Input::PointAt(at.x, at.y));
  host::Entity* pipe = nullptr;
  host::Point3 point;
  if (!Editing::GetSplitPipeAndPoint(document, pipe, point))
    throw CommandError("the split was cancelled");

  const std::vector<std::string> locked =
      core::General::UnlockAllLayers(document);
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
  core::General::RestoreLockedLayers(document, locked);
  return {ElementLabel(*first), ElementLabel(*second), ElementLabel(*node)};
}

int Run(const std::vector<std::string>& args, Io& io) {
  Args a(args, {}, {"network", "label", "at", "output"});
  a.ExpectPositionals(1);
  PipeSplitOptions options;
  options.drawing = a.Positional(0, "the drawing (DRAWING.dxf)");
  options.output = a.Option("output");
  options.network = a.Required("network");
  options.label = a.Required("label");
  const std::vector<std::string> at = SplitAtCommas(a.Required("at"));
  if (at.size() != 2) throw UsageError("--at takes X,Y");
  options.x = ParseReal(at[0], "--at");
  options.y = ParseReal(at[1], "--at");
  PipeSplitResult result;
  EditProjectDrawing(options.drawing, options.output,
                     [&](memhost::MemDocument& document) {
                       result = SplitInDocument(document, options);
                     });
  io.out << "split " << options.label << " of " << options.network << " into "
         << result.first << " and " << result.second << " at the new node "
         << result.node << "\nwrote "
         << options.output.value_or(options.drawing) << "\n";
  return 0;
}

Registrar pipe_split_command(
    {"pipe split", "cut a pipe in two at a point, with a new node there",
     "Usage: kestrana pipe split DRAWING --network N --label L --at X,Y "
     "[-o OUT]\n\n"
     "Answers \"Select pipe to split:\" with the pipe and \"Pick split "
     "point:\"\n"
     "with the point, which must lie on the pipe away from its ends. The\n"
     "part before the point keeps the pipe's label and data; the part after\n"
     "it and the new node take the next free labels. Inverts and ground\n"
     "levels at the point are interpolated along the pipe; crossings go to\n"
     "the part they lie on and profiles list both parts.\n\n"
     "  --network N        the pipe's network\n"
     "  --label L          the pipe\n"
     "  --at X,Y           the split point\n"
     "  -o, --output OUT   write to OUT instead of DRAWING\n",
     Run});

}  // namespace
}  // namespace kestrana::cli
