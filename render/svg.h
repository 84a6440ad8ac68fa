// SVG pictures of a drawing's model space or of one block definition.
//
// The picture shows what the host would show: layer colours and states,
// ByLayer and ByBlock colours through nested inserts, invisible entities
// hidden, texts as wide as the text metrics measure them. The background is
// white; index colour 7 is drawn black.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "host/types.h"

namespace kestrana::memhost {
class MemDocument;
}

namespace kestrana::render {

// A plan window given by two opposite corners.
struct Window {
  double x1 = 0, y1 = 0, x2 = 0, y2 = 0;
};

struct Options {
  // A block definition to draw instead of model space.
  std::string block;
  // Layers to draw; the others are treated as switched off. Empty: all.
  std::vector<std::string> layers;
  // Clips the picture to this window instead of fitting it to the drawing.
  std::optional<Window> window;
  // The longer side of the picture in pixels.
  int size_px = 1200;
  // Called after each entity of the drawn block: `done` of `total`.
  std::function<void(size_t done, size_t total)> progress;
};

struct Result {
  std::string svg;
  // Drawn pieces; the contents of a block count once per insert.
  int elements = 0;
  // Entities that cannot be drawn, by entity type name.
  std::map<std::string, int> skipped;
  // The plan area the picture shows, margin included.
  host::Box2 view;
};

// Raises std::invalid_argument for an unknown block or layer name and
// std::runtime_error when nothing is left to draw.
Result RenderSvg(memhost::MemDocument& doc, const Options& options = {});

}  // namespace kestrana::render
