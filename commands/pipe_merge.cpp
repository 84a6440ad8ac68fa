#include <string>
#include <vector>

#include "commands/pipes.h"

#include "commands/pipe_crossings.h"
#include "core/general.h"
#include "core/guards.h"
#include "editing/editing.h"
#include "host/host.h"
#include "memhost/document.h"

namespace kestrana::commands {

using editing::Editing;

// The steps of the add-on's merge command, in its order.
MergeResult MergePipes(memhost::MemDocument& document,
                       const MergeOptions& options) {
  AnswerWithPipes(document, options);
  host::SelectionSet& pipes = Editing::GetPipesToMerge(document);
  if (pipes.Count() < 2) {
    const std::vector<std::string> shown = document.GetSession().Messages();
    throw RefusedError(shown.empty() ? "choose at least two pipes to merge"
                                     : shown.back());
  }
  core::UnlockedLayers unlocked(document);
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
  DropRepeatedCrossings(document, merged);
  Editing::UpdateProfilesAfterMerging(document, merged, pipes);
  Editing::DeleteOldMergedPipes(document, pipes, start_label, end_label);
  AnalyseLowHighAfterEdit(document, network, nodes);
  return {static_cast<int>(options.labels.size()), ElementLabel(merged)};
}

}  // namespace kestrana::commands
