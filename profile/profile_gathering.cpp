// Gathering the data of a profile: the chain cut into parts, and the 22
// series of every part, each read from the network once.
#include <algorithm>
#include <cmath>

#include "core/general.h"
#include "core/names.h"
#include "core/pipe_record.h"
#include "core/references.h"
#include "core/text.h"
#include "crossing/crossing_search.h"
#include "host/errors.h"
#include "host/host.h"
#include "profile/profile.h"
#include "profile/profile_series.h"
#include "profile/profile_style_record.h"
#include "profile/style_fields.h"

namespace kestrana::profile {

namespace {

using core::PipeField;

// The profile name is written in plan along parts at least this long, at
// every multiple of the spacing; along shorter parts, once in the middle.
constexpr double kTitleMinimumPartLength = 600.0;
constexpr double kMetricTitleSpacing = 300.0;
constexpr double kUSTitleSpacing = 1000.0;

// What the style asks of the gathering.
struct Settings {
  bool values_at_stations = false;  // stations band drawn and asking for them
  double station_interval = 0;
  bool coordinates_at_stations = false;
  bool coordinates_at_nodes = false;
  bool coordinates_at_vertices = false;
};

Settings ReadSettings(const core::Record& style) {
  if (style.Size() < kProfileStyleRecordLength)
    throw InvalidInputError("the profile style record is damaged: it holds " +
                            std::to_string(style.Size()) + " of its " +
                            std::to_string(kProfileStyleRecordLength) +
                            " items");
  const ItemFields stations(style.Text(ProfileStyleItem::kStationBand));
  const ItemFields coordinates(style.Text(ProfileStyleItem::kCoordinateBand));
  Settings settings;
  settings.values_at_stations =
      stations.Number(StationBandSetting::kPosition) != kBandNotDrawn &&
      stations.On(StationBandSetting::kValuesAtStations);
  settings.station_interval = stations.Number(StationBandSetting::kInterval);
  settings.coordinates_at_stations =
      coordinates.On(CoordinateBandSetting::kAtStations);
  settings.coordinates_at_nodes =
      coordinates.On(CoordinateBandSetting::kAtNodes);
  settings.coordinates_at_vertices =
      coordinates.On(CoordinateBandSetting::kAtVertices);
  if ((settings.values_at_stations || settings.coordinates_at_stations) &&
      !(settings.station_interval > 0))
    throw InvalidInputError(
        "the profile style asks for values at regular stations, but its "
        "station interval (item 18, field 5) is \"" +
        stations.Text(StationBandSetting::kInterval) +
        "\"; it must be greater than 0");
  return settings;
}

std::string TitleDistances(double part_start, double part_length, bool metric) {
  std::string series;
  if (part_length < kTitleMinimumPartLength) {
    AppendValue(series, core::RoundHalfEven(part_start + part_length / 2,
                                            kDistancePlaces));
    return series;
  }
  const double spacing = metric ? kMetricTitleSpacing : kUSTitleSpacing;
  const double end = part_start + part_length;
  double multiple = std::max(1.0, std::ceil(core::RoundHalfEven(
                                      part_start / spacing, kDistancePlaces)));
  for (; multiple * spacing < end; multiple += 1)
    AppendValue(series, multiple * spacing);
  return series;
}

// Everything the parts of one profile share.
struct Gathering {
  host::Document& document;
  host::CivilDocument& aecc_doc;
  const host::Surface* surface;  // null: ground from the nodes' records
  std::string_view surface_name;
  std::string units;
  Settings settings;
  IdSet profile_pipes;  // never shown as connected pipes
};

class PartBuilder {
 public:
  PartBuilder(const Gathering& gathering, double part_start)
      : g_(gathering), part_start_(part_start) {}

  void AddPipe(int index, const std::string& id, int direction) {
    host::Entity& entity = core::EntityFromIdText(g_.document, id);
    const auto& pipe = host::As<host::LwPolyline>(entity);
    const core::Record record =
        core::ReadRecordWithFields(entity, core::kPipeRecordLength, "pipe");
    const double length = ProfilePipeLength(pipe);
    const double start = distance_;
    const double start_in_profile = part_start_ + start;
    distance_ = core::RoundHalfEven(distance_ + length, kDistancePlaces);

    const double start_invert = record.Number(PipeField::kStartInvert);
    const double end_invert = record.Number(PipeField::kEndInvert);
    const bool along = direction == 0;
    const double invert_a = along ? start_invert : end_invert;
    const double invert_b = along ? end_invert : start_invert;
    Append(Series::kLengths, length);
    Append(Series::kInverts, invert_a);
    Append(Series::kInverts, invert_b);
    AppendSection(record);
    Append(Series::kSlopes,
           core::RoundHalfEven(std::fabs(end_invert - start_invert) / length,
                               kSlopePlaces));
    AppendValue(part_[Series::kMaterials], record.Text(PipeField::kMaterial));

    const PipeField node_a =
        along ? PipeField::kStartNodeOID : PipeField::kEndNodeOID;
    const PipeField node_b =
        along ? PipeField::kEndNodeOID : PipeField::kStartNodeOID;
    if (index == 0)
      ground_at_a_ = AddNode(core::SingleReference(record, node_a), start);
    const double ground_a = ground_at_a_;
    const double ground_b =
        AddNode(core::SingleReference(record, node_b), distance_);
    ground_at_a_ = ground_b;

    const bool from_surface = g_.surface != nullptr;
    part_[Series::kGroundLine] += Profile::GetGroundLineStringForProfile(
        g_.aecc_doc, pipe, from_surface, g_.surface_name, ground_a, ground_b,
        start, g_.units, direction);
    const double rise = crossing::RiseInLevelUnits(record, g_.units);
    Append(Series::kInvertDepths, Rounded(ground_a - invert_a));
    Append(Series::kInvertDepths, Rounded(ground_b - invert_b));
    Append(Series::kCoverDepths, Rounded(ground_a - invert_a - rise));
    Append(Series::kCoverDepths, Rounded(ground_b - invert_b - rise));
    part_[Series::kCrossings] += Profile::GetCrossingStringForProfile(
        g_.document, record.Text(PipeField::kCrossingOIDRefs), pipe, start,
        direction);

    const Settings& s = g_.settings;
    if (index == 0) AppendPair(part_[Series::kStations], start, part_start_);
    if (s.values_at_stations)
      for (double station :
           RegularStations(start_in_profile, length, s.station_interval))
        AppendPair(part_[Series::kStations],
                   Rounded(station - start_in_profile + start), station);
    AppendPair(part_[Series::kStations], distance_,
               Rounded(part_start_ + distance_));
    part_[Series::kCoordinates] += Profile::GetCoordinatesStringForProfile(
        pipe, start, start_in_profile, index, direction,
        s.coordinates_at_stations, s.coordinates_at_nodes,
        s.coordinates_at_vertices, s.station_interval);
    if (s.values_at_stations) {
      const StationSeries at_stations = Profile::GetPipeDataAtStationsArray(
          g_.aecc_doc, pipe, start, start_in_profile, direction,
          s.station_interval, ground_a, ground_b, invert_a, invert_b,
          from_surface, g_.surface_name, rise);
      part_[Series::kInvertsAtStations] += at_stations.inverts;
      part_[Series::kGroundAtStations] += at_stations.grounds;
      part_[Series::kInvertDepthsAtStations] += at_stations.invert_depths;
      part_[Series::kCoverDepthsAtStations] += at_stations.cover_depths;
    }
  }

  PartData Finish(std::string pipe_oids, std::string directions) {
    part_[Series::kPipeOIDs] = std::move(pipe_oids);
    part_[Series::kDirections] = std::move(directions);
    part_[Series::kPlanTitleDistances] =
        TitleDistances(part_start_, distance_, g_.units == core::kMetric);
    return std::move(part_);
  }

  double Length() const { return distance_; }

 private:
  static double Rounded(double value) {
    return core::RoundHalfEven(value, kDistancePlaces);
  }
  void Append(Series series, double value) {
    AppendValue(part_[series], value);
  }

  void AppendSection(const core::Record& record) {
    std::string& sections = part_[Series::kSections];
    AppendValue(sections, record.Text(PipeField::kSectionShape) ==
                                  core::kSectionShapeCircular
                              ? "0"
                              : "1");
    AppendValue(sections, record.Number(PipeField::kSpan));
    AppendValue(sections, record.Number(PipeField::kRise));
    AppendValue(sections, std::to_string(record.Int16(PipeField::kNumCells)));
  }

  // Label, ground and sump of a node and the other pipes that meet there;
  // answers its ground level.
  double AddNode(const std::string& node_id, double distance) {
    const ProfileNodeData node = NodeDataFor(
        g_.document, g_.surface, core::EntityFromIdText(g_.document, node_id),
        g_.profile_pipes);
    AppendValue(part_[Series::kNodeLabels], node.label);
    AppendValue(part_[Series::kGroundAtNodes], node.ground);
    AppendValue(part_[Series::kSumps], node.sump);
    if (!node.connected_pipes.empty())
      part_[Series::kConnectedPipes] +=
          Profile::IncludedDistanceInConnectedPipesString(node.connected_pipes,
                                                          distance);
    return core::NumericValue(node.ground);
  }

  const Gathering& g_;
  const double part_start_;
  PartData part_;
  double distance_ = 0;
  double ground_at_a_ = 0;
};

}  // namespace

PartsData Profile::GetProfilePartsDataArrays(
    host::Document& document, host::CivilDocument& aecc_doc,
    std::string_view profile_network,
    const core::Record& ar_profile_style_settings,
    const SortedPipes& ar_profile_pipes, bool draw_ground_from_surface,
    std::string_view ground_surface_name) {
  const Settings settings = ReadSettings(ar_profile_style_settings);
  const std::vector<std::string> part_oids = GetSplitPipesOIDArray(
      document,
      ar_profile_style_settings.Text(ProfileStyleItem::kPartSplitting),
      ar_profile_pipes.oids);
  if (part_oids.empty())
    throw InvalidInputError("a profile of the network \"" +
                            std::string(profile_network) +
                            "\" needs at least one pipe");
  const std::vector<std::string> part_directions =
      GetSplitPipesDirectionArray(ar_profile_pipes.directions, part_oids);

  const Gathering gathering{
      document, aecc_doc,
      draw_ground_from_surface ? &GroundSurface(aecc_doc, ground_surface_name)
                               : nullptr,
      ground_surface_name, core::General::GetModelUnits(document), settings,
      // The part's own pipes and those of the other parts
      // (GetConnectedOtherPartsPipes): every pipe of the chain.
      IdsOf(ar_profile_pipes.oids)};

  PartsData parts;
  double part_start = 0;
  for (size_t k = 0; k < part_oids.size(); ++k) {
    PartBuilder builder(gathering, part_start);
    const std::vector<std::string> ids = core::Split(part_oids[k]);
    const std::vector<std::string> directions = core::Split(part_directions[k]);
    for (size_t i = 1; i < ids.size(); ++i)
      builder.AddPipe(static_cast<int>(i) - 1, ids[i],
                      DirectionIndexOf(directions[i]));
    part_start =
        core::RoundHalfEven(part_start + builder.Length(), kDistancePlaces);
    parts.push_back(builder.Finish(part_oids[k], part_directions[k]));
  }
  return parts;
}

}  // namespace kestrana::profile
