// kestrana style create: a new view style from a style file.
#include <fstream>
#include <sstream>

#include "cli/command.h"
#include "cli/project.h"
#include "cli/styles.h"
#include "core/general.h"
#include "host/host.h"
#include "viewstyle/project_styles.h"
#include "viewstyle/style_text.h"
#include "viewstyle/view_style.h"

namespace kestrana::cli {

namespace {

std::string ReadTextFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw CommandError("cannot read the style file '" + path + "'");
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

}  // namespace

void CreateStyle(host::Document& document, const std::string& name,
                 const std::string& style_text) {
  if (name.empty()) throw UsageError("the view style name is empty");
  if (core::General::CheckTextForBannedCharacters(name, 1))
    throw CommandError("The view style name \"" + name +
                       "\" contains a character that names cannot hold "
                       "(: ; \" / \\ > < * | ? , =)");
  if (viewstyle::FindViewStyle(viewstyle::ReadViewStyles(document), name))
    throw CommandError("A view style named \"" + name + "\" already exists");
  viewstyle::ViewStyleSettings style;
  try {
    style = viewstyle::ReadStyleText(style_text, name);
  } catch (const viewstyle::StyleTextError& e) {
    throw CommandError(std::string("style file: ") + e.what());
  }
  const std::string& text_style =
      style[static_cast<int>(viewstyle::ViewStyleField::kTextStyle)];
  if (!document.GetTextStyles().Find(text_style))
    throw CommandError("The drawing has no text style named \"" + text_style +
                       "\", which the style file names");
  std::vector<std::string> locked = core::General::UnlockAllLayers(document);
  viewstyle::ViewStyle::CreateViewStyle(document, style);
  core::General::RestoreLockedLayers(document, locked);
}

std::string StyleCreate(const StyleCreateOptions& options) {
  const std::string text = ReadTextFile(options.from);
  EditProjectDrawing(options.drawing, options.output,
                     [&](memhost::MemDocument& document) {
                       CreateStyle(document, options.name, text);
                     });
  return options.output.value_or(options.drawing);
}

namespace {

int RunStyleCreate(const std::vector<std::string>& args, Io& io) {
  Args a(args, {}, {"from", "output"});
  a.ExpectPositionals(2);
  StyleCreateOptions options{
      a.Positional(0, "the drawing (DRAWING.dxf)"), a.Option("output"),
      a.Positional(1, "the view style name"), a.Required("from")};
  std::string written = StyleCreate(options);
  io.out << "created view style \"" << options.name << "\" in " << written
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
