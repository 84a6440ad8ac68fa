// `kestrana copy` and `kestrana erase`: what the editor's own copy and
// erase commands do to network elements, with the add-on's reactions. The
// shape of a command: command.h.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kestrana::host {
class Document;
}

namespace kestrana::commands {

struct CopyOptions {
  std::string network;
  std::vector<std::string> pipes, nodes;  // by label
  double dx = 0, dy = 0;
};
struct CopyResult {
  std::vector<std::string> labels;  // the copies kept, pipes first
};
// The copies become elements of their own, as the add-on makes them after
// a copy. OptionError when nothing is named.
CopyResult Copy(host::Document& document, const CopyOptions& options);

struct EraseOptions {
  std::optional<std::string> network;  // of the labels
  std::vector<std::string> pipes, nodes, handles;
};
struct EraseResult {
  int chosen = 0;  // what was named
  int erased = 0;  // with what went along
};
// OptionError when nothing is named or labels come without their network;
// NotFoundError for a label or handle that names nothing.
EraseResult Erase(host::Document& document, const EraseOptions& options);

}  // namespace kestrana::commands
