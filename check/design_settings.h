// The limits the design review checks against, per units: minimum cover
// over a pipe's crown, minimum slope of gravity pipes by size. Read from a
// small settings file (docs/check-settings.md describes the form).
#pragma once

#include <map>
#include <string>
#include <string_view>

namespace kestrana::check {

struct UnitLimits {
  double min_cover = 0;  // level units, ground to crown
  double min_slope = 0;  // fall per length, for sizes not listed below
  // Span (as the pipe record holds it) to minimum slope.
  std::map<double, double> min_slope_by_size;
  // The minimum slope for a pipe of this span: the entry of the size, else
  // that of the largest listed size below it, else `min_slope`.
  double MinSlopeFor(double span) const;
};

struct DesignSettings {
  UnitLimits metric;  // metres; sizes in millimetres
  UnitLimits us;      // feet; circular sizes in inches
  const UnitLimits& For(std::string_view model_units) const;
  static DesignSettings Defaults();
};

// The defaults overridden by the lines of a settings file:
//   # comment
//   metric.min_cover = 0.9
//   metric.min_slope = 0.004
//   metric.min_slope.150 = 0.006
// InvalidInputError naming the line for anything else.
DesignSettings ParseDesignSettings(std::string_view text);

}  // namespace kestrana::check
