// Pairs of host calls that must stay together, as scope guards: whatever
// happens in between, the drawing is left as the operation found it.
#pragma once

#include <string>
#include <vector>

namespace kestrana::host {
class Document;
}

namespace kestrana::core {

// Unlocks every layer for the guard's lifetime and locks again those that
// were locked (General::UnlockAllLayers / RestoreLockedLayers). When the
// scope ends by an exception, a failure to relock is swallowed so that the
// original error reaches the caller; on a normal exit it is thrown.
class UnlockedLayers {
 public:
  explicit UnlockedLayers(host::Document& document);
  ~UnlockedLayers() noexcept(false);
  UnlockedLayers(const UnlockedLayers&) = delete;
  UnlockedLayers& operator=(const UnlockedLayers&) = delete;

  // The names that were locked, as UnlockAllLayers answers them.
  const std::vector<std::string>& Locked() const { return locked_; }
  // Locks them now, once; the destructor then does nothing.
  void Restore();

 private:
  host::Document& document_;
  std::vector<std::string> locked_;
  bool restored_ = false;
  int exceptions_on_entry_;
};

}  // namespace kestrana::core
