// kestrana style create: a new view style from a style file.
#include <ostream>

#include "cli/command.h"
#include "cli/files.h"
#include "cli/session.h"
#include "commands/styles.h"
#include "memhost/document.h"

namespace kestrana::cli {

namespace {

int RunStyleCreate(const std::vector<std::string>& args, Io& io) {
  Args a(args, {}, {"from", "output"});
  a.ExpectPositionals(2);
  a.Drawing();
  const commands::StyleCreateOptions options{
      a.Positional(1, "the view style name"),
      ReadInput(a.Required("from"), InputKind::kViewStyle)};
  EditProject(a, commands::CreateStyle, options);
  io.out << "created view style \"" << options.name << "\" in " << a.Written()
         << "\n";
  return 0;
}

Registrar style_create_command(
    {"style create", "add a view style described by a style file",
     "Usage: kestrana style create DRAWING NAME --from FILE [-o OUT]\n\n"
     "Stores a new view style NAME in DRAWING with the settings FILE\n"
     "describes (the form `kestrana style export` writes; see\n"
     "docs/view-style-file.md). Every item must be given; an unknown or\n"
     "malformed item is reported with its line. The name must be new and\n"
     "cannot hold : ; \" / \\ > < * | ? , = and the text style must exist\n"
     "in the drawing. The style is not made active (see style activate).\n\n"
     "  --from FILE        the style file\n"
     "  -o, --output OUT   write to OUT instead of DRAWING\n",
     RunStyleCreate});

}  // namespace

}  // namespace kestrana::cli
