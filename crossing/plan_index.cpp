#include "crossing/plan_index.h"

#include <algorithm>
#include <cmath>

namespace kestrana::crossing {

namespace {

double CenterX(const host::Box2& b) { return (b.min_x + b.max_x) / 2; }
double CenterY(const host::Box2& b) { return (b.min_y + b.max_y) / 2; }

}  // namespace

PlanIndex::PlanIndex(const std::vector<host::Box2>& boxes) {
  std::vector<uint32_t> order;
  order.reserve(boxes.size());
  for (uint32_t i = 0; i < boxes.size(); ++i)
    if (!boxes[i].empty) order.push_back(i);
  items_ = order.size();
  level_begin_.push_back(0);
  if (order.empty()) {
    level_begin_.push_back(0);
    return;
  }

  // Sort-tile-recursive packing: vertical slices by centre X, then runs of
  // kNodeSize by centre Y inside each slice, so that every leaf covers a
  // compact patch of the plan.
  const size_t leaves = (items_ + kNodeSize - 1) / kNodeSize;
  const size_t slices =
      static_cast<size_t>(std::ceil(std::sqrt(static_cast<double>(leaves))));
  const size_t per_slice = slices * kNodeSize;
  std::sort(order.begin(), order.end(), [&](uint32_t a, uint32_t b) {
    return CenterX(boxes[a]) < CenterX(boxes[b]);
  });
  for (size_t start = 0; start < items_; start += per_slice) {
    auto first = order.begin() + start;
    auto last = order.begin() + std::min(items_, start + per_slice);
    std::sort(first, last, [&](uint32_t a, uint32_t b) {
      return CenterY(boxes[a]) < CenterY(boxes[b]);
    });
  }

  nodes_.reserve(items_ + items_ / (kNodeSize - 1) + 2);
  for (uint32_t i : order) {
    const host::Box2& b = boxes[i];
    nodes_.push_back({b.min_x, b.min_y, b.max_x, b.max_y, i});
  }
  level_begin_.push_back(nodes_.size());

  // Upper levels group consecutive entries: the packing order already keeps
  // neighbours together.
  while (level_begin_.back() - level_begin_[level_begin_.size() - 2] > 1) {
    const size_t begin = level_begin_[level_begin_.size() - 2];
    const size_t end = level_begin_.back();
    for (size_t first = begin; first < end; first += kNodeSize) {
      const size_t last = std::min(end, first + kNodeSize);
      Node parent = nodes_[first];
      parent.ref = static_cast<uint32_t>(first);
      for (size_t k = first + 1; k < last; ++k) {
        parent.min_x = std::min(parent.min_x, nodes_[k].min_x);
        parent.min_y = std::min(parent.min_y, nodes_[k].min_y);
        parent.max_x = std::max(parent.max_x, nodes_[k].max_x);
        parent.max_y = std::max(parent.max_y, nodes_[k].max_y);
      }
      nodes_.push_back(parent);
    }
    level_begin_.push_back(nodes_.size());
  }
}

void PlanIndex::Query(const host::Box2& box,
                      std::vector<uint32_t>& hits) const {
  if (box.empty || nodes_.empty()) return;
  // (entry position, level) pairs still to open.
  std::vector<std::pair<size_t, size_t>> stack;
  const size_t root_level = level_begin_.size() - 2;
  stack.push_back({nodes_.size() - 1, root_level});
  while (!stack.empty()) {
    auto [position, level] = stack.back();
    stack.pop_back();
    const Node& node = nodes_[position];
    if (node.min_x > box.max_x || node.max_x < box.min_x ||
        node.min_y > box.max_y || node.max_y < box.min_y)
      continue;
    if (level == 0) {
      hits.push_back(node.ref);
      continue;
    }
    const size_t end = std::min(node.ref + kNodeSize, level_begin_[level]);
    for (size_t child = node.ref; child < end; ++child)
      stack.push_back({child, level - 1});
  }
}

}  // namespace kestrana::crossing
