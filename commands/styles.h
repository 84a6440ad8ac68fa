// View styles: `kestrana style list|show|create|export|activate|apply`.
// The shape of a command: command.h.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "viewstyle/view_style_record.h"

namespace kestrana::host {
class Document;
}

namespace kestrana::commands {

struct StyleSummary {
  std::string name;
  bool active = false;
  std::string text_style;
  std::string text_height;
  friend bool operator==(const StyleSummary&, const StyleSummary&) = default;
};
// In the order the project record names them.
std::vector<StyleSummary> ListStyles(host::Document& document);

// The stored style of that name; NotFoundError naming the styles there are.
viewstyle::ViewStyleSettings FindStyle(host::Document& document,
                                       const std::string& name);

struct StyleOptions {
  std::string name;
};

struct StyleShowResult {
  std::string name;
  bool active = false;
  viewstyle::ViewStyleSettings settings;
};
StyleShowResult ShowStyle(host::Document& document,
                          const StyleOptions& options);

struct StyleExportResult {
  std::string text;  // the style file form
};
// InvalidInputError for a stored style the file form cannot express.
StyleExportResult ExportStyle(host::Document& document,
                              const StyleOptions& options);

struct StyleCreateOptions {
  std::string name;
  std::string style_text;  // the style file form
};
// Stores a new style. OptionError for an empty name; InvalidInputError for
// a name with a banned character and a text that does not describe a style
// (naming the line and item); RefusedError for a name in use; NotFoundError
// for a text style the drawing lacks.
void CreateStyle(host::Document& document, const StyleCreateOptions& options);

// Makes a stored style the active one (the annotations keep their look
// until the style is applied).
// Returns the style's name as stored (letter case as the drawing has it).
std::string ActivateStyle(host::Document& document,
                          const StyleOptions& options);

struct StyleApplyOptions {
  std::optional<std::string> network;  // else every network
};
struct AppliedNetwork {
  std::string network;
  int annotations = 0;
  int arrows = 0;
  friend bool operator==(const AppliedNetwork&,
                         const AppliedNetwork&) = default;
};
struct StyleApplyResult {
  std::string style;
  std::vector<AppliedNetwork> networks;
};
// Rebuilds the attribute blocks for the active style and redraws the
// annotations of one network or of all; hidden networks stay hidden.
StyleApplyResult ApplyStyle(host::Document& document,
                            const StyleApplyOptions& options);

// What `kestrana info` tells of the styles; a damaged list is told in
// `error`, since info is how one looks at damaged drawings.
struct StylesSummary {
  std::string active;
  std::vector<std::string> names;
  std::optional<std::string> error;
};
StylesSummary DescribeStyles(host::Document& document);

}  // namespace kestrana::commands
