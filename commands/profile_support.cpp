#include "commands/profile_support.h"

#include "core/general.h"
#include "core/text_table.h"
#include "core/user_names.h"
#include "host/errors.h"

namespace kestrana::commands {

namespace {

// "\"A\", \"B\"" or "none".
std::string Quoted(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names)
    text += (text.empty() ? "\"" : ", \"") + name + "\"";
  return text.empty() ? "none" : text;
}

}  // namespace

std::string RequireProfileNetwork(host::Document& document,
                                  const std::string& typed) {
  const std::string network =
      core::FindNetworkName(document, typed).value_or(typed);
  const core::TextTable networks =
      core::General::GetNetworkDefinitions(document);
  std::vector<std::string> names;
  for (int row = 0; row < networks.Rows(); ++row) {
    if (networks(row, 0) == network && !network.empty())
      return networks(row, 1);
    if (!networks(row, 0).empty()) names.push_back(networks(row, 0));
  }
  throw NotFoundError("the project has no network named \"" + network +
                      "\" (it has " + Quoted(names) + ")");
}

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
                      "\" (the drawing has " + Quoted(names) + ")");
}

}  // namespace kestrana::commands
