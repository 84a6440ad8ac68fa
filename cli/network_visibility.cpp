// kestrana network show|hide: a network's elements and annotations on or
// off, kept in the project's visibility text.
#include "cli/command.h"
#include "cli/project.h"
#include "cli/styles.h"
#include "core/general.h"
#include "viewstyle/project_styles.h"

namespace kestrana::cli {

void SetNetworkShown(host::Document& document, const std::string& network,
                     bool shown) {
  if (!core::General::CheckNetworkExists(document, network))
    throw CommandError("There is no network named \"" + network + "\"");
  std::vector<std::string> locked = core::General::UnlockAllLayers(document);
  viewstyle::SetNetworkVisibility(document, network, shown);
  core::General::RestoreLockedLayers(document, locked);
}

std::string NetworkVisibility(const NetworkVisibilityOptions& options) {
  EditProjectDrawing(options.drawing, options.output,
                     [&](memhost::MemDocument& document) {
                       SetNetworkShown(document, options.name, options.shown);
                     });
  return options.output.value_or(options.drawing);
}

namespace {

int Run(const std::vector<std::string>& args, Io& io, bool shown) {
  Args a(args, {}, {"output"});
  a.ExpectPositionals(2);
  NetworkVisibilityOptions options{a.Positional(0, "the drawing (DRAWING.dxf)"),
                                   a.Option("output"),
                                   a.Positional(1, "the network name"), shown};
  std::string written = NetworkVisibility(options);
  io.out << "network \"" << options.name << "\" is "
         << (shown ? "shown" : "hidden") << " in " << written << "\n";
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
