// kestrana list: the pipes and nodes of networks as a table, CSV or JSON.
// The demo's report prints the same tables.
#pragma once

#include <string>

#include "commands/networks.h"

namespace kestrana::cli {

enum class ListedKinds { kBoth, kPipes, kNodes };

// The tables of one network as text, each under a heading naming it.
std::string ElementsTables(const std::string& network,
                           const commands::NetworkElements& elements,
                           ListedKinds kinds = ListedKinds::kBoth);

}  // namespace kestrana::cli
