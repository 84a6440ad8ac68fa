#include "core/lists.h"

#include <cmath>
#include <cstring>
#include <limits>

#include "core/names.h"
#include "core/text.h"

namespace kestrana::core {

std::string RelatedTo(std::string_view value) {
  return std::string(kRelatedTo) + std::string(value);
}

std::string ReferenceEntry(std::string_view value) {
  return ";" + std::string(kRelatedTo) + std::string(value);
}

std::vector<std::string> ReferenceValues(std::string_view list) {
  std::vector<std::string> values;
  if (list.empty()) return values;
  std::vector<std::string> pieces = Split(list);
  const size_t prefix = std::strlen(kRelatedTo);
  for (size_t i = 1; i < pieces.size(); ++i)
    values.push_back(pieces[i].size() > prefix ? pieces[i].substr(prefix) : "");
  return values;
}

std::vector<std::string> ListEntries(std::string_view list) {
  std::vector<std::string> pieces = Split(list);
  pieces.pop_back();
  return pieces;
}

std::string JoinEntries(const std::vector<std::string>& entries) {
  std::string out;
  for (const std::string& e : entries) out += e + ";";
  return out;
}

std::string IdListEntry(host::ObjectId id) { return IdText(id) + ";"; }

std::string IdText(host::ObjectId id) { return std::to_string(id); }

std::optional<host::ObjectId> ParseObjectId(std::string_view text) {
  std::optional<double> value = ParseNumber(text);
  if (!value || *value != std::floor(*value) ||
      *value < std::numeric_limits<host::ObjectId>::min() ||
      *value > std::numeric_limits<host::ObjectId>::max())
    return std::nullopt;
  return static_cast<host::ObjectId>(*value);
}

}  // namespace kestrana::core
