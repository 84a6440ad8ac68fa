#include "commands/profile_support.h"

#include "commands/elements.h"
#include "host/errors.h"

namespace kestrana::commands {

profile::StyleMarker RequireProfileStyle(host::Document& document,
                                         const std::string& name) {
  std::vector<std::string> names;
  for (profile::StyleMarker& style : profile::ReadStyleMarkers(document)) {
    if (style.name == name) return std::move(style);
    names.push_back(style.name);
  }
  throw NotFoundError("there is no profile style named \"" + name +
                      "\" (the drawing has " + QuotedNames(names) + ")");
}

}  // namespace kestrana::commands
