// kestrana node set: a node's label, levels and matching rule.
#include <ostream>

#include "cli/command.h"
#include "cli/editing.h"
#include "cli/editing_support.h"
#include "cli/project.h"
#include "core/general.h"
#include "core/lists.h"
#include "core/node_record.h"
#include "core/record.h"
#include "core/text.h"
#include "editing/editing.h"
#include "host/host.h"
#include "memhost/document.h"

namespace kestrana::cli {

using core::General;
using core::NodeField;
using editing::Editing;
using editing::Matching;

namespace {

// The rule texts in code order.
constexpr const char* kRuleTexts[] = {
    editing::kNoMatching, editing::kMatchCenterlines, editing::kMatchSoffits,
    editing::kMatchInverts};

std::string RuleText(int16_t code) {
  return code >= 0 && code < 4 ? kRuleTexts[code] : "";
}

void CheckRuleText(const std::string& text) {
  for (const char* rule : kRuleTexts)
    if (text == rule) return;
  throw UsageError(
      "--matching must be \"No Matching\", \"Match Centerlines\", "
      "\"Match Soffits\" or \"Match Inverts\", not '" +
      text + "'");
}

NodeState StateOf(const std::string& network, const host::Entity& node) {
  core::Record record = core::Record::ReadRequired(node);
  return {
      network,
      General::EntityLabelFromCombined(record.Text(NodeField::kCombinedLabel)),
      record.Number(NodeField::kGroundLevel),
      record.Number(NodeField::kSumpLevel),
      RuleText(record.Int16(NodeField::kMatching)),
      static_cast<int>(
          core::ReferenceValues(record.Text(NodeField::kPipesAtStartOID))
              .size() +
          core::ReferenceValues(record.Text(NodeField::kPipesAtEndOID))
              .size())};
}

}  // namespace

NodeState SetNodeInDocument(memhost::MemDocument& document,
                            const NodeSetOptions& options) {
  if (options.matching) CheckRuleText(*options.matching);
  host::Entity& node =
      FindElement(document, options.network, ElementKind::kNode, options.label);
  if (options.new_label && *options.new_label != options.label)
    CheckNewLabel(document, options.network, ElementKind::kNode,
                  *options.new_label, node);
  const NodeState before = StateOf(options.network, node);

  // The add-on opens the layers around an edit; the operation leaves that
  // to its caller.
  const std::vector<std::string> locked = General::UnlockAllLayers(document);
  host::SelectionSet& touched =
      General::InitializeSelectionSet(document, "SetNodesForLowHigh");
  Editing::UpdateNodeData(document, core::IdText(node.ObjectID()),
                          options.new_label.value_or(options.label),
                          options.ground.value_or(before.ground),
                          options.sump.value_or(before.sump),
                          options.matching.value_or(before.matching), touched);
  AnalyseLowHighAfterEdit(document, options.network, touched);
  General::RestoreLockedLayers(document, locked);
  return StateOf(options.network, node);
}

NodeSetResult SetNode(const NodeSetOptions& options) {
  NodeSetResult result;
  EditProjectDrawing(options.drawing, options.output,
                     [&](memhost::MemDocument& document) {
                       result.node = SetNodeInDocument(document, options);
                     });
  result.written = options.output.value_or(options.drawing);
  return result;
}

namespace {

int Run(const std::vector<std::string>& args, Io& io) {
  Args a(args, {},
         {"network", "label", "new-label", "ground", "sump", "matching",
          "output"});
  a.ExpectPositionals(1);
  NodeSetOptions options;
  options.drawing = a.Positional(0, "the drawing (DRAWING.dxf)");
  options.output = a.Option("output");
  options.network = a.Required("network");
  options.label = a.Required("label");
  options.new_label = a.Option("new-label");
  if (auto v = a.Option("ground")) options.ground = ParseReal(*v, "--ground");
  if (auto v = a.Option("sump")) options.sump = ParseReal(*v, "--sump");
  options.matching = a.Option("matching");
  NodeSetResult r = SetNode(options);
  const NodeState& n = r.node;
  io.out << "node " << n.label << " of " << n.network << ": ground "
         << core::GeneralText(n.ground) << ", sump "
         << core::GeneralText(n.sump) << ", " << n.matching << ", " << n.pipes
         << " pipe" << (n.pipes == 1 ? "" : "s") << "\nwrote " << r.written
         << "\n";
  return 0;
}

Registrar node_set_command(
    {"node set", "a node's label, ground and sump levels, matching rule",
     "Usage: kestrana node set DRAWING --network N --label L [--new-label L2]\n"
     "         [--ground Z] [--sump Z] [--matching RULE] [-o OUT]\n\n"
     "Stores the node's data and passes it on: every pipe at the node takes\n"
     "its invert at the node by the matching rule, and the annotations,\n"
     "crossings and profile flags of those pipes follow. In a pressure\n"
     "network the low and high points around the node are analysed again.\n"
     "Values not given stay as they are.\n\n"
     "  --network N          the node's network\n"
     "  --label L            the node's label (unique in the network)\n"
     "  --new-label L2       a new label, not yet used in the network\n"
     "  --ground Z           ground (cover) level\n"
     "  --sump Z             sump level; with \"No Matching\" it is lowered "
     "to\n"
     "                       the lowest pipe invert at the node if above it\n"
     "  --matching RULE      \"No Matching\": pipes keep their inverts;\n"
     "                       \"Match Centerlines\", \"Match Soffits\": the\n"
     "                       centre lines or tops line up with those of the\n"
     "                       tallest pipe standing on the sump;\n"
     "                       \"Match Inverts\": every invert at the sump\n"
     "  -o, --output OUT     write to OUT instead of DRAWING\n",
     Run});

}  // namespace

}  // namespace kestrana::cli
