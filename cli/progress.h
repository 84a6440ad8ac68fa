// Progress of long work on one line of stderr, redrawn in place, when
// stderr is a terminal; nothing otherwise, so logs and pipes stay clean.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>

#include "core/progress.h"

namespace kestrana::cli {

// Whether `err` is the process's stderr and that is a terminal.
bool IsTerminal(const std::ostream& err);

class ProgressLine {
 public:
  ProgressLine(std::ostream& err, bool terminal);
  // Clears the line.
  ~ProgressLine() { Finish(); }
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  // Redraws the line when the stage or the whole percent changes.
  void Report(std::string_view stage, size_t done, size_t total);
  // What commands call; null (no reporting at all) off a terminal.
  core::ProgressFn Callback();
  // Clears the line before the command prints its result.
  void Finish();

 private:
  std::ostream& err_;
  bool terminal_;
  bool shown_ = false;
  std::string stage_;
  int percent_ = -1;
};

}  // namespace kestrana::cli
