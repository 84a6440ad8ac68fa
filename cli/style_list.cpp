// kestrana style list: the view styles stored in a drawing.
#include <algorithm>
#include <sstream>

#include "cli/command.h"
#include "cli/info.h"
#include "cli/json.h"
#include "cli/session.h"
#include "commands/styles.h"
#include "core/project_record.h"
#include "core/text.h"

namespace kestrana::cli {

namespace {

using commands::StyleSummary;

std::string StylesTable(const std::vector<StyleSummary>& styles) {
  if (styles.empty()) return "The drawing holds no view styles.\n";
  size_t width = 4, style_width = 10;
  for (const StyleSummary& s : styles) {
    width = std::max(width, s.name.size());
    style_width = std::max(style_width, s.text_style.size());
  }
  auto pad = [](const std::string& text, size_t to) {
    return text + std::string(to > text.size() ? to - text.size() : 0, ' ');
  };
  std::ostringstream out;
  out << "  " << pad("NAME", width) << "  " << pad("TEXT STYLE", style_width)
      << "  HEIGHT\n";
  for (const StyleSummary& s : styles)
    out << (s.active ? "* " : "  ") << pad(s.name, width) << "  "
        << pad(s.text_style, style_width) << "  " << s.text_height << "\n";
  return out.str();
}

std::string StylesJson(const std::vector<StyleSummary>& styles) {
  JsonWriter json;
  json.BeginArray();
  for (const StyleSummary& s : styles) {
    json.BeginObject();
    json.Key("name").String(s.name);
    json.Key("active").Bool(s.active);
    json.Key("text_style").String(s.text_style);
    json.Key("text_height").Real(core::NumericValue(s.text_height));
    json.EndObject();
  }
  json.EndArray();
  return json.Text();
}

int RunStyleList(const std::vector<std::string>& args, Io& io) {
  Args a(args, {"json"}, {});
  a.ExpectPositionals(1);
  std::vector<StyleSummary> styles =
      commands::ListStyles(*OpenProjectDrawing(a.Drawing()));
  io.out << (a.Json() ? StylesJson(styles) : StylesTable(styles));
  return 0;
}

// `kestrana info` names the styles too.
InfoSectionRegistrar view_styles_info(
    [](memhost::MemDocument& document) -> std::optional<InfoSection> {
      if (!core::FindProjectRecord(document)) return std::nullopt;
      InfoSection section{"view styles", {}};
      const commands::StylesSummary styles = commands::DescribeStyles(document);
      if (styles.error) {
        section.fields.push_back({"error", *styles.error});
        return section;
      }
      std::string names;
      for (const std::string& name : styles.names)
        names += (names.empty() ? "" : ", ") + name;
      section.fields.push_back({"active", styles.active});
      section.fields.push_back(
          {"count", std::to_string(styles.names.size()), true});
      if (!styles.names.empty()) section.fields.push_back({"names", names});
      return section;
    });

Registrar style_list_command(
    {"style list", "the view styles of a project",
     "Usage: kestrana style list DRAWING [--json]\n\n"
     "Lists the view styles stored in DRAWING in the order the project\n"
     "record names them, with their text style and text height; the\n"
     "active style is marked with \"*\".\n\n"
     "  --json   print a JSON array instead of a table\n",
     RunStyleList});

}  // namespace

}  // namespace kestrana::cli
