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

  // Values the filter requires exactly at its top level, for index lookups
  // (upper case): application name, entity type, block name.
  std::optional<std::string> RequiredApp() const { return app_; }
  std::optional<std::string> RequiredType() const { return type_; }
  std::optional<std::string> RequiredBlock() const { return block_; }

 private:
  struct Node;
  std::unique_ptr<Node> root_;
  std::optional<std::string> app_, type_, block_;
};

}  // namespace kestrana::memhost
