// kestrana pipe reverse: pipes turned round, as a user does with sewers drawn
// against the flow.
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
  const commands::ReverseOptions options{a.Network(),
                                         a.RequiredNames("labels")};
  const commands::ReverseResult r =
      EditProject(a, commands::ReversePipes, options);
  io.out << "reversed " << r.pipes << (r.pipes == 1 ? " pipe" : " pipes")
         << " of " << options.network << "\nwrote " << a.Written() << "\n";
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
