// A set of pipes seen as a chain: which pipes meet at which node, read once
// from their records, so that testing and walking a run of n pipes takes
// time in proportion to n.
#pragma once

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace kestrana::host {
class Entity;
class LwPolyline;
}  // namespace kestrana::host

namespace kestrana::profile {

struct ChainPipe {
  const host::LwPolyline* entity = nullptr;
  std::string label;
  std::string start_node;  // pipe field 12, ";RelatedTo<node label>"
  std::string end_node;    // pipe field 13
  // Other pipes of the set that share the node at either end.
  int at_start = 0;
  int at_end = 0;
  bool IsEnd() const { return (at_start == 0) != (at_end == 0); }
};

class PipeChainIndex {
 public:
  // The pipes in the order given; HostError for a member that is not a
  // polyline, MissingRecordError for one without a pipe record.
  explicit PipeChainIndex(const std::vector<host::Entity*>& pipes);

  const std::vector<ChainPipe>& Pipes() const { return pipes_; }
  // One unbranched open chain: no node shared by three pipes, no pipe on
  // its own, exactly two end pipes, and every pipe reached from one end.
  // A single pipe is a chain.
  bool IsOneRun() const;
  // The pipes in chain order from one end of `first` (its start node when
  // `from_start`), with their directions (0 when walked from start node to
  // end node). It stops where no further pipe of the set is found, so it
  // holds every pipe only when the set is one run from there.
  struct Step {
    int pipe = 0;
    int direction = 0;
  };
  std::vector<Step> Walk(int first, bool from_start) const;
  // The indexes of the end pipes, in set order.
  std::vector<int> EndPipes() const;

 private:
  // The pipes (indexes) having the node entry at either end, once each.
  const std::vector<int>& PipesAt(const std::string& node) const;

  std::vector<ChainPipe> pipes_;
  std::unordered_map<std::string, std::vector<int>> at_node_;
};

}  // namespace kestrana::profile
