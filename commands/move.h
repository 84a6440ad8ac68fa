// `kestrana move` and `kestrana stretch`: what the editor's own move and
// stretch commands do to network elements, with the add-on's reactions.
// The shape of a command: command.h.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kestrana::host {
class Document;
}

namespace kestrana::commands {

// What a move or stretch left changed besides the entities it moved.
struct MoveResult {
  int moved = 0;  // entities the editor moved
  // "<network> <label>" of every pipe whose course changed, in ID order.
  std::vector<std::string> reshaped_pipes;
  int crossings = 0;  // the crossings those pipes have now
  std::vector<std::string> profiles_to_update;  // flagged, by name
};

struct MoveOptions {
  std::optional<std::string> network{};  // of the labels
  std::vector<std::string> nodes{};
  std::vector<std::string> pipes{};
  std::vector<std::string> handles{};
  double dx = 0;
  double dy = 0;
};
// Moves the named entities by the offset, then reacts as the add-on does:
// a node takes its pipes' ends and its marker along; a pipe moved on its
// own, a marker or a crossing line goes back to what it belongs to.
// OptionError when nothing is named, labels come without their network or
// the offset is not finite; NotFoundError for a label or handle that names
// nothing or an entity outside model space; RefusedError for an entity on a
// locked layer.
MoveResult Move(host::Document& document, const MoveOptions& options);

struct StretchOptions {
  std::string network{};
  std::string pipe{};  // label
  int vertex = 0;      // from 0 at the first vertex
  double x = 0;
  double y = 0;
};
// Moves one vertex of a pipe to the point; an end vertex goes back onto
// its node. InvalidInputError for a vertex the pipe does not have.
MoveResult Stretch(host::Document& document, const StretchOptions& options);

}  // namespace kestrana::commands
