// Names users type: networks, view and profile styles, labels, materials.
// Each becomes part of layer names, block names and record texts, so it must
// not hold line breaks or other control characters, must not hide blanks at
// its ends, and must leave room for the longest name built from it.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrana::host {
class Document;
}

namespace kestrana::core {

// The longest name, in bytes. The longest texts built from names are
// "Kestrana_PlanAnno_<network>_<profile>" (a block name) and
// "ProfilePlanAnno;<network>;<profile>PlanAnno" (a record text); with two
// names of this length each stays within the 255 bytes that DXF gives a
// symbol name or an XData text.
inline constexpr size_t kLongestName = 100;

// Which of the system's banned characters a name may not hold: all of
// : ; " / \ > < * | ? , = (networks, styles, labels), or only ";"
// (materials, stored in ";" lists).
enum class NameRule { kAllBanned, kSemicolonOnly };

// InvalidInputError when `name` cannot be a name: empty, blanks at either
// end, a control character, a banned character under `rule`, or longer than
// kLongestName. `what` starts the message ("The network name").
void CheckUserName(std::string_view what, std::string_view name,
                   NameRule rule = NameRule::kAllBanned);

// Names are one name when they are equal without letter case, as layer
// names and selection filters compare them: "sewer" finds "Sewer". The one
// of `names` that `typed` names: its exact spelling first (a drawing made
// elsewhere may hold both), else the first equal without letter case.
std::optional<std::string> MatchName(const std::vector<std::string>& names,
                                     std::string_view typed);
// For a refusal of `typed` because `taken` exists: "" when they are spelt
// alike, else a note that letter case does not make another name.
std::string CaseNote(std::string_view typed, std::string_view taken);
// The network `typed` names, spelt as the project record holds it.
std::optional<std::string> FindNetworkName(host::Document& document,
                                           std::string_view typed);

}  // namespace kestrana::core
