// kestrana style list: the view styles stored in a drawing.
#include <algorithm>
#include <sstream>

#include "cli/command.h"
#include "cli/info.h"
#include "cli/project.h"
#include "cli/styles.h"
#include "core/project_record.h"
#include "viewstyle/project_styles.h"

namespace kestrana::cli {

using viewstyle::ViewStyleField;

std::vector<StyleSummary> ListStyles(host::Document& document) {
  const std::string active = viewstyle::StyleField::Read(document).active;
  std::vector<StyleSummary> styles;
  for (const viewstyle::ViewStyleSettings& s :
       viewstyle::ReadViewStyles(document)) {
    std::string name = viewstyle::StyleNameOf(s);
    styles.push_back({name, name == active,
                      s[static_cast<int>(ViewStyleField::kTextStyle)],
                      s[static_cast<int>(ViewStyleField::kTextHeight)]});
  }
  return styles;
}

viewstyle::ViewStyleSettings FindStyle(host::Document& document,
                                       const std::string& name) {
  std::vector<viewstyle::ViewStyleSettings> styles =
      viewstyle::ReadViewStyles(document);
  if (std::optional<size_t> at = viewstyle::FindViewStyle(styles, name))
    return styles[*at];
  std::string names;
  for (const viewstyle::ViewStyleSettings& s : styles)
    names += (names.empty() ? "" : ", ") + viewstyle::StyleNameOf(s);
  throw CommandError(
      "There is no view style named \"" + name +
      "\" (the drawing has: " + (names.empty() ? "none" : names) + ")");
}

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
  std::ostringstream out;
  out << "[";
  for (size_t i = 0; i < styles.size(); ++i) {
    const StyleSummary& s = styles[i];
    out << (i ? ",\n " : "") << "{\"name\": " << JsonString(s.name)
        << ", \"active\": " << (s.active ? "true" : "false")
        << ", \"text style\": " << JsonString(s.text_style)
        << ", \"text height\": " << JsonString(s.text_height) << "}";
  }
  out << "]\n";
  return out.str();
}

std::vector<StyleSummary> StyleList(const StyleListOptions& options) {
  return ListStyles(*OpenProjectDrawing(options.drawing));
}

namespace {

int RunStyleList(const std::vector<std::string>& args, Io& io) {
  Args a(args, {"json"}, {});
  a.ExpectPositionals(1);
  std::vector<StyleSummary> styles =
      StyleList({a.Positional(0, "the drawing (DRAWING.dxf)")});
  io.out << (a.Flag("json") ? StylesJson(styles) : StylesTable(styles));
  return 0;
}

// `kestrana info` names the styles too; a damaged list is reported, not
// raised, since info is how one looks at damaged drawings.
InfoSectionRegistrar view_styles_info([](memhost::MemDocument& document)
                                          -> std::optional<InfoSection> {
  if (!core::FindProjectRecord(document)) return std::nullopt;
  InfoSection section{"view styles", {}};
  try {
    std::vector<StyleSummary> styles = ListStyles(document);
    std::string names;
    for (const StyleSummary& s : styles)
      names += (names.empty() ? "" : ", ") + s.name;
    section.fields.push_back(
        {"active", viewstyle::StyleField::Read(document).active});
    section.fields.push_back({"count", std::to_string(styles.size()), true});
    if (!styles.empty()) section.fields.push_back({"names", names});
  } catch (const std::exception& e) {
    section.fields.push_back({"error", e.what()});
  }
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
