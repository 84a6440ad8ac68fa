#include "core/progress.h"

#include <utility>

namespace kestrana::core {

namespace {
thread_local ProgressFn current;
}  // namespace

ProgressScope::ProgressScope(ProgressFn report)
    : previous_(std::exchange(current, std::move(report))) {}

ProgressScope::~ProgressScope() { current = std::move(previous_); }

void ReportProgress(std::string_view stage, size_t done, size_t total) {
  if (current) current(stage, done, total);
}

}  // namespace kestrana::core
