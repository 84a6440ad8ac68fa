// kestrana pipe reverse: pipes turned round, as a user does with sewers drawn
// against the flow.
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

void ReverseInDocument(memhost::MemDocument& document,
                       const PipeLabelsOptions& options) {
  AnswerWithPipes(document, options);
  host::SelectionSet& pipes = editing::Editing::GetPipesToReverse(document);
  const std::vector<std::string> locked =
      core::General::UnlockAllLayers(document);
  editing::Editing::ReverseSelectedPipes(document, pipes);
  core::General::RestoreLockedLayers(document, locked);
}

int Run(const std::vector<std::string>& args, Io& io) {
  const PipeLabelsOptions options = ParsePipeLabels(args);
  EditProjectDrawing(options.drawing, options.output,
                     [&](memhost::MemDocument& document) {
                       ReverseInDocument(document, options);
                     });
  io.out << "reversed " << options.labels.size()
         << (options.labels.size() == 1 ? " pipe" : " pipes") << " of "
         << options.network << "\nwrote "
         << options.output.value_or(options.drawing) << "\n";
  return 0;
}

Registrar pipe_reverse_command(
    {"pipe reverse", "turn pipes round (a sewer's flow direction)",
     "Usage: kestrana pipe reverse DRAWING --network N --labels L,L,... "
     "[-o OUT]\n\n"
     "Answers \"Select Pipes to Reverse:\" with the pipes and turns each\n"
     "round: its vertices run the other way, its start and end nodes and\n"
     "inverts swap, its nodes list it on their other side, its profiles\n"
     "learn of it and its annotation and arrow are redrawn. The levels of\n"
     "the nodes are left as they are; set them with `node set`.\n\n"
     "  --network N        the pipes' network\n"
     "  --labels L,L,...   the pipes by label\n"
     "  -o, --output OUT   write to OUT instead of DRAWING\n",
     Run});

}  // namespace
}  // namespace kestrana::cli
