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
                              const NodeSpec& spec) {
  core::General::CreateStandardBlock(document, "Node");
  host::BlockReference& node = document.ModelSpace().InsertBlock(
      {spec.x, spec.y, 0}, core::kNodeBlock, 1, 1, 1, 0);
  PutOnNetworkLayer(document, node, network);
  core::Record record = core::Record::WithCodes(core::kNodeRecordCodes);
  record.SetText(
      NodeField::kCombinedLabel,
      std::string(core::kNodeKind) + ";" + network.name + ";" + spec.label);
  record.SetText(NodeField::kElementType, network.type + core::kNodeKind);
  record.SetInt16(NodeField::kMatching,
                  static_cast<int16_t>(network.type == core::kPressure));
  record.SetReal(NodeField::kGroundLevel, spec.ground);
  record.SetReal(NodeField::kSumpLevel, spec.sump);
  record.Write(node);
  return node;
}

host::LwPolyline& AddPipe(host::Document& document,
                          const FixtureNetwork& network, const PipeSpec& spec) {
  host::LwPolyline& pipe =
      document.ModelSpace().AddLightWeightPolyline(spec.xy);
  PutOnNetworkLayer(document, pipe, network);
  core::Record record = core::Record::WithCodes(core::kPipeRecordCodes);
  record.SetText(
      PipeField::kCombinedLabel,
      std::string(core::kPipeKind) + ";" + network.name + ";" + spec.label);
  record.SetText(PipeField::kElementType, network.type + core::kPipeKind);
  record.SetText(PipeField::kSectionShape, spec.shape);
  record.SetReal(PipeField::kSpan, spec.span);
  record.SetReal(PipeField::kRise, spec.rise);
  record.SetInt16(PipeField::kNumCells, static_cast<int16_t>(spec.cells));
  record.SetReal(PipeField::kStartInvert, spec.start_invert);
  record.SetReal(PipeField::kEndInvert, spec.end_invert);
  record.SetText(PipeField::kMaterial, "PVC");
  auto link = [&](host::BlockReference* node, PipeField label_field,
                  PipeField id_field) {
    if (node == nullptr) return;
    record.SetText(label_field, core::ReferenceEntry(NodeLabel(node)));
    record.SetText(id_field,
                   core::ReferenceEntry(core::IdText(node->ObjectID())));
  };
  link(spec.start_node, PipeField::kStartNodeLabel, PipeField::kStartNodeOID);
  link(spec.end_node, PipeField::kEndNodeLabel, PipeField::kEndNodeOID);
  record.Write(pipe);
  if (spec.start_node != nullptr)
    AppendLink(*spec.start_node, NodeField::kPipesAtStartLabels,
               NodeField::kPipesAtStartOID, spec.label, pipe.ObjectID());
  if (spec.end_node != nullptr)
    AppendLink(*spec.end_node, NodeField::kPipesAtEndLabels,
               NodeField::kPipesAtEndOID, spec.label, pipe.ObjectID());
  return pipe;
}

host::LwPolyline& ConnectNodes(host::Document& document,
                               const FixtureNetwork& network,
                               const std::string& label,
                               host::BlockReference& from,
                               host::BlockReference& to) {
  const host::Point3 a = from.InsertionPoint(), b = to.InsertionPoint();
  PipeSpec spec;
  spec.label = label;
  spec.xy = {a.x, a.y, b.x, b.y};
  spec.start_node = &from;
  spec.end_node = &to;
  // Inverts at the nodes' sumps, as matched levels would leave them.
  spec.start_invert =
      core::Record::ReadRequired(from).Number(NodeField::kSumpLevel);
  spec.end_invert =
      core::Record::ReadRequired(to).Number(NodeField::kSumpLevel);
  return AddPipe(document, network, spec);
}

}  // namespace kestrana::test
