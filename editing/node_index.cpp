#include "editing/node_index.h"

#include <algorithm>
#include <functional>

#include "core/text.h"
#include "host/host.h"

namespace kestrana::editing {

namespace {

using Entry = std::pair<size_t, host::BlockReference*>;

// The last node of `entries` met at or before walking position `stop`.
host::BlockReference* LastUpTo(const std::vector<Entry>& entries, size_t stop) {
  auto after = std::upper_bound(
      entries.begin(), entries.end(), stop,
      [](size_t position, const Entry& e) { return position < e.first; });
  return after == entries.begin() ? nullptr : std::prev(after)->second;
}

}  // namespace

NodeKey KeyOf(double x, double y) {
  // + 0.0 makes a negative zero the zero it equals, for the hash.
  return {core::RoundHalfEven(x, kNodeMatchPlaces) + 0.0,
          core::RoundHalfEven(y, kNodeMatchPlaces) + 0.0};
}

size_t NodeIndex::Hash::operator()(const NodeKey& key) const {
  const size_t hx = std::hash<double>()(key.x);
  return hx ^ (std::hash<double>()(key.y) + 0x9e3779b97f4a7c15ULL + (hx << 6) +
               (hx >> 2));
}

void NodeIndex::Add(host::BlockReference& node) {
  const host::Point3 at = node.InsertionPoint();
  at_[KeyOf(at.x, at.y)].push_back({count_++, &node});
}

EndNodes NodeIndex::Find(const NodeKey& start, const NodeKey& end) const {
  static const Entries kNone;
  auto entries = [&](const NodeKey& key) -> const Entries& {
    auto it = at_.find(key);
    return it == at_.end() ? kNone : it->second;
  };
  const Entries& at_start = entries(start);
  // A node at both ends is taken for the start only, so the end never gets
  // one and the walk runs to its end.
  if (start == end)
    return {at_start.empty() ? nullptr : at_start.back().second, nullptr};
  const Entries& at_end = entries(end);
  if (at_start.empty() || at_end.empty())
    return {at_start.empty() ? nullptr : at_start.back().second,
            at_end.empty() ? nullptr : at_end.back().second};
  const size_t stop = std::max(at_start.front().first, at_end.front().first);
  return {LastUpTo(at_start, stop), LastUpTo(at_end, stop)};
}

}  // namespace kestrana::editing
