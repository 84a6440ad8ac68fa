#include "commands/networks.h"

#include <map>

#include "commands/command.h"
#include "commands/elements.h"
#include "commands/lowhigh.h"
#include "core/general.h"
#include "core/guards.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "core/text.h"
#include "core/user_names.h"
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
  core::CheckUserName("The network name", name);
  if (std::optional<std::string> taken = core::FindNetworkName(document, name))
    throw RefusedError("A network named \"" + *taken + "\" already exists" +
                       core::CaseNote(name, *taken));
  General::CreateNetworkDefintion(document, name, options.type);
}

std::string DeleteNetwork(host::Document& document,
                          const DeleteNetworkOptions& options) {
  const std::string network = RequireNetwork(document, options.name);
  // Drawings of older versions may hold two such names; their layers and
  // filters are the same, so deleting one would take the other's elements.
  for (const std::string& other : General::GetNetworkNames(document))
    if (other != network && core::SameIgnoringCase(other, network))
      throw RefusedError("the networks \"" + network + "\" and \"" + other +
                         "\" share their layers (names that differ only in "
                         "letter case are the same name); deleting one would "
                         "delete the elements of both");
  General::DeleteNetwork(document, network);
  return network;
}

std::vector<NetworkInfo> ListNetworks(host::Document& document) {
  core::TextTable table = General::GetNetworkDefinitions(document);
  std::vector<NetworkInfo> networks;
  for (int row = 0; row < table.Rows(); ++row) {
    if (table(row, 0).empty()) continue;
    NetworkInfo info{table(row, 0), table(row, 1)};
    info.pipes = General::GetNetworkSet(document, info.name, kPipes).Count();
    info.nodes = General::GetNetworkSet(document, info.name, kNodes).Count();
    networks.push_back(info);
  }
  return networks;
}

NetworkElements ListElements(host::Document& document,
                             const ListElementsOptions& options) {
  const editing::FlowGraph graph = editing::ReadFlowGraph(
      document, RequireNetwork(document, options.network));
  NetworkElements elements;
  for (const editing::FlowGraph::Pipe& pipe : graph.pipes) {
    core::Record r = core::Record::ReadRequired(*pipe.entity);
    PipeListing p;
    p.label = pipe.label;
    p.handle = pipe.entity->Handle();
    p.from = graph.nodes[pipe.from].label;
    p.to = graph.nodes[pipe.to].label;
    p.size = General::BuildSectionSizeString(r);
    p.section = core::SectionSize::Of(r);
    p.material = r.Text(PipeField::kMaterial);
    p.length = pipe.length;
    p.start_invert = r.Number(PipeField::kStartInvert);
    p.end_invert = r.Number(PipeField::kEndInvert);
    if (p.length > 0) p.slope = (p.start_invert - p.end_invert) / p.length;
    const std::vector<double> xy =
        host::As<host::LwPolyline>(*pipe.entity).Coordinates();
    for (size_t i = 0; i + 1 < xy.size(); i += 2)
      p.vertices.push_back({xy[i], xy[i + 1]});
    elements.pipes.push_back(std::move(p));
  }
  // Marked nodes by label; a node carries one marker at most.
  std::map<std::string, std::string> marks;
  for (const LowHighListing& point : ListLowHighPoints(document))
    if (point.network == options.network) marks[point.node] = point.kind;
  for (const editing::FlowGraph::Node& node : graph.nodes) {
    core::Record r = core::Record::ReadRequired(*node.entity);
    NodeListing n;
    n.label = node.label;
    n.handle = node.entity->Handle();
    const host::Point3 at =
        host::As<host::BlockReference>(*node.entity).InsertionPoint();
    n.position = {at.x, at.y};
    n.ground = node.ground;
    n.sump = r.Number(NodeField::kSumpLevel);
    n.depth = n.ground - n.sump;
    n.matching = MatchingRuleText(r.Int16(NodeField::kMatching));
    if (auto mark = marks.find(node.label); mark != marks.end())
      n.low_high = mark->second;
    elements.nodes.push_back(std::move(n));
  }
  return elements;
}

void SetNetworkShown(host::Document& document,
                     const NetworkShownOptions& options) {
  const std::string network = RequireNetwork(document, options.name);
  core::UnlockedLayers unlocked(document);
  viewstyle::SetNetworkVisibility(document, network, options.shown);
}

}  // namespace kestrana::commands
