// Class General: the project record, element records, networks with their
// layers and standard blocks, selection sets, plan geometry, text import and
// string rules. Every operation works on what the drawing holds and keeps
// nothing between calls, so the operations are static; an instance may be
// held and called all the same.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/text_table.h"
#include "host/types.h"

namespace kestrana::host {
class Application;
class Block;
class DataGrid;
class Document;
class Entity;
class Layer;
class Line;
class LwPolyline;
class Object;
class SelectionSet;
}  // namespace kestrana::host

namespace kestrana::types {
struct ShpPipe;
}

namespace kestrana::core {

class Record;

// What OpenLayerForWrite found of one layer; an empty name stands for a
// layer that does not exist.
struct LayerStatus {
  std::string name;
  bool frozen = false;
  bool locked = false;
  friend bool operator==(const LayerStatus&, const LayerStatus&) = default;
};

// The columns of the table GetNetworkDefinitions answers.
namespace network_column {
inline constexpr int kName = 0;
inline constexpr int kType = 1;
}  // namespace network_column

// The elements_option of GetNetworkSet.
namespace network_set {
// Pipes, nodes and their annotation and arrow blocks.
inline constexpr int kElementsAndBlocks = 0;
inline constexpr int kPipes = 1;
inline constexpr int kNodes = 2;
}  // namespace network_set

// The format_index of DeleteReferenceInReferenceString.
namespace reference_form {
inline constexpr int kReferenceList = 0;  // ";RelatedTo<value>" entries
inline constexpr int kIdList = 1;         // "<value>;" entries
}  // namespace reference_form

// The char_index of CheckTextForBannedCharacters.
namespace banned_characters {
inline constexpr int kSeparatorOnly = 0;  // ";" alone, for free texts
inline constexpr int kAll = 1;            // everything names cannot hold
}  // namespace banned_characters

// The critical message that refuses a project made by a newer version.
std::string NewerProjectMessage(std::string_view project_version);

class General {
 public:
  // --- Project record, versions and units -------------------------------

  // The Civil 3D programmatic identifier for the host's version ("" when
  // the version is not supported).
  static std::string GetAeccAppString(host::Application& acad_app);
  // False (after a critical message) when the project needs a newer
  // version of this system.
  static bool VerfiyVersionKestranaCompatibility(host::Document& document);
  // Field 11; "" after the "no project" message when there is no project.
  static std::string GetKestranaProjectVersion(host::Document& document);
  static std::string GetKestranaProgramVersion();
  // Field 7; MissingRecordError without a project.
  static std::string GetModelUnits(host::Document& document);
  static void TurnEventsOn(host::Document& document);
  static void TurnEventsOff(host::Document& document);
  // Field 2; 0 without a project or on any error.
  static int16_t CheckEventsFlag(host::Document& document);

  // --- Element records ---------------------------------------------------

  // Third and second ";"-pieces; std::out_of_range when there are fewer.
  static std::string EntityLabelFromCombined(std::string_view combined_label);
  static std::string EntityNetworkFromCombined(std::string_view combined_label);
  // Field 2 of the record, or "Nothing" for an object without element data
  // (no record, or only the application name).
  static std::string GetElementType(const host::Object& my_entity);
  // The network named in field 1, or "Nothing" as above.
  static std::string GetElementNetwork(const host::Object& my_entity);
  static std::string GetNodeTypeFromPipeType(std::string_view pipe_type);
  // Whether one ";"-piece of `text` equals `object_id`.
  static bool Check_ID_Exists(std::string_view object_id,
                              std::string_view text);
  // The object-ID list without the entries numerically equal to the ID.
  static std::string ExcludeID(std::string_view object_id,
                               std::string_view text);
  // Drops every entry that ends with `reference_to_be_deleted`, keeping the
  // reference_form given; "" for any other form.
  static std::string DeleteReferenceInReferenceString(
      std::string_view reference_string,
      std::string_view reference_to_be_deleted, int format_index);
  static std::string ReplaceReferenceInReferenceString(
      std::string_view reference_string, std::string_view old_reference,
      std::string_view new_reference);
  // "%%c200", "1200X800", "2 %%c200", "3 (1200X800)".
  static std::string BuildSectionSizeString(const Record& x_data);
  // A slope in decimal (0), percent (1) or ratio (2) notation; nullopt for
  // any other notation.
  static std::optional<std::string> BuildSlopeString(
      double slope_value, std::string_view precision_index,
      std::string_view decimals_index, std::string_view format_index);

  // --- Networks, layers and standard blocks ------------------------------

  static void CreateNetworkDefintion(host::Document& document,
                                     std::string_view network_name,
                                     std::string_view network_type);
  static bool CheckNetworkExists(host::Document& document,
                                 std::string_view network_name);
  // One row per network (name, type); one empty row when there is none.
  static TextTable GetNetworkDefinitions(host::Document& document);
  // The names in order; one empty name when there is none.
  static std::vector<std::string> GetNetworkNames(host::Document& document);
  // The set "NetworkSet" of the elements network_set names; other values
  // select nothing.
  static host::SelectionSet& GetNetworkSet(host::Document& document,
                                           std::string_view net_name,
                                           int elements_option);
  // Takes a pipe out of a node's lists of one side ("Start", else the end
  // side), stores the sump level the remaining pipes give and refreshes the
  // node's annotation. The host's error when the node ID names nothing;
  // std::invalid_argument for a damaged ID list.
  static void RemovePipeFromNode(host::Document& document,
                                 std::string_view node_oid,
                                 std::string_view pipe_oid,
                                 std::string_view side);
  // Whether an element of the network and kind ("GravityPipe", "PressureNode",
  // ...) already has the label: pipes by their combined label under the
  // host's filter rules, nodes ignoring letter case; false for other kinds.
  static bool CheckLabelDuplication(host::Document& document,
                                    std::string_view network_name,
                                    std::string_view element_type,
                                    std::string_view element_label);
  // Labels in natural order ("MH-2", "MH-10", "MH-10A"), their pieces
  // compared as zero-padded numbers where they are numbers.
  static std::vector<std::string> NumericSort(
      const std::vector<std::string>& ar_strings);
  // Removes a network and everything that belongs to it: crossings (their
  // annotations too, which the erase reaction would take with the pipes),
  // low and high points, profiles, pipes and nodes with their annotations
  // and arrows, library usage, the definition and the layers. The caller
  // checks that the network exists.
  static void DeleteNetwork(host::Document& document,
                            std::string_view net_name);
  // Removes the network from the project record only;
  // std::invalid_argument for a name that is not defined.
  static void DeleteNetworkDefintion(host::Document& document,
                                     std::string_view network_name);
  static void DeleteNetworkLayers(host::Document& document,
                                  std::string_view net_name);
  // The layer of a type ("Network", "Annotation", "Arrow",
  // "CrossingPointLine", "CrossingPointText", "LowHighPoint"), created with
  // its colour when missing; std::invalid_argument for another type.
  static host::Layer& CreateStandardLayer(host::Document& document,
                                          std::string_view net_name,
                                          std::string_view layer_type);
  static void SetLayerColor(host::Document& document,
                            std::string_view layer_name,
                            std::string_view color_name);
  // Unlocks and thaws the named layers (";"-separated) and answers their
  // former state for RestoreLayerStatus.
  static std::vector<LayerStatus> OpenLayerForWrite(
      host::Document& document, std::string_view layer_names_string);
  static void RestoreLayerStatus(host::Document& document,
                                 const std::vector<LayerStatus>& layer_status);
  // Unlocks every layer; answers the names that were locked, or one empty
  // name when none was.
  static std::vector<std::string> UnlockAllLayers(host::Document& document);
  static void RestoreLockedLayers(host::Document& document,
                                  const std::vector<std::string>& locked);
  // "Node", "LowHighPoint" or "CrossingPoint"; other types create nothing.
  static void CreateStandardBlock(host::Document& document,
                                  std::string_view element_type);
  // Exact name comparison; model space is never reported.
  static bool CheckBlockExists(host::Document& document,
                               std::string_view block_name);
  // The named definition emptied, or a new one at the origin.
  static host::Block& InitializeBlockDefinition(host::Document& document,
                                                std::string_view block_name);

  // --- Selection sets and object-ID strings ------------------------------

  static host::SelectionSet& InitializeSelectionSet(
      host::Document& document, std::string_view selection_set_name);
  static std::vector<host::Entity*> SelectionSetToArray(
      host::SelectionSet& my_sel_set);
  // The set "TempSet" with the entities of an object-ID list; pieces that
  // name nothing are skipped.
  static host::SelectionSet& ConvertOIDStringToSelectionSet(
      host::Document& document, std::string_view oid_string);
  // The members' IDs as decimal texts; one empty text for an empty set.
  static std::vector<std::string> ConvertSelectionSetToOIDArray(
      host::SelectionSet& my_set);

  // --- Plan geometry -----------------------------------------------------

  static bool CheckPointOnLine(const host::Point3& my_point,
                               const host::Line& my_line);
  static bool CheckPointOnPolyline(const host::Point3& my_point,
                                   const host::LwPolyline& my_line);
  // 1 at an end vertex, 2 elsewhere on the polyline, 0 off it.
  static int16_t PointIsOnPolyline(const host::Point3& my_point,
                                   const host::LwPolyline& my_polyline);
  static double GetStation(const host::LwPolyline& pipe, double x, double y);
  static double GetPointStationOnPolyline(
      const std::vector<double>& pl_coordinates, const host::Point3& my_point);
  static int16_t GetNodeIndexOnPolyline(const host::LwPolyline& pipe,
                                        const host::Point3& my_point);
  // The plan point at a station (Z 0); (0, 0) beyond the end.
  static host::Point3 GetCoordinatesAtPipeStation(
      const std::vector<double>& ar_coordinates, double station);
  static double GetAngleFromDelta(double delta_x, double delta_y);
  static double GetCorrectionAngleForCS(host::Document& document);
  static int32_t RoundUp(double my_double);

  // --- Text import, string rules and small utilities ---------------------

  // The data lines after the line that starts with `start_string`, up to
  // the first empty line; comment lines (";...") skipped; blanks collapsed.
  // Ends with one empty entry; empty when the file does not exist.
  static std::vector<std::string> ReadTextDataFromString(
      const std::string& file_name, std::string_view start_string);
  // "tab", "comma", "semicolon" or "space".
  static std::string GetDelimiter(std::string_view text_string);
  static std::vector<std::string> SplitTextByDelimiterName(
      std::string_view text, std::string_view delimiter);
  static std::string CleanExtraSpaces(std::string_view my_string);
  static std::string CleanCote(std::string_view my_string);
  static double CleanNumericString(std::string_view my_string);
  // banned_characters::kSeparatorOnly bans only ";", any other value the
  // whole banned set.
  static bool CheckTextForBannedCharacters(std::string_view my_string,
                                           int char_index);
  static std::vector<std::string> BubbleSort(std::vector<std::string> strings);
  // Cell values by (row, column).
  static TextTable GetDataFromGrid(const host::DataGrid& my_grid);
  static double GetLeastInvert(std::string_view pipes_at_start_indeces,
                               std::string_view pipes_at_end_indeces,
                               const std::vector<types::ShpPipe>& ar_pipes);
  static double GetMaxRise(std::string_view pipes_indeces,
                           const std::vector<types::ShpPipe>& ar_pipes);
  // The names of the surfaces of the civil document; empty (after a message
  // when err_msg_index is 1) when there are none or the extension fails.
  static std::vector<std::string> GetSurfaceNames(host::Document& document,
                                                  int err_msg_index);
  static double GetGroundLevelAtNode(host::Document& document,
                                     host::ObjectId node_oid);
};

}  // namespace kestrana::core
