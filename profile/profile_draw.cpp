// The profile block: every part's plot area (frame, grid, node lines and
// labels, ground line, pipes, manholes) and its table, parts side by side.
#include <algorithm>
#include <cmath>
#include <limits>

#include "core/general.h"
#include "core/guards.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/record.h"
#include "core/text.h"
#include "host/errors.h"
#include "host/host.h"
#include "profile/profile.h"
#include "profile/profile_record.h"
#include "profile/profile_sheet.h"
#include "profile/profile_style_record.h"
#include "profile/style_fields.h"

namespace kestrana::profile {

using core::General;

namespace {

enum class DrawingSetting : int { kNodeLabels = 2, kExaggeration = 3 };
enum class HorizontalGridSetting : int {
  kLines = 0,
  kLeftLabels = 1,
  kRightLabels = 2,
  kInterval = 3
};
enum class VerticalGridSetting : int { kLines = 0, kLabels = 1, kInterval = 2 };

constexpr char kElevationPattern[] = "0.0##";
constexpr char kDatumPattern[] = "0.00#";
// The frame reaches this many label heights left of the part's first node
// and right of its last.
constexpr double kFrameMargin = 10;

struct LayerColor {
  const char* name;
  int color;
};
constexpr LayerColor kProfileLayers[] = {
    {kLabelLayer, 4},        {kDataLayer, 2},       {kDimensionLayer, 1},
    {kFrameLayer, 4},        {kGroundLayer, 3},     {kPipeLayer, 6},
    {kManholeLayer, 4},      {kGridLayer, 9},       {kPlanTitleLayer, 4},
    {kPlanStationsLayer, 3},
};

double LevelY(const host::Point3& ref, double level, double datum, double ve) {
  return ref.y + (level - datum) * ve;
}

host::Point3 At(double x, double y) { return {x, y, 0}; }

std::vector<double> Rectangle(double x1, double y1, double x2, double y2) {
  return {x1, y1, x1, y2, x2, y2, x2, y1};
}

double SumOf(const std::vector<double>& values) {
  double sum = 0;
  for (double value : values) sum += value;
  return sum;
}

}  // namespace

std::string Profile::DrawProfile(host::Document& document,
                                 const ProfileInputs& inputs) {
  TextMeasure measure(document);
  return DrawProfile(document, inputs, measure);
}

std::string Profile::DrawProfile(host::Document& document,
                                 const ProfileInputs& inputs,
                                 TextMeasure& measure) {
  host::Application& application = document.GetApplication();
  host::CivilDocument& aecc_doc =
      application.GetInterfaceObject(General::GetAeccAppString(application))
          .ActiveDocument();
  const std::optional<core::Record> style =
      GetProfileStyleSettings(document, inputs.style_name);
  if (!style)
    throw NotFoundError("there is no profile style named \"" +
                        inputs.style_name + "\"");
  const PartsData parts = GetProfilePartsDataArrays(
      document, aecc_doc, inputs.network_name, *style, inputs.pipes,
      inputs.ground_from_surface, inputs.ground_surface_name);
  host::BlockReference& block =
      CreateProfileBlock(document, inputs, parts, *style, measure);
  host::BlockReference* plan = CreatePlanAnnotationBlockForProfile(
      document, inputs.profile_name, inputs.network_name, parts, *style,
      inputs.name_on_plan, inputs.stations_on_plan);
  if (plan != nullptr)
    BuildProfilePlanAnnoBlockXData(inputs.profile_name, inputs.network_name,
                                   block, *plan);
  BuildProfileBlockXData(document, inputs, block, plan);
  return core::IdText(block.ObjectID());
}

host::BlockReference& Profile::CreateProfileBlock(
    host::Document& document, const ProfileInputs& inputs,
    const PartsData& ar_profile_parts_data_arrays,
    const core::Record& ar_profile_style_settings, TextMeasure& measure) {
  const core::Record& style = ar_profile_style_settings;
  const std::string units = General::GetModelUnits(document);
  core::SavedActiveLayer active_layer(document);
  core::SavedActiveTextStyle active_style(document);

  host::Block& block = General::InitializeBlockDefinition(
      document,
      std::string(kProfileBlockPrefix) + inputs.network_name + "_" + inputs.profile_name);
  CreateProfileLayers(document);
  const double labels_length = GetBandLabelsPartLength(measure, style);
  const TextSettings text = ReadTextSettings(style);
  const double ve = ItemFields(style.Text(ProfileStyleItem::kDrawing))
                        .Number(DrawingSetting::kExaggeration);
  Sheet sheet(document, block, text.style, measure);

  host::Point3 ref{0, 0, 0};
  double part_start_station = 0;
  const int count = static_cast<int>(ar_profile_parts_data_arrays.size());
  for (int k = 0; k < count; ++k) {
    const PartData& part = ar_profile_parts_data_arrays[k];
    const double datum =
        GetDatumElevation(inputs.datum_auto, inputs.custom_datum_value,
                          part[Series::kSumps], units);
    const auto [length, height] =
        DrawPlotAreaFrame(sheet, ref, part, text, datum, ve);
    DrawProfileGrid(sheet, ref, style.Text(ProfileStyleItem::kHorizontalGrid),
                    style.Text(ProfileStyleItem::kVerticalGrid),
                    style.Text(ProfileStyleItem::kStationBand), text, length,
                    height, ve, datum, part_start_station);
    DrawNodeLabels(sheet, ref, part[Series::kLengths],
                   part[Series::kNodeLabels], height, style);
    DrawGroundLine(sheet, ref, part[Series::kGroundLine], datum, ve);
    DrawPipes(sheet, ref, part[Series::kLengths], part[Series::kInverts],
              part[Series::kSections], datum, ve, units, inputs.network_type);
    if (inputs.network_type == core::kGravity)
      DrawManholes(sheet, ref, part[Series::kLengths],
                   part[Series::kGroundAtNodes], part[Series::kSumps], datum,
                   ve, units);
    DrawConnectedAndCrossing(sheet, ref, part[Series::kConnectedPipes],
                             part[Series::kCrossings], text, datum, ve, units);
    const host::Point3 table_end =
        DrawProfileTable(sheet, ref, part, style, labels_length, length);
    CompleteProfileFrame(sheet, ref, table_end, labels_length, datum, length,
                         height, text, inputs.profile_name, k, count);
    part_start_station += SumOf(Numbers(part[Series::kLengths]));
    ref.x += length + labels_length + kPartGap;
  }
  active_layer.Restore();
  active_style.Restore();
  return document.ModelSpace().InsertBlock(inputs.insertion_point,
                                           block.Name(), 1, 1, 1, 0);
}

void Profile::CreateProfileLayers(host::Document& document) {
  host::Layers& layers = document.GetLayers();
  for (const LayerColor& layer : kProfileLayers) {
    if (layers.Find(layer.name) != nullptr) continue;
    layers.Add(layer.name).SetTrueColor(layer.color);
  }
}

double Profile::GetDatumElevation(bool datum_auto, double custom_datum_value,
                                  std::string_view sump_levels_string,
                                  std::string_view model_units) {
  if (!datum_auto) return custom_datum_value;
  double lowest = 1.0E9;
  for (double sump : Numbers(sump_levels_string))
    lowest = std::min(lowest, sump);
  lowest -= model_units == core::kMetric ? 2.0 : 6.0;
  return std::floor(lowest);
}

std::pair<double, double> Profile::DrawPlotAreaFrame(
    Sheet& sheet, const host::Point3& ref_point, const PartData& part,
    const TextSettings& text, double datum_elevation,
    double vertical_exaggeration) {
  const double h = text.label_height;
  const double length =
      SumOf(Numbers(part[Series::kLengths])) + 2 * kFrameMargin * h;
  double highest = -std::numeric_limits<double>::infinity();
  const std::vector<double> ground = Numbers(part[Series::kGroundLine]);
  for (size_t i = 1; i < ground.size(); i += 2)
    highest = std::max(highest, ground[i]);
  if (ground.size() < 2)
    for (double level : Numbers(part[Series::kGroundAtNodes]))
      highest = std::max(highest, level);
  if (!std::isfinite(highest)) highest = datum_elevation;
  const double height =
      (General::RoundUp(highest - datum_elevation) + 1.5 * h) *
      vertical_exaggeration;
  const double x0 = ref_point.x - kFrameMargin * h;
  sheet.Polyline(Rectangle(x0, ref_point.y, x0 + length, ref_point.y + height),
                 true, kFrameLayer);
  return {length, height};
}

void Profile::DrawProfileGrid(
    Sheet& sheet, const host::Point3& ref_point,
    std::string_view horizontal_grid_settings,
    std::string_view vertical_grid_settings,
    std::string_view stations_settings, const TextSettings& text,
    double plot_area_length, double plot_area_height,
    double vertical_exaggeration, double datum_elevation,
    double part_start_station) {
  const double h = text.label_height;
  const double ve = vertical_exaggeration;
  const double x0 = ref_point.x - kFrameMargin * h;
  const double x1 = x0 + plot_area_length;

  const ItemFields horizontal(horizontal_grid_settings);
  const double interval = horizontal.Number(HorizontalGridSetting::kInterval);
  if (interval > 0) {
    const int n =
        static_cast<int>(std::floor((plot_area_height - 1.5 * h * ve) /
                                    (interval * ve)));
    for (int i = 1; i <= n; ++i) {
      const double y = ref_point.y + i * interval * ve;
      if (horizontal.On(HorizontalGridSetting::kLines))
        sheet.Line(At(x0, y), At(x1, y), kGridLayer);
      const std::string level = core::FormatNumber(
          core::RoundHalfEven(datum_elevation + i * interval, 3),
          kElevationPattern);
      if (horizontal.On(HorizontalGridSetting::kLeftLabels)) {
        sheet.Line(At(x0 - h, y), At(x0, y), kFrameLayer);
        sheet.Text(level, At(x0 - 1.5 * h, y), h, kLabelLayer, 0,
                   host::TextAlignment::kMiddleRight);
      }
      if (horizontal.On(HorizontalGridSetting::kRightLabels)) {
        sheet.Line(At(x1, y), At(x1 + h, y), kFrameLayer);
        sheet.Text(level, At(x1 + 1.5 * h, y), h, kLabelLayer, 0,
                   host::TextAlignment::kMiddleLeft);
      }
    }
  }

  const ItemFields vertical(vertical_grid_settings);
  const double s = vertical.Number(VerticalGridSetting::kInterval);
  if (!(s > 0)) return;
  const bool labels = vertical.On(VerticalGridSetting::kLabels);
  const ItemFields stations(stations_settings);
  const bool whole = s == std::floor(s);
  const std::string pattern = GetStationFormatString(
      whole ? "0" : stations.Text(StationBandSetting::kPrecision),
      whole ? "0" : stations.Text(StationBandSetting::kDecimals),
      stations.Text(StationBandSetting::kFormat));
  // Station labels stand inside the frame at its foot; the lines start
  // above them.
  const double line_foot = ref_point.y + (labels ? 1.5 * h : 0);
  for (double k = std::floor(part_start_station / s) + 1;; ++k) {
    const double station = k * s;
    const double x = ref_point.x + (station - part_start_station);
    if (x >= x1) break;
    if (vertical.On(VerticalGridSetting::kLines))
      sheet.Line(At(x, line_foot), At(x, ref_point.y + plot_area_height),
                 kGridLayer);
    if (labels)
      sheet.Text(core::FormatNumber(station, pattern),
                 At(x, ref_point.y + 0.5 * h), h, kLabelLayer, 0,
                 host::TextAlignment::kCenter);
  }
}

std::string Profile::ProfileTitle(std::string_view profile_line_name,
                                  int profile_part_index,
                                  int count_profile_parts) {
  std::string title = "%%u" + std::string(profile_line_name);
  if (count_profile_parts > 1)
    title += "  (Part " + std::to_string(profile_part_index + 1) + "/" +
             std::to_string(count_profile_parts) + ")";
  return title;
}

void Profile::CompleteProfileFrame(
    Sheet& sheet, const host::Point3& profile_ref_point,
    const host::Point3& band_ref_point, double band_labels_part_length,
    double datum_elevation, double plot_area_length, double plot_area_height,
    const TextSettings& text, std::string_view profile_line_name,
    int profile_part_index, int count_profile_parts) {
  const double h = text.label_height;
  const double x0 = profile_ref_point.x - kFrameMargin * h;
  const double left = x0 - band_labels_part_length;
  const double right = x0 + plot_area_length;
  const double top = profile_ref_point.y;
  const double bottom = band_ref_point.y;
  sheet.Line(At(left, top), At(x0, top), kFrameLayer);
  sheet.Line(At(left, top), At(left, bottom), kFrameLayer);
  sheet.Line(At(x0, top), At(x0, bottom), kFrameLayer);
  sheet.Line(At(right, top), At(right, bottom), kFrameLayer);
  sheet.Line(At(left, bottom), At(right, bottom), kFrameLayer);

  // The datum stands in the label column just above the table; a long
  // value is written smaller rather than into the plot area.
  const std::string datum =
      "DATUM  " + core::FormatNumber(datum_elevation, kDatumPattern);
  const double room = band_labels_part_length - 2 * h;
  const double length = sheet.TextLength(datum, h);
  const double datum_height =
      length > room && length > 0 ? h * room / length : h;
  sheet.Text(datum, At(left + h, top + 0.5 * h), datum_height, kLabelLayer);

  sheet.Text(ProfileTitle(profile_line_name, profile_part_index,
                          count_profile_parts),
             At(x0 + plot_area_length / 2,
                top + plot_area_height + text.title_height),
             text.title_height, kLabelLayer, 0, host::TextAlignment::kCenter);
}

void Profile::DrawNodeLabels(Sheet& sheet, const host::Point3& ref_point,
                             std::string_view length_string,
                             std::string_view node_label_string,
                             double frame_height,
                             const core::Record& ar_profile_style_settings) {
  const TextSettings text = ReadTextSettings(ar_profile_style_settings);
  const double h = text.label_height;
  const bool labels =
      ItemFields(ar_profile_style_settings.Text(ProfileStyleItem::kDrawing))
          .On(DrawingSetting::kNodeLabels);
  const std::vector<double> at = NodePositions(length_string);
  const std::vector<std::string> names = Values(node_label_string);
  const double top = ref_point.y + frame_height;
  // The foot of the frame keeps the station labels of the grid.
  const double foot = ref_point.y + 1.5 * h;
  for (size_t j = 0; j < at.size(); ++j) {
    const double x = ref_point.x + at[j];
    sheet.Line(At(x, foot), At(x, top), kDimensionLayer);
    // Upright, left of the line, hanging from the top of the frame.
    if (labels && j < names.size())
      sheet.Text(names[j], At(x - h / 3.0, top - 0.5 * h), h, kLabelLayer,
                 kQuarterTurn, host::TextAlignment::kRight);
  }
}

void Profile::DrawGroundLine(Sheet& sheet, const host::Point3& ref_point,
                             std::string_view ground_line_string,
                             double datum_elevation,
                             double vertical_exaggeration) {
  const std::vector<double> pairs = Numbers(ground_line_string);
  std::vector<double> xy;
  for (size_t i = 0; i + 1 < pairs.size(); i += 2) {
    const double x = ref_point.x + pairs[i];
    const double y =
        LevelY(ref_point, pairs[i + 1], datum_elevation, vertical_exaggeration);
    // A pipe's ground starts where the previous one ended.
    if (xy.size() >= 2 && xy[xy.size() - 2] == x && xy.back() == y) continue;
    xy.push_back(x);
    xy.push_back(y);
  }
  if (xy.size() >= 4) sheet.Polyline(xy, false, kGroundLayer);
}

void Profile::DrawPipes(Sheet& sheet, const host::Point3& ref_point,
                        std::string_view length_string,
                        std::string_view invert_string,
                        std::string_view size_string, double datum_elevation,
                        double vertical_exaggeration,
                        std::string_view model_units,
                        std::string_view network_type) {
  const std::vector<double> at = NodePositions(length_string);
  const std::vector<double> inverts = Numbers(invert_string);
  const std::vector<std::string> sizes = Values(size_string);
  const double w =
      network_type == core::kGravity ? ManholeHalfWidth(model_units) : 0;
  for (size_t i = 0; i + 1 < at.size() && 2 * i + 1 < inverts.size(); ++i) {
    const double length = at[i + 1] - at[i];
    const double inv_a = inverts[2 * i], inv_b = inverts[2 * i + 1];
    double rise = 0;
    if (4 * i + 2 < sizes.size())
      rise = RiseInLevels(core::NumericValue(sizes[4 * i + 2]),
                          sizes[4 * i] == "0", model_units);
    // Trimmed at the manhole outlines, the lines keep the pipe's slope.
    const double trim = length > 2 * w ? w : 0;
    const double slope = length > 0 ? (inv_b - inv_a) / length : 0;
    const double xa = ref_point.x + at[i] + trim;
    const double xb = ref_point.x + at[i + 1] - trim;
    const double za = inv_a + slope * trim, zb = inv_b - slope * trim;
    for (double lift : {0.0, rise})
      sheet.Line(At(xa, LevelY(ref_point, za + lift, datum_elevation,
                               vertical_exaggeration)),
                 At(xb, LevelY(ref_point, zb + lift, datum_elevation,
                               vertical_exaggeration)),
                 kPipeLayer);
  }
}

void Profile::DrawManholes(Sheet& sheet, const host::Point3& ref_point,
                           std::string_view length_string,
                           std::string_view ground_string,
                           std::string_view sump_string,
                           double datum_elevation,
                           double vertical_exaggeration,
                           std::string_view model_units) {
  const std::vector<core::LayerStatus> status =
      General::OpenLayerForWrite(sheet.document(), kManholeLayer);
  const double w = ManholeHalfWidth(model_units);
  const std::vector<double> at = NodePositions(length_string);
  const std::vector<double> grounds = Numbers(ground_string);
  const std::vector<double> sumps = Numbers(sump_string);
  for (size_t j = 0; j < at.size() && j < grounds.size() && j < sumps.size();
       ++j) {
    const double x = ref_point.x + at[j];
    sheet.Polyline(
        Rectangle(x - w,
                  LevelY(ref_point, sumps[j], datum_elevation,
                         vertical_exaggeration),
                  x + w,
                  LevelY(ref_point, grounds[j], datum_elevation,
                         vertical_exaggeration)),
        true, kManholeLayer);
  }
  General::RestoreLayerStatus(sheet.document(), status);
}

}  // namespace kestrana::profile
