// A packed R-tree over plan boxes (Hilbert order), built once and
// queried many times: the crossing search asks it which pipes may touch a
// pipe instead of trying every pipe of the drawing.
#pragma once

#include <cstdint>
#include <vector>

#include "host/types.h"

namespace kestrana::crossing {

class PlanIndex {
 public:
  // Item i is boxes[i]; an empty box is never found.
  explicit PlanIndex(const std::vector<host::Box2>& boxes);

  // Appends to `hits` the items whose boxes overlap `box` (touching edges
  // count), in no particular order.
  void Query(const host::Box2& box, std::vector<uint32_t>& hits) const;

  // Items that are indexed (non-empty boxes).
  size_t Size() const { return items_; }

 private:
  struct Node {
    double min_x, min_y, max_x, max_y;
    // An item for a leaf entry; the position of the first child otherwise.
    uint32_t ref;
    uint32_t children;  // of an internal entry
  };
  static constexpr size_t kNodeSize = 16;

  // Entries of every level, leaves first, the root last; level k spans
  // [level_begin_[k], level_begin_[k + 1]).
  std::vector<Node> nodes_;
  std::vector<size_t> level_begin_;
  size_t items_ = 0;
};

}  // namespace kestrana::crossing
