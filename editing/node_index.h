// The nodes of a conversion by their point rounded to 5 decimal places,
// answering which node each end of a new pipe takes exactly as walking the
// nodes in order would: the walk stops once both ends have a node, and of
// several nodes at one end the last one met before it stops is taken.
#pragma once

#include <cstddef>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/types.h"

namespace kestrana::host {
class BlockReference;
}

namespace kestrana::editing {

// Node points and pipe ends match when X and Y agree to this many places.
inline constexpr int kNodeMatchPlaces = 5;

// A plan point rounded the way nodes are matched.
struct NodeKey {
  double x = 0, y = 0;
  friend bool operator==(const NodeKey&, const NodeKey&) = default;
};
NodeKey KeyOf(double x, double y);

struct EndNodes {
  host::BlockReference* start = nullptr;
  host::BlockReference* end = nullptr;
};

class NodeIndex {
 public:
  // Nodes are added in walking order.
  void Add(host::BlockReference& node);
  EndNodes Find(const NodeKey& start, const NodeKey& end) const;

 private:
  struct Hash {
    size_t operator()(const NodeKey& key) const;
  };
  using Entries = std::vector<std::pair<size_t, host::BlockReference*>>;
  std::unordered_map<NodeKey, Entries, Hash> at_;
  size_t count_ = 0;
};

}  // namespace kestrana::editing
