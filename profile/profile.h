// Class Profile: longitudinal profiles. This part keeps their records: the
// profile block and plan annotation records, the back-references on styles
// and pipes, the "NeedsUpdate" flag, and a pipe's place in a stored chain
// when the pipe is reversed, merged or erased. Operations keep nothing
// between calls.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <string_view>
#include <vector>

#include "core/text_table.h"
#include "host/types.h"
#include "profile/part_data.h"
#include "types/cross_point.h"

namespace kestrana::host {
class BlockReference;
class CivilDocument;
class Document;
class Entity;
class LwPolyline;
class SelectionSet;
}  // namespace kestrana::host

namespace kestrana::core {
class Record;
}

namespace kestrana::profile {
class Sheet;
struct Box2;
struct Segment;
struct TextSettings;
class TextMeasure;
}  // namespace kestrana::profile

namespace kestrana::profile {

// A run of pipes in profile order, as GetSortedPipesArray answers it.
struct SortedPipes {
  std::string labels;      // ";RelatedTo<label>" per pipe
  std::string oids;        // ";RelatedTo<ID>" per pipe
  std::string directions;  // ";0" or ";1" per pipe
  friend bool operator==(const SortedPipes&, const SortedPipes&) = default;
};

// What DrawProfile is given; the profile block record keeps it so that the
// profile can be drawn again.
struct ProfileInputs {
  std::string profile_name;
  std::string network_name;
  std::string network_type;  // "Gravity" or "Pressure"
  std::string style_name;
  SortedPipes pipes;
  host::Point3 insertion_point;
  bool ground_from_surface = false;
  std::string ground_surface_name;
  bool datum_auto = true;
  double custom_datum_value = 0.0;
  bool name_on_plan = false;
  bool stations_on_plan = false;
};

// The profile definitions array: one row per profile, columns as named.
using ProfileDefinitions = core::TextTable;
enum class ProfileDefColumn : int { kName = 0, kNetwork = 1, kOID = 2 };
inline constexpr int kProfileDefColumns = 3;

// A continuous line of a gravity network: its name and its pipes' IDs, each
// followed by ";".
struct GravityLine {
  std::string name;
  std::string pipe_oids;
  friend bool operator==(const GravityLine&, const GravityLine&) = default;
};

// What a profile shows of one node: label, ground and sump as texts, and
// the connected-pipe records of its other pipes, each followed by ";".
struct ProfileNodeData {
  std::string label;
  std::string ground;
  std::string sump;
  std::string connected_pipes;
};

// The values at regular stations along a pipe, as ";<distance>;<value>"
// pairs.
struct StationSeries {
  std::string inverts;
  std::string grounds;
  std::string invert_depths;
  std::string cover_depths;
};

class Profile {
 public:
  // --- Profile styles ------------------------------------------------------

  // The first of ".", "-", "/", "_" that a manhole label holds, or "".
  static std::string GetManholeLabelDelimiter(std::string_view manhole_label);

  // 1001, then twenty 1000.
  static std::vector<int16_t> GetProfileStyleXdataTypeArray();
  // The style record, or nullopt when no style has the name (exact).
  static std::optional<core::Record> GetProfileStyleSettings(
      host::Document& document, std::string_view profile_style);
  // The style marker's ID as text; "" when no style has the name.
  static std::string GetProfileStyleOID(host::Document& document,
                                        std::string_view profile_style_name);
  // A new style marker carrying the 21 values with their group codes;
  // answers its ID as text. std::invalid_argument when the lengths differ.
  static std::string CreateProfileStyle(
      host::Document& document, const std::vector<std::string>& x_data,
      const std::vector<int16_t>& x_data_type);
  // The values when there are exactly 21, else 21 empty texts.
  static std::vector<std::string> ValidateProfileStyleSettings(
      const std::vector<std::string>& settings_array);
  // The style record values from a style file, or nullopt when the file
  // cannot be read or is not a style file (ReadProfileStyleFile says why).
  static std::optional<std::vector<std::string>> ImportArProfileSettings(
      const std::string& file_path);
  // Takes the marker out of the project's list and erases it.
  static void DeleteProfileStyle(host::Document& document,
                                 std::string_view style_point_oid);

  // --- Profile definitions -----------------------------------------------
  // Rows of (profile name, network, profile block ID); nullopt is the empty
  // array.

  static ProfileDefinitions AddProfileToProfileDefArray(
      const std::optional<ProfileDefinitions>& ar_profile_def,
      std::string_view profile_name, std::string_view profile_network,
      std::string_view profile_oid);
  // Names compared ignoring letter case, networks exactly.
  static bool CheckProfileNameExists(
      const std::optional<ProfileDefinitions>& ar_profile_def,
      std::string_view profile_name, std::string_view profile_network);
  // The block ID of the last row with that name and network (both exact).
  static std::optional<std::string> GetProfileOIDFromProfileDefArray(
      const std::optional<ProfileDefinitions>& ar_profile_def,
      std::string_view profile_name, std::string_view profile_network);
  // Without the rows of that block; nullopt when no row is left.
  static std::optional<ProfileDefinitions> DeleteProfileFromProfileDefArray(
      const std::optional<ProfileDefinitions>& ar_profile_def,
      std::string_view profile_oid);
  // Every profile the styles of the drawing list.
  static std::optional<ProfileDefinitions> GetProfileDefinitionsArray(
      host::Document& document);

  // --- Choosing the pipes of a profile -----------------------------------

  // Asks for the pipes of the network on screen and for the start point;
  // nullopt when nothing was selected or the pipes are not one unbranched
  // run (after the system's message).
  static std::optional<SortedPipes> SelectPipesForProfile(
      host::Document& document, std::string_view network_name);
  // Whether the pipes form one unbranched open chain (one pipe does).
  static bool CheckProfilePipesConnectivity(host::SelectionSet& set_pipes);
  // The chain of a set that passes the connectivity test, walked from the
  // free end nearer to the point.
  static SortedPipes GetSortedPipesArray(host::Document& document,
                                         host::SelectionSet& set_pipes,
                                         const host::Point3& user_point);
  // Where the lowest invert (direction 0) or the highest (any other
  // direction) of the pipes lies, the pipes' IDs separated by ";".
  static host::Point3 GetProfileStartFromDirection(
      host::Document& document, std::string_view pipes_oid_string,
      int direction_index);
  // The continuous lines of a gravity network named after their manholes.
  static std::vector<GravityLine> GetGravityLineNames(
      host::Document& document, std::string_view net_name);
  // "MH-A12" gives "A", "B12" gives "B", "M.H.7" gives "Main".
  static std::string GetManholeLineName(std::string_view manhole_label);

  // --- Profile data ------------------------------------------------------

  // The 22 series of every part of the chain (see part_data.h). The ground
  // comes from the nodes' levels, or from the named surface of `aecc_doc`;
  // InvalidInputError for style settings that cannot be gathered with and
  // for a place the surface does not cover.
  static PartsData GetProfilePartsDataArrays(
      host::Document& document, host::CivilDocument& aecc_doc,
      std::string_view profile_network,
      const core::Record& ar_profile_style_settings,
      const SortedPipes& ar_profile_pipes, bool draw_ground_from_surface,
      std::string_view ground_surface_name);
  // One ";<ID>..." series per part; a new part starts where the running
  // length would pass the maximum of the splitting settings (style item 6).
  static std::vector<std::string> GetSplitPipesOIDArray(
      host::Document& document, std::string_view splitting_criteria,
      std::string_view profile_pipes_oids);
  // The ";0;1..." directions of every part, in step with its pipes.
  static std::vector<std::string> GetSplitPipesDirectionArray(
      std::string_view profile_pipes_directions,
      const std::vector<std::string>& ar_split_pipes_oid);
  // The ";<ID>..." of the pipes of every part but one.
  static std::string GetConnectedOtherPartsPipes(
      int part_index, const std::vector<std::string>& ar_all_parts_pipes_oid);
  // Inverts, grounds, invert depths and cover depths at the regular
  // stations along one pipe, as ";<distance>;<value>" pairs.
  static StationSeries GetPipeDataAtStationsArray(
      host::CivilDocument& aecc_doc, const host::LwPolyline& my_pipe,
      double start_part_distance, double start_profile_distance,
      int direction_index, double station_interval, double first_ground,
      double second_ground, double first_invert, double second_invert,
      bool draw_ground_from_surface, std::string_view ground_surface_name,
      double rise_in_elevation_units);
  // ";<distance>;E <x> N <y>" at the places the switches ask for: the
  // pipe's a end (first pipe of a part only), its b end, its inner vertices
  // and the regular stations.
  static std::string GetCoordinatesStringForProfile(
      const host::LwPolyline& my_pipe, double start_part_distance,
      double start_profile_distance, int pipe_index_on_part,
      int direction_index, bool show_coord_at_stations,
      bool show_coord_at_nodes, bool show_coord_at_vertices,
      double station_interval);
  // The crossing pipes of one pipe, from the pipe's own crossing
  // references, sorted by distance.
  static std::string GetCrossingStringForProfile(
      host::Document& document, std::string_view crossing_points_oids,
      const host::LwPolyline& original_pipe, double start_distance,
      int direction_index);
  static std::string SortCrossingPipesString(std::string_view original_string);
  // Invert at the point, shape index, span, rise, cells of a crossing pipe.
  static std::string GetCrossingPipeDataForProfile(
      host::Document& document, std::string_view pipe_oid,
      const host::Point3& cross_point_coord);
  // ";<distance>;<ground>" pairs along one pipe.
  static std::string GetGroundLineStringForProfile(
      host::CivilDocument& aecc_doc, const host::LwPolyline& my_pipe,
      bool draw_ground_from_surface, std::string_view ground_surface_name,
      double first_ground, double second_ground, double start_distance,
      std::string_view model_units, int direction_index);
  // Connected-pipe records (five values each, ";" after each) with the
  // distance put in front of each: ";<distance>;<five values>...".
  static std::string IncludedDistanceInConnectedPipesString(
      std::string_view original_string, double distance);
  static ProfileNodeData GetNodeDataForProfile(
      host::Document& document, host::CivilDocument& aecc_doc,
      std::string_view node_oid, bool use_ground_surface,
      std::string_view ground_surface_name,
      std::string_view excluded_pipe_oids);
  // Invert at the node, shape index, span, rise, cells, joined by ";".
  static std::string GetConnectedPipeDataForProfile(
      host::Document& document, std::string_view pipe_oid,
      std::string_view node_label);


  // --- Drawing a profile -------------------------------------------------

  // Draws the profile block of the inputs (parts side by side), inserts it,
  // makes the plan annotation when asked and writes the records; answers
  // the block reference's ID as text. NotFoundError for a style the drawing
  // lacks; the gathering's errors as they come.
  static std::string DrawProfile(host::Document& document,
                                 const ProfileInputs& inputs);
  // The same, measuring texts with `measure` (shared by several profiles).
  static std::string DrawProfile(host::Document& document,
                                 const ProfileInputs& inputs,
                                 TextMeasure& measure);
  // The block "Kestrana_Profile_<network>_<name>" (emptied when it exists)
  // drawn from the parts and inserted at the inputs' insertion point.
  static host::BlockReference& CreateProfileBlock(
      host::Document& document, const ProfileInputs& inputs,
      const PartsData& ar_profile_parts_data_arrays,
      const core::Record& ar_profile_style_settings, TextMeasure& measure);
  // The ten profile layers with their colours, where missing.
  static void CreateProfileLayers(host::Document& document);
  // The custom value, or the lowest sump less 2 (metric) or 6, rounded down.
  static double GetDatumElevation(bool datum_auto, double custom_datum_value,
                                  std::string_view sump_levels_string,
                                  std::string_view model_units);
  // The plot area's rectangle; answers its length and height.
  static std::pair<double, double> DrawPlotAreaFrame(
      Sheet& sheet, const host::Point3& ref_point, const PartData& part,
      const TextSettings& text, double datum_elevation,
      double vertical_exaggeration);
  static void DrawProfileGrid(Sheet& sheet, const host::Point3& ref_point,
                              std::string_view horizontal_grid_settings,
                              std::string_view vertical_grid_settings,
                              std::string_view stations_settings,
                              const TextSettings& text, double plot_area_length,
                              double plot_area_height,
                              double vertical_exaggeration,
                              double datum_elevation,
                              double part_start_station);
  // The table's outline and the column lines, the datum text and the title.
  static void CompleteProfileFrame(
      Sheet& sheet, const host::Point3& profile_ref_point,
      const host::Point3& band_ref_point, double band_labels_part_length,
      double datum_elevation, double plot_area_length, double plot_area_height,
      const TextSettings& text, std::string_view profile_line_name,
      int profile_part_index, int count_profile_parts);
  // The title of a part: "%%u<name>", with "  (Part k/n)" when there are
  // several.
  static std::string ProfileTitle(std::string_view profile_line_name,
                                  int profile_part_index,
                                  int count_profile_parts);
  static void DrawNodeLabels(Sheet& sheet, const host::Point3& ref_point,
                             std::string_view length_string,
                             std::string_view node_label_string,
                             double frame_height,
                             const core::Record& ar_profile_style_settings);
  static void DrawGroundLine(Sheet& sheet, const host::Point3& ref_point,
                             std::string_view ground_line_string,
                             double datum_elevation,
                             double vertical_exaggeration);
  // Invert and crown lines; in gravity networks they stop at the manholes.
  static void DrawPipes(Sheet& sheet, const host::Point3& ref_point,
                        std::string_view length_string,
                        std::string_view invert_string,
                        std::string_view size_string, double datum_elevation,
                        double vertical_exaggeration,
                        std::string_view model_units,
                        std::string_view network_type);
  static void DrawManholes(Sheet& sheet, const host::Point3& ref_point,
                           std::string_view length_string,
                           std::string_view ground_string,
                           std::string_view sump_string,
                           double datum_elevation,
                           double vertical_exaggeration,
                           std::string_view model_units);
  // Sections of connected and crossing pipes with their invert and size
  // texts, kept clear of each other and of `taken` (boxes already used).
  static void DrawConnectedAndCrossing(
      Sheet& sheet, const host::Point3& ref_point,
      std::string_view connected_string, std::string_view crossing_string,
      const TextSettings& text, double datum_elevation,
      double vertical_exaggeration, std::string_view model_units);
  // Cells side by side centred on the point, bottom at its level; circles
  // become ellipses stretched by the exaggeration.
  static void DrawPipeSectionOnProfile(Sheet& sheet,
                                       const host::Point3& pipe_ins_pnt,
                                       int shape_index, double span,
                                       double rise, int num_cells,
                                       double vertical_exaggeration);
  // "%%c200", "1200X800", "2 %%c200", "3 (1200X800)".
  static std::string GetSectionSizeStringForProfile(
      std::string_view section_shape_index, double span, double rise,
      int num_cells);
  // Where a box `string_length` wide and `text_height` high can stand near
  // the wanted bottom-left corner without overlapping the boxes there are
  // or crossing the lines to keep clear of.
  static host::Point3 GetProfileCrossingAnnotationLocation(
      const host::Point3& new_anno_ins_pnt,
      const std::vector<Box2>& ar_existing_coord, double text_height,
      double string_length, const std::vector<Segment>& keep_clear = {});

  // --- The data table ----------------------------------------------------

  // The drawn bands (style items 10 to 19) in table order.
  static std::vector<int> GetBandOrder(
      const core::Record& ar_profile_style_settings);
  // The bands of one part under its plot area; answers the point where the
  // table ends (its bottom, at the part's reference x).
  static host::Point3 DrawProfileTable(
      Sheet& sheet, const host::Point3& ref_point,
      const PartData& ar_profile_data_strings,
      const core::Record& ar_profile_style_settings,
      double band_labels_part_length, double plot_area_length);
  // How far left (positive) or right (negative) of its distance a value is
  // written to stay clear of node lines; 999 when it is not written.
  static double GetDataTextShift(double distance,
                                 const std::vector<double>& ar_prohibited,
                                 double buffer_distance,
                                 bool allow_exactly_node_distance,
                                 double text_height);
  static std::vector<double> GetProhibitedDistancesArray(
      const std::vector<std::string>& ar_length_data);
  static double GetTextLengthOnDrawing(host::Document& document,
                                       const std::string& my_string,
                                       const std::string& my_text_style,
                                       double my_text_height);
  static double GetLongestTextLength(host::Document& document,
                                     const std::string& string1,
                                     const std::string& string2,
                                     const std::string& string3,
                                     const std::string& string4,
                                     const std::string& text_style,
                                     double text_height);
  // The longest label of the drawn bands plus twice the label height.
  static double GetBandLabelsPartLength(
      host::Document& document, const core::Record& ar_profile_style_settings);
  static double GetBandLabelsPartLength(
      TextMeasure& measure, const core::Record& ar_profile_style_settings);

  // --- Plan annotation ---------------------------------------------------

  // The block "Kestrana_PlanAnno_<network>_<name>" with the profile's name
  // and stations along its pipes, inserted in model space; nullptr when
  // neither is asked for.
  static host::BlockReference* CreatePlanAnnotationBlockForProfile(
      host::Document& document, std::string_view profile_name,
      std::string_view profile_network_name,
      const PartsData& ar_profile_parts_data_arrays,
      const core::Record& ar_profile_style_settings, bool show_name_on_plan,
      bool show_stations_on_plan);
  // The number pattern of stations: "0+000.00" for precision 0, decimals 2
  // and format 3. The grid, the stations band and the plan all use it.
  static std::string GetStationFormatString(std::string_view precision_index,
                                            std::string_view decimals_index,
                                            std::string_view format_index);
  // The vertices of the pipes in profile order, shared vertices once.
  static std::vector<double> GetTotalPipeCoordinates(
      host::Document& document, std::string_view pipe_oids_string,
      std::string_view pipe_directions_string);

  // --- Redraw ------------------------------------------------------------

  // Draws the profile again from its record where its block now stands;
  // the old block, its plan annotation and stamp go. Answers the new
  // block reference's ID as text.
  static std::string UpdateProfile(host::Document& document,
                                   std::string_view existing_profile_oid);
  static std::string UpdateProfile(host::Document& document,
                                   std::string_view existing_profile_oid,
                                   TextMeasure& measure);
  // The inputs a profile block's record keeps, with its current insertion
  // point.
  static ProfileInputs ReadProfileInputs(host::BlockReference& profile_block);

  // --- Profile records and update flags ----------------------------------

  // The profile block's record, and the back-references on the style
  // marker and on every pipe of the chain. std::invalid_argument when no
  // style has the name.
  static void BuildProfileBlockXData(host::Document& document,
                                     const ProfileInputs& inputs,
                                     host::BlockReference& profile_block,
                                     host::BlockReference* plan_block);
  static void BuildProfilePlanAnnoBlockXData(
      std::string_view profile_name, std::string_view profile_network_name,
      host::BlockReference& profile_block, host::BlockReference& plan_block);
  // Sets the update flag and stamps "NeedsUpdate" over the profile, once.
  static void FlagProfileForUpdate(host::Document& document,
                                   std::string_view profile_oid);
  // Erases the "NeedsUpdate" stamps of the profile.
  static void DeleteProfileStamps(host::Document& document,
                                  const host::Entity& profile_block);
  // Flags every profile along the pipes of the crossings.
  static void FlagProfilesRelatedToCrossingPoints(
      host::Document& document,
      const std::vector<types::CrossPoint>& ar_cross_points);
  // The set "SetProfiles" of the profile block references, of one network
  // when `net_name` is not empty.
  static host::SelectionSet& GetExistingProfileSet(host::Document& document,
                                                   std::string_view net_name);
  // The direction in a chain of the pipe that replaces an old pipe by
  // merging: the old direction when the new pipe runs the old pipe's way,
  // the other one when it runs against it.
  static std::string GetMergedPipeDirectionInProfile(
      host::Document& document, const host::LwPolyline& new_pipe,
      std::string_view old_pipe_oid, std::string_view old_pipe_direction);
  // Flips the pipe's direction in the profile's chain.
  static void ReversePipeDirectionInProfile(host::Document& document,
                                            std::string_view pipe_oid,
                                            std::string_view profile_oid);
  // Erases the network's profiles, each through the profile erase reaction
  // (its style and pipes forget it, its plan annotation goes too).
  static void DeleteNetworkProfiles(host::Document& document,
                                    std::string_view net_name);
  // Drops the profile from the pipe's profile lists, unless the pipe is in
  // one of the two object-ID lists (erased, or about to be).
  static void DeleteProfileReferenceFromPipe(
      host::Document& document, std::string_view profile_name,
      std::string_view profile_oid, std::string_view pipe_oid,
      std::string_view erased_entites_object_id,
      std::string_view entities_to_be_erased_object_id);
};

}  // namespace kestrana::profile
