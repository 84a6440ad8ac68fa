// How far a long operation has come. A command installs a callback for the
// time it runs; the loops deep in the system that go over thousands of
// elements report through ReportProgress, so that no signature between
// them has to carry it. Without a callback, reporting costs nothing.
#pragma once

#include <cstddef>
#include <functional>
#include <string_view>

namespace kestrana::core {

// The stages the system reports.
inline constexpr char kConvertingStage[] = "converting";
inline constexpr char kGroundLevelsStage[] = "ground levels";
inline constexpr char kCrossingsStage[] = "crossings";

// `done` of `total` steps of `stage` ("converting", "ground levels", ...).
using ProgressFn =
    std::function<void(std::string_view stage, size_t done, size_t total)>;

// Where progress goes while the scope lives; scopes nest.
class ProgressScope {
 public:
  explicit ProgressScope(ProgressFn report);
  ~ProgressScope();
  ProgressScope(const ProgressScope&) = delete;
  ProgressScope& operator=(const ProgressScope&) = delete;

 private:
  ProgressFn previous_;
};

void ReportProgress(std::string_view stage, size_t done, size_t total);

}  // namespace kestrana::core
