// The object-ID lists ("<id>;<id>;") that reactions pass along, and whether
// an ID still names a live object.
#pragma once

#include <string>
#include <string_view>

#include "core/general.h"
#include "core/references.h"
#include "host/host.h"

namespace kestrana::events {

inline bool Listed(std::string_view id, std::string_view list) {
  return !id.empty() && core::General::Check_ID_Exists(id, list);
}

inline void AppendOnce(std::string& list, const std::string& id) {
  if (!id.empty() && !Listed(id, list)) list += id + ";";
}

inline bool Exists(host::Document& document, const std::string& id) {
  try {
    core::ObjectFromIdText(document, id);
    return true;
  } catch (const host::HostError&) {
    return false;
  }
}

}  // namespace kestrana::events
