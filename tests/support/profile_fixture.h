// Profile blocks for tests of the profile records, before profiles are drawn
// from their data: a frame in a "Kestrana_Profile_<network>_<name>" block,
// inserted and recorded as a drawn profile is.
#pragma once

#include <string>
#include <vector>

namespace kestrana::host {
class BlockReference;
class Document;
class LwPolyline;
}  // namespace kestrana::host

namespace kestrana::test {

struct ProfileSpec {
  std::string name = "Profile 1";
  std::string network;
  std::string network_type = "Gravity";
  std::string style = "Standard";
  std::vector<host::LwPolyline*> pipes = {};  // in profile order
  std::vector<std::string> directions = {};   // "0" or "1" per pipe
  double x = 0, y = 0;                        // insertion point
  double width = 200, height = 80;            // of the frame
  bool plan_annotation = false;  // with a (bare) plan annotation block
};

// The drawing must hold the style (a project made by CreateProjectRecord has
// "Standard").
host::BlockReference& AddProfileBlock(host::Document& document,
                                      const ProfileSpec& wanted);

}  // namespace kestrana::test
