#include "support/network_elements.h"

#include <stdexcept>

#include "commands/project.h"
#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "host/host.h"

namespace kestrana::test {

using core::General;
using core::NodeField;
using core::PipeField;

std::unique_ptr<memhost::MemDocument> NewFullProjectDocument(
    const std::string& units) {
  auto document = std::make_unique<memhost::MemDocument>();
  commands::NewProject(*document, {units});
  return document;
}

NetworkElements::NetworkElements(host::Document& document, std::string network)
    : document_(document), network_(std::move(network)) {
  core::TextTable networks = General::GetNetworkDefinitions(document);
  std::optional<std::string> type;
  for (int row = 0; row < networks.Rows(); ++row)
    if (networks(row, 0) == network_) type = networks(row, 1);
  if (!type) throw std::invalid_argument("no network named " + network_);
  gravity_ = *type == core::kGravity;
  metric_ = General::GetModelUnits(document) == core::kMetric;
  General::CreateStandardBlock(document, "Node");
}

host::BlockReference& NetworkElements::AddNode(const std::string& label,
                                               double x, double y,
                                               double ground, double sump) {
  host::BlockReference& node = document_.ModelSpace().InsertBlock(
      {x, y, 0}, core::kNodeBlock, 1, 1, 1, 0);
  node.SetLayer(Layer());
  core::Record record = core::Record::WithCodes(core::kNodeRecordCodes);
  record.SetText(NodeField::kCombinedLabel,
                 std::string(core::kNodeKind) + ";" + network_ + ";" + label);
  record.SetText(NodeField::kElementType,
                 gravity_ ? core::kGravityNode : core::kPressureNode);
  record.SetInt16(NodeField::kMatching, gravity_ ? 0 : 1);
  record.SetReal(NodeField::kGroundLevel, ground);
  record.SetReal(NodeField::kSumpLevel, sump);
  record.Write(node);
  return node;
}

host::LwPolyline& NetworkElements::AddPipe(const std::string& label,
                                           const std::vector<double>& xy,
                                           host::BlockReference& start,
                                           host::BlockReference& end,
                                           const PipeData& data) {
  host::LwPolyline& pipe = document_.ModelSpace().AddLightWeightPolyline(xy);
  pipe.SetLayer(Layer());
  const double size = metric_ ? 200 : 8;
  core::Record record = core::Record::WithCodes(core::kPipeRecordCodes);
  record.SetText(PipeField::kCombinedLabel,
                 std::string(core::kPipeKind) + ";" + network_ + ";" + label);
  record.SetText(PipeField::kElementType,
                 gravity_ ? core::kGravityPipe : core::kPressurePipe);
  record.SetText(PipeField::kSectionShape,
                 data.shape.value_or(core::kSectionShapeCircular));
  record.SetReal(PipeField::kSpan, data.span.value_or(size));
  record.SetReal(PipeField::kRise,
                 data.rise.value_or(data.span.value_or(size)));
  record.SetInt16(PipeField::kNumCells,
                  static_cast<int16_t>(data.cells.value_or(1)));
  record.SetReal(PipeField::kStartInvert, data.start_invert);
  record.SetReal(PipeField::kEndInvert, data.end_invert);
  record.SetText(PipeField::kMaterial, data.material.value_or("PVC"));

  auto label_of = [](const host::Entity& node) {
    return General::EntityLabelFromCombined(
        core::Record::ReadRequired(node).Text(NodeField::kCombinedLabel));
  };
  record.SetText(PipeField::kStartNodeLabel,
                 core::ReferenceEntry(label_of(start)));
  record.SetText(PipeField::kEndNodeLabel, core::ReferenceEntry(label_of(end)));
  record.SetText(PipeField::kStartNodeOID,
                 core::ReferenceEntry(core::IdText(start.ObjectID())));
  record.SetText(PipeField::kEndNodeOID,
                 core::ReferenceEntry(core::IdText(end.ObjectID())));
  record.Write(pipe);

  // The nodes list the pipe: starts here (5/7) or ends here (6/8).
  auto link = [&](host::Entity& node, NodeField labels, NodeField ids) {
    core::Record node_record = core::Record::ReadRequired(node);
    node_record.SetText(labels,
                        node_record.Text(labels) + core::ReferenceEntry(label));
    node_record.SetText(
        ids, node_record.Text(ids) +
                 core::ReferenceEntry(core::IdText(pipe.ObjectID())));
    node_record.Write(node);
  };
  link(start, NodeField::kPipesAtStartLabels, NodeField::kPipesAtStartOID);
  link(end, NodeField::kPipesAtEndLabels, NodeField::kPipesAtEndOID);
  return pipe;
}

host::LwPolyline& NetworkElements::AddPipeWithNodes(
    const std::string& label, const std::vector<double>& xy,
    const PipeData& data, double start_ground, double end_ground) {
  const size_t n = xy.size();
  host::BlockReference& start =
      AddNode(label + "-S", xy[0], xy[1], start_ground, data.start_invert);
  host::BlockReference& end =
      AddNode(label + "-E", xy[n - 2], xy[n - 1], end_ground, data.end_invert);
  return AddPipe(label, xy, start, end, data);
}

}  // namespace kestrana::test
