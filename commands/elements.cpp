#include "commands/elements.h"

#include <unordered_map>

#include "commands/command.h"
#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "core/text.h"
#include "core/user_names.h"
#include "editing/editing.h"
#include "host/host.h"
#include "lowhigh/lowhigh.h"
#include "memhost/document.h"

namespace kestrana::commands {

using core::General;

namespace {

const char* KindName(ElementKind kind) {
  return kind == ElementKind::kPipe ? "pipe" : "node";
}

}  // namespace

std::string RequireNetwork(host::Document& document,
                           const std::string& network) {
  if (std::optional<std::string> stored =
          core::FindNetworkName(document, network))
    return *stored;
  throw NotFoundError("the project has no network named \"" + network + "\"");
}

std::string NetworkType(host::Document& document, const std::string& typed) {
  const std::string network = RequireNetwork(document, typed);
  core::TextTable networks = General::GetNetworkDefinitions(document);
  for (int row = 0; row < networks.Rows(); ++row)
    if (networks(row, 0) == network) return networks(row, 1);
  throw NotFoundError("the project has no network named \"" + network + "\"");
}

const char* const kMatchingRules[4] = {
    editing::kNoMatching, editing::kMatchCenterlines, editing::kMatchSoffits,
    editing::kMatchInverts};

std::string MatchingRuleText(int code) {
  return code >= 0 && code < 4 ? kMatchingRules[code] : "";
}

std::string ElementLabel(const host::Entity& element) {
  return General::EntityLabelFromCombined(
      core::Record::ReadRequired(element).Text(
          core::PipeField::kCombinedLabel));
}

std::vector<host::Entity*> FindElements(
    host::Document& document, const std::string& typed, ElementKind kind,
    const std::vector<std::string>& labels) {
  const std::string network = RequireNetwork(document, typed);
  std::unordered_map<std::string, std::vector<host::Entity*>> by_label;
  for (const std::string& label : labels) by_label[label];
  for (host::Entity* element :
       General::GetNetworkSet(document, network,
                              kind == ElementKind::kPipe ? kPipes : kNodes)
           .Entities()) {
    auto it = by_label.find(ElementLabel(*element));
    if (it != by_label.end()) it->second.push_back(element);
  }
  std::vector<host::Entity*> elements;
  for (const std::string& label : labels) {
    const std::vector<host::Entity*>& found = by_label[label];
    if (found.empty())
      throw NotFoundError("the network \"" + network + "\" has no " +
                          KindName(kind) + " labelled \"" + label + "\"");
    if (found.size() > 1)
      throw RefusedError("the label \"" + label + "\" names " +
                         std::to_string(found.size()) + " " + KindName(kind) +
                         "s of the network \"" + network +
                         "\"; give one of them another label first");
    elements.push_back(found.front());
  }
  return elements;
}

host::Entity& FindElement(host::Document& document, const std::string& network,
                          ElementKind kind, const std::string& label) {
  return *FindElements(document, network, kind, {label}).front();
}

host::Entity& EntityOfHandle(host::Document& document,
                             const std::string& handle) {
  host::Entity* entity = nullptr;
  try {
    entity = dynamic_cast<host::Entity*>(&document.HandleToObject(handle));
  } catch (const host::HostError&) {
    // No object has it.
  }
  if (entity == nullptr)
    throw NotFoundError("no entity of the drawing has the handle \"" + handle +
                        "\"");
  return *entity;
}

void CheckNewLabel(host::Document& document, const std::string& typed,
                   ElementKind kind, const std::string& label,
                   const host::Entity& element) {
  const std::string network = RequireNetwork(document, typed);
  core::CheckUserName("The label", label);
  const std::string type =
      NetworkType(document, network) +
      (kind == ElementKind::kPipe ? core::kPipeKind : core::kNodeKind);
  for (const std::string& taken : editing::Editing::GetExistingLabelsArray(
           document, network, type, {core::IdText(element.ObjectID())}))
    if (!taken.empty() && core::SameIgnoringCase(taken, label))
      throw RefusedError("the network \"" + network + "\" already has a " +
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

void AnswerWithPipes(memhost::MemDocument& document, const PipeLabels& pipes) {
  const std::string network = RequireNetwork(document, pipes.network);
  std::vector<host::ObjectId> ids;
  for (size_t i = 0; i < pipes.labels.size(); ++i)
    for (size_t j = 0; j < i; ++j)
      if (pipes.labels[i] == pipes.labels[j])
        throw OptionError("the pipe \"" + pipes.labels[i] +
                          "\" is named twice; name each pipe once");
  for (const std::string& label : pipes.labels)
    ids.push_back(
        FindElement(document, network, ElementKind::kPipe, label).ObjectID());
  document.GetSession().Push(memhost::Input::Objects(std::move(ids)));
}

}  // namespace kestrana::commands
