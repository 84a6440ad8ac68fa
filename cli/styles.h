// View style, network visibility and library commands: `kestrana style
// list|show|create|export|activate|apply`, `kestrana network show|hide` and
// `kestrana library materials|sizes`. Each is a function on an open
// document plus one on drawing files; every command has its own file.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "viewstyle/view_style_record.h"

namespace kestrana::host {
class Document;
}

namespace kestrana::cli {

// --- On an open document ---------------------------------------------------

struct StyleSummary {
  std::string name;
  bool active = false;
  std::string text_style;
  std::string text_height;
  friend bool operator==(const StyleSummary&, const StyleSummary&) = default;
};
std::vector<StyleSummary> ListStyles(host::Document& document);
std::string StylesTable(const std::vector<StyleSummary>& styles);
std::string StylesJson(const std::vector<StyleSummary>& styles);

// The stored style of that name; CommandError naming the styles there are.
viewstyle::ViewStyleSettings FindStyle(host::Document& document,
                                       const std::string& name);
// The style's settings in the style file form, or as JSON.
std::string StyleText(host::Document& document, const std::string& name);
std::string StyleJson(host::Document& document, const std::string& name);

// Stores a new style described by a style text. UsageError for an empty
// name; CommandError for a name with a banned character, a name in use, a
// text that does not describe a style (naming the line and item) and a
// text style the drawing lacks.
void CreateStyle(host::Document& document, const std::string& name,
                 const std::string& style_text);
// Makes a stored style the active one (the annotations keep their look
// until the style is applied).
void ActivateStyle(host::Document& document, const std::string& name);

struct AppliedNetwork {
  std::string network;
  int annotations = 0;
  int arrows = 0;
  friend bool operator==(const AppliedNetwork&,
                         const AppliedNetwork&) = default;
};
// Rebuilds the attribute blocks for the active style and redraws the
// annotations of one network or of all; hidden networks stay hidden.
std::vector<AppliedNetwork> ApplyStyle(
    host::Document& document, const std::optional<std::string>& network);

// Shows or hides a network's elements, annotations and arrows.
void SetNetworkShown(host::Document& document, const std::string& network,
                     bool shown);

// The libraries as tables or JSON; `shape` "Circular" or "Box" (both when
// unset), UsageError for another.
std::string MaterialsListing(host::Document& document, bool json);
std::string SizesListing(host::Document& document,
                         const std::optional<std::string>& shape, bool json);

// --- On drawing files ------------------------------------------------------

struct StyleListOptions {
  std::string drawing;
};
std::vector<StyleSummary> StyleList(const StyleListOptions& options);

struct StyleShowOptions {
  std::string drawing;
  std::string name;
  bool json = false;
};
std::string StyleShow(const StyleShowOptions& options);

struct StyleCreateOptions {
  std::string drawing;
  std::optional<std::string> output;
  std::string name;
  std::string from;  // the style file
};
// The file written.
std::string StyleCreate(const StyleCreateOptions& options);

struct StyleExportOptions {
  std::string drawing;
  std::string name;
  std::optional<std::string> output;  // else the text is answered
};
// The style text (also written to the output file when one is given).
std::string StyleExport(const StyleExportOptions& options);

struct StyleActivateOptions {
  std::string drawing;
  std::optional<std::string> output;
  std::string name;
};
std::string StyleActivate(const StyleActivateOptions& options);

struct StyleApplyOptions {
  std::string drawing;
  std::optional<std::string> output;
  std::optional<std::string> network;
};
struct StyleApplyResult {
  std::string written;
  std::string style;
  std::vector<AppliedNetwork> networks;
};
StyleApplyResult StyleApply(const StyleApplyOptions& options);

struct NetworkVisibilityOptions {
  std::string drawing;
  std::optional<std::string> output;
  std::string name;
  bool shown = true;
};
std::string NetworkVisibility(const NetworkVisibilityOptions& options);

struct LibraryListOptions {
  std::string drawing;
  bool sizes = false;  // else materials
  std::optional<std::string> shape;
  bool json = false;
};
std::string LibraryList(const LibraryListOptions& options);

}  // namespace kestrana::cli
