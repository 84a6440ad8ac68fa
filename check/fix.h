// Repairs of what the audit finds and can be put right without guessing:
// references that name nothing or are not named back are dropped, a node's
// pipe lists rebuilt from the pipes that name it, left-over annotations
// erased, library counts recomputed, crossings and low and high points
// rebuilt. Labels, levels, sizes and geometry are never changed.
#pragma once

#include <string>
#include <vector>

#include "check/audit.h"

namespace kestrana::host {
class Document;
}

namespace kestrana::check {

// One sentence per change made; none when nothing needed a repair.
std::vector<std::string> Repair(host::Document& document,
                                const std::vector<Finding>& findings);

}  // namespace kestrana::check
