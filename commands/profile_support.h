// What the profile commands share: the network and the style they name.
#pragma once

#include <string>

#include "profile/style_markers.h"

namespace kestrana::host {
class Document;
}

namespace kestrana::commands {

// The profile style of that name (exact); NotFoundError naming the styles
// there are.
profile::StyleMarker RequireProfileStyle(host::Document& document,
                                         const std::string& name);

}  // namespace kestrana::commands
