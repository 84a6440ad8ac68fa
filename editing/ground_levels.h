// Ground levels from a terrain surface, with the nodes that lay outside it:
// the operation of class Editing keeps those nodes' levels and says
// nothing, the command line tells the user which they were.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kestrana::host {
class Document;
class Entity;
}  // namespace kestrana::host

namespace kestrana::editing {

struct GroundLevelUpdate {
  std::vector<host::Entity*> updated;
  std::vector<host::Entity*> outside;  // their ground levels are unchanged
};

// What Editing::UpdateGroundLevelsFromSurface does, answering which nodes
// were updated and which lay outside the surface.
GroundLevelUpdate GroundLevelsFromSurface(
    host::Document& document, const std::vector<std::string>& network_names,
    std::string_view surface_name);

}  // namespace kestrana::editing
