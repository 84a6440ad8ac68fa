// Converting drawn lines and polylines into pipes and nodes.
#include <algorithm>
#include <map>
#include <unordered_set>

#include "core/filters.h"
#include "core/general.h"
#include "core/guards.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/progress.h"
#include "core/record.h"
#include "core/text.h"
#include "crossing/crossing.h"
#include "editing/conversion.h"
#include "editing/editing.h"
#include "editing/labels.h"
#include "editing/node_index.h"
#include "editing/pipe_matching.h"
#include "host/host.h"
#include "library/library.h"
#include "lowhigh/lowhigh.h"
#include "viewstyle/view_style.h"

namespace kestrana::editing {

using core::General;
using core::NodeField;
using core::PipeField;

namespace {

constexpr char kEscape[] = "\x1b";
constexpr char kLineClass[] = "AcDbLine";
constexpr char kNetworkLayerSuffix[] = " - Network";
// Initial section of a new pipe: millimetres in a metric project, inches
// otherwise.
constexpr double kNewPipeSizeMetric = 200;
constexpr double kNewPipeSizeUS = 8;
constexpr char kNewPipeMaterial[] = "PVC";

std::string PipeType(std::string_view network_type) {
  return std::string(network_type) + core::kPipeKind;
}
std::string NodeType(std::string_view network_type) {
  return std::string(network_type) + core::kNodeKind;
}
std::string NetworkLayer(std::string_view network_name) {
  return std::string(network_name) + kNetworkLayerSuffix;
}

std::string LabelOf(const core::Record& element) {
  return General::EntityLabelFromCombined(
      element.Text(PipeField::kCombinedLabel));
}

struct PlanPoint {
  double x, y;
};
PlanPoint FirstVertex(const std::vector<double>& xy) { return {xy[0], xy[1]}; }
PlanPoint LastVertex(const std::vector<double>& xy) {
  return {xy[xy.size() - 2], xy[xy.size() - 1]};
}

// What placing new elements needs from the drawing: the active view
// style's annotation format, the text angle of the coordinate system and
// the size of a new pipe. A single conversion reads it for each element, a
// batch once.
struct Placing {
  core::TextTable format;
  double correction = 0;
  double pipe_size = 0;
};

Placing ReadPlacing(host::Document& document) {
  return {viewstyle::ViewStyle::GetAnnotationFormatArray(
              viewstyle::ViewStyle::GetActiveViewStyleSettingsArray(document)),
          General::GetCorrectionAngleForCS(document),
          General::GetModelUnits(document) == core::kMetric ? kNewPipeSizeMetric
                                                            : kNewPipeSizeUS};
}

// Steps 2, 4, 5 and 6 of making a node: its record, the block, its layer
// and its annotation. The caller has chosen the label and made sure the
// block exists.
host::BlockReference& InsertNode(host::Document& document, PlanPoint at,
                                 std::string_view network_name,
                                 std::string_view network_type,
                                 const std::string& label,
                                 const Placing& placing) {
  core::Record record = core::Record::WithCodes(core::kNodeRecordCodes);
  record.SetText(NodeField::kCombinedLabel, std::string(core::kNodeKind) + ";" +
                                                std::string(network_name) +
                                                ";" + label);
  record.SetText(NodeField::kElementType, NodeType(network_type));
  record.SetInt16(NodeField::kMatching,
                  static_cast<int16_t>(network_type == core::kGravity
                                           ? Matching::kNone
                                           : Matching::kCenterlines));
  host::BlockReference& node = document.ModelSpace().InsertBlock(
      {at.x, at.y, 0}, core::kNodeBlock, 1, 1, 1, 0);
  record.Write(node);
  node.SetLayer(NetworkLayer(network_name));
  viewstyle::ViewStyle::InsertAnnotationsForNewEntity(
      document, node, placing.correction, placing.format);
  return node;
}

// Steps 4 and 6 to 8 of making a pipe: its record, its layer and its links
// in both end nodes. The caller has chosen the nodes and the label.
void LinkPipe(host::Document& document, host::LwPolyline& pipe,
              host::BlockReference& start, host::BlockReference& end,
              std::string_view network_name, std::string_view network_type,
              const std::string& label, double size) {
  core::Record start_node = ReadNode(start);
  core::Record end_node = ReadNode(end);
  core::Record record = core::Record::WithCodes(core::kPipeRecordCodes);
  record.SetText(PipeField::kCombinedLabel, std::string(core::kPipeKind) + ";" +
                                                std::string(network_name) +
                                                ";" + label);
  record.SetText(PipeField::kElementType, PipeType(network_type));
  record.SetText(PipeField::kSectionShape, core::kSectionShapeCircular);
  record.SetReal(PipeField::kSpan, size);
  record.SetReal(PipeField::kRise, size);
  record.SetInt16(PipeField::kNumCells, 1);
  record.SetText(PipeField::kMaterial, kNewPipeMaterial);
  record.SetText(PipeField::kStartNodeLabel,
                 core::ReferenceEntry(LabelOf(start_node)));
  record.SetText(PipeField::kEndNodeLabel,
                 core::ReferenceEntry(LabelOf(end_node)));
  record.SetText(PipeField::kStartNodeOID,
                 core::ReferenceEntry(core::IdText(start.ObjectID())));
  record.SetText(PipeField::kEndNodeOID,
                 core::ReferenceEntry(core::IdText(end.ObjectID())));
  record.Write(pipe);
  pipe.SetLayer(NetworkLayer(network_name));

  const std::string label_entry = core::ReferenceEntry(label);
  const std::string id_entry =
      core::ReferenceEntry(core::IdText(pipe.ObjectID()));
  auto link = [&](host::Entity& node, core::Record& node_record,
                  NodeField labels, NodeField ids) {
    node_record.SetText(labels, node_record.Text(labels) + label_entry);
    node_record.SetText(ids, node_record.Text(ids) + id_entry);
    node_record.Write(node);
  };
  link(start, start_node, NodeField::kPipesAtStartLabels,
       NodeField::kPipesAtStartOID);
  link(end, end_node, NodeField::kPipesAtEndLabels, NodeField::kPipesAtEndOID);
}

// Applies a node's own rule to all its pipes, `written` seeing each pipe.
void MatchNode(host::Document& document, host::Entity& node,
               const PipeMatched& matched) {
  const core::Record record = ReadNode(node);
  MatchPipesAtNode(document, node, LabelOf(record),
                   record.Text(NodeField::kPipesAtStartOID),
                   record.Text(NodeField::kPipesAtEndOID),
                   record.Number(NodeField::kSumpLevel),
                   record.Int16(NodeField::kMatching), matched);
}

bool SamePoint(const host::Point3& node, PlanPoint end) {
  return core::RoundHalfEven(node.x, kNodeMatchPlaces) ==
             core::RoundHalfEven(end.x, kNodeMatchPlaces) &&
         core::RoundHalfEven(node.y, kNodeMatchPlaces) ==
             core::RoundHalfEven(end.y, kNodeMatchPlaces);
}

// The batch path: the same nodes, labels and links as converting one
// polyline after the other, with the repeated work done once.
class BatchConversion {
 public:
  BatchConversion(host::Document& document, std::string_view network_name,
                  std::string_view network_type,
                  const std::vector<host::Entity*>& existing_nodes,
                  host::SelectionSet& set_nodes_for_low_high)
      : document_(document),
        network_(network_name),
        type_(network_type),
        pipe_labels_(Editing::GetExistingLabelsArray(
            document, network_name, PipeType(network_type), {})),
        node_labels_(Editing::GetExistingLabelsArray(
            document, network_name, NodeType(network_type), {})),
        placing_(ReadPlacing(document)),
        low_high_(set_nodes_for_low_high) {
    General::CreateStandardBlock(document, core::kNodeKind);
    for (host::Entity* node : existing_nodes)
      nodes_.Add(host::As<host::BlockReference>(*node));
  }

  void Convert(host::LwPolyline& pipe) {
    const std::vector<double> xy = pipe.Coordinates();
    const PlanPoint first = FirstVertex(xy), last = LastVertex(xy);
    EndNodes ends = nodes_.Find(KeyOf(first.x, first.y), KeyOf(last.x, last.y));
    if (ends.start == nullptr) ends.start = &NewNode(first);
    if (ends.end == nullptr) ends.end = &NewNode(last);
    LinkPipe(document_, pipe, *ends.start, *ends.end, network_, type_,
             MakeLabel(PipeType(type_), pipe_labels_.Take()),
             placing_.pipe_size);
    low_high_.AddItems({ends.start, ends.end});
    new_pipes_.insert(&pipe);
    for (host::BlockReference* node : {ends.start, ends.end})
      if (touched_set_.insert(node).second) touched_.push_back(node);
    viewstyle::ViewStyle::InsertAnnotationsForNewEntity(
        document_, pipe, placing_.correction, placing_.format);
  }

  // A node's rule gives each of its pipes the same invert however many
  // pipes joined it one by one, so each node is matched once, with all its
  // pipes, and each pipe refreshed once. A new pipe whose record the rule
  // left as it was still shows what its annotation was made from.
  void Finish() {
    std::vector<host::Entity*> edited;
    for (host::BlockReference* node : touched_)
      MatchNode(document_, *node, [&](host::Entity& pipe, bool changed) {
        if (changed || !new_pipes_.contains(&pipe)) edited.push_back(&pipe);
      });
    RefreshEditedPipes(document_, edited);
  }

 private:
  host::BlockReference& NewNode(PlanPoint at) {
    host::BlockReference& node =
        InsertNode(document_, at, network_, type_,
                   MakeLabel(NodeType(type_), node_labels_.Take()), placing_);
    nodes_.Add(node);
    return node;
  }

  host::Document& document_;
  const std::string network_;
  const std::string type_;
  LabelNumbers pipe_labels_;
  LabelNumbers node_labels_;
  const Placing placing_;
  host::SelectionSet& low_high_;
  NodeIndex nodes_;
  std::vector<host::BlockReference*> touched_;
  std::unordered_set<host::BlockReference*> touched_set_;
  std::unordered_set<host::Entity*> new_pipes_;
};

// New pipes take their material and size from the libraries' point of view
// as well, so that the usage counts stay the number of pipes.
void CountNewPipes(host::Document& document,
                   const std::vector<host::LwPolyline*>& pipes) {
  if (pipes.empty()) return;
  std::map<std::string, int> materials;
  std::map<std::pair<std::string, std::string>, int> sizes;
  for (host::LwPolyline* pipe : pipes) {
    const core::Record record = ReadPipe(*pipe);
    ++materials[record.Text(PipeField::kMaterial)];
    const library::PipeSize size = library::PipeSizeOf(record);
    ++sizes[{size.key, size.shape}];
  }
  namespace mc = library::materials_column;
  core::TextTable material_change(static_cast<int>(materials.size()),
                                  mc::kColumns);
  int row = 0;
  for (const auto& [name, count] : materials) {
    material_change(row, mc::kName) = name;
    material_change(row++, mc::kCount) = std::to_string(count);
  }
  library::Library::UpdateMaterialUsage(
      document, library::Library::GetMaterialsArray(document), material_change);
  namespace sc = library::size_change_column;
  core::TextTable size_change(static_cast<int>(sizes.size()), sc::kColumns);
  row = 0;
  for (const auto& [size, count] : sizes) {
    size_change(row, sc::kKey) = size.first;
    size_change(row, sc::kShape) = size.second;
    size_change(row++, sc::kChange) = std::to_string(count);
  }
  library::Library::UpdateSizeUsage(
      document, library::Library::GetSizesArray(document, library::kCircular),
      library::Library::GetSizesArray(document, library::kBox), size_change);
}

}  // namespace

host::SelectionSet& Editing::GetEntitiesToConvert(host::Document& document) {
  host::SelectionSet& set =
      General::InitializeSelectionSet(document, "SetEntitiesToConvert");
  document.SendCommand(kEscape);
  document.GetUtility().Prompt(kConvertPrompt);
  set.SelectOnScreen(core::EntitiesToConvertFilter());
  if (set.Count() == 0) return set;

  // Elements of a network stay what they are.
  std::vector<host::Entity*> elements;
  for (host::Entity* entity : set.Entities())
    if (entity->GetXData(core::kAppName)) elements.push_back(entity);
  set.RemoveItems(elements);

  // Lines become polylines, which join the end of the set in line order.
  for (host::Entity* entity : set.Entities()) {
    if (entity->ObjectName() != kLineClass) continue;
    auto& line = host::As<host::Line>(*entity);
    const host::Point3 from = line.StartPoint(), to = line.EndPoint();
    host::LwPolyline& polyline = document.ModelSpace().AddLightWeightPolyline(
        {from.x, from.y, to.x, to.y});
    set.AddItems({&polyline});
    set.RemoveItems({&line});
    line.Delete();
  }
  return set;
}

void ConvertEntities(host::Document& document,
                     host::SelectionSet& set_entities_to_convert,
                     bool is_existing_network, std::string_view network_name,
                     std::string_view network_type, ConversionPath path) {
  core::UnlockedLayers unlocked(document);
  std::vector<host::Entity*> existing_nodes;
  if (is_existing_network)
    existing_nodes =
        General::GetNetworkSet(document, network_name, 2).Entities();
  for (const char* layer : {"Network", "Annotation", "Arrow"})
    General::CreateStandardLayer(document, network_name, layer);
  viewstyle::ViewStyle::DefineAttributeBlocks(
      document,
      viewstyle::ViewStyle::GetAnnotationFormatArray(
          viewstyle::ViewStyle::GetActiveViewStyleSettingsArray(document)));
  host::SelectionSet& low_high =
      General::InitializeSelectionSet(document, "SetNodesForLowHigh");

  std::vector<host::LwPolyline*> pipes;
  for (host::Entity* entity : set_entities_to_convert.Entities())
    if (auto* polyline = dynamic_cast<host::LwPolyline*>(entity))
      pipes.push_back(polyline);
  if (path == ConversionPath::kSteps) {
    host::SelectionSet& nodes =
        General::InitializeSelectionSet(document, "SetExistingNodes");
    nodes.AddItems(existing_nodes);
    for (size_t i = 0; i < pipes.size(); ++i) {
      Editing::ConvertPlIntoPipe(document, *pipes[i], nodes, network_name,
                                 network_type, low_high);
      core::ReportProgress(core::kConvertingStage, i + 1, pipes.size());
    }
  } else {
    BatchConversion batch(document, network_name, network_type, existing_nodes,
                          low_high);
    for (size_t i = 0; i < pipes.size(); ++i) {
      batch.Convert(*pipes[i]);
      core::ReportProgress(core::kConvertingStage, i + 1, pipes.size());
    }
    batch.Finish();
  }
  CountNewPipes(document, pipes);

  crossing::Crossing::BuildCrossingPointsAfterImporting(
      document, set_entities_to_convert, General::GetModelUnits(document));
  // Gravity networks have no low and high points: the analysis would only
  // read the touched nodes to find that out.
  if (network_type != core::kGravity)
    lowhigh::LowHigh::BuildLowHighPointsAfterImporting(
        document,
        lowhigh::LowHigh::GetInitialNodesOIDArrayForLowHigh(document, low_high),
        network_name);
}

void Editing::CreateElementsInNetwork(
    host::Document& document, host::SelectionSet& set_entities_to_convert,
    bool is_existing_network, std::string_view network_name,
    std::string_view network_type) {
  ConvertEntities(document, set_entities_to_convert, is_existing_network,
                  network_name, network_type, ConversionPath::kBatch);
}

void Editing::ConvertPlIntoPipe(host::Document& document,
                                host::LwPolyline& pipe_entity,
                                host::SelectionSet& set_existing_nodes,
                                std::string_view network_name,
                                std::string_view network_type,
                                host::SelectionSet& set_nodes_for_low_high) {
  const std::vector<double> xy = pipe_entity.Coordinates();
  const PlanPoint first = FirstVertex(xy), last = LastVertex(xy);
  host::BlockReference* start = nullptr;
  host::BlockReference* end = nullptr;
  for (host::Entity* entity : set_existing_nodes.Entities()) {
    auto& node = host::As<host::BlockReference>(*entity);
    const host::Point3 at = node.InsertionPoint();
    if (SamePoint(at, first))
      start = &node;
    else if (SamePoint(at, last))
      end = &node;
    if (start != nullptr && end != nullptr) break;
  }
  if (start == nullptr)
    start = &CreateNewNode(document, first.x, first.y, network_name,
                           network_type, set_existing_nodes);
  if (end == nullptr)
    end = &CreateNewNode(document, last.x, last.y, network_name, network_type,
                         set_existing_nodes);
  const Placing placing = ReadPlacing(document);
  LinkPipe(document, pipe_entity, *start, *end, network_name, network_type,
           GetNextLabel(document, network_name, PipeType(network_type)),
           placing.pipe_size);
  set_nodes_for_low_high.AddItems({start, end});
  for (host::BlockReference* node : {start, end})
    MatchNode(document, *node, [&](host::Entity& pipe, bool) {
      RefreshEditedPipe(document, pipe);
    });
  viewstyle::ViewStyle::InsertAnnotationsForNewEntity(
      document, pipe_entity, placing.correction, placing.format);
}

host::BlockReference& Editing::CreateNewNode(
    host::Document& document, double ins_pnt_x, double ins_pnt_y,
    std::string_view network_name, std::string_view network_type,
    host::SelectionSet& set_existing_nodes) {
  const std::string label =
      GetNextLabel(document, network_name, NodeType(network_type));
  General::CreateStandardBlock(document, core::kNodeKind);
  host::BlockReference& node =
      InsertNode(document, {ins_pnt_x, ins_pnt_y}, network_name, network_type,
                 label, ReadPlacing(document));
  set_existing_nodes.AddItems({&node});
  return node;
}

}  // namespace kestrana::editing
