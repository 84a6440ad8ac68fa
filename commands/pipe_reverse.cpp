#include "commands/pipes.h"
#include "core/guards.h"
#include "editing/editing.h"
#include "host/host.h"
#include "memhost/document.h"

namespace kestrana::commands {

ReverseResult ReversePipes(memhost::MemDocument& document,
                           const ReverseOptions& options) {
  AnswerWithPipes(document, options);
  host::SelectionSet& pipes = editing::Editing::GetPipesToReverse(document);
  const int reversed = pipes.Count();
  core::UnlockedLayers unlocked(document);
  editing::Editing::ReverseSelectedPipes(document, pipes);
  return {reversed};
}

}  // namespace kestrana::commands
