// Drawings built in memory and their pictures read back.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "memhost/document.h"
#include "render/svg.h"
#include "support/svg_reader.h"

namespace kestrana::render {

using host::Point3;
using testsupport::Numbers;
using testsupport::ParseSvg;
using testsupport::SvgDocument;
using testsupport::SvgNode;

constexpr double kPi = 3.14159265358979323846;

inline Options BlockOf(const std::string& name) {
  Options options;
  options.block = name;
  return options;
}
inline Options OnLayers(std::vector<std::string> layers) {
  Options options;
  options.layers = std::move(layers);
  return options;
}
inline Options Windowed(const Window& window) {
  Options options;
  options.window = window;
  return options;
}
inline Options SizedTo(int px) {
  Options options;
  options.size_px = px;
  return options;
}

class PictureTest : public ::testing::Test {
 protected:
  host::Block& Model() { return doc_.ModelSpace(); }
  host::Block& NewBlock(const std::string& name) {
    return doc_.GetBlocks().Add({0, 0, 0}, name);
  }
  host::Layer& NewLayer(const std::string& name, int color) {
    host::Layer& layer = doc_.GetLayers().Add(name);
    layer.SetTrueColor(color);
    return layer;
  }
  SvgDocument Picture(const Options& options = {}) {
    result_ = RenderSvg(doc_, options);
    return ParseSvg(result_.svg);
  }
  // The one element drawn for `entity` (a block's entity may be drawn once
  // per insert: then the first).
  static const SvgNode& Drawn(const SvgDocument& svg,
                              const host::Entity& entity) {
    auto found = svg.root.WithHandle(entity.Handle());
    if (found.empty())
      throw std::runtime_error("nothing drawn for " + entity.Handle());
    return *found.front();
  }
  static bool IsDrawn(const SvgDocument& svg, const host::Entity& entity) {
    return !svg.root.WithHandle(entity.Handle()).empty();
  }

  memhost::MemDocument doc_;
  Result result_;
};

// An SVG point is the drawing point with Y turned over.
#define EXPECT_SVG_POINT(x_svg, y_svg, x, y) \
  do {                                       \
    EXPECT_NEAR((x_svg), (x), 1e-6);         \
    EXPECT_NEAR((y_svg), -(y), 1e-6);        \
  } while (0)

}  // namespace kestrana::render
