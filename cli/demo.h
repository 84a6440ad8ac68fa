// kestrana demo: the bundled example town turned into a designed sewer and
// water network, written out as a drawing, a picture and a report.
#pragma once

#include <optional>
#include <string>

namespace kestrana::cli {

struct DemoOptions {
  std::string out_dir = "demo-out";
  // Where town.dxf and town-surface.xml are; found beside the program or
  // in the source tree when not given.
  std::optional<std::string> example_dir;
  int picture_px = 3200;
};

struct DemoResult {
  std::string drawing;  // the paths written
  std::string picture;
  std::string report_file;
  std::string report;  // the report's text
  std::string profile_picture;
};

// The folder holding the bundled example; NotFoundError when there is none.
std::string FindExampleDir();

DemoResult RunDemo(const DemoOptions& options);

}  // namespace kestrana::cli
