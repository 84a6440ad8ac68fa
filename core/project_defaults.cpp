#include "core/project_defaults.h"

#include <string>
#include <vector>

#include "core/lists.h"
#include "core/names.h"
#include "core/record.h"

namespace kestrana::core {

namespace {

// A record of texts: the application name, then every text with code 1000.
host::XRecord TextRecord(const std::vector<std::string>& texts) {
  host::XRecord record{{code::kAppName, host::XValue(kAppName)}};
  for (const std::string& text : texts)
    record.push_back({code::kText, host::XValue(text)});
  return record;
}

// A zero count for every entry: "0;0;0;".
std::string ZeroCounts(const std::vector<std::string>& entries) {
  return JoinEntries(std::vector<std::string>(entries.size(), "0"));
}

const std::vector<std::string> kMaterials = {
    "PVC", "PE", "Ductile Iron", "Concrete", "Vitrified Clay", "Steel"};
// Millimetres.
const std::vector<std::string> kMetricCircular = {
    "100", "150", "200", "250",  "300",  "350",  "400",  "450",  "500", "600",
    "700", "800", "900", "1000", "1200", "1400", "1600", "1800", "2000"};
const std::vector<std::string> kMetricBox = {
    "600x600",   "800x600",   "1000x800", "1200x800",
    "1500x1000", "2000x1500", "2500x2000"};
// Inches for circular sections, feet for boxes.
const std::vector<std::string> kUsCircular = {
    "4",  "6",  "8",  "10", "12", "15", "18", "21",
    "24", "30", "36", "42", "48", "54", "60", "72"};
const std::vector<std::string> kUsBox = {"2x2", "3x2", "4x3", "5x3",
                                         "6x4", "8x5", "10x6"};

}  // namespace

host::XRecord DefaultMaterialLibraryRecord() {
  return TextRecord({"MaterialLibrary", kMaterialLibraryPoint,
                     JoinEntries(kMaterials), ZeroCounts(kMaterials)});
}

host::XRecord DefaultSectionSizeLibraryRecord() {
  return TextRecord({"SectionSizeLibrary", kSectionSizeLibraryPoint,
                     JoinEntries(kMetricCircular), ZeroCounts(kMetricCircular),
                     JoinEntries(kMetricBox), ZeroCounts(kMetricBox),
                     JoinEntries(kUsCircular), ZeroCounts(kUsCircular),
                     JoinEntries(kUsBox), ZeroCounts(kUsBox)});
}

host::XRecord StandardViewStyleRecord(bool metric) {
  const std::string unit = metric ? " m" : " ft";
  // Levels to two places; slopes in percent to two places.
  auto number = [](const char* show, const std::string& prefix,
                   const std::string& suffix) {
    return std::string(show) + ";" + prefix + ";" + suffix + ";2;0";
  };
  auto pipe = [&](bool gravity) {
    const char* arrow = gravity ? "1" : "0";
    const std::string start = gravity ? "US " : "Start ";
    const std::string end = gravity ? "DS " : "End ";
    return std::vector<std::string>{
        "1;;",                                    // label
        number("0", "L=", unit),                  // length
        "1;;",                                    // size
        gravity ? "1;S=;;2;0;1" : "0;S=;;2;0;1",  // slope
        gravity ? "0;;" : "1;;",                  // material
        number("0", start + "IL=", ""),           // start invert
        number("0", end + "IL=", ""),             // end invert
        number("0", start + "GL=", ""),           // start ground
        number("0", end + "GL=", ""),             // end ground
        number("0", start + "Cover=", unit),      // start cover
        number("0", end + "Cover=", unit),        // end cover
        number("0", start + "Depth=", unit),      // start depth
        number("0", end + "Depth=", unit),        // end depth
        arrow,                                    // direction arrow
    };
  };
  auto node = [&](bool gravity) {
    return std::vector<std::string>{
        "1;;",                                   // label
        number("1", "GL=", ""),                  // ground level
        number(gravity ? "1" : "0", "IL=", ""),  // sump level
        number("0", "D=", unit),                 // depth
    };
  };
  std::vector<std::string> texts = {
      std::string(kViewStyleNamePrefix) + kStandardStyleName, kViewStylePoint,
      "Standard", metric ? "2" : "6"};
  for (bool gravity : {true, false})
    for (std::string& item : pipe(gravity)) texts.push_back(std::move(item));
  for (bool gravity : {true, false})
    for (std::string& item : node(gravity)) texts.push_back(std::move(item));
  texts.push_back("0;2;0");  // coordinates of gravity nodes
  texts.push_back("0;2;0");  // coordinates of pressure nodes
  return TextRecord(texts);
}

host::XRecord StandardProfileStyleRecord(bool metric) {
  // Heights and spacings in drawing units; a US drawing is in feet, three
  // times the numbers of a metric one, as for the standard blocks.
  return TextRecord({
      std::string(";;") + kStandardStyleName,  // combined label
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
