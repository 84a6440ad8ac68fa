#include "check/design_settings.h"

#include <iterator>
#include <optional>
#include <vector>
#include <string>

#include "check/drawing_index.h"
#include "core/names.h"
#include "core/text.h"
#include "host/errors.h"

namespace kestrana::check {

double UnitLimits::MinSlopeFor(double span) const {
  auto above = min_slope_by_size.upper_bound(span);
  if (above == min_slope_by_size.begin()) return min_slope;
  return std::prev(above)->second;
}

const UnitLimits& DesignSettings::For(std::string_view model_units) const {
  return model_units == core::kMetric ? metric : us;
}

DesignSettings DesignSettings::Defaults() {
  DesignSettings s;
  // Self-cleansing slopes of small sewers; larger pipes run full enough at
  // flatter falls.
  s.metric.min_cover = 0.9;
  s.metric.min_slope = 0.003;
  s.metric.min_slope_by_size = {{100, 0.01},   {150, 0.0067}, {200, 0.005},
                                {250, 0.004},  {300, 0.0033}, {400, 0.0025},
                                {500, 0.002},  {600, 0.0015}, {900, 0.001}};
  s.us.min_cover = 3.0;
  s.us.min_slope = 0.004;
  s.us.min_slope_by_size = {{6, 0.006},    {8, 0.004},    {10, 0.0028},
                            {12, 0.0022},  {15, 0.0015},  {18, 0.0012},
                            {21, 0.001},   {24, 0.0008},  {36, 0.0005}};
  return s;
}

namespace {

std::string Trim(std::string_view text) {
  const char* blanks = " \t\r";
  size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return "";
  size_t last = text.find_last_not_of(blanks);
  return std::string(text.substr(first, last - first + 1));
}

[[noreturn]] void Refuse(int line, const std::string& why) {
  throw InvalidInputError("settings line " + std::to_string(line) + ": " +
                          why);
}

double NumberOf(const std::string& text, int line, const std::string& what) {
  std::optional<double> value = SafeNumber(text);
  if (!value) Refuse(line, what + " '" + text + "' is not a number");
  if (*value < 0) Refuse(line, what + " must not be negative");
  return *value;
}

}  // namespace

DesignSettings ParseDesignSettings(std::string_view text) {
  DesignSettings settings = DesignSettings::Defaults();
  int line_number = 0;
  for (const std::string& raw : core::Split(text, '\n')) {
    ++line_number;
    std::string line = Trim(raw);
    if (line.empty() || line[0] == '#') continue;
    size_t equals = line.find('=');
    if (equals == std::string::npos)
      Refuse(line_number, "expected 'name = value'");
    std::string name = Trim(line.substr(0, equals));
    std::string value = Trim(line.substr(equals + 1));
    std::vector<std::string> parts = core::Split(name, '.');
    UnitLimits* limits = nullptr;
    if (parts[0] == "metric") limits = &settings.metric;
    if (parts[0] == "us") limits = &settings.us;
    if (!limits || parts.size() < 2)
      Refuse(line_number, "'" + name + "' does not start with metric. or us.");
    if (parts.size() == 2 && parts[1] == "min_cover") {
      limits->min_cover = NumberOf(value, line_number, name);
    } else if (parts.size() == 2 && parts[1] == "min_slope") {
      limits->min_slope = NumberOf(value, line_number, name);
    } else if (parts.size() >= 3 && parts[1] == "min_slope") {
      // A size may carry a decimal point: "us.min_slope.7.5".
      std::string size = name.substr(parts[0].size() + parts[1].size() + 2);
      double span = NumberOf(size, line_number, "size");
      limits->min_slope_by_size[span] = NumberOf(value, line_number, name);
    } else {
      Refuse(line_number, "unknown setting '" + name + "'");
    }
  }
  return settings;
}

}  // namespace kestrana::check
