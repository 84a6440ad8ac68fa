#include "crossing/plan_index.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace kestrana::crossing {

namespace {

// An item on its way into the tree: its place on a Hilbert curve through
// the extents orders it.
struct Packing {
  uint32_t hilbert;
  uint32_t item;
};

// The position of (x, y) on the Hilbert curve of order 16 (x, y < 2^16).
uint32_t HilbertIndex(uint32_t x, uint32_t y) {
  uint32_t a = x ^ y;
  uint32_t b = 0xFFFF ^ a;
  uint32_t c = 0xFFFF ^ (x | y);
  uint32_t d = x & (y ^ 0xFFFF);

  uint32_t A = a | (b >> 1);
  uint32_t B = (a >> 1) ^ a;
  uint32_t C = ((c >> 1) ^ (b & (d >> 1))) ^ c;
  uint32_t D = ((a & (c >> 1)) ^ (d >> 1)) ^ d;

  a = A, b = B, c = C, d = D;
  A = (a & (a >> 2)) ^ (b & (b >> 2));
  B = (a & (b >> 2)) ^ (b & ((a ^ b) >> 2));
  C ^= (a & (c >> 2)) ^ (b & (d >> 2));
  D ^= (b & (c >> 2)) ^ ((a ^ b) & (d >> 2));

  a = A, b = B, c = C, d = D;
  A = (a & (a >> 4)) ^ (b & (b >> 4));
  B = (a & (b >> 4)) ^ (b & ((a ^ b) >> 4));
  C ^= (a & (c >> 4)) ^ (b & (d >> 4));
  D ^= (b & (c >> 4)) ^ ((a ^ b) & (d >> 4));

  a = A, b = B, c = C, d = D;
  C ^= (a & (c >> 8)) ^ (b & (d >> 8));
  D ^= (b & (c >> 8)) ^ ((a ^ b) & (d >> 8));

  a = C ^ (C >> 1);
  b = D ^ (D >> 1);

  uint32_t i0 = x ^ y;
  uint32_t i1 = b | (0xFFFF ^ (i0 | a));

  auto spread = [](uint32_t v) {
    v = (v | (v << 8)) & 0x00FF00FF;
    v = (v | (v << 4)) & 0x0F0F0F0F;
    v = (v | (v << 2)) & 0x33333333;
    v = (v | (v << 1)) & 0x55555555;
    return v;
  };
  return (spread(i1) << 1) | spread(i0);
}

bool Overlap(double min_x, double min_y, double max_x, double max_y,
             const host::Box2& box) {
  return min_x <= box.max_x && max_x >= box.min_x && min_y <= box.max_y &&
         max_y >= box.min_y;
}

}  // namespace

PlanIndex::PlanIndex(const std::vector<host::Box2>& boxes) {
  host::Box2 extents;
  for (const host::Box2& b : boxes) extents.Add(b);
  items_ = 0;
  for (const host::Box2& b : boxes) items_ += !b.empty;
  level_begin_.push_back(0);
  if (items_ == 0) {
    level_begin_.push_back(0);
    return;
  }

  // Items in Hilbert order of their centres: consecutive items lie close
  // together, so grouping consecutive entries makes compact nodes on every
  // level.
  const double kGrid = 0xFFFF;
  const double width = extents.max_x - extents.min_x;
  const double height = extents.max_y - extents.min_y;
  auto cell = [&](double v, double min, double size) {
    // A drawing too wide for doubles still indexes, in one cell.
    return size > 0 && std::isfinite(size)
               ? static_cast<uint32_t>(kGrid * ((v - min) / size))
               : 0u;
  };
  std::vector<Packing> order;
  order.reserve(items_);
  for (uint32_t i = 0; i < boxes.size(); ++i) {
    const host::Box2& b = boxes[i];
    if (b.empty) continue;
    order.push_back(
        {HilbertIndex(cell((b.min_x + b.max_x) / 2, extents.min_x, width),
                      cell((b.min_y + b.max_y) / 2, extents.min_y, height)),
         i});
  }
  std::sort(order.begin(), order.end(), [](const Packing& a, const Packing& b) {
    return a.hilbert < b.hilbert;
  });

  nodes_.reserve(items_ + items_ / (kNodeSize - 1) + 2);
  for (const Packing& p : order) {
    const host::Box2& b = boxes[p.item];
    nodes_.push_back({b.min_x, b.min_y, b.max_x, b.max_y, p.item, 0});
  }
  level_begin_.push_back(nodes_.size());

  // Every level groups consecutive entries of the level below.
  while (level_begin_.back() - level_begin_[level_begin_.size() - 2] > 1) {
    const size_t begin = level_begin_[level_begin_.size() - 2];
    const size_t end = level_begin_.back();
    for (size_t first = begin; first < end; first += kNodeSize) {
      const size_t last = std::min(end, first + kNodeSize);
      Node parent = nodes_[first];
      parent.ref = static_cast<uint32_t>(first);
      parent.children = static_cast<uint32_t>(last - first);
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
  const Node& root = nodes_.back();
  if (!Overlap(root.min_x, root.min_y, root.max_x, root.max_y, box)) return;
  if (nodes_.size() == 1) {
    hits.push_back(root.ref);
    return;
  }
  // Internal entries still to open; each level adds fewer than kNodeSize,
  // and a tree over 2^32 items has at most nine levels.
  std::array<uint32_t, 16 * kNodeSize> stack;
  size_t depth = 0;
  stack[depth++] = static_cast<uint32_t>(nodes_.size() - 1);
  const size_t leaf_end = level_begin_[1];
  while (depth > 0) {
    const Node& node = nodes_[stack[--depth]];
    const size_t last = node.ref + node.children;
    for (size_t child = node.ref; child < last; ++child) {
      const Node& c = nodes_[child];
      if (!Overlap(c.min_x, c.min_y, c.max_x, c.max_y, box)) continue;
      if (child < leaf_end)
        hits.push_back(c.ref);
      else
        stack[depth++] = static_cast<uint32_t>(child);
    }
  }
}

}  // namespace kestrana::crossing
