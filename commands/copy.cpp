#include "commands/command.h"
#include "commands/copy_erase.h"
#include "commands/elements.h"
#include "core/guards.h"
#include "core/lists.h"
#include "events/events.h"
#include "host/host.h"

namespace kestrana::commands {

CopyResult Copy(host::Document& document, const CopyOptions& options) {
  RequireNetwork(document, options.network);
  std::vector<host::Entity*> originals;
  for (const std::string& label : options.pipes)
    originals.push_back(
        &FindElement(document, options.network, ElementKind::kPipe, label));
  for (const std::string& label : options.nodes)
    originals.push_back(
        &FindElement(document, options.network, ElementKind::kNode, label));
  if (originals.empty())
    throw OptionError("name what to copy with --pipes and --nodes");
  core::UnlockedLayers unlocked(document);
  std::vector<host::Entity*> copies;
  std::string copied;
  for (host::Entity* original : originals) {
    host::Entity& copy = original->Copy();
    copy.Move({0, 0, 0}, {options.dx, options.dy, 0});
    copies.push_back(&copy);
    copied += core::IdListEntry(copy.ObjectID());
  }
  events::Events::VerifyCopiedElements(document, "", copied);
  CopyResult result;
  for (host::Entity* copy : copies)
    if (!copy->Erased()) result.labels.push_back(ElementLabel(*copy));
  return result;
}

}  // namespace kestrana::commands
