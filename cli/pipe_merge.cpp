// kestrana pipe merge: a run of pipes becomes one pipe.
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

// The steps of the add-on's merge command, in its order; answers the
// merged pipe's label.
std::string MergeInDocument(memhost::MemDocument& document,
                            const PipeLabelsOptions& options) {
  AnswerWithPipes(document, options);
  host::SelectionSet& pipes = Editing::GetPipesToMerge(document);
  if (pipes.Count() < 2) {
    const std::vector<std::string> shown = document.GetSession().Messages();
    throw CommandError(shown.empty() ? "choose at least two pipes to merge"
                                     : shown.back());
  }
  const std::vector<std::string> locked =
      core::General::UnlockAllLayers(document);
  std::vector<host::Entity*> sequence;
  std::string crossing_labels, crossing_ids;
  host::LwPolyline& merged = Editing::CreateMergedPipe(
      document, pipes, sequence, crossing_labels, crossing_ids);
  host::Entity *first = nullptr, *last = nullptr;
  std::string start_label, end_label, type, network;
  host::SelectionSet& nodes =
      core::General::InitializeSelectionSet(document, "SetNodesForLowHigh");
  Editing::AssignMergedXdata(document, merged, sequence, crossing_labels,
                             crossing_ids, first, last, start_label, end_label,
                             type, network, nodes);
  Editing::UpdateLibrariesAfterMerging(document, *first, pipes.Count());
  Editing::UpdateCrossingsAfterMerging(document, crossing_labels, crossing_ids,
                                       merged, pipes);
  Editing::UpdateProfilesAfterMerging(document, merged, pipes);
  Editing::DeleteOldMergedPipes(document, pipes, start_label, end_label);
  AnalyseLowHighAfterEdit(document, network, nodes);
  core::General::RestoreLockedLayers(document, locked);
  return ElementLabel(merged);
}

int Run(const std::vector<std::string>& args, Io& io) {
  const PipeLabelsOptions options = ParsePipeLabels(args);
  std::string merged;
  EditProjectDrawing(options.drawing, options.output,
                     [&](memhost::MemDocument& document) {
                       merged = MergeInDocument(document, options);
                     });
  io.out << "merged " << options.labels.size() << " pipes of "
         << options.network << " into " << merged << "\nwrote "
         << options.output.value_or(options.drawing) << "\n";
  return 0;
}

Registrar pipe_merge_command(
    {"pipe merge", "merge a run of pipes into one pipe",
     "Usage: kestrana pipe merge DRAWING --network N --labels L,L,... "
     "[-o OUT]\n\n"
     "Answers \"Select Pipes to Merge:\" with the pipes, which must form\n"
     "one unbranched run of one network, material and size, and replaces\n"
     "them by one pipe: it starts at the run's end with the higher start\n"
     "invert, keeps that pipe's label and data, takes the run's end nodes\n"
     "and inverts, its crossings and profiles; the nodes inside the run go\n"
     "with the old pipes and their annotations. A selection that is not\n"
     "one run is refused with the system's message.\n\n"
     "  --network N        the pipes' network\n"
     "  --labels L,L,...   the pipes by label, two or more\n"
     "  -o, --output OUT   write to OUT instead of DRAWING\n",
     Run});

}  // namespace
}  // namespace kestrana::cli
