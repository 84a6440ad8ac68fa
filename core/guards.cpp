#include "core/guards.h"

#include <exception>

#include "core/general.h"
#include "host/host.h"

namespace kestrana::core {

UndoAtExit::UndoAtExit(std::function<void()> undo)
    : undo_(std::move(undo)),
      exceptions_on_entry_(std::uncaught_exceptions()) {}

UndoAtExit::~UndoAtExit() noexcept(false) {
  if (done_) return;
  if (std::uncaught_exceptions() > exceptions_on_entry_) {
    // Unwinding already: the first error is the one the user must read.
    try {
      Run();
    } catch (const Error&) {
    }
    return;
  }
  Run();
}

void UndoAtExit::Run() {
  if (done_) return;
  done_ = true;
  undo_();
}

UnlockedLayers::UnlockedLayers(host::Document& document)
    : document_(document),
      locked_(General::UnlockAllLayers(document)),
      relock_([this] { General::RestoreLockedLayers(document_, locked_); }) {}

void UnlockedLayers::ForgetDeletedLayers() {
  std::vector<std::string> still_there;
  for (const std::string& name : locked_)
    if (!name.empty() && document_.GetLayers().Find(name) != nullptr)
      still_there.push_back(name);
  locked_ = std::move(still_there);
}

EventsOff::EventsOff(host::Document& document)
    : turn_on_((General::TurnEventsOff(document),
                [&document] { General::TurnEventsOn(document); })) {}

SavedActiveLayer::SavedActiveLayer(host::Document& document)
    : restore_([&document, &layer = document.ActiveLayer()] {
        document.SetActiveLayer(layer);
      }) {}

SavedActiveTextStyle::SavedActiveTextStyle(host::Document& document)
    : restore_([&document, &style = document.ActiveTextStyle()] {
        document.SetActiveTextStyle(style);
      }) {}

}  // namespace kestrana::core
