// `kestrana node set` and `kestrana pipe set`: the data of one element,
// passed on to what is connected to it. The shape of a command: command.h.
#pragma once

#include <optional>
#include <string>

namespace kestrana::host {
class Document;
}

namespace kestrana::commands {

struct NodeSetOptions {
  std::string network{};
  std::string label{};
  std::optional<std::string> new_label{};
  std::optional<double> ground{};
  std::optional<double> sump{};
  // "No Matching", "Match Centerlines", "Match Soffits", "Match Inverts"
  std::optional<std::string> matching{};
};

// A node as it stands after an edit.
struct NodeState {
  std::string network{};
  std::string label{};
  double ground = 0;
  double sump = 0;
  std::string matching{};
  int pipes = 0;
};

// Values not given stay as they are. OptionError for another rule text;
// errors of FindElement and CheckNewLabel (elements.h).
NodeState SetNode(host::Document& document, const NodeSetOptions& options);

struct PipeSetOptions {
  std::string network{};
  std::string label{};
  std::optional<std::string> new_label{};
  std::optional<std::string> size{};  // "300" or "1200x800"
  std::optional<int> cells{};
  std::optional<std::string> material{};
  std::optional<double> start_invert{};
  std::optional<double> end_invert{};
};

struct PipeState {
  std::string network{};
  std::string label{};
  std::string size{};  // as annotations write it: "%%c300", "1200X800"
  std::string material{};
  double start_invert = 0;
  double end_invert = 0;
  double length = 0;
};

// Values not given stay as they are. OptionError for a size, cell count or
// material the pipe cannot take; errors of FindElement and CheckNewLabel.
PipeState SetPipe(host::Document& document, const PipeSetOptions& options);

// The text the pipe form hands over for a size given as "300" (a diameter)
// or "1200x800" (a box); OptionError for anything else.
std::string SectionFormText(const std::string& size);

}  // namespace kestrana::commands
