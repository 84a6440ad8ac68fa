// Line names from manhole labels, and the continuous lines of a gravity
// network that they name.
#include <array>
#include <cctype>
#include <string>
#include <unordered_map>

#include "core/general.h"
#include "core/lists.h"
#include "core/pipe_record.h"
#include "core/references.h"
#include "core/text.h"
#include "host/host.h"
#include "profile/profile.h"

namespace kestrana::profile {

namespace {

// Manhole prefixes, longest first; "M_H-" is not among them.
constexpr std::array<std::string_view, 15> kFourCharacterPrefixes = {
    "M.H.", "M-H-", "M_H_", "M/H/", "M.H-", "M.H_", "M.H/", "M-H.",
    "M-H_", "M-H/", "M_H.", "M_H/", "M/H.", "M/H-", "M/H_"};
constexpr std::array<std::string_view, 8> kThreeCharacterPrefixes = {
    "MH.", "MH-", "MH_", "MH/", "M.H", "M-H", "M_H", "M/H"};
constexpr std::string_view kTwoCharacterPrefix = "MH";

constexpr char kMainLine[] = "Main";

bool IsDigit(char c) { return std::isdigit(static_cast<unsigned char>(c)); }
bool IsUpper(char c) { return std::isupper(static_cast<unsigned char>(c)); }

std::string_view WithoutManholePrefix(std::string_view label) {
  std::string upper(label.substr(0, 4));
  for (char& c : upper) c = static_cast<char>(std::toupper(c));
  const std::string_view start(upper);
  for (std::string_view prefix : kFourCharacterPrefixes)
    if (start.starts_with(prefix)) return label.substr(prefix.size());
  for (std::string_view prefix : kThreeCharacterPrefixes)
    if (start.starts_with(prefix)) return label.substr(prefix.size());
  if (start.starts_with(kTwoCharacterPrefix))
    return label.substr(kTwoCharacterPrefix.size());
  return label;
}

}  // namespace

std::string Profile::GetManholeLabelDelimiter(std::string_view manhole_label) {
  for (const char* delimiter : {".", "-", "/", "_"})
    if (manhole_label.find(delimiter) != std::string_view::npos)
      return delimiter;
  return "";
}

std::string Profile::GetManholeLineName(std::string_view manhole_label) {
  const std::string_view label = WithoutManholePrefix(manhole_label);
  const std::string delimiter = GetManholeLabelDelimiter(label);
  std::string line;
  if (!delimiter.empty()) {
    // Without the last piece and the delimiter before it.
    line = std::string(label.substr(0, label.rfind(delimiter[0])));
    // A lettered manhole ("12A") keeps its letter in the line name.
    const char last = label.back();
    if (!IsDigit(last) && IsUpper(last)) line += last;
  } else {
    size_t digit = 0;
    while (digit < label.size() && !IsDigit(label[digit])) ++digit;
    line = std::string(label.substr(0, digit));
  }
  return line.empty() ? kMainLine : line;
}

std::vector<GravityLine> Profile::GetGravityLineNames(
    host::Document& document, std::string_view net_name) {
  std::vector<GravityLine> lines;
  std::unordered_map<std::string, size_t> line_of_name;
  for (host::Entity* pipe : core::General::GetNetworkSet(
                                document, net_name, core::network_set::kPipes)
                                .Entities()) {
    const core::Record record =
        core::ReadRecordWithFields(*pipe, core::kPipeRecordLength, "pipe");
    const std::string name = GetManholeLineName(
        core::SingleReference(record, core::PipeField::kStartNodeLabel));
    auto [at, added] = line_of_name.try_emplace(name, lines.size());
    if (added) lines.push_back({name, ""});
    lines[at->second].pipe_oids += core::IdListEntry(pipe->ObjectID());
  }
  std::vector<GravityLine> continuous;
  for (GravityLine& line : lines)
    if (CheckProfilePipesConnectivity(
            core::General::ConvertOIDStringToSelectionSet(document,
                                                          line.pipe_oids)))
      continuous.push_back(std::move(line));
  return continuous;
}

}  // namespace kestrana::profile
