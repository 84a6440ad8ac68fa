// kestrana render: a picture of a drawing, as SVG or PNG.
#pragma once

#include <map>
#include <string>

#include "render/svg.h"

namespace kestrana::cli {

struct RenderRequest {
  std::string drawing;  // a DXF file
  std::string output;   // .svg or .png
  render::Options picture;
};

struct RenderOutcome {
  int elements = 0;
  std::map<std::string, int> skipped;  // entity kinds not drawn
};

// Reads the drawing, draws it and saves the picture. The drawing is only
// read; the picture appears whole or not at all.
RenderOutcome RenderDrawing(const RenderRequest& request);

}  // namespace kestrana::cli
