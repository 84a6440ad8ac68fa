// kestrana style activate: the style new annotations are drawn with.
#include <ostream>

#include "cli/command.h"
#include "cli/session.h"
#include "commands/styles.h"
#include "memhost/document.h"

namespace kestrana::cli {

namespace {

int RunStyleActivate(const std::vector<std::string>& args, Io& io) {
  Args a(args, {}, {"output"});
  a.ExpectPositionals(2);
  a.Drawing();
  const commands::StyleOptions options{a.Positional(1, "the view style name")};
  const std::string name = EditProject(a, commands::ActivateStyle, options);
  io.out << "view style \"" << name << "\" is active in " << a.Written()
         << " (redraw the annotations with `kestrana style apply`)\n";
  return 0;
}

Registrar style_activate_command(
    {"style activate", "make a view style the active one",
     "Usage: kestrana style activate DRAWING NAME [-o OUT]\n\n"
     "Makes the stored view style NAME the project's active style: new\n"
     "elements are annotated with it. Annotations already drawn keep\n"
     "their look until `kestrana style apply` redraws them.\n\n"
     "  -o, --output OUT   write to OUT instead of DRAWING\n",
     RunStyleActivate});

}  // namespace

}  // namespace kestrana::cli
