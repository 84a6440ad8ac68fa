// kestrana style apply: redraw annotations with the active view style.
#include <ostream>

#include "cli/command.h"
#include "cli/session.h"
#include "commands/styles.h"
#include "memhost/document.h"

namespace kestrana::cli {

namespace {

int RunStyleApply(const std::vector<std::string>& args, Io& io) {
  Args a(args, {}, {"network", "output"});
  a.ExpectPositionals(1);
  a.Drawing();
  const commands::StyleApplyOptions options{a.Option("network")};
  const commands::StyleApplyResult result =
      EditProject(a, commands::ApplyStyle, options);
  if (result.networks.empty()) io.out << "The project has no networks.\n";
  for (const commands::AppliedNetwork& n : result.networks)
    io.out << "applied view style \"" << result.style << "\" to \"" << n.network
           << "\": " << n.annotations << " annotations, " << n.arrows
           << " arrows\n";
  io.out << "wrote " << a.Written() << "\n";
  return 0;
}

Registrar style_apply_command(
    {"style apply", "redraw annotations with the active view style",
     "Usage: kestrana style apply DRAWING [--network NAME] [-o OUT]\n\n"
     "Rebuilds the annotation blocks for the active view style and draws\n"
     "the annotations and direction arrows of every network (or of NAME\n"
     "only) anew: the old ones are removed, so each pipe and node keeps\n"
     "exactly one annotation. Hidden networks stay hidden; locked layers\n"
     "stay locked.\n\n"
     "  --network NAME     redraw only this network\n"
     "  -o, --output OUT   write to OUT instead of DRAWING\n",
     RunStyleApply});

}  // namespace

}  // namespace kestrana::cli
