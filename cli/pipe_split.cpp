// kestrana pipe split: a pipe cut in two at a point, with a new node there.
#include <ostream>

#include "cli/command.h"
#include "cli/session.h"
#include "commands/pipes.h"
#include "memhost/document.h"

namespace kestrana::cli {

namespace {

int Run(const std::vector<std::string>& args, Io& io) {
  Args a(args, {}, {"network", "label", "at", "output"});
  a.ExpectPositionals(1);
  a.Drawing();
  commands::SplitOptions options{a.Network(), a.Required("label")};
  std::tie(options.x, options.y) = a.RequiredPoint("at", "X,Y");
  const commands::SplitResult r = EditProject(a, commands::SplitPipe, options);
  io.out << "split " << options.label << " of " << options.network << " into "
         << r.first << " and " << r.second << " at the new node " << r.node
         << "\nwrote " << a.Written() << "\n";
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
