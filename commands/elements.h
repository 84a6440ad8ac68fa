// What the commands on pipes and nodes share: finding a network and an
// element by label, checking names, and the upkeep the add-on does after
// an edit. The shape of a command: command.h.
#pragma once

#include <string>
#include <vector>

namespace kestrana::memhost {
class MemDocument;
}

namespace kestrana::host {
class Document;
class Entity;
class SelectionSet;
}  // namespace kestrana::host

namespace kestrana::commands {

// What General::GetNetworkSet gathers of a network.
inline constexpr int kElementsAndBlocks = 0;
inline constexpr int kPipes = 1;
inline constexpr int kNodes = 2;

enum class ElementKind { kPipe, kNode };

// The network a user names, spelt as the project holds it (letter case
// ignored, core::FindNetworkName); NotFoundError for a network the project
// does not define.
std::string RequireNetwork(host::Document& document,
                           const std::string& network);
// Options with their `network` spelt as the project holds it, so that every
// step below, which compares names exactly, finds the same network as the
// layers and filters do.
template <class Options>
Options WithStoredNetwork(host::Document& document, Options options) {
  options.network = RequireNetwork(document, options.network);
  return options;
}
// The network's type, "Gravity" or "Pressure"; NotFoundError as above.
std::string NetworkType(host::Document& document, const std::string& network);

// The one pipe or node of the network with that label. NotFoundError when
// there is none, RefusedError when there are several, since an edit must
// not guess.
host::Entity& FindElement(host::Document& document, const std::string& network,
                          ElementKind kind, const std::string& label);
// The same for several labels, in their order, looked up in one pass.
std::vector<host::Entity*> FindElements(host::Document& document,
                                        const std::string& network,
                                        ElementKind kind,
                                        const std::vector<std::string>& labels);

// The entity of the drawing with that DXF handle; NotFoundError when no
// entity has it.
host::Entity& EntityOfHandle(host::Document& document,
                             const std::string& handle);

// InvalidInputError for a label that cannot be a name
// (core::CheckUserName), RefusedError for a label another element of the same
// kind in the network already has (letter case ignored).
void CheckNewLabel(host::Document& document, const std::string& network,
                   ElementKind kind, const std::string& label,
                   const host::Entity& element);

// The matching rules of nodes in the order of their codes.
extern const char* const kMatchingRules[4];
// The text of a rule code; "" for a code of no rule.
std::string MatchingRuleText(int code);

// The label of an element from its record.
std::string ElementLabel(const host::Entity& element);

// The low and high points of a pressure network around the nodes an edit
// touched, as the add-on analyses them after each edit.
void AnalyseLowHighAfterEdit(host::Document& document,
                             const std::string& network,
                             host::SelectionSet& touched_nodes);

// Pipes named by label, as the commands on several pipes take them.
struct PipeLabels {
  std::string network;
  std::vector<std::string> labels;
};
// Answers the next on-screen selection with those pipes, as a user picks
// them; NotFoundError for a network or label that is not there.
void AnswerWithPipes(memhost::MemDocument& document, const PipeLabels& pipes);

}  // namespace kestrana::commands
