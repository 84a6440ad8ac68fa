// kestrana style show: every setting of one view style.
#include <sstream>

#include "cli/command.h"
#include "cli/session.h"
#include "commands/styles.h"
#include "viewstyle/style_text.h"

namespace kestrana::cli {

namespace {

using viewstyle::ItemForm;
using viewstyle::ViewStyleField;

// One item as a JSON object; an item the style file cannot express is
// shown as the record holds it.
std::string ItemJson(const viewstyle::ItemInfo& item, const std::string& text) {
  viewstyle::ItemSettings s;
  try {
    s = viewstyle::ReadItem(item, text);
  } catch (const viewstyle::StyleTextError&) {
    return "{\"raw\": " + JsonString(text) + "}";
  }
  std::ostringstream out;
  out << "{\"show\": " << (s.show ? "true" : "false");
  if (item.form == ItemForm::kText || item.form == ItemForm::kNumber ||
      item.form == ItemForm::kSlope)
    out << ", \"prefix\": " << JsonString(s.prefix)
        << ", \"suffix\": " << JsonString(s.suffix);
  if (!s.precision.empty())
    out << ", \"precision\": " << s.precision
        << ", \"decimals\": " << s.decimals;
  if (item.form == ItemForm::kSlope)
    out << ", \"notation\": "
        << JsonString(viewstyle::NotationName(s.notation));
  return out.str() + "}";
}

std::string StyleJson(const commands::StyleShowResult& style) {
  std::ostringstream out;
  out << "{\"name\": " << JsonString(style.name)
      << ", \"active\": " << (style.active ? "true" : "false")
      << ",\n \"text style\": "
      << JsonString(
             style.settings[static_cast<int>(ViewStyleField::kTextStyle)])
      << ", \"text height\": "
      << JsonString(
             style.settings[static_cast<int>(ViewStyleField::kTextHeight)])
      << ",\n \"items\": {";
  std::optional<viewstyle::ElementKind> kind;
  for (const viewstyle::ItemInfo& item : viewstyle::Items()) {
    if (kind != item.kind) {
      out << (kind ? "},\n  " : "\n  ")
          << JsonString(viewstyle::KindName(item.kind)) << ": {";
      kind = item.kind;
    } else {
      out << ", ";
    }
    out << JsonString(item.name) << ": "
        << ItemJson(item, style.settings[item.field]);
  }
  out << "}}}\n";
  return out.str();
}

int RunStyleShow(const std::vector<std::string>& args, Io& io) {
  Args a(args, {"json"}, {});
  a.ExpectPositionals(2);
  auto document = OpenProjectDrawing(a.Drawing());
  const commands::StyleOptions options{a.Positional(1, "the view style name")};
  const commands::StyleShowResult style =
      commands::ShowStyle(*document, options);
  if (a.Json()) {
    io.out << StyleJson(style);
    return 0;
  }
  io.out << "# view style " << JsonString(style.name)
         << (style.active ? " (active)" : "") << "\n"
         << commands::ExportStyle(*document, options).text;
  return 0;
}

Registrar style_show_command(
    {"style show", "every setting of a view style",
     "Usage: kestrana style show DRAWING NAME [--json]\n\n"
     "Prints the settings of the view style NAME: its text style and\n"
     "height and, for gravity pipes, pressure pipes, gravity nodes and\n"
     "pressure nodes, which values the annotations show with their\n"
     "prefixes, suffixes, decimals and slope notation. The text is the\n"
     "style file form (docs/view-style-file.md).\n\n"
     "  --json   print a JSON object instead\n",
     RunStyleShow});

}  // namespace

}  // namespace kestrana::cli
