// kestrana style export: a view style as a style file.
#include <ostream>

#include "cli/command.h"
#include "cli/files.h"
#include "cli/session.h"
#include "commands/styles.h"
#include "memhost/document.h"

namespace kestrana::cli {

namespace {

int RunStyleExport(const std::vector<std::string>& args, Io& io) {
  Args a(args, {}, {"output"});
  a.ExpectPositionals(2);
  const std::string& drawing = a.Drawing();
  const commands::StyleOptions options{a.Positional(1, "the view style name")};
  const std::optional<std::string> output = a.Output();
  const std::string text =
      commands::ExportStyle(*OpenProjectDrawing(drawing), options).text;
  if (output) {
    WriteOutput(*output, text);
    io.out << "wrote view style \"" << options.name << "\" to " << *output
           << "\n";
  } else {
    io.out << text;
  }
  return 0;
}

Registrar style_export_command(
    {"style export", "write a view style as a style file",
     "Usage: kestrana style export DRAWING NAME [-o FILE]\n\n"
     "Writes every setting of the view style NAME in the style file form\n"
     "(docs/view-style-file.md), to FILE or to standard output.\n"
     "`kestrana style create OTHER.dxf NAME --from FILE` makes the same\n"
     "style in another drawing.\n\n"
     "  -o, --output FILE   write the style file to FILE\n",
     RunStyleExport});

}  // namespace

}  // namespace kestrana::cli
