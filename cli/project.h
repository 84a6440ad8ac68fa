// Project commands: `kestrana new`, `kestrana network add|list|delete`,
// `kestrana renew-ids`. The work is in commands/project.h and
// commands/networks.h; this is how the results are printed.
#pragma once

#include <string>
#include <vector>

#include "commands/networks.h"

namespace kestrana::cli {

std::string NetworksJson(const std::vector<commands::NetworkInfo>& networks);
std::string NetworksTable(const std::vector<commands::NetworkInfo>& networks);

}  // namespace kestrana::cli
