// kestrana style show: every setting of one view style.
#include <sstream>

#include "cli/command.h"
#include "cli/json.h"
#include "cli/session.h"
#include "commands/styles.h"
#include "core/text.h"
#include "viewstyle/style_text.h"

namespace kestrana::cli {

namespace {

using viewstyle::ItemForm;
using viewstyle::ViewStyleField;

// One item as a JSON object; an item the style file cannot express is
// shown as the record holds it.
void ItemJson(JsonWriter& json, const viewstyle::ItemInfo& item,
              const std::string& text) {
  viewstyle::ItemSettings s;
  try {
    s = viewstyle::ReadItem(item, text);
  } catch (const viewstyle::StyleTextError&) {
    json.BeginObject().Key("raw").String(text).EndObject();
    return;
  }
  json.BeginObject();
  json.Key("show").Bool(s.show);
  if (item.form == ItemForm::kText || item.form == ItemForm::kNumber ||
      item.form == ItemForm::kSlope) {
    json.Key("prefix").String(s.prefix);
    json.Key("suffix").String(s.suffix);
  }
  if (!s.precision.empty()) {
    json.Key("precision").Real(core::NumericValue(s.precision));
    json.Key("decimals").Real(core::NumericValue(s.decimals));
  }
  if (item.form == ItemForm::kSlope)
    json.Key("notation").String(viewstyle::NotationName(s.notation));
  json.EndObject();
}

std::string StyleJson(const commands::StyleShowResult& style) {
  auto setting = [&](ViewStyleField field) {
    return style.settings[static_cast<int>(field)];
  };
  JsonWriter json;
  json.BeginObject();
  json.Key("name").String(style.name);
  json.Key("active").Bool(style.active);
  json.Key("text_style").String(setting(ViewStyleField::kTextStyle));
  json.Key("text_height")
      .Real(core::NumericValue(setting(ViewStyleField::kTextHeight)));
  json.Key("items").BeginObject();
  std::optional<viewstyle::ElementKind> kind;
  for (const viewstyle::ItemInfo& item : viewstyle::Items()) {
    if (kind != item.kind) {
      if (kind) json.EndObject();
      json.Key(SnakeCase(viewstyle::KindName(item.kind))).BeginObject();
      kind = item.kind;
    }
    json.Key(SnakeCase(item.name));
    ItemJson(json, item, style.settings[item.field]);
  }
  if (kind) json.EndObject();
  json.EndObject().EndObject();
  return json.Text();
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
