#include <algorithm>

#include "commands/command.h"
#include "commands/copy_erase.h"
#include "commands/elements.h"
#include "core/guards.h"
#include "core/lists.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "events/events.h"
#include "host/host.h"

namespace kestrana::commands {

CopyResult Copy(host::Document& document, const CopyOptions& typed) {
  const CopyOptions options = WithStoredNetwork(document, typed);
  std::vector<host::Entity*> originals, nodes;
  for (const std::string& label : options.nodes)
    nodes.push_back(
        &FindElement(document, options.network, ElementKind::kNode, label));
  // A pipe's copy links only to copies of its nodes; one whose nodes stay
  // behind would be erased again, and the copy would silently hold less
  // than asked for.
  std::vector<std::string> missing;
  for (const std::string& label : options.pipes) {
    host::Entity& pipe =
        FindElement(document, options.network, ElementKind::kPipe, label);
    const core::Record record = core::Record::ReadRequired(pipe);
    for (core::PipeField end :
         {core::PipeField::kStartNodeLabel, core::PipeField::kEndNodeLabel}) {
      const std::vector<std::string> node =
          core::ReferenceValues(record.Text(end));
      if (node.empty()) continue;
      if (std::find(options.nodes.begin(), options.nodes.end(), node[0]) ==
              options.nodes.end() &&
          std::find(missing.begin(), missing.end(), node[0]) == missing.end())
        missing.push_back(node[0]);
    }
    originals.push_back(&pipe);
  }
  if (!missing.empty()) {
    std::string list;
    for (const std::string& label : missing)
      list += (list.empty() ? "" : ",") + label;
    throw RefusedError("a pipe is copied with the nodes at its ends; add " +
                       list +
                       " to --nodes (or leave out the pipes that end there)");
  }
  originals.insert(originals.end(), nodes.begin(), nodes.end());
  if (originals.empty())
    throw OptionError("name what to copy with --pipes and --nodes");
  core::UnlockedLayers unlocked(document);
  std::vector<host::Entity*> copies;
  std::string copied;
  for (host::Entity* original : originals) {
    host::Entity& copy = original->Copy();
    copy.Move({0, 0, 0}, {options.dx, options.dy, 0});
    copies.push_back(&copy);
    copied += core::IdText(copy.ObjectID()) + ";";
  }
  events::Events::VerifyCopiedElements(document, "", copied);
  CopyResult result;
  for (host::Entity* copy : copies)
    if (!copy->Erased()) result.labels.push_back(ElementLabel(*copy));
  return result;
}

}  // namespace kestrana::commands
