#include "core/user_names.h"

#include "core/general.h"
#include "core/text.h"
#include "host/errors.h"

namespace kestrana::core {

namespace {

bool IsControl(unsigned char c) { return c < 0x20 || c == 0x7F; }
bool IsBlank(char c) { return c == ' '; }

std::string Shown(std::string_view name) {
  std::string shown;
  for (unsigned char c : name) {
    if (IsControl(c)) {
      static const char kHex[] = "0123456789ABCDEF";
      shown += "\\x";
      shown += kHex[c >> 4];
      shown += kHex[c & 15];
    } else {
      shown += static_cast<char>(c);
    }
    if (shown.size() > 40) return shown + "...";
  }
  return shown;
}

}  // namespace

void CheckUserName(std::string_view what, std::string_view name,
                   NameRule rule) {
  auto refuse = [&](const std::string& why) {
    throw InvalidInputError(std::string(what) + " \"" + Shown(name) + "\" " +
                            why);
  };
  if (name.empty()) throw InvalidInputError(std::string(what) + " is empty");
  for (unsigned char c : name)
    if (IsControl(c))
      refuse("holds a control character (a line break, tab or the like)");
  if (IsBlank(name.front()) || IsBlank(name.back()))
    refuse("starts or ends with a blank");
  if (rule == NameRule::kAllBanned &&
      General::CheckTextForBannedCharacters(name, 1))
    refuse(
        "contains a character that names cannot hold "
        "(: ; \" / \\ > < * | ? , =)");
  if (rule == NameRule::kSemicolonOnly &&
      General::CheckTextForBannedCharacters(name, 0))
    refuse("contains \";\", which names cannot hold");
  if (name.size() > kLongestName)
    refuse("is " + std::to_string(name.size()) + " characters long; names " +
           "take at most " + std::to_string(kLongestName));
}

std::optional<std::string> MatchName(const std::vector<std::string>& names,
                                     std::string_view typed) {
  if (typed.empty()) return std::nullopt;
  for (const std::string& name : names)
    if (name == typed) return name;
  for (const std::string& name : names)
    if (!name.empty() && SameIgnoringCase(name, typed)) return name;
  return std::nullopt;
}

std::string CaseNote(std::string_view typed, std::string_view taken) {
  if (typed == taken) return "";
  return " (names that differ only in letter case are the same name)";
}

std::optional<std::string> FindNetworkName(host::Document& document,
                                           std::string_view typed) {
  return MatchName(General::GetNetworkNames(document), typed);
}

}  // namespace kestrana::core
