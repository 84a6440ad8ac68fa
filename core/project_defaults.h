// What a new project starts with in core: the "Standard" profile style
// record for its marker point. The libraries and the "Standard" view style
// are built by their own subsystems (library/, viewstyle/).
#pragma once

#include "host/types.h"

namespace kestrana::core {

// Field 2 of the profile style marker records.
inline constexpr char kProfileStylePoint[] = "ProfileStylePoint";

// The style every new project starts with and activates.
inline constexpr char kStandardStyleName[] = "Standard";

// The 21-item "Standard" profile style.
host::XRecord StandardProfileStyleRecord(bool metric);

}  // namespace kestrana::core
