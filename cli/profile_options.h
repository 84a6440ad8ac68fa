// What the profile commands of the command line share.
#pragma once

#include "cli/command.h"
#include "commands/profile_data.h"

namespace kestrana::cli {

// The run of a profile from --network, --pipes or --line, --start, --style,
// --surface and --surface-name (the surface file read).
commands::ProfileDataOptions ProfileRunOptions(const Args& args);

}  // namespace kestrana::cli
