// kestrana erase: erasing network elements and what hangs on them, with the
// records of everything that stays repaired, as the add-on's reactions do
// when a user erases in the editor.
#include <ostream>

#include "cli/command.h"
#include "cli/session.h"
#include "commands/copy_erase.h"
#include "memhost/document.h"

namespace kestrana::cli {

namespace {

int Run(const std::vector<std::string>& args, Io& io) {
  Args a(args, {}, {"network", "pipes", "nodes", "handles", "output"});
  a.ExpectPositionals(1);
  a.Drawing();
  const commands::EraseOptions options{a.Option("network"), a.Names("pipes"),
                                       a.Names("nodes"), a.Names("handles")};
  const commands::EraseResult r = EditProject(a, commands::Erase, options);
  io.out << "erased " << r.chosen << " chosen and " << r.erased - r.chosen
         << " dependent objects\nwrote " << a.Written() << "\n";
  return 0;
}

Registrar erase_command(
    {"erase", "erase elements and what hangs on them, repairing the rest",
     "Usage: kestrana erase DRAWING [--network N --pipes L,L,...]\n"
     "         [--network N --nodes L,L,...] [--handles H,H,...] [-o OUT]\n\n"
     "Erases the named pipes, nodes or other objects the way the add-on\n"
     "reacts when a user erases them in the editor: a pipe leaves its nodes\n"
     "(their sumps follow the pipes that remain), takes its annotation,\n"
     "arrow and crossings with it, cuts its profiles and is counted no\n"
     "more in the libraries; a node takes its pipes, annotation and low or\n"
     "high marker with it; an annotation, arrow, crossing or profile is\n"
     "forgotten by what pointed at it. The low and high points around the\n"
     "nodes touched are analysed again.\n\n"
     "  --network N         the network of the labels\n"
     "  --pipes L,L,...     pipes by label\n"
     "  --nodes L,L,...     nodes by label\n"
     "  --handles H,H,...   any entities, by their DXF handles\n"
     "  -o, --output OUT    write to OUT instead of DRAWING\n",
     Run});

}  // namespace
}  // namespace kestrana::cli
