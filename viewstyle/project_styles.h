// The view styles of a project as the project record lists them: field 1
// is "<active style>;<network visibility>;<marker ID>;<marker ID>;...".
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "viewstyle/view_style_record.h"

namespace kestrana::host {
class Document;
}

namespace kestrana::core {
class Record;
}

namespace kestrana::viewstyle {

// The style a new project starts with; it can be neither deleted nor
// renamed.
inline constexpr char kStandardViewStyleName[] = "Standard";

// Project-record field 1, taken apart.
struct StyleField {
  std::string active;
  std::string visibility;            // one "1" or "0" per network
  std::vector<std::string> markers;  // object IDs as stored

  static StyleField Parse(std::string_view field);
  static StyleField Read(host::Document& document);
  // Every piece followed by ";".
  std::string Format() const;
};

// The texts of a record, field by field.
ViewStyleSettings SettingsOfRecord(const core::Record& record);

// The validated record of the marker whose ID text is `marker`.
ViewStyleSettings ReadMarkerSettings(host::Document& document,
                                     std::string_view marker);
// Every stored style, validated, in the order field 1 lists them.
std::vector<ViewStyleSettings> ReadViewStyles(host::Document& document);
// The position of the style `name` names (core::MatchName: letter case
// ignored, the exact spelling first), or nullopt.
std::optional<size_t> FindViewStyle(
    const std::vector<ViewStyleSettings>& styles, std::string_view name);

// Whether the visibility text shows the network (a network without a
// character is shown); std::invalid_argument for an unknown network.
bool NetworkVisible(host::Document& document, std::string_view network);
// Shows or hides the network's elements, annotations and arrows and keeps
// the choice in the visibility text.
void SetNetworkVisibility(host::Document& document, std::string_view network,
                          bool visible);

}  // namespace kestrana::viewstyle
