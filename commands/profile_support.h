// What the profile commands share: the network and the style they name.
#pragma once

#include <string>

#include "profile/style_markers.h"

namespace kestrana::host {
class Document;
}

namespace kestrana::commands {

// The network's type, "Gravity" or "Pressure"; NotFoundError naming the
// networks there are when the project has no such network.
std::string RequireProfileNetwork(host::Document& document,
                                  const std::string& network);

// The profile style of that name (exact); NotFoundError naming the styles
// there are.
profile::StyleMarker RequireProfileStyle(host::Document& document,
                                         const std::string& name);

}  // namespace kestrana::commands
