// kestrana network show|hide: a network's elements and annotations on or
// off, kept in the project's visibility text.
#include "cli/command.h"
#include "cli/session.h"
#include "commands/networks.h"
#include "memhost/document.h"

namespace kestrana::cli {

namespace {

int Run(const std::vector<std::string>& args, Io& io, bool shown) {
  Args a(args, {}, {"output"});
  a.ExpectPositionals(2);
  a.Drawing();
  const commands::NetworkShownOptions options{
      a.Positional(1, "the network name"), shown};
  EditProject(a, commands::SetNetworkShown, options);
  io.out << "network \"" << options.name << "\" is "
         << (shown ? "shown" : "hidden") << " in " << a.Written() << "\n";
  return 0;
}

Registrar network_show_command(
    {"network show", "make a hidden network visible again",
     "Usage: kestrana network show DRAWING NAME [-o OUT]\n\n"
     "Makes the pipes, nodes, annotations and arrows of the network NAME\n"
     "visible and records it in the project's network visibility.\n\n"
     "  -o, --output OUT   write to OUT instead of DRAWING\n",
     [](const std::vector<std::string>& args, Io& io) {
       return Run(args, io, true);
     }});

Registrar network_hide_command(
    {"network hide", "hide a network with its annotations",
     "Usage: kestrana network hide DRAWING NAME [-o OUT]\n\n"
     "Makes the pipes, nodes, annotations and arrows of the network NAME\n"
     "invisible and records it in the project's network visibility, so\n"
     "that `kestrana style apply` keeps it hidden.\n\n"
     "  -o, --output OUT   write to OUT instead of DRAWING\n",
     [](const std::vector<std::string>& args, Io& io) {
       return Run(args, io, false);
     }});

}  // namespace

}  // namespace kestrana::cli
