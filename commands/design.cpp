#include "commands/design.h"

#include "commands/element_data.h"
#include "commands/elements.h"
#include "editing/flow_graph.h"

namespace kestrana::commands {

DesignResult DesignNetwork(host::Document& document,
                           const DesignOptions& typed) {
  const DesignOptions options = WithStoredNetwork(document, typed);
  const editing::FlowGraph graph =
      editing::ReadFlowGraph(document, options.network);
  DesignResult result{options.rules == DesignRules::kSewer
                          ? sizing::DesignSewer(graph)
                          : sizing::DesignWaterMains(graph)};
  for (const sizing::PipeChoice& pipe : result.design.pipes)
    SetPipe(document, {.network = options.network,
                       .label = pipe.label,
                       .size = pipe.size,
                       .material = pipe.material});
  for (const sizing::NodeChoice& node : result.design.nodes)
    SetNode(document, {.network = options.network,
                       .label = node.label,
                       .sump = node.sump,
                       .matching = node.matching});
  return result;
}

}  // namespace kestrana::commands
