#include "commands/profile_support.h"

#include "commands/elements.h"
#include "core/user_names.h"
#include "host/errors.h"

namespace kestrana::commands {

profile::StyleMarker RequireProfileStyle(host::Document& document,
                                         const std::string& name) {
  std::vector<profile::StyleMarker> styles =
      profile::ReadStyleMarkers(document);
  std::vector<std::string> names;
  for (const profile::StyleMarker& style : styles) names.push_back(style.name);
  if (std::optional<std::string> stored = core::MatchName(names, name))
    for (profile::StyleMarker& style : styles)
      if (style.name == *stored) return std::move(style);
  throw NotFoundError("there is no profile style named \"" + name +
                      "\" (the drawing has " + QuotedNames(names) + ")");
}

}  // namespace kestrana::commands
