// Selection filters evaluated the way the host does.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/types.h"

namespace kestrana::memhost {

class MemEntity;

class CompiledFilter {
 public:
  // Raises HostError(kBadArgument) for unbalanced groups or unknown codes.
  explicit CompiledFilter(const host::Filter& filter);
  ~CompiledFilter();
  CompiledFilter(CompiledFilter&&) noexcept;

  bool Matches(const MemEntity& entity) const;

  // Index keys (folded like FoldCase) of which every match holds at least
  // one, from top-level tests of plain names and ORs of them; empty when
  // the filter does not narrow that way. Application names, entity types,
  // block names.
  const std::vector<std::string>& AppKeys() const { return app_keys_; }
  const std::vector<std::string>& TypeKeys() const { return type_keys_; }
  const std::vector<std::string>& BlockKeys() const { return block_keys_; }

 private:
  struct Node;
  std::unique_ptr<Node> root_;
  std::vector<std::string> app_keys_, type_keys_, block_keys_;
};

}  // namespace kestrana::memhost
