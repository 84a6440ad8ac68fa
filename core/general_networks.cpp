// Networks, their layers and the standard blocks.
#include <exception>
#include <stdexcept>

#include "core/filters.h"
#include "core/general.h"
#include "core/guards.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/project_record.h"
#include "core/record.h"
#include "core/text.h"
#include "core/values.h"
#include "host/host.h"

namespace kestrana::core {

namespace {

struct LayerKind {
  const char* type;
  const char* suffix;  // after "<network>"; nullptr for a fixed name
  const char* fixed_name;
  int color;
};

constexpr LayerKind kLayerKinds[] = {
    {"Network", kNetworkLayerSuffix, nullptr, host::color::kCyan},
    {"Annotation", kAnnotationLayerSuffix, nullptr, host::color::kGreen},
    {"Arrow", kArrowLayerSuffix, nullptr, host::color::kCyan},
    {"CrossingPointLine", nullptr, kCrossingLinesLayer, host::color::kYellow},
    {"CrossingPointText", nullptr, kCrossingTextLayer, host::color::kGreen},
    {"LowHighPoint", kLowHighLayerSuffix, nullptr, host::color::kWhite},
};

const LayerKind& FindLayerKind(std::string_view layer_type) {
  for (const LayerKind& kind : kLayerKinds)
    if (layer_type == kind.type) return kind;
  throw std::invalid_argument("unknown layer type '" + std::string(layer_type) +
                              "'");
}

std::string LayerName(const LayerKind& kind, std::string_view network) {
  return kind.fixed_name ? kind.fixed_name : std::string(network) + kind.suffix;
}

bool IsActiveLayer(host::Document& document, const host::Layer& layer) {
  return document.ActiveLayer().ObjectID() == layer.ObjectID();
}

// Adds the block named by the first entry of a reference list of object IDs;
// a stale or foreign ID adds nothing.
void AddReferenced(host::Document& document, host::SelectionSet& set,
                   const std::string& reference_list) {
  std::vector<std::string> values = ReferenceValues(reference_list);
  if (values.empty()) return;
  std::optional<host::ObjectId> id = ParseObjectId(values[0]);
  if (!id) return;
  try {
    if (auto* entity =
            dynamic_cast<host::Entity*>(&document.ObjectIdToObject(*id)))
      set.AddItems({entity});
  } catch (const host::HostError&) {
  }
}

// Block geometry on layer "0" takes the layer of the reference.
constexpr char kLayerZero[] = "0";

void AddNodeBlock(host::Document& document, double s) {
  host::Block& block = document.GetBlocks().Add({}, kNodeBlock);
  host::Circle& circle = block.AddCircle({}, 0.5 * s);
  circle.SetLayer(kLayerZero);
  host::Hatch& hatch = block.AddHatch(1, "SOLID", true);
  hatch.SetLayer(kLayerZero);
  hatch.AppendOuterLoop({&circle});
  hatch.Evaluate();
}

void AddLowHighBlock(host::Document& document, const char* name, int color,
                     double s) {
  host::Block& block = document.GetBlocks().Add({}, name);
  for (int r = 1; r <= 4; ++r) {
    host::Circle& circle = block.AddCircle({}, r * s);
    circle.SetLayer(kLayerZero);
    circle.SetTrueColor(color);
  }
}

struct CrossingStyle {
  const char* name;
  double width;    // W, in units of s
  double divider;  // D, in units of s
  const char* first_size_prompt;
};

constexpr CrossingStyle kCrossingStyles[] = {
    {kCrossingAnnoBlockS1, 37.5, 18.5, "stPipeSize"},
    {kCrossingAnnoBlockS2, 48.5, 29.5, "1st Pipe Size"},
    {kCrossingAnnoBlockS3, 58.5, 39.5, "1st Pipe Size"},
};

// A three-row table: sizes left of the divider, inverts right of it,
// clearance along the bottom. The host wants attribute tags, so the
// attributes carry descriptive ones; readers go by their order.
void AddCrossingBlock(host::Document& document, const CrossingStyle& style,
                      double s) {
  host::Block& block = document.GetBlocks().Add({}, style.name);
  const double w = style.width * s, d = style.divider * s;
  const double lines[7][4] = {
      {0, 0, 0, 12 * s},     {0, 12 * s, w, 12 * s}, {w, 12 * s, w, 0},
      {w, 0, 0, 0},          {0, 8 * s, w, 8 * s},   {0, 4 * s, w, 4 * s},
      {d, 12 * s, d, 4 * s},
  };
  document.SetActiveLayer(document.GetLayers().Item(kCrossingLinesLayer));
  for (const auto& l : lines) {
    host::Line& line = block.AddLine({l[0], l[1], 0}, {l[2], l[3], 0});
    line.SetLayer(kCrossingLinesLayer);
  }
  struct Attribute {
    const char* prompt;
    const char* tag;
    double x, y;
  };
  const Attribute attributes[5] = {
      {style.first_size_prompt, "PIPE1SIZE", 1.25 * s, 9 * s},
      {"1st Pipe Invert", "PIPE1INVERT", d + 1.25 * s, 9 * s},
      {"2nd Pipe Size", "PIPE2SIZE", 1.25 * s, 5 * s},
      {"2nd Pipe Invert", "PIPE2INVERT", d + 1.25 * s, 5 * s},
      {"Clearance", "CLEARANCE", w / 2 - 10 * s, 1 * s},
  };
  document.SetActiveLayer(document.GetLayers().Item(kCrossingTextLayer));
  for (const Attribute& a : attributes) {
    host::AttributeDefinition& definition =
        block.AddAttribute(2 * s, 0, a.prompt, {a.x, a.y, 0}, a.tag, "");
    definition.SetLayer(kCrossingTextLayer);
  }
}

}  // namespace

void General::CreateNetworkDefintion(host::Document& document,
                                     std::string_view network_name,
                                     std::string_view network_type) {
  const std::string name(network_name);
  Record record = ReadProjectRecord(document);

  std::string names = record.Text(ProjectField::kNetworkNames) + name + ";";
  record.SetText(ProjectField::kNetworkNames, names);
  record.SetText(ProjectField::kNetworkTypes,
                 record.Text(ProjectField::kNetworkTypes) +
                     std::string(network_type) + ";");

  // A new network is shown.
  ViewStylesField styles =
      ViewStylesField::Parse(record.Text(ProjectField::kViewStyles));
  styles.visibility += "1";
  record.SetText(ProjectField::kViewStyles, styles.Format());

  // Crossings with every earlier network are shown.
  std::vector<std::string> networks = ListEntries(names);
  CrossingSettingsField crossing = CrossingSettingsField::Parse(
      record.Text(ProjectField::kCrossingSettings));
  for (size_t i = 0; i + 1 < networks.size(); ++i)
    crossing.pairs.emplace_back(name, networks[i]);
  record.SetText(ProjectField::kCrossingSettings, crossing.Format());

  if (network_type == kPressure)
    record.SetText(ProjectField::kLowHighNetworks,
                   record.Text(ProjectField::kLowHighNetworks) + name + ";");
  WriteProjectRecord(document, record);

  CreateStandardLayer(document, name, "Network");
  if (network_type == kGravity)
    SetLayerColor(document, name + kNetworkLayerSuffix, "6");
  CreateStandardLayer(document, name, "Annotation");
  CreateStandardLayer(document, name, "Arrow");
}

bool General::CheckNetworkExists(host::Document& document,
                                 std::string_view network_name) {
  for (const std::string& name : ListEntries(
           ReadProjectRecord(document).Text(ProjectField::kNetworkNames)))
    if (name == network_name) return true;
  return false;
}

TextTable General::GetNetworkDefinitions(host::Document& document) {
  Record record = ReadProjectRecord(document);
  std::vector<std::string> names =
      ListEntries(record.Text(ProjectField::kNetworkNames));
  std::vector<std::string> types =
      Split(record.Text(ProjectField::kNetworkTypes));
  if (names.empty()) return TextTable(1, 2);
  TextTable table(static_cast<int>(names.size()), 2);
  for (size_t i = 0; i < names.size(); ++i) {
    const int row = static_cast<int>(i);
    table(row, network_column::kName) = names[i];
    table(row, network_column::kType) = i < types.size() ? types[i] : "";
  }
  return table;
}

std::vector<std::string> General::GetNetworkNames(host::Document& document) {
  std::vector<std::string> names = ListEntries(
      ReadProjectRecord(document).Text(ProjectField::kNetworkNames));
  if (names.empty()) names.emplace_back();
  return names;
}

host::SelectionSet& General::GetNetworkSet(host::Document& document,
                                           std::string_view net_name,
                                           int elements_option) {
  host::SelectionSet& result = InitializeSelectionSet(document, "NetworkSet");
  using namespace network_set;
  const bool with_blocks = elements_option == kElementsAndBlocks;
  if (with_blocks || elements_option == kPipes) {
    host::SelectionSet& pipes = InitializeSelectionSet(document, "PipeSet");
    pipes.Select(host::SelectMode::kAll, {}, {},
                 PipesOfNetworkFilter(net_name));
    for (host::Entity* pipe : pipes.Entities()) {
      try {
        result.AddItems({pipe});
        if (!with_blocks) continue;
        Record record = Record::ReadRequired(*pipe);
        AddReferenced(document, result,
                      record.Text(PipeField::kAnnotationOIDRef));
        AddReferenced(document, result, record.Text(PipeField::kArrowOIDRef));
      } catch (const std::out_of_range&) {
        // A damaged record: the pipe is in, its blocks are not found.
      }
    }
  }
  if (with_blocks || elements_option == kNodes) {
    host::SelectionSet& nodes = InitializeSelectionSet(document, "NodeSet");
    nodes.Select(host::SelectMode::kAll, {}, {}, NodeBlocksFilter());
    for (host::Entity* node : nodes.Entities()) {
      try {
        Record record = Record::ReadRequired(*node);
        if (EntityNetworkFromCombined(record.Text(NodeField::kCombinedLabel)) !=
            net_name)
          continue;
        result.AddItems({node});
        if (with_blocks)
          AddReferenced(document, result,
                        record.Text(NodeField::kAnnotationOIDRef));
      } catch (const MissingRecordError&) {
        // A node block that is no element belongs to no network.
      } catch (const std::out_of_range&) {
        // Nor does one whose record is damaged.
      }
    }
  }
  return result;
}

void General::DeleteNetworkDefintion(host::Document& document,
                                     std::string_view network_name) {
  Record record = ReadProjectRecord(document);
  std::vector<std::string> names =
      ListEntries(record.Text(ProjectField::kNetworkNames));
  std::optional<size_t> position;
  std::vector<std::string> kept_names;
  for (size_t i = 0; i < names.size(); ++i) {
    if (names[i] == network_name) {
      if (!position) position = i;
    } else {
      kept_names.push_back(names[i]);
    }
  }
  // The position drives the removal from the other fields, so a name that is
  // not there would take another network's type and visibility with it.
  if (!position)
    throw std::invalid_argument("there is no network named '" +
                                std::string(network_name) + "'");
  const size_t k = *position;
  record.SetText(ProjectField::kNetworkNames, JoinEntries(kept_names));

  std::vector<std::string> types =
      ListEntries(record.Text(ProjectField::kNetworkTypes));
  if (k < types.size()) types.erase(types.begin() + k);
  record.SetText(ProjectField::kNetworkTypes, JoinEntries(types));

  ViewStylesField styles =
      ViewStylesField::Parse(record.Text(ProjectField::kViewStyles));
  if (k < styles.visibility.size()) styles.visibility.erase(k, 1);
  record.SetText(ProjectField::kViewStyles, styles.Format());

  CrossingSettingsField crossing = CrossingSettingsField::Parse(
      record.Text(ProjectField::kCrossingSettings));
  std::erase_if(crossing.pairs, [&](const auto& pair) {
    return pair.first == network_name || pair.second == network_name;
  });
  record.SetText(ProjectField::kCrossingSettings, crossing.Format());

  std::vector<std::string> low_high;
  for (const std::string& name :
       ListEntries(record.Text(ProjectField::kLowHighNetworks)))
    if (name != network_name) low_high.push_back(name);
  record.SetText(ProjectField::kLowHighNetworks, JoinEntries(low_high));

  WriteProjectRecord(document, record);
}

void General::DeleteNetworkLayers(host::Document& document,
                                  std::string_view net_name) {
  for (const char* suffix : {kNetworkLayerSuffix, kAnnotationLayerSuffix,
                             kArrowLayerSuffix, kLowHighLayerSuffix}) {
    try {
      document.GetLayers().Item(std::string(net_name) + suffix).Delete();
    } catch (const host::HostError&) {
      // Missing, in use or current: the layer stays and the next is tried.
    }
  }
}

host::Layer& General::CreateStandardLayer(host::Document& document,
                                          std::string_view net_name,
                                          std::string_view layer_type) {
  const LayerKind& kind = FindLayerKind(layer_type);
  std::string name = LayerName(kind, net_name);
  host::Layers& layers = document.GetLayers();
  if (host::Layer* existing = layers.Find(name)) return *existing;
  host::Layer& layer = layers.Add(name);
  layer.SetTrueColor(kind.color);
  return layer;
}

void General::SetLayerColor(host::Document& document,
                            std::string_view layer_name,
                            std::string_view color_name) {
  document.GetLayers()
      .Item(std::string(layer_name))
      .SetTrueColor(ToInt16(NumericValue(color_name)));
}

std::vector<LayerStatus> General::OpenLayerForWrite(
    host::Document& document, std::string_view layer_names_string) {
  std::vector<LayerStatus> table;
  for (const std::string& name : Split(layer_names_string)) {
    LayerStatus status;
    if (host::Layer* layer = document.GetLayers().Find(name)) {
      status = {layer->Name(), layer->Freeze(), layer->Lock()};
      layer->SetLock(false);
      if (!IsActiveLayer(document, *layer)) layer->SetFreeze(false);
    }
    table.push_back(status);
  }
  return table;
}

void General::RestoreLayerStatus(host::Document& document,
                                 const std::vector<LayerStatus>& layer_status) {
  for (const LayerStatus& status : layer_status) {
    if (status.name.empty()) continue;
    host::Layer* layer = document.GetLayers().Find(status.name);
    if (layer == nullptr) continue;
    layer->SetLock(status.locked);
    if (!IsActiveLayer(document, *layer)) layer->SetFreeze(status.frozen);
  }
}

std::vector<std::string> General::UnlockAllLayers(host::Document& document) {
  std::vector<std::string> locked;
  host::Layers& layers = document.GetLayers();
  for (int i = 0; i < layers.Count(); ++i) {
    host::Layer& layer = layers.Item(i);
    if (!layer.Lock()) continue;
    locked.push_back(layer.Name());
    layer.SetLock(false);
  }
  if (locked.empty()) locked.emplace_back();
  return locked;
}

void General::RestoreLockedLayers(host::Document& document,
                                  const std::vector<std::string>& locked) {
  if (locked.empty() || locked[0].empty()) return;
  for (const std::string& name : locked)
    document.GetLayers().Item(name).SetLock(true);
}

void General::CreateStandardBlock(host::Document& document,
                                  std::string_view element_type) {
  const double s = GetModelUnits(document) == kMetric ? 1.0 : 3.0;
  // Block names ignore letter case in the host, so a block that differs
  // only in case already exists and is left alone.
  auto missing = [&](const char* name) {
    return document.GetBlocks().Find(name) == nullptr;
  };
  if (element_type == "Node") {
    SavedActiveLayer active(document);
    if (missing(kNodeBlock)) AddNodeBlock(document, s);
  } else if (element_type == "LowHighPoint") {
    SavedActiveLayer active(document);
    if (missing(kLowPointBlock))
      AddLowHighBlock(document, kLowPointBlock, host::color::kRed, s);
    if (missing(kHighPointBlock))
      AddLowHighBlock(document, kHighPointBlock, host::color::kGreen, s);
  } else if (element_type == "CrossingPoint") {
    bool any_missing = false;
    for (const CrossingStyle& style : kCrossingStyles)
      any_missing |= missing(style.name);
    if (!any_missing) return;
    CreateStandardLayer(document, "", "CrossingPointLine");
    CreateStandardLayer(document, "", "CrossingPointText");
    std::vector<LayerStatus> status = OpenLayerForWrite(
        document, std::string(kCrossingLinesLayer) + ";" + kCrossingTextLayer);
    {
      SavedActiveLayer active(document);
      for (const CrossingStyle& style : kCrossingStyles)
        if (missing(style.name)) AddCrossingBlock(document, style, s);
    }
    // The user's lock and freeze state of the two layers comes back.
    RestoreLayerStatus(document, status);
  }
}

bool General::CheckBlockExists(host::Document& document,
                               std::string_view block_name) {
  host::Blocks& blocks = document.GetBlocks();
  for (int i = 1; i < blocks.Count(); ++i)
    if (blocks.Item(i).Name() == block_name) return true;
  return false;
}

host::Block& General::InitializeBlockDefinition(host::Document& document,
                                                std::string_view block_name) {
  host::Blocks& blocks = document.GetBlocks();
  if (host::Block* block = blocks.Find(std::string(block_name))) {
    for (host::Entity* entity : block->Entities()) entity->Delete();
    return *block;
  }
  return blocks.Add({}, std::string(block_name));
}

}  // namespace kestrana::core
