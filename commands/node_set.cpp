#include "commands/command.h"
#include "commands/element_data.h"
#include "commands/relabel.h"
#include "commands/elements.h"
#include "core/general.h"
#include "core/guards.h"
#include "core/lists.h"
#include "core/node_record.h"
#include "core/record.h"
#include "core/text.h"
#include "editing/editing.h"
#include "host/host.h"

namespace kestrana::commands {

using core::General;
using core::NodeField;
using editing::Editing;

namespace {

void CheckRuleText(const std::string& text) {
  for (const char* rule : kMatchingRules)
    if (text == rule) return;
  throw OptionError(
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
      MatchingRuleText(record.Int16(NodeField::kMatching)),
      static_cast<int>(
          core::ReferenceValues(record.Text(NodeField::kPipesAtStartOID))
              .size() +
          core::ReferenceValues(record.Text(NodeField::kPipesAtEndOID))
              .size())};
}

}  // namespace

NodeState SetNode(host::Document& document, const NodeSetOptions& typed) {
  const NodeSetOptions options = WithStoredNetwork(document, typed);
  if (options.matching) CheckRuleText(*options.matching);
  host::Entity& node =
      FindElement(document, options.network, ElementKind::kNode, options.label);
  if (options.new_label && *options.new_label != options.label)
    CheckNewLabel(document, options.network, ElementKind::kNode,
                  *options.new_label, node);
  const NodeState before = StateOf(options.network, node);

  // The add-on opens the layers around an edit; the operation leaves that
  // to its caller.
  core::UnlockedLayers unlocked(document);
  host::SelectionSet& touched =
      General::InitializeSelectionSet(document, "SetNodesForLowHigh");
  Editing::UpdateNodeData(document, core::IdText(node.ObjectID()),
                          options.new_label.value_or(options.label),
                          options.ground.value_or(before.ground),
                          options.sump.value_or(before.sump),
                          options.matching.value_or(before.matching), touched);
  if (options.new_label && *options.new_label != options.label)
    RelabelDependents(document, node);
  AnalyseLowHighAfterEdit(document, options.network, touched);
  return StateOf(options.network, node);
}

}  // namespace kestrana::commands
