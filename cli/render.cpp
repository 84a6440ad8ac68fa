#include "cli/render.h"

#include <memory>
#include <ostream>
#include <stdexcept>

#include "cli/command.h"
#include "cli/files.h"
#include "cli/progress.h"
#include "cli/session.h"
#include "dxf/io.h"
#include "memhost/document.h"
#include "render/picture.h"

namespace kestrana::cli {

namespace {

std::vector<std::string> SplitCommas(const std::string& text) {
  std::vector<std::string> parts;
  size_t start = 0;
  while (true) {
    size_t comma = text.find(',', start);
    parts.push_back(text.substr(start, comma - start));
    if (comma == std::string::npos) return parts;
    start = comma + 1;
  }
}

const char* kUsage =
    "Usage: kestrana render DRAWING -o PICTURE [options]\n"
    "\n"
    "Draws the model space of DRAWING (a DXF file), or one block definition, "
    "as\n"
    "an SVG picture: layer colours, ByLayer and ByBlock through nested "
    "blocks,\n"
    "frozen and off layers and invisible entities hidden, texts at the widths "
    "the\n"
    "system measures. White background; index colour 7 is drawn black. A\n"
    "PICTURE name ending in .png gives a PNG through rsvg-convert (Debian "
    "package\n"
    "librsvg2-bin). The drawing is only read.\n"
    "\n"
    "Options:\n"
    "  -o, --output FILE      the picture to write, FILE.svg or FILE.png\n"
    "  --block NAME           draw this block definition instead of model "
    "space\n"
    "  --layers A,B,...       draw only these layers (the others count as "
    "off)\n"
    "  --window X1,Y1,X2,Y2   draw only this plan window, clipped to it\n"
    "  --size PX              the picture's longer side in pixels (default "
    "1200)\n";

constexpr char kRenderingStage[] = "rendering";

int Run(const std::vector<std::string>& args, Io& io) {
  Args parsed(args, {}, {"output", "block", "layers", "window", "size"});
  RenderRequest request;
  request.drawing = parsed.Positional(0, "the drawing (a DXF file)");
  parsed.ExpectPositionals(1);
  request.output = parsed.Required("output");
  try {
    render::FormatOf(request.output);
  } catch (const std::invalid_argument& e) {
    throw UsageError(e.what());
  }
  if (auto block = parsed.Option("block")) request.picture.block = *block;
  if (auto layers = parsed.Option("layers")) {
    for (const std::string& name : SplitCommas(*layers)) {
      if (name.empty())
        throw UsageError("--layers: an empty layer name in '" + *layers + "'");
      request.picture.layers.push_back(name);
    }
  }
  if (auto window = parsed.Option("window")) {
    std::vector<std::string> corners = SplitCommas(*window);
    if (corners.size() != 4)
      throw UsageError("--window takes four numbers X1,Y1,X2,Y2, not '" +
                       *window + "'");
    request.picture.window = render::Window{
        ParseReal(corners[0], "--window"), ParseReal(corners[1], "--window"),
        ParseReal(corners[2], "--window"), ParseReal(corners[3], "--window")};
  }
  if (auto size = parsed.Option("size")) {
    request.picture.size_px = ParseInt(*size, "--size");
    if (request.picture.size_px < 16 || request.picture.size_px > 20000)
      throw UsageError("--size: a picture is 16 to 20000 pixels across");
  }
  ProgressLine progress(io.err, IsTerminal(io.err));
  if (core::ProgressFn report = progress.Callback())
    request.picture.progress = [report](size_t done, size_t total) {
      report(kRenderingStage, done, total);
    };
  RenderOutcome outcome = RenderDrawing(request);
  progress.Finish();
  io.out << "wrote " << request.output << " (" << outcome.elements
         << " elements)\n";
  if (!outcome.skipped.empty()) {
    int total = 0;
    std::string kinds;
    for (const auto& [kind, count] : outcome.skipped) {
      total += count;
      kinds += (kinds.empty() ? "" : ", ") + std::to_string(count) + " " + kind;
    }
    io.err << "kestrana render: note: " << total << " entit"
           << (total == 1 ? "y" : "ies") << " not drawn (" << kinds << ")\n";
  }
  return 0;
}

const Registrar kRegistrar({"render",
                            "draw a drawing or one of its blocks as SVG or PNG",
                            kUsage, Run});

}  // namespace

RenderOutcome RenderDrawing(const RenderRequest& request) {
  // Refuse a name without a picture format before reading anything.
  render::FormatOf(request.output);
  std::unique_ptr<memhost::MemDocument> doc = LoadDrawingFile(request.drawing);
  render::Result picture = render::RenderSvg(*doc, request.picture);
  WriteOutput(
      request.output,
      render::PictureBytes(picture.svg, render::FormatOf(request.output)));
  return {picture.elements, picture.skipped};
}

}  // namespace kestrana::cli
