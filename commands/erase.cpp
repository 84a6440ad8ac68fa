#include <set>

#include "commands/command.h"
#include "commands/copy_erase.h"
#include "commands/elements.h"
#include "core/guards.h"
#include "events/events.h"
#include "host/host.h"

namespace kestrana::commands {

namespace {

std::vector<host::Entity*> Chosen(host::Document& document,
                                  const EraseOptions& options) {
  std::vector<host::Entity*> chosen;
  if (!options.pipes.empty() || !options.nodes.empty()) {
    if (!options.network)
      throw OptionError("--pipes and --nodes need the --network they are in");
    RequireNetwork(document, *options.network);
    for (const std::string& label : options.pipes)
      chosen.push_back(
          &FindElement(document, *options.network, ElementKind::kPipe, label));
    for (const std::string& label : options.nodes)
      chosen.push_back(
          &FindElement(document, *options.network, ElementKind::kNode, label));
  }
  for (const std::string& handle : options.handles)
    chosen.push_back(&EntityOfHandle(document, handle));
  if (chosen.empty())
    throw OptionError("name what to erase with --pipes, --nodes or --handles");
  return chosen;
}

}  // namespace

EraseResult Erase(host::Document& document, const EraseOptions& options) {
  std::vector<host::Entity*> chosen = Chosen(document, options);
  core::UnlockedLayers unlocked(document);
  EraseResult result;
  result.chosen = static_cast<int>(
      std::set<host::Entity*>(chosen.begin(), chosen.end()).size());
  result.erased = events::EraseWithReactions(document, chosen);
  return result;
}

}  // namespace kestrana::commands
