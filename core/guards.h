// Pairs of host calls that must stay together, as scope guards: whatever
// happens in between, the drawing is left as the operation found it.
// Restore() undoes a guard's change early, once, where the order of the
// undoing matters.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace kestrana::host {
class Document;
class Layer;
class TextStyle;
}  // namespace kestrana::host

namespace kestrana::core {

// The undoing half of a pair, run once: by Run() or at the end of the
// scope. When the scope ends by an exception, a failure to undo gives way
// to the error already on its way.
class UndoAtExit {
 public:
  explicit UndoAtExit(std::function<void()> undo);
  ~UndoAtExit() noexcept(false);
  UndoAtExit(const UndoAtExit&) = delete;
  UndoAtExit& operator=(const UndoAtExit&) = delete;

  void Run();

 private:
  std::function<void()> undo_;
  bool done_ = false;
  int exceptions_on_entry_;
};

// Unlocks every layer for the guard's lifetime and locks again those that
// were locked (General::UnlockAllLayers / RestoreLockedLayers).
class UnlockedLayers {
 public:
  explicit UnlockedLayers(host::Document& document);

  // The names that were locked, as UnlockAllLayers answers them.
  const std::vector<std::string>& Locked() const { return locked_; }
  // Forgets the locked layers the operation has deleted meanwhile: there is
  // nothing left to lock.
  void ForgetDeletedLayers();
  // Locks them now, once; the end of the scope then does nothing.
  void Restore() { relock_.Run(); }

 private:
  host::Document& document_;
  std::vector<std::string> locked_;
  UndoAtExit relock_;  // last: it runs while the names are still there
};

// Switches the project's events flag off for the guard's lifetime, so that
// the editor reactions sleep through the library's own edits, and on again
// afterwards (General::TurnEventsOff / TurnEventsOn).
class EventsOff {
 public:
  explicit EventsOff(host::Document& document);
  void Restore() { turn_on_.Run(); }

 private:
  UndoAtExit turn_on_;
};

// Keeps the active layer: whatever the scope makes active, the layer that
// was active comes back.
class SavedActiveLayer {
 public:
  explicit SavedActiveLayer(host::Document& document);
  void Restore() { restore_.Run(); }

 private:
  UndoAtExit restore_;
};

// Keeps the active text style the same way.
class SavedActiveTextStyle {
 public:
  explicit SavedActiveTextStyle(host::Document& document);
  void Restore() { restore_.Run(); }

 private:
  UndoAtExit restore_;
};

}  // namespace kestrana::core
