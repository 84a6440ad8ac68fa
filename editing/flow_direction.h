// Drawn sewer lines turned to run in the direction of flow, before they
// become pipes: a gravity pipe runs from its start to its end.
#pragma once

#include <string_view>

namespace kestrana::host {
class Document;
class Surface;
}  // namespace kestrana::host

namespace kestrana::editing {

// Turns the lines and polylines on `layer` towards their outlet, the line
// end on the lowest ground of `ground`: each line then starts at its end
// farther from the outlet along the lines. Ends that agree to 5 decimal
// places meet; lines not connected to the outlet stay as they are.
// HostError when a line end lies outside the surface.
void OrientTowardsOutlet(host::Document& document, const host::Surface& ground,
                         std::string_view layer);

}  // namespace kestrana::editing
