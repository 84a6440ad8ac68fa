#include "editing/flow_graph.h"

#include <map>

#include "core/general.h"
#include "core/lists.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "core/references.h"
#include "host/host.h"

namespace kestrana::editing {

using core::General;
using core::NodeField;
using core::PipeField;

namespace {


}  // namespace

FlowGraph ReadFlowGraph(host::Document& document, std::string_view network) {
  FlowGraph graph;
  std::map<std::string, size_t> node_at;
  for (host::Entity* node :
       General::GetNetworkSet(document, network, core::network_set::kNodes)
           .Entities()) {
    core::Record record = core::Record::ReadRequired(*node);
    node_at[core::IdText(node->ObjectID())] = graph.nodes.size();
    graph.nodes.push_back({node,
                           General::EntityLabelFromCombined(
                               record.Text(NodeField::kCombinedLabel)),
                           record.Number(NodeField::kGroundLevel),
                           {},
                           {}});
  }
  for (host::Entity* pipe :
       General::GetNetworkSet(document, network, core::network_set::kPipes)
           .Entities()) {
    core::Record record = core::Record::ReadRequired(*pipe);
    const size_t from = node_at.at(
        core::ReferenceValues(record.Text(PipeField::kStartNodeOID)).at(0));
    const size_t to = node_at.at(
        core::ReferenceValues(record.Text(PipeField::kEndNodeOID)).at(0));
    graph.nodes[from].out.push_back(graph.pipes.size());
    graph.nodes[to].in.push_back(graph.pipes.size());
    graph.pipes.push_back({pipe,
                           General::EntityLabelFromCombined(
                               record.Text(PipeField::kCombinedLabel)),
                           from, to,
                           host::As<host::LwPolyline>(*pipe).Length()});
  }
  return graph;
}

std::vector<size_t> UpstreamFirst(const FlowGraph& graph) {
  std::vector<size_t> waiting(graph.nodes.size()), order;
  for (size_t n = 0; n < graph.nodes.size(); ++n) {
    waiting[n] = graph.nodes[n].in.size();
    if (waiting[n] == 0) order.push_back(n);
  }
  for (size_t i = 0; i < order.size(); ++i)
    for (size_t p : graph.nodes[order[i]].out)
      if (--waiting[graph.pipes[p].to] == 0) order.push_back(graph.pipes[p].to);
  if (order.size() != graph.nodes.size())
    throw RefusedError("the network runs in a circle: its flow has no outlet");
  return order;
}

}  // namespace kestrana::editing
