#include "core/project_defaults.h"

#include <string>
#include <vector>

#include "core/lists.h"
#include "core/names.h"
#include "core/record.h"
#include "core/values.h"

namespace kestrana::core {

namespace {

// A record of texts: the application name, then every text with code 1000.
host::XRecord TextRecord(const std::vector<std::string>& texts) {
  host::XRecord record{{code::kAppName, host::XValue(kAppName)}};
  for (const std::string& text : texts)
    record.push_back({code::kText, host::XValue(text)});
  return record;
}

}  // namespace

host::XRecord StandardProfileStyleRecord(bool metric) {
  // Heights and spacings in drawing units; a US drawing is in feet, three
  // times the numbers of a metric one, as for the standard blocks.
  return TextRecord({
      CombinedLabel{"", "", kStandardStyleName}.Format(),
      kProfileStylePoint,
      "",  // profiles drawn with the style
      "",  // their blocks
      metric ? "Standard;2;2.5;5" : "Standard;6;7.5;15",  // text
      metric ? "0;500" : "0;1500",                        // part splitting
      "1000;100;1;10",  // scales 1:1000 / 1:100, node labels, exaggeration
      metric ? "1;1;1;1" : "1;1;1;5",    // elevation grid
      metric ? "1;1;50" : "1;1;100",     // station grid
      "1;Section;1;0",                   // band 10
      "2;Slope;1;2;0;1;0",               // band 11: percent to 2 places
      "3;Length;1;2;0",                  // band 12
      "4;Material;1;0",                  // band 13
      "5;Ground Level;0;2",              // band 14
      "6;Invert Level;0;2",              // band 15
      "7;Cover Depth;0;2",               // band 16
      "8;Invert Depth;0;2",              // band 17
      metric ? "9;Station;0;2;2;50;0"    // band 18: 1+234.50 every 50 m
             : "9;Station;0;2;1;100;0",  // 12+34.50 every 100 ft
      "999;Coordinates;0;0;1;0",         // band 19, not drawn
      "",                                // networks of the profiles
  });
}

}  // namespace kestrana::core
