#include "support/pipe_fixture.h"

#include "core/general.h"
#include "core/lists.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "host/host.h"

namespace kestrana::test {

using core::NodeField;
using core::PipeField;

namespace {

// Elements lie on their network's layer; one of a network the project does
// not define stays on layer 0.
void PutOnNetworkLayer(host::Document& document, host::Entity& element,
                       const FixtureNetwork& network) {
  const std::string layer = network.name + " - Network";
  if (document.GetLayers().Find(layer) != nullptr) element.SetLayer(layer);
}

void AppendLink(host::BlockReference& node, NodeField labels, NodeField ids,
                const std::string& pipe_label, host::ObjectId pipe_id) {
  core::Record record = core::Record::ReadRequired(node);
  record.SetText(labels,
                 record.Text(labels) + core::ReferenceEntry(pipe_label));
  record.SetText(
      ids, record.Text(ids) + core::ReferenceEntry(core::IdText(pipe_id)));
  record.Write(node);
}

std::string NodeLabel(host::BlockReference* node) {
  if (node == nullptr) return "";
  return core::General::EntityLabelFromCombined(
      core::Record::ReadRequired(*node).Text(NodeField::kCombinedLabel));
}

}  // namespace

FixtureNetwork AddFixtureNetwork(host::Document& document,
                                 const std::string& name,
                                 const std::string& type) {
  core::General::CreateNetworkDefintion(document, name, type);
  return {name, type};
}

host::BlockReference& AddNode(host::Document& document,
                              const FixtureNetwork& network,
                              const NodeSpec& wanted) {
  core::General::CreateStandardBlock(document, "Node");
  host::BlockReference& node = document.ModelSpace().InsertBlock(
      {wanted.x, wanted.y, 0}, core::kNodeBlock, 1, 1, 1, 0);
  PutOnNetworkLayer(document, node, network);
  core::Record record = core::Record::WithCodes(core::kNodeRecordCodes);
  record.SetText(
      NodeField::kCombinedLabel,
      std::string(core::kNodeKind) + ";" + network.name + ";" + wanted.label);
  record.SetText(NodeField::kElementType, network.type + core::kNodeKind);
  record.SetInt16(NodeField::kMatching,
                  static_cast<int16_t>(network.type == core::kPressure));
  record.SetReal(NodeField::kGroundLevel, wanted.ground);
  record.SetReal(NodeField::kSumpLevel, wanted.sump);
  record.Write(node);
  return node;
}

host::LwPolyline& AddPipe(host::Document& document,
                          const FixtureNetwork& network, const PipeSpec& wanted) {
  host::LwPolyline& pipe =
      document.ModelSpace().AddLightWeightPolyline(wanted.xy);
  PutOnNetworkLayer(document, pipe, network);
  core::Record record = core::Record::WithCodes(core::kPipeRecordCodes);
  record.SetText(
      PipeField::kCombinedLabel,
      std::string(core::kPipeKind) + ";" + network.name + ";" + wanted.label);
  record.SetText(PipeField::kElementType, network.type + core::kPipeKind);
  record.SetText(PipeField::kSectionShape, wanted.shape);
  record.SetReal(PipeField::kSpan, wanted.span);
  record.SetReal(PipeField::kRise, wanted.rise);
  record.SetInt16(PipeField::kNumCells, static_cast<int16_t>(wanted.cells));
  record.SetReal(PipeField::kStartInvert, wanted.start_invert);
  record.SetReal(PipeField::kEndInvert, wanted.end_invert);
  record.SetText(PipeField::kMaterial, "PVC");
  auto link = [&](host::BlockReference* node, PipeField label_field,
                  PipeField id_field) {
    if (node == nullptr) return;
    record.SetText(label_field, core::ReferenceEntry(NodeLabel(node)));
    record.SetText(id_field,
                   core::ReferenceEntry(core::IdText(node->ObjectID())));
  };
  link(wanted.start_node, PipeField::kStartNodeLabel, PipeField::kStartNodeOID);
  link(wanted.end_node, PipeField::kEndNodeLabel, PipeField::kEndNodeOID);
  record.Write(pipe);
  if (wanted.start_node != nullptr)
    AppendLink(*wanted.start_node, NodeField::kPipesAtStartLabels,
               NodeField::kPipesAtStartOID, wanted.label, pipe.ObjectID());
  if (wanted.end_node != nullptr)
    AppendLink(*wanted.end_node, NodeField::kPipesAtEndLabels,
               NodeField::kPipesAtEndOID, wanted.label, pipe.ObjectID());
  return pipe;
}

host::LwPolyline& ConnectNodes(host::Document& document,
                               const FixtureNetwork& network,
                               const std::string& label,
                               host::BlockReference& from,
                               host::BlockReference& to) {
  const host::Point3 a = from.InsertionPoint(), b = to.InsertionPoint();
  PipeSpec wanted;
  wanted.label = label;
  wanted.xy = {a.x, a.y, b.x, b.y};
  wanted.start_node = &from;
  wanted.end_node = &to;
  // Inverts at the nodes' sumps, as matched levels would leave them.
  wanted.start_invert =
      core::Record::ReadRequired(from).Number(NodeField::kSumpLevel);
  wanted.end_invert =
      core::Record::ReadRequired(to).Number(NodeField::kSumpLevel);
  return AddPipe(document, network, wanted);
}

}  // namespace kestrana::test
