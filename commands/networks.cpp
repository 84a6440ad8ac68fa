#include "commands/networks.h"

#include "commands/command.h"
#include "commands/elements.h"
#include "core/general.h"
#include "core/guards.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "editing/flow_graph.h"
#include "host/host.h"
#include "viewstyle/project_styles.h"

namespace kestrana::commands {

using core::General;
using core::NodeField;
using core::PipeField;

void AddNetwork(host::Document& document, const AddNetworkOptions& options) {
  const std::string& name = options.name;
  if (options.type != core::kGravity && options.type != core::kPressure)
    throw OptionError("--type must be Gravity or Pressure, not '" +
                      options.type + "'");
  if (name.empty()) throw OptionError("the network name is empty");
  CheckName("The network name", name);
  if (General::CheckNetworkExists(document, name))
    throw RefusedError("A network named \"" + name + "\" already exists");
  General::CreateNetworkDefintion(document, name, options.type);
}

void DeleteNetwork(host::Document& document,
                   const DeleteNetworkOptions& options) {
  if (!General::CheckNetworkExists(document, options.name))
    throw NotFoundError("There is no network named \"" + options.name + "\"");
  General::DeleteNetwork(document, options.name);
}

std::vector<NetworkInfo> ListNetworks(host::Document& document) {
  core::TextTable table = General::GetNetworkDefinitions(document);
  std::vector<NetworkInfo> networks;
  for (int row = 0; row < table.Rows(); ++row) {
    using namespace core::network_column;
    if (table(row, kName).empty()) continue;
    NetworkInfo info{table(row, kName), table(row, kType)};
    info.pipes =
        General::GetNetworkSet(document, info.name, core::network_set::kPipes)
            .Count();
    info.nodes =
        General::GetNetworkSet(document, info.name, core::network_set::kNodes)
            .Count();
    networks.push_back(info);
  }
  return networks;
}

NetworkElements ListElements(host::Document& document,
                             const ListElementsOptions& options) {
  RequireNetwork(document, options.network);
  const editing::FlowGraph graph =
      editing::ReadFlowGraph(document, options.network);
  NetworkElements elements;
  for (const editing::FlowGraph::Pipe& pipe : graph.pipes) {
    core::Record r = core::Record::ReadRequired(*pipe.entity);
    elements.pipes.push_back(
        {pipe.label, graph.nodes[pipe.from].label, graph.nodes[pipe.to].label,
         General::BuildSectionSizeString(r), r.Text(PipeField::kMaterial),
         pipe.length, r.Number(PipeField::kStartInvert),
         r.Number(PipeField::kEndInvert)});
  }
  for (const editing::FlowGraph::Node& node : graph.nodes) {
    core::Record r = core::Record::ReadRequired(*node.entity);
    elements.nodes.push_back({node.label, node.ground,
                              r.Number(NodeField::kSumpLevel),
                              MatchingRuleText(r.Int16(NodeField::kMatching))});
  }
  return elements;
}

void SetNetworkShown(host::Document& document,
                     const NetworkShownOptions& options) {
  if (!General::CheckNetworkExists(document, options.name))
    throw NotFoundError("There is no network named \"" + options.name + "\"");
  core::UnlockedLayers unlocked(document);
  viewstyle::SetNetworkVisibility(document, options.name, options.shown);
}

}  // namespace kestrana::commands
