// The profile styles of a drawing, as the project record lists their
// markers.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/record.h"

namespace kestrana::host {
class Document;
class Object;
}  // namespace kestrana::host

namespace kestrana::profile {

struct StyleMarker {
  host::Object* marker = nullptr;
  core::Record record;  // whole: at least the 21 items
  std::string name;
};

// Every style in the order of the project's list; MissingRecordError for a
// marker whose record is damaged.
std::vector<StyleMarker> ReadStyleMarkers(host::Document& document);
// The style of that name (exact), or nullopt.
std::optional<StyleMarker> FindStyleMarker(host::Document& document,
                                           std::string_view name);

// The profiles a style record lists: name, network and block ID, in step.
struct StyleProfile {
  std::string name;
  std::string network;
  std::string block_id;
  friend bool operator==(const StyleProfile&, const StyleProfile&) = default;
};
std::vector<StyleProfile> ProfilesOfStyle(const core::Record& style);

}  // namespace kestrana::profile
