#include "cli/editing_support.h"

#include <algorithm>
#include <cctype>

#include "cli/command.h"
#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "core/text.h"
#include "editing/editing.h"
#include "host/host.h"
#include "lowhigh/lowhigh.h"
#include "memhost/document.h"

namespace kestrana::cli {

using core::General;

namespace {

constexpr int kPipesOption = 1;
constexpr int kNodesOption = 2;

const char* KindName(ElementKind kind) {
  return kind == ElementKind::kPipe ? "pipe" : "node";
}

}  // namespace

void RequireNetwork(host::Document& document, const std::string& network) {
  if (!General::CheckNetworkExists(document, network))
    throw CommandError("the project has no network named \"" + network + "\"");
}

std::string NetworkType(host::Document& document, const std::string& network) {
  core::TextTable networks = General::GetNetworkDefinitions(document);
  for (int row = 0; row < networks.Rows(); ++row)
    if (networks(row, 0) == network) return networks(row, 1);
  throw CommandError("the project has no network named \"" + network + "\"");
}

std::string ElementLabel(const host::Entity& element) {
  return General::EntityLabelFromCombined(
      core::Record::ReadRequired(element).Text(
          core::PipeField::kCombinedLabel));
}

host::Entity& FindElement(host::Document& document, const std::string& network,
                          ElementKind kind, const std::string& label) {
  RequireNetwork(document, network);
  std::vector<host::Entity*> found;
  for (host::Entity* element :
       General::GetNetworkSet(
           document, network,
           kind == ElementKind::kPipe ? kPipesOption : kNodesOption)
           .Entities())
    if (ElementLabel(*element) == label) found.push_back(element);
  if (found.empty())
    throw CommandError("the network \"" + network + "\" has no " +
                       KindName(kind) + " labelled \"" + label + "\"");
  if (found.size() > 1)
    throw CommandError("the label \"" + label + "\" names " +
                       std::to_string(found.size()) + " " + KindName(kind) +
                       "s of the network \"" + network +
                       "\"; give one of them another label first");
  return *found.front();
}

void CheckNewLabel(host::Document& document, const std::string& network,
                   ElementKind kind, const std::string& label,
                   const host::Entity& element) {
  if (label.empty()) throw UsageError("the new label is empty");
  if (General::CheckTextForBannedCharacters(label, 1))
    throw CommandError("The label \"" + label +
                       "\" contains a character that names cannot hold "
                       "(: ; \" / \\ > < * | ? , =)");
  const std::string type =
      NetworkType(document, network) +
      (kind == ElementKind::kPipe ? core::kPipeKind : core::kNodeKind);
  for (const std::string& taken : editing::Editing::GetExistingLabelsArray(
           document, network, type, {core::IdText(element.ObjectID())}))
    if (!taken.empty() && core::SameIgnoringCase(taken, label))
      throw CommandError("the network \"" + network + "\" already has a " +
                         KindName(kind) + " labelled \"" + taken + "\"");
}

void AnalyseLowHighAfterEdit(host::Document& document,
                             const std::string& network,
                             host::SelectionSet& touched_nodes) {
  if (touched_nodes.Count() == 0) return;
  lowhigh::LowHigh::BuildLowHighPointsAfterImporting(
      document,
      lowhigh::LowHigh::GetInitialNodesOIDArrayForLowHigh(document,
                                                          touched_nodes),
      network);
}

PipeLabelsOptions ParsePipeLabels(const std::vector<std::string>& args) {
  Args a(args, {}, {"network", "labels", "output"});
  a.ExpectPositionals(1);
  PipeLabelsOptions options;
  options.drawing = a.Positional(0, "the drawing (DRAWING.dxf)");
  options.output = a.Option("output");
  options.network = a.Required("network");
  a.Required("labels");
  options.labels = a.Names("labels");
  return options;
}

void AnswerWithPipes(memhost::MemDocument& document,
                     const PipeLabelsOptions& options) {
  RequireNetwork(document, options.network);
  std::vector<host::ObjectId> ids;
  for (const std::string& label : options.labels)
    ids.push_back(
        FindElement(document, options.network, ElementKind::kPipe, label)
            .ObjectID());
  document.GetSession().Push(memhost::Input::Objects(std::move(ids)));
}

}  // namespace kestrana::cli
