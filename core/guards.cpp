#include "core/guards.h"

#include <exception>

#include "core/general.h"

namespace kestrana::core {

UnlockedLayers::UnlockedLayers(host::Document& document)
    : document_(document),
      locked_(General::UnlockAllLayers(document)),
      exceptions_on_entry_(std::uncaught_exceptions()) {}

UnlockedLayers::~UnlockedLayers() noexcept(false) {
  if (restored_) return;
  if (std::uncaught_exceptions() > exceptions_on_entry_) {
    // Unwinding already: the first error is the one the user must read.
    try {
      Restore();
    } catch (const Error&) {
    }
    return;
  }
  Restore();
}

void UnlockedLayers::Restore() {
  if (restored_) return;
  restored_ = true;
  General::RestoreLockedLayers(document_, locked_);
}

}  // namespace kestrana::core
