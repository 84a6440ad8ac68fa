// Sections of the pipes that join the profile at its manholes or cross it,
// with their invert and size texts.
#include <algorithm>
#include <cmath>

#include "core/text.h"
#include "host/host.h"
#include "profile/part_data.h"
#include "profile/profile.h"
#include "profile/profile_sheet.h"

namespace kestrana::profile {

namespace {

constexpr char kInvertPattern[] = "0.00#";
constexpr char kCircularShape[] = "0";

// A connected or crossing pipe record of a series, from its distance on.
struct PipeAtDistance {
  double distance = 0;
  double invert = 0;
  std::string shape;
  double span = 0, rise = 0;
  int cells = 1;
};

std::vector<PipeAtDistance> PipesAtDistances(std::string_view series) {
  const std::vector<std::string> values = Values(series);
  std::vector<PipeAtDistance> pipes;
  for (size_t i = 0; i + kPipeAtDistanceValues <= values.size();
       i += kPipeAtDistanceValues) {
    PipeAtDistance pipe;
    pipe.distance = core::NumericValue(values[i]);
    pipe.invert = core::NumericValue(values[i + 1]);
    pipe.shape = values[i + 2];
    pipe.span = core::NumericValue(values[i + 3]);
    pipe.rise = core::NumericValue(values[i + 4]);
    pipe.cells = std::max(1, static_cast<int>(core::NumericValue(values[i + 5])));
    pipes.push_back(pipe);
  }
  return pipes;
}

}  // namespace

std::string Profile::GetSectionSizeStringForProfile(
    std::string_view section_shape_index, double span, double rise,
    int num_cells) {
  const bool circular = section_shape_index == kCircularShape;
  const std::string size =
      circular ? "%%c" + core::GeneralText(span)
               : core::GeneralText(span) + "X" + core::GeneralText(rise);
  if (num_cells <= 1) return size;
  const std::string cells = std::to_string(num_cells);
  return circular ? cells + " " + size : cells + " (" + size + ")";
}

void Profile::DrawPipeSectionOnProfile(Sheet& sheet,
                                       const host::Point3& pipe_ins_pnt,
                                       int shape_index, double span,
                                       double rise, int num_cells,
                                       double vertical_exaggeration) {
  const double ve = vertical_exaggeration;
  const int cells = std::max(1, num_cells);
  const double left = pipe_ins_pnt.x - cells * span / 2;
  for (int c = 0; c < cells; ++c) {
    const double x = left + c * span;
    if (shape_index == 0) {
      const double rx = span / 2, ry = span / 2 * ve;
      const host::Point3 centre{x + rx, pipe_ins_pnt.y + ry, 0};
      // The host keeps the major axis the longer one.
      host::Ellipse& ellipse =
          ry >= rx ? sheet.block().AddEllipse(centre, {0, ry, 0}, rx / ry)
                   : sheet.block().AddEllipse(centre, {rx, 0, 0}, ry / rx);
      ellipse.SetLayer(kPipeLayer);
    } else {
      sheet.Polyline({x, pipe_ins_pnt.y, x, pipe_ins_pnt.y + rise * ve,
                      x + span, pipe_ins_pnt.y + rise * ve, x + span,
                      pipe_ins_pnt.y},
                     true, kPipeLayer);
    }
  }
}

host::Point3 Profile::GetProfileCrossingAnnotationLocation(
    const host::Point3& new_anno_ins_pnt,
    const std::vector<Box2>& ar_existing_coord, double text_height,
    double string_length, const std::vector<Segment>& keep_clear) {
  auto free_at = [&](const host::Point3& p) {
    const Box2 box{p.x, p.y, p.x + string_length, p.y + text_height};
    return std::none_of(
               ar_existing_coord.begin(), ar_existing_coord.end(),
               [&](const Box2& taken) { return taken.Overlaps(box); }) &&
           std::none_of(keep_clear.begin(), keep_clear.end(),
                        [&](const Segment& s) { return box.Crosses(s); });
  };
  if (free_at(new_anno_ins_pnt)) return new_anno_ins_pnt;
  // Up first, then down, then sideways; farther rings when all are taken.
  for (int ring = 1; ring <= 32; ++ring) {
    for (double step : {2.0 * ring, 4.0 * ring}) {
      const double d = step * text_height;
      for (const host::Point3 offset :
           {host::Point3{0, d, 0}, host::Point3{0, -d, 0},
            host::Point3{d, 0, 0}, host::Point3{-d, 0, 0}}) {
        const host::Point3 p{new_anno_ins_pnt.x + offset.x,
                             new_anno_ins_pnt.y + offset.y, 0};
        if (free_at(p)) return p;
      }
    }
  }
  return new_anno_ins_pnt;
}

void Profile::DrawConnectedAndCrossing(
    Sheet& sheet, const host::Point3& ref_point,
    std::string_view connected_string, std::string_view crossing_string,
    const TextSettings& text, double datum_elevation,
    double vertical_exaggeration, std::string_view model_units) {
  const double h = text.data_height;
  const double ve = vertical_exaggeration;
  std::vector<Box2> taken;
  for (std::string_view series : {connected_string, crossing_string}) {
    for (const PipeAtDistance& pipe : PipesAtDistances(series)) {
      const bool circular = pipe.shape == kCircularShape;
      const double span = SpanInLevels(pipe.span, circular, model_units);
      const double rise =
          circular ? span : RiseInLevels(pipe.rise, circular, model_units);
      const double x = ref_point.x + pipe.distance;
      const double y = ref_point.y + (pipe.invert - datum_elevation) * ve;
      DrawPipeSectionOnProfile(sheet, {x, y, 0}, circular ? 0 : 1, span, rise,
                               pipe.cells, ve);
      const std::string invert =
          "I.L.= " + core::FormatNumber(pipe.invert, kInvertPattern);
      const std::string size =
          GetSectionSizeStringForProfile(pipe.shape, span, rise, pipe.cells);
      const double length =
          std::max(sheet.TextLength(invert, h), sheet.TextLength(size, h));
      // Two lines, the invert over the size, right of the section's top.
      const double box_height = 2.6 * h;
      const double half_width = pipe.cells * span / 2;
      const host::Point3 corner = GetProfileCrossingAnnotationLocation(
          {x + half_width + 0.5 * h, y + rise * ve + 0.5 * h, 0}, taken,
          box_height, length, sheet.Linework());
      taken.push_back({corner.x, corner.y, corner.x + length,
                       corner.y + box_height});
      sheet.Text(invert, {corner.x, corner.y + 1.5 * h, 0}, h, kDimensionLayer);
      sheet.Text(size, {corner.x, corner.y + 0.2 * h, 0}, h, kDimensionLayer);
    }
  }
}

}  // namespace kestrana::profile
