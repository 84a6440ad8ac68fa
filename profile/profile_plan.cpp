// The plan annotation of a profile: its name and stations written along its
// pipes in plan, in one block.
#include <algorithm>
#include <cmath>
#include <set>

#include "core/general.h"
#include "core/lists.h"
#include "core/record.h"
#include "core/references.h"
#include "core/text.h"
#include "editing/editing.h"
#include "host/host.h"
#include "profile/profile.h"
#include "profile/profile_record.h"
#include "profile/profile_sheet.h"
#include "profile/profile_style_record.h"
#include "profile/style_fields.h"
#include "viewstyle/view_style.h"

namespace kestrana::profile {

using core::General;

namespace {

// A place on the chain: the point and the direction of its segment.
struct ChainPlace {
  host::Point3 at;
  double dx = 1, dy = 0;
};

ChainPlace PlaceAt(const std::vector<double>& xy, double station) {
  ChainPlace place;
  if (xy.size() < 4) {
    if (xy.size() >= 2) place.at = {xy[0], xy[1], 0};
    return place;
  }
  double walked = 0;
  for (size_t i = 0; i + 3 < xy.size(); i += 2) {
    const double dx = xy[i + 2] - xy[i], dy = xy[i + 3] - xy[i + 1];
    const double length = std::hypot(dx, dy);
    const bool last = i + 4 >= xy.size();
    if (length > 0 && (walked + length >= station || last)) {
      const double t = std::clamp((station - walked) / length, 0.0, 1.0);
      place.at = {xy[i] + t * dx, xy[i + 1] + t * dy, 0};
      place.dx = dx / length;
      place.dy = dy / length;
      return place;
    }
    walked += length;
  }
  place.at = {xy[xy.size() - 2], xy.back(), 0};
  return place;
}

// A text along the chain, readable, `offset` to the left of it.
void WriteAlong(host::Block& block, const ChainPlace& place,
                const std::string& text, double height, double offset,
                double correction_angle_for_cs, const char* layer,
                const std::string& text_style) {
  const double rotation = viewstyle::ViewStyle::GetTextRotation(
      place.at.x, place.at.y, place.at.x + place.dx, place.at.y + place.dy,
      correction_angle_for_cs);
  const host::Point3 at{place.at.x - place.dy * offset,
                        place.at.y + place.dx * offset, 0};
  host::Text& entity = block.AddText(text, at, height);
  entity.SetLayer(layer);
  if (!text_style.empty()) entity.SetStyleName(text_style);
  entity.SetAlignment(host::TextAlignment::kMiddleCenter);
  entity.SetTextAlignmentPoint(at);
  entity.SetRotation(rotation);
}

void WritePlanName(host::Block& stations_block, const std::vector<double>& xy,
                   double station, const std::string& profile_name,
                   double text_height, double correction_angle_for_cs,
                   const std::string& text_style) {
  WriteAlong(stations_block, PlaceAt(xy, station), profile_name, text_height,
             1.5 * text_height, correction_angle_for_cs, kPlanTitleLayer,
             text_style);
}

void WritePlanStation(host::Block& stations_block,
                      const std::vector<double>& xy, double station,
                      const std::string& station_string, double text_height,
                      double correction_angle_for_cs,
                      const std::string& text_style) {
  const ChainPlace place = PlaceAt(xy, station);
  // A tick across the chain marks the station; its text stands right of
  // the chain, the name left of it.
  const double half = 0.5 * text_height;
  host::Line& tick = stations_block.AddLine(
      {place.at.x - place.dy * half, place.at.y + place.dx * half, 0},
      {place.at.x + place.dy * half, place.at.y - place.dx * half, 0});
  tick.SetLayer(kPlanStationsLayer);
  WriteAlong(stations_block, place, station_string, text_height,
             -1.2 * text_height, correction_angle_for_cs, kPlanStationsLayer,
             text_style);
}

void DrawPlanPofileName(host::Block& block_def,
                        const std::vector<double>& title_distances,
                        const std::string& text_style,
                        double labels_text_height,
                        const std::vector<double>& total_pl_coord,
                        const std::string& profile_name,
                        double correction_angle_for_cs) {
  for (double distance : title_distances)
    WritePlanName(block_def, total_pl_coord, distance, profile_name,
                  labels_text_height, correction_angle_for_cs, text_style);
}

void DrawPlanStations(host::Block& block_def,
                      const std::vector<double>& profile_stations,
                      const std::string& text_style, double data_text_height,
                      std::string_view station_settings_string,
                      const std::vector<double>& total_pl_coord,
                      double correction_angle_for_cs) {
  const ItemFields settings(station_settings_string);
  const std::string pattern = Profile::GetStationFormatString(
      settings.Text(StationBandSetting::kPrecision),
      settings.Text(StationBandSetting::kDecimals),
      settings.Text(StationBandSetting::kFormat));
  for (double station : profile_stations)
    WritePlanStation(block_def, total_pl_coord, station,
                     core::FormatNumber(station, pattern), data_text_height,
                     correction_angle_for_cs, text_style);
}

}  // namespace

std::string Profile::GetStationFormatString(std::string_view precision_index,
                                            std::string_view decimals_index,
                                            std::string_view format_index) {
  return core::StationPattern(precision_index, decimals_index, format_index);
}

std::vector<double> Profile::GetTotalPipeCoordinates(
    host::Document& document, std::string_view pipe_oids_string,
    std::string_view pipe_directions_string) {
  const std::vector<std::string> ids = Values(pipe_oids_string);
  const std::vector<std::string> directions = Values(pipe_directions_string);
  std::vector<double> total;
  for (size_t i = 0; i < ids.size(); ++i) {
    const auto& pipe = host::As<host::LwPolyline>(
        core::EntityFromIdText(document, ids[i]));
    std::vector<double> xy = pipe.Coordinates();
    if (i < directions.size() && directions[i] == kAgainst)
      xy = editing::Editing::ReversePolylineCoordinates(xy);
    size_t from = 0;
    if (total.size() >= 2 && xy.size() >= 2 &&
        total[total.size() - 2] == xy[0] && total.back() == xy[1])
      from = 2;
    total.insert(total.end(), xy.begin() + static_cast<std::ptrdiff_t>(from),
                 xy.end());
  }
  return total;
}

host::BlockReference* Profile::CreatePlanAnnotationBlockForProfile(
    host::Document& document, std::string_view profile_name,
    std::string_view profile_network_name,
    const PartsData& ar_profile_parts_data_arrays,
    const core::Record& ar_profile_style_settings, bool show_name_on_plan,
    bool show_stations_on_plan) {
  if (!show_name_on_plan && !show_stations_on_plan) return nullptr;
  host::Block& block = General::InitializeBlockDefinition(
      document, std::string(kPlanAnnoBlockPrefix) +
                    std::string(profile_network_name) + "_" +
                    std::string(profile_name));
  CreateProfileLayers(document);
  std::string ids, directions;
  std::vector<double> title_distances, stations;
  std::set<double> seen;
  for (const PartData& part : ar_profile_parts_data_arrays) {
    ids += part[Series::kPipeOIDs];
    directions += part[Series::kDirections];
    for (double d : Numbers(part[Series::kPlanTitleDistances]))
      title_distances.push_back(d);
    const std::vector<double> pairs = Numbers(part[Series::kStations]);
    // A part's first node is the last of the part before.
    for (size_t i = 1; i < pairs.size(); i += 2)
      if (seen.insert(core::RoundHalfEven(pairs[i], 5)).second)
        stations.push_back(pairs[i]);
  }
  const std::vector<double> chain =
      GetTotalPipeCoordinates(document, ids, directions);
  const double angle = General::GetCorrectionAngleForCS(document);
  const TextSettings text = ReadTextSettings(ar_profile_style_settings);
  const std::string text_style =
      document.GetTextStyles().Find(text.style) != nullptr ? text.style : "";
  if (show_name_on_plan)
    DrawPlanPofileName(block, title_distances, text_style, text.label_height,
                       chain, std::string(profile_name), angle);
  if (show_stations_on_plan)
    DrawPlanStations(
        block, stations, text_style, text.data_height,
        ar_profile_style_settings.Text(ProfileStyleItem::kStationBand), chain,
        angle);
  return &document.ModelSpace().InsertBlock({0, 0, 0}, block.Name(), 1, 1, 1,
                                            0);
}

}  // namespace kestrana::profile
