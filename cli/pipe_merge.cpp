// kestrana pipe merge: a run of pipes becomes one pipe.
#include <ostream>

#include "cli/command.h"
#include "cli/session.h"
#include "commands/pipes.h"
#include "memhost/document.h"

namespace kestrana::cli {

namespace {

int Run(const std::vector<std::string>& args, Io& io) {
  Args a(args, {}, {"network", "labels", "output"});
  a.ExpectPositionals(1);
  a.Drawing();
  const commands::MergeOptions options{a.Network(), a.RequiredNames("labels")};
  const commands::MergeResult r = EditProject(a, commands::MergePipes, options);
  io.out << "merged " << r.pipes << " pipes of " << options.network << " into "
         << r.merged << "\nwrote " << a.Written() << "\n";
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
