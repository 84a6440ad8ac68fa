// `kestrana profile lines`: the continuous lines of a gravity network,
// named after their manholes, with their pipes.
#pragma once

#include <string>
#include <vector>

namespace kestrana::host {
class Document;
}

namespace kestrana::commands {

struct ProfileLinesOptions {
  std::string network = {};
};
struct ProfileLine {
  std::string name;
  std::vector<std::string> pipes;  // labels, in the network's order
  friend bool operator==(const ProfileLine&, const ProfileLine&) = default;
};
struct ProfileLinesResult {
  std::string network;
  std::vector<ProfileLine> lines;
};
// NotFoundError for a network the project lacks; InvalidInputError for a
// pressure network, whose nodes are not manholes.
ProfileLinesResult ProfileLines(host::Document& document,
                                const ProfileLinesOptions& options);

}  // namespace kestrana::commands
