// Starting a project in a drawing: the project record on model space and
// the hidden marker points that carry the project's libraries and styles.
#pragma once

#include <string_view>

#include "host/types.h"

namespace kestrana::host {
class Document;
class Point;
}  // namespace kestrana::host

namespace kestrana::core {

struct ProjectMarkers {
  host::ObjectId view_style = 0;
  host::ObjectId materials = 0;
  host::ObjectId sizes = 0;
  host::ObjectId profile_style = 0;
};

// Adds the project record in `units` ("Metric" or "US") to a drawing
// without one (version "2.00", events on, no networks, every crossing of
// enabled pairs shown, view style "Standard" active) with the "Standard"
// profile style. The libraries and the view style belong to their own
// subsystems, which register their markers in the record afterwards; the
// `kestrana new` command does all of it. Answers the profile style marker.
// std::invalid_argument for other units; RefusedError when the drawing
// already holds a project.
ProjectMarkers CreateProjectRecord(host::Document& document,
                                   std::string_view units);

// A marker: a hidden point at the origin on layer "0" carrying `record`.
host::Point& AddMarkerPoint(host::Document& document,
                            const host::XRecord& record);

inline constexpr char kProjectExistsMessage[] =
    "This drawing already contains a Kestrana project!";

}  // namespace kestrana::core
