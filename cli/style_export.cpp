// kestrana style export: a view style as a style file.
#include "cli/command.h"
#include "cli/project.h"
#include "cli/styles.h"
#include "dxf/io.h"

namespace kestrana::cli {

std::string StyleExport(const StyleExportOptions& options) {
  std::string text =
      StyleText(*OpenProjectDrawing(options.drawing), options.name);
  if (options.output) dxf::WriteFileAtomically(*options.output, text);
  return text;
}

namespace {

int RunStyleExport(const std::vector<std::string>& args, Io& io) {
  Args a(args, {}, {"output"});
  a.ExpectPositionals(2);
  StyleExportOptions options{a.Positional(0, "the drawing (DRAWING.dxf)"),
                             a.Positional(1, "the view style name"),
                             a.Option("output")};
  std::string text = StyleExport(options);
  if (options.output)
    io.out << "wrote view style \"" << options.name << "\" to "
           << *options.output << "\n";
  else
    io.out << text;
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
