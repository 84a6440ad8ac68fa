// The data table under each part: bands in the style's order, each with its
// label in the left column and its values along the part.
#include <algorithm>
#include <cmath>

#include "core/general.h"
#include "core/record.h"
#include "core/text.h"
#include "host/host.h"
#include "profile/profile.h"
#include "profile/profile_sheet.h"
#include "profile/profile_style_record.h"
#include "profile/style_fields.h"

namespace kestrana::profile {

using core::General;

namespace {

enum class BandSetting : int {
  kPosition = 0,
  kLabel = 1,
  kSwitch = 2,  // horizontal bands: dimension arrows
  kFormat1 = 3,
  kFormat2 = 4,
  kFormat3 = 5,
};

constexpr int kFirstBand = static_cast<int>(ProfileStyleItem::kSectionBand);
constexpr int kLastBand = static_cast<int>(ProfileStyleItem::kCoordinateBand);
constexpr double kNoPlace = 999;
// Values per pipe in the sections series.
constexpr size_t kSectionValues = 4;
constexpr double kFrameMargin = 10;  // as the plot frame

// Where a band is drawn and with what.
struct BandFrame {
  double left;    // the label column's left edge
  double right;   // the frame's right edge
  double top;     // the band's top
  double x_ref;   // x of distance 0
  const TextSettings* text;
};

// A vertical text centred across x, reading upward from `foot`.
Box2 UprightBox(double x, double foot, double length, double height) {
  return {x - height / 2, foot, x + height / 2, foot + length};
}

void WriteUpright(Sheet& sheet, const std::string& value, double x,
                  double foot, double height) {
  sheet.Text(value, {x, foot, 0}, height, kDataLayer, kQuarterTurn,
             host::TextAlignment::kMiddleLeft);
}

void WriteBandLabel(Sheet& sheet, const BandFrame& band, std::string_view label,
                    double height) {
  const double h = band.text->label_height;
  sheet.Text(std::string(label), {band.left + h, band.top - height / 2, 0}, h,
             kLabelLayer, 0, host::TextAlignment::kMiddleLeft);
}

void CloseBand(Sheet& sheet, const BandFrame& band, double height,
               int is_last_band_indicator) {
  if (is_last_band_indicator == 0) return;  // the frame closes the table
  sheet.Line({band.left, band.top - height, 0},
             {band.right, band.top - height, 0}, kFrameLayer);
}

void AddBandTick(Sheet& sheet, double x, double y, double tick_height) {
  sheet.Line({x, y, 0}, {x, y - tick_height, 0}, kDimensionLayer);
}

void AddBandSeparator(Sheet& sheet, double x, double y, double band_height) {
  sheet.Line({x, y, 0}, {x, y - band_height, 0}, kDimensionLayer);
}

// Arrows from the text in the middle toward the two nodes, when there is
// room for the text and three arrow lengths.
void AddBandArrow(Sheet& sheet, double x1, double x2, double y,
                  double band_height, const std::string& middle_text,
                  double text_height) {
  const double arrow = text_height;
  const double length = sheet.TextLength(middle_text, text_height);
  if (x2 - x1 < length + 3 * arrow) return;
  const double mid_y = y - band_height / 2;
  const double mid_x = (x1 + x2) / 2;
  const double gap = 0.5 * text_height;
  const double barb = arrow / 4;
  for (const auto& [tip, from, dir] :
       {std::tuple{x1, mid_x - length / 2 - gap, 1.0},
        std::tuple{x2, mid_x + length / 2 + gap, -1.0}}) {
    if ((from - tip) * dir <= arrow) continue;
    sheet.Line({from, mid_y, 0}, {tip + dir * arrow, mid_y, 0},
               kDimensionLayer);
    sheet.Polyline({tip, mid_y, tip + dir * arrow, mid_y + barb,
                    tip + dir * arrow, mid_y - barb},
                   true, kDimensionLayer);
  }
}

// One value per pipe, centred between its nodes.
double DrawHorizontalBand(Sheet& sheet, const BandFrame& band,
                          std::string_view band_settings,
                          const std::vector<double>& nodes,
                          const std::vector<std::string>& texts,
                          int is_last_band_indicator) {
  const ItemFields settings(band_settings);
  const double h = band.text->label_height;
  const double h_d = band.text->data_height;
  const double height = 3 * h;
  WriteBandLabel(sheet, band, settings.Text(BandSetting::kLabel), height);
  for (double at : nodes)
    AddBandSeparator(sheet, band.x_ref + at, band.top, height);
  const bool arrows = settings.Number(BandSetting::kSwitch) == 1;
  for (size_t i = 0; i + 1 < nodes.size() && i < texts.size(); ++i) {
    const double xa = band.x_ref + nodes[i], xb = band.x_ref + nodes[i + 1];
    // A text longer than its pipe is written smaller, between its nodes.
    const double room = xb - xa - 0.4 * h_d;
    const double length = sheet.TextLength(texts[i], h_d);
    const double size =
        length > room && length > 0 ? h_d * std::max(room, 0.0) / length : h_d;
    if (size <= 0) continue;
    sheet.Text(texts[i], {(xa + xb) / 2, band.top - height / 2, 0}, size,
               kDataLayer, 0, host::TextAlignment::kMiddleCenter);
    if (arrows) AddBandArrow(sheet, xa, xb, band.top, height, texts[i], h_d);
  }
  CloseBand(sheet, band, height, is_last_band_indicator);
  return height;
}

// A node's value: beside the node line, left of it for the pipe that ends
// there, right of it for the pipe that starts there.
struct NodeValue {
  double at;
  int side;  // -1 left of the node line, +1 right
  std::string text;
};

double BandMargin(const TextSettings& text) { return 0.8 * text.data_height; }

double UprightBandHeight(Sheet& sheet, const TextSettings& text,
                         const std::vector<std::string>& texts) {
  double longest = 0;
  for (const std::string& value : texts)
    longest = std::max(longest, sheet.TextLength(value, text.data_height));
  return longest + 2.2 * text.data_height;
}

// One value per node side, upright, with ticks at the nodes.
void DrawVerticalBand(Sheet& sheet, const BandFrame& band,
                      std::string_view label, const std::vector<double>& nodes,
                      const std::vector<NodeValue>& values, double height,
                      std::vector<Box2>& taken, int is_last_band_indicator) {
  const double h_d = band.text->data_height;
  const double foot = band.top - height + BandMargin(*band.text);
  WriteBandLabel(sheet, band, label, height);
  for (double at : nodes) {
    AddBandTick(sheet, band.x_ref + at, band.top, 0.5 * h_d);
    AddBandTick(sheet, band.x_ref + at, band.top - height + 0.5 * h_d,
                0.5 * h_d);
  }
  for (const NodeValue& value : values) {
    const double x = band.x_ref + value.at + value.side * 0.75 * h_d;
    WriteUpright(sheet, value.text, x, foot, h_d);
    taken.push_back(
        UprightBox(x, foot, sheet.TextLength(value.text, h_d), 1.25 * h_d));
  }
  CloseBand(sheet, band, height, is_last_band_indicator);
}

struct DistanceValue {
  double distance;
  std::string text;
};

// Values at any distance, upright, moved off the node lines; a value that
// finds no place clear of the others is left out.
void DrawDistanceDataBand(Sheet& sheet, const BandFrame& band,
                          std::string_view label,
                          const std::vector<double>& prohibited,
                          const std::vector<DistanceValue>& values,
                          double buffer, bool allow_exact, double height,
                          bool draw_band_label, std::vector<Box2>& taken,
                          int is_last_band_indicator) {
  const double h_d = band.text->data_height;
  const double foot = band.top - height + BandMargin(*band.text);
  if (draw_band_label) WriteBandLabel(sheet, band, label, height);
  for (const DistanceValue& value : values) {
    const double shift = Profile::GetDataTextShift(
        value.distance, prohibited, buffer, allow_exact, h_d);
    if (shift == kNoPlace) continue;
    const double x = band.x_ref + value.distance - shift;
    const Box2 box =
        UprightBox(x, foot, sheet.TextLength(value.text, h_d), 1.2 * h_d);
    if (std::any_of(taken.begin(), taken.end(),
                    [&](const Box2& other) { return other.Overlaps(box); }))
      continue;
    taken.push_back(box);
    WriteUpright(sheet, value.text, x, foot, h_d);
    AddBandTick(sheet, band.x_ref + value.distance, band.top, 0.5 * h_d);
  }
  CloseBand(sheet, band, height, is_last_band_indicator);
}

std::vector<DistanceValue> DistanceValues(std::string_view pairs,
                                          const std::string& pattern) {
  const std::vector<std::string> values = Values(pairs);
  std::vector<DistanceValue> result;
  for (size_t i = 0; i + 1 < values.size(); i += 2)
    result.push_back({core::NumericValue(values[i]),
                      pattern.empty() ? values[i + 1]
                                      : core::FormatNumber(core::NumericValue(
                                                               values[i + 1]),
                                                           pattern)});
  return result;
}

// The node values of a level band: one per node (ground levels), or the
// two ends of every pipe (inverts and depths).
std::vector<NodeValue> NodeValues(const PartData& part, ProfileStyleItem item,
                                  const std::vector<double>& nodes,
                                  const std::string& pattern) {
  auto format = [&](const std::string& value) {
    return core::FormatNumber(core::NumericValue(value), pattern);
  };
  std::vector<NodeValue> result;
  if (item == ProfileStyleItem::kGroundLevelBand) {
    const std::vector<std::string> values = Values(part[Series::kGroundAtNodes]);
    for (size_t j = 0; j < values.size() && j < nodes.size(); ++j)
      result.push_back({nodes[j], -1, format(values[j])});
    return result;
  }
  const Series series = item == ProfileStyleItem::kInvertLevelBand
                            ? Series::kInverts
                        : item == ProfileStyleItem::kCoverDepthBand
                            ? Series::kCoverDepths
                            : Series::kInvertDepths;
  const std::vector<std::string> values = Values(part[series]);
  for (size_t i = 0; 2 * i + 1 < values.size() && i + 1 < nodes.size(); ++i) {
    result.push_back({nodes[i], +1, format(values[2 * i])});
    result.push_back({nodes[i + 1], -1, format(values[2 * i + 1])});
  }
  return result;
}

Series StationSeriesOf(ProfileStyleItem item) {
  switch (item) {
    case ProfileStyleItem::kGroundLevelBand:
      return Series::kGroundAtStations;
    case ProfileStyleItem::kInvertLevelBand:
      return Series::kInvertsAtStations;
    case ProfileStyleItem::kCoverDepthBand:
      return Series::kCoverDepthsAtStations;
    default:
      return Series::kInvertDepthsAtStations;
  }
}

// The texts of a band drawn one per pipe.
std::vector<std::string> PipeTexts(const PartData& part, ProfileStyleItem item,
                                   const ItemFields& settings) {
  std::vector<std::string> texts;
  switch (item) {
    case ProfileStyleItem::kSectionBand: {
      const std::vector<std::string> v = Values(part[Series::kSections]);
      for (size_t i = 0; i + kSectionValues <= v.size(); i += kSectionValues)
        texts.push_back(Profile::GetSectionSizeStringForProfile(
            v[i], core::NumericValue(v[i + 1]), core::NumericValue(v[i + 2]),
            static_cast<int>(core::NumericValue(v[i + 3]))));
      break;
    }
    case ProfileStyleItem::kSlopeBand:
      for (double slope : Numbers(part[Series::kSlopes]))
        texts.push_back(General::BuildSlopeString(
                            slope, settings.Text(BandSetting::kFormat1),
                            settings.Text(BandSetting::kFormat2),
                            settings.Text(BandSetting::kFormat3))
                            .value_or(""));
      break;
    case ProfileStyleItem::kLengthBand: {
      const std::string pattern =
          core::DecimalsPattern(settings.Text(BandSetting::kFormat1),
                                settings.Text(BandSetting::kFormat2));
      for (double length : Numbers(part[Series::kLengths]))
        texts.push_back(core::FormatNumber(length, pattern));
      break;
    }
    default:
      texts = Values(part[Series::kMaterials]);
      break;
  }
  return texts;
}

}  // namespace

std::vector<int> Profile::GetBandOrder(
    const core::Record& ar_profile_style_settings) {
  std::vector<int> order;
  double last = -999;
  for (int round = 0; round < 11; ++round) {
    int best_item = 0;
    double best = kNoPlace;
    for (int item = kFirstBand; item <= kLastBand; ++item) {
      const std::string position = ItemFields(ar_profile_style_settings.Text(item))
                                       .Text(BandSetting::kPosition);
      if (position == "999") continue;
      const double value = core::NumericValue(position);
      if (value < best && value > last) {
        best = value;
        best_item = item;
      }
    }
    if (best_item == 0) break;
    order.push_back(best_item);
    last = best;
  }
  return order;
}

host::Point3 Profile::DrawProfileTable(
    Sheet& sheet, const host::Point3& ref_point,
    const PartData& ar_profile_data_strings,
    const core::Record& ar_profile_style_settings,
    double band_labels_part_length, double plot_area_length) {
  const PartData& part = ar_profile_data_strings;
  const core::Record& style = ar_profile_style_settings;
  const TextSettings text = ReadTextSettings(style);
  const double h_d = text.data_height;
  const double x0 = ref_point.x - kFrameMargin * text.label_height;
  const std::vector<double> nodes = NodePositions(part[Series::kLengths]);
  const std::vector<double> prohibited =
      GetProhibitedDistancesArray(core::Split(part[Series::kLengths]));
  const std::vector<int> order = GetBandOrder(style);

  double top = ref_point.y;
  for (size_t b = 0; b < order.size(); ++b) {
    const auto item = static_cast<ProfileStyleItem>(order[b]);
    const int left_after = static_cast<int>(order.size() - b - 1);
    const ItemFields settings(style.Text(item));
    const std::string label = settings.Text(BandSetting::kLabel);
    const BandFrame band{x0 - band_labels_part_length, x0 + plot_area_length,
                         top, ref_point.x, &text};
    std::vector<Box2> taken;
    double height = 0;
    switch (item) {
      case ProfileStyleItem::kSectionBand:
      case ProfileStyleItem::kSlopeBand:
      case ProfileStyleItem::kLengthBand:
      case ProfileStyleItem::kMaterialBand:
        height = DrawHorizontalBand(sheet, band, style.Text(item), nodes,
                                    PipeTexts(part, item, settings),
                                    left_after);
        break;
      case ProfileStyleItem::kStationBand:
      case ProfileStyleItem::kCoordinateBand: {
        const bool stations = item == ProfileStyleItem::kStationBand;
        const std::string pattern =
            stations ? GetStationFormatString(
                           settings.Text(StationBandSetting::kPrecision),
                           settings.Text(StationBandSetting::kDecimals),
                           settings.Text(StationBandSetting::kFormat))
                     : "";
        const std::vector<DistanceValue> values = DistanceValues(
            part[stations ? Series::kStations : Series::kCoordinates],
            pattern);
        std::vector<std::string> texts;
        for (const DistanceValue& value : values) texts.push_back(value.text);
        height = UprightBandHeight(sheet, text, texts);
        DrawDistanceDataBand(sheet, band, label, prohibited, values,
                             stations ? h_d : 3.2 * h_d, true, height, true,
                             taken, left_after);
        break;
      }
      default: {
        const std::string pattern =
            core::DecimalsPattern("0", settings.Text(BandSetting::kFormat1));
        const std::vector<NodeValue> node_values =
            NodeValues(part, item, nodes, pattern);
        const std::vector<DistanceValue> station_values =
            DistanceValues(part[StationSeriesOf(item)], "");
        std::vector<DistanceValue> formatted;
        std::vector<std::string> texts;
        for (const NodeValue& value : node_values) texts.push_back(value.text);
        for (const DistanceValue& value : station_values) {
          formatted.push_back(
              {value.distance,
               core::FormatNumber(core::NumericValue(value.text), pattern)});
          texts.push_back(formatted.back().text);
        }
        height = UprightBandHeight(sheet, text, texts);
        // The node values first: the station values keep clear of them.
        DrawVerticalBand(sheet, band, label, nodes, node_values, height, taken,
                         left_after);
        if (!formatted.empty())
          DrawDistanceDataBand(sheet, band, label, prohibited, formatted, h_d,
                               false, height, false, taken, -1);
        break;
      }
    }
    top -= height;
  }
  return {ref_point.x, top, 0};
}

double Profile::GetDataTextShift(double distance,
                                 const std::vector<double>& ar_prohibited,
                                 double buffer_distance,
                                 bool allow_exactly_node_distance,
                                 double text_height) {
  double shift = 0;
  for (double p : ar_prohibited) {
    const double d = core::RoundHalfEven(distance - p, 7);
    if (std::abs(d) < buffer_distance) {
      const double a = std::abs(1.2 * text_height - std::abs(d));
      if (d > 0) {
        shift = -a;
      } else if (d < 0) {
        shift = a;
      } else if (!allow_exactly_node_distance) {
        shift = kNoPlace;
      }
    }
    if (p > distance) break;
  }
  return shift;
}

std::vector<double> Profile::GetProhibitedDistancesArray(
    const std::vector<std::string>& ar_length_data) {
  std::vector<double> positions;
  double sum = 0;
  for (const std::string& length : ar_length_data) {
    sum += core::NumericValue(length);
    positions.push_back(sum);
  }
  return positions;
}

double Profile::GetTextLengthOnDrawing(host::Document& document,
                                       const std::string& my_string,
                                       const std::string& my_text_style,
                                       double my_text_height) {
  host::Text& probe =
      document.ModelSpace().AddText(my_string, {0, 0, 0}, my_text_height);
  if (!my_text_style.empty() &&
      document.GetTextStyles().Find(my_text_style) != nullptr)
    probe.SetStyleName(my_text_style);
  const host::BoundingBox box = probe.GetBoundingBox();
  probe.Delete();
  return std::abs(box.max.x - box.min.x);
}

double Profile::GetLongestTextLength(host::Document& document,
                                     const std::string& string1,
                                     const std::string& string2,
                                     const std::string& string3,
                                     const std::string& string4,
                                     const std::string& text_style,
                                     double text_height) {
  double longest = 0;
  for (const std::string* text : {&string1, &string2, &string3, &string4})
    longest = std::max(longest, GetTextLengthOnDrawing(document, *text,
                                                       text_style, text_height));
  return longest;
}

double Profile::GetBandLabelsPartLength(
    host::Document& document, const core::Record& ar_profile_style_settings) {
  TextMeasure measure(document);
  return GetBandLabelsPartLength(measure, ar_profile_style_settings);
}

double Profile::GetBandLabelsPartLength(
    TextMeasure& measure, const core::Record& ar_profile_style_settings) {
  const TextSettings text = ReadTextSettings(ar_profile_style_settings);
  double longest = 0;
  for (int item : GetBandOrder(ar_profile_style_settings))
    longest = std::max(
        longest, measure.Length(ItemFields(ar_profile_style_settings.Text(item))
                                    .Text(BandSetting::kLabel),
                                text.style, text.label_height));
  return longest + 2 * text.label_height;
}

}  // namespace kestrana::profile
