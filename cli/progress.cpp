#include "cli/progress.h"

#include <unistd.h>

#include <iostream>

namespace kestrana::cli {

namespace {
// Back to the start of the line, and the rest of it erased.
constexpr char kClearLine[] = "\r\x1b[K";
}  // namespace

bool IsTerminal(const std::ostream& err) {
  return &err == &std::cerr && ::isatty(STDERR_FILENO) == 1;
}

ProgressLine::ProgressLine(std::ostream& err, bool terminal)
    : err_(err), terminal_(terminal) {}

void ProgressLine::Report(std::string_view stage, size_t done, size_t total) {
  if (!terminal_ || total == 0) return;
  const int percent = static_cast<int>(done * 100 / total);
  if (stage == stage_ && percent == percent_) return;
  stage_ = stage;
  percent_ = percent;
  err_ << kClearLine << "kestrana: " << stage << " " << done << " of " << total
       << " (" << percent << "%)" << std::flush;
  shown_ = true;
}

core::ProgressFn ProgressLine::Callback() {
  if (!terminal_) return nullptr;
  return [this](std::string_view stage, size_t done, size_t total) {
    Report(stage, done, total);
  };
}

void ProgressLine::Finish() {
  if (shown_) err_ << kClearLine << std::flush;
  shown_ = false;
  stage_.clear();
  percent_ = -1;
}

}  // namespace kestrana::cli
