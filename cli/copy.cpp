// kestrana copy: network elements copied and made elements of their own, as
// the add-on does after the drawing program's copy command.
#include <ostream>

#include "cli/command.h"
#include "cli/session.h"
#include "commands/copy_erase.h"
#include "memhost/document.h"

namespace kestrana::cli {

namespace {

int Run(const std::vector<std::string>& args, Io& io) {
  Args a(args, {}, {"network", "pipes", "nodes", "by", "output"});
  a.ExpectPositionals(1);
  a.Drawing();
  commands::CopyOptions options{a.Network(), a.Names("pipes"),
                                a.Names("nodes")};
  std::tie(options.dx, options.dy) = a.RequiredPoint("by", "DX,DY");
  const commands::CopyResult r = EditProject(a, commands::Copy, options);
  io.out << "copied into";
  for (const std::string& label : r.labels) io.out << " " << label;
  io.out << "\nwrote " << a.Written() << "\n";
  return 0;
}

Registrar copy_command(
    {"copy", "copy pipes and nodes; the copies become elements of their own",
     "Usage: kestrana copy DRAWING --network N [--pipes L,L,...]\n"
     "         [--nodes L,L,...] --by DX,DY [-o OUT]\n\n"
     "Copies the named pipes and nodes by the offset and makes the copies\n"
     "elements of their own, as the add-on does after a copy: labels that\n"
     "are taken get \"New \" in front, the copies link only to each other (so\n"
     "a pipe is copied only together with the nodes at its ends), and\n"
     "they are annotated, counted in the libraries, crossed with the other\n"
     "networks and, in a pressure network, analysed for low and high\n"
     "points.\n\n"
     "  --network N        the elements' network\n"
     "  --pipes L,L,...    pipes by label\n"
     "  --nodes L,L,...    nodes by label\n"
     "  --by DX,DY         the offset of the copies\n"
     "  -o, --output OUT   write to OUT instead of DRAWING\n",
     Run});

}  // namespace
}  // namespace kestrana::cli
