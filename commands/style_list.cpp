#include <stdexcept>

#include "commands/styles.h"
#include "host/errors.h"
#include "viewstyle/project_styles.h"

namespace kestrana::commands {

using viewstyle::ViewStyleField;

std::vector<StyleSummary> ListStyles(host::Document& document) {
  const std::string active = viewstyle::ReadStyleField(document).active;
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
  throw NotFoundError(
      "There is no view style named \"" + name +
      "\" (the drawing has: " + (names.empty() ? "none" : names) + ")");
}

StylesSummary DescribeStyles(host::Document& document) {
  StylesSummary summary;
  auto damaged = [&](const std::exception& e) {
    summary.error = e.what();
    return summary;
  };
  try {
    for (const StyleSummary& s : ListStyles(document))
      summary.names.push_back(s.name);
    summary.active = viewstyle::ReadStyleField(document).active;
  } catch (const Error& e) {
    return damaged(e);  // a marker or record that is not there
  } catch (const std::out_of_range& e) {
    return damaged(e);  // a style record of too many fields
  } catch (const std::overflow_error& e) {
    return damaged(e);  // a marker ID that is no ID
  }
  return summary;
}

}  // namespace kestrana::commands
