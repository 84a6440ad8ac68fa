// The code of the HostError a call raises.
#pragma once

#include <gtest/gtest.h>

#include "host/types.h"

namespace kestrana::test {

// The error code `f` raises; a test failure (and kBadArgument) when it
// raises none.
template <class F>
host::ErrorCode CodeOf(F&& f) {
  try {
    f();
  } catch (const host::HostError& e) {
    return e.code();
  }
  ADD_FAILURE() << "no HostError raised";
  return host::ErrorCode::kBadArgument;
}

}  // namespace kestrana::test
