// kestrana style activate: the style new annotations are drawn with.
#include "cli/command.h"
#include "cli/project.h"
#include "cli/styles.h"
#include "viewstyle/project_styles.h"
#include "viewstyle/view_style.h"

namespace kestrana::cli {

void ActivateStyle(host::Document& document, const std::string& name) {
  FindStyle(document, name);
  viewstyle::ViewStyle::UpdateMoSpaceXdataForViewStyle(
      document, name, viewstyle::StyleField::Read(document).visibility);
}

std::string StyleActivate(const StyleActivateOptions& options) {
  EditProjectDrawing(options.drawing, options.output,
                     [&](memhost::MemDocument& document) {
                       ActivateStyle(document, options.name);
                     });
  return options.output.value_or(options.drawing);
}

namespace {

int RunStyleActivate(const std::vector<std::string>& args, Io& io) {
  Args a(args, {}, {"output"});
  a.ExpectPositionals(2);
  StyleActivateOptions options{a.Positional(0, "the drawing (DRAWING.dxf)"),
                               a.Option("output"),
                               a.Positional(1, "the view style name")};
  std::string written = StyleActivate(options);
  io.out << "view style \"" << options.name << "\" is active in " << written
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
