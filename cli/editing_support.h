// What the editing commands share: finding an element by its label,
// checking a new label, and the upkeep the add-on does around an edit.
#pragma once

#include <optional>
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

namespace kestrana::cli {

enum class ElementKind { kPipe, kNode };

// CommandError for a network the project does not define.
void RequireNetwork(host::Document& document, const std::string& network);
// The network's type, "Gravity" or "Pressure".
std::string NetworkType(host::Document& document, const std::string& network);

// The one pipe or node of the network with that label. CommandError when
// there is none, or more than one, since an edit must not guess.
host::Entity& FindElement(host::Document& document, const std::string& network,
                          ElementKind kind, const std::string& label);

// CommandError for an empty label, a banned character, or a label another
// element of the same kind in the network already has (letter case
// ignored).
void CheckNewLabel(host::Document& document, const std::string& network,
                   ElementKind kind, const std::string& label,
                   const host::Entity& element);

// The low and high points of a pressure network around the nodes an edit
// touched, as the add-on analyses them after each edit.
void AnalyseLowHighAfterEdit(host::Document& document,
                             const std::string& network,
                             host::SelectionSet& touched_nodes);

// Commands on pipes named by label: DRAWING --network N --labels L,L,...
// [-o OUT].
struct PipeLabelsOptions {
  std::string drawing;
  std::optional<std::string> output;
  std::string network;
  std::vector<std::string> labels;
};
PipeLabelsOptions ParsePipeLabels(const std::vector<std::string>& args);
// Answers the next on-screen selection with those pipes, as a user picks
// them; CommandError for a network or label that is not there.
void AnswerWithPipes(memhost::MemDocument& document,
                     const PipeLabelsOptions& options);

// The label of an element from its record.
std::string ElementLabel(const host::Entity& element);

}  // namespace kestrana::cli
