// Starting a project in a drawing: the project record on model space with
// its library, view style and profile style markers.
#pragma once

#include <string_view>

#include "host/types.h"

namespace kestrana::host {
class Document;
}

namespace kestrana::core {

struct ProjectMarkers {
  host::ObjectId view_style = 0;
  host::ObjectId materials = 0;
  host::ObjectId sizes = 0;
  host::ObjectId profile_style = 0;
};

// Adds a project in `units` ("Metric" or "US") to a drawing without one:
// the project record (version "2.00", events on, no networks, every
// crossing of enabled pairs shown), the two libraries and the "Standard"
// view and profile styles, the view style active. std::invalid_argument for
// other units; std::runtime_error when the drawing already holds a project.
ProjectMarkers CreateProject(host::Document& document, std::string_view units);

inline constexpr char kProjectExistsMessage[] =
    "This drawing already contains a Kestrana project!";

}  // namespace kestrana::core
