// Selection filters of the system and the wild-card escaping they need.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/types.h"

namespace kestrana::core {

// Text with every wild-card character of the host's matching ("#", "@",
// ".", "*", "?", "~", "[", "]", ",", "`") escaped with "`", so that a network
// named "Net.1" or "#2" matches only itself.
std::string EscapeWildcards(std::string_view text);

// Every object that carries a record: 1001 "Kestrana".
host::Filter ProjectObjectsFilter();
// Pipes of one network: 1001 "Kestrana"; 1000 "Pipe;<network>;*".
host::Filter PipesOfNetworkFilter(std::string_view network);
// One pipe by its combined label: 1000 "Pipe;<network>;<label>".
host::Filter PipeByLabelFilter(std::string_view network,
                               std::string_view label);
// Every node block: 1001 "Kestrana"; 0 "INSERT"; 2 "Kestrana_Node".
host::Filter NodeBlocksFilter();
// Every pipe of every network: polylines whose record holds "GravityPipe"
// or "PressurePipe".
host::Filter AllPipesFilter();
// Elements of one kind: 1001 "Kestrana"; 0 "LWPOLYLINE" (pipes) or "INSERT".
host::Filter ElementsOfKindFilter(bool pipes);
// Pipes and nodes alike: 1001 "Kestrana"; -4 "<OR"; 0 "LWPOLYLINE";
// 0 "INSERT"; -4 "OR>".
host::Filter ElementsFilter();
// What may be converted into pipes: polylines and lines.
host::Filter EntitiesToConvertFilter();
// Inserts of any of the given blocks that carry a "Kestrana" record:
// 1001 "Kestrana"; 0 "INSERT"; -4 "<OR"; 2 <name>...; -4 "OR>". The names
// are taken as patterns ("Kestrana_Profile_*").
host::Filter BlockInsertsFilter(const std::vector<std::string>& block_names);

}  // namespace kestrana::core
