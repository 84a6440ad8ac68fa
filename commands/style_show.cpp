#include "commands/styles.h"
#include "host/errors.h"
#include "viewstyle/project_styles.h"
#include "viewstyle/style_text.h"

namespace kestrana::commands {

StyleShowResult ShowStyle(host::Document& document,
                          const StyleOptions& options) {
  viewstyle::ViewStyleSettings style = FindStyle(document, options.name);
  const std::string name = viewstyle::StyleNameOf(style);
  StyleShowResult result{name, false, std::move(style)};
  result.active = viewstyle::StyleField::Read(document).active == name;
  return result;
}

StyleExportResult ExportStyle(host::Document& document,
                              const StyleOptions& options) {
  viewstyle::ViewStyleSettings style = FindStyle(document, options.name);
  try {
    return {viewstyle::WriteStyleText(style)};
  } catch (const viewstyle::StyleTextError& e) {
    throw InvalidInputError("view style \"" + options.name + "\": " + e.what() +
                            " (see --json for the record as stored)");
  }
}

}  // namespace kestrana::commands
