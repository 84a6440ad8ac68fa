// Class Crossing: where pipes of different networks cross in plan, with the
// inverts of both pipes and the clearance between them, drawn as annotation
// blocks with leader lines, shown or hidden by the crossing settings and
// kept current after edits. Operations keep nothing between calls.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/text_table.h"
#include "host/types.h"
#include "types/cross_point.h"

namespace kestrana::host {
class BlockReference;
class Document;
class Entity;
class Line;
class SelectionSet;
}  // namespace kestrana::host

namespace kestrana::core {
class Record;
}

namespace kestrana::crossing {

// The table GetCrossingSettings answers: the threshold in column 0 of its
// first row, then one row per pair of networks.
namespace settings_table {
inline constexpr int kThresholdRow = 0;
inline constexpr int kFirstNetwork = 0;
inline constexpr int kSecondNetwork = 1;
inline constexpr int kEnabled = 2;
inline constexpr int kColumns = 3;
inline constexpr char kEnabledMark[] = "1";
}  // namespace settings_table

// One pipe at a crossing point, as GetCrossingDataOfPipe reads it.
struct PipeCrossingData {
  std::string size_string;  // BuildSectionSizeString
  double invert = 0.0;      // interpolated at the point
  double rise = 0.0;        // level units
  std::string label;
  friend bool operator==(const PipeCrossingData&,
                         const PipeCrossingData&) = default;
};

class Crossing {
 public:
  // --- Finding crossing points -------------------------------------------

  // The crossings of the set's pipes with the pipes of every other network.
  static std::vector<types::CrossPoint> GetCrossingPointsArrayForSetOfPipes(
      host::Document& document, host::SelectionSet& my_pipes_set);
  // One selection set per network of the definitions table, named after the
  // network and holding its pipes, in the order of the table. Each set is
  // started empty; a pipe of a network that is not defined joins none.
  static std::vector<host::SelectionSet*> GetNetworkSetsAll(
      host::Document& document, const core::TextTable& ar_network_definitions);
  // Every pipe of the set against every pipe of the sets of the other
  // networks, in set order; one crossing per pair of pipes. A pipe of zero
  // length that meets another raises std::domain_error.
  static std::vector<types::CrossPoint> GetCrossPointsFromNetSetsAndPipeSet(
      host::Document& document,
      const std::vector<host::SelectionSet*>& ar_network_sets,
      host::SelectionSet& my_pipes_set);
  // Whether the point lies on both entities (lines or polylines).
  static bool CheckIntersectionPoint(const host::Point3& int_point,
                                     const host::Entity& first_entity,
                                     const host::Entity& second_entity);
  // Networks, labels, rises, sizes, inverts and clearance of two pipe
  // records crossing at the given fractions of their lengths.
  static types::CrossPoint GetSingleCrossPointData(
      const core::Record& x_data1, const core::Record& x_data2,
      double int_distance_ratio1, double int_distance_ratio2,
      std::string_view model_units);
  // The points whose pair of pipes has no annotation yet.
  static std::vector<types::CrossPoint> CheckCrossingPointsDuplication(
      host::Document& document,
      const std::vector<types::CrossPoint>& ar_unchecked_cross_points);

  // --- Annotations, settings and upkeep ----------------------------------

  // Finds, filters, draws and styles the crossings of a set of pipes, and
  // flags the profiles along the pipes concerned. Returns the number of
  // crossings drawn.
  static int BuildCrossingPointsAfterImporting(host::Document& document,
                                                host::SelectionSet& set_pipes,
                                                std::string_view model_units);
  // Draws every point; the set "SetCrossingPoints" holds the new
  // annotations and leader lines.
  static host::SelectionSet& DrawCrossingPoints(
      host::Document& document,
      const std::vector<types::CrossPoint>& ar_cross_points);
  // The records of annotation and line, and the links in both pipes.
  static void AddCorssingPointXdata(host::Document& document,
                                    const types::CrossPoint& my_cross_point,
                                    host::BlockReference& cross_point_anno,
                                    host::Line& cross_point_line);
  // The set "SetCrossPointAnno" of every crossing annotation, or of those
  // of one network when `net_name` is not empty.
  static host::SelectionSet& GetExistingCrossingPointsSet(
      host::Document& document, std::string_view net_name);
  // Row 0: the threshold in column 0. Then one row per pair of networks
  // (i < j in the project's order): names in columns 0 and 1, "1" in
  // column 2 when the pair is enabled.
  static core::TextTable GetCrossingSettings(host::Document& document);
  static void SetCrossingSettings(host::Document& document,
                                  const core::TextTable& ar_crossing_settings);
  // Shows or hides the annotations of the set (and their lines) by the
  // settings; with `reset_locations` puts them back in their standard place.
  // Members of the set that are not annotations are left alone.
  static void ApplyCrossingSettings(host::Document& document,
                                    host::SelectionSet& set_crossing_anno,
                                    bool reset_locations);
  // Removes the leader lines of the network's crossings and their links in
  // the pipes of the other networks; the annotations stay for the erasure
  // of the network's pipes.
  static void DeleteNetworkCrossings(host::Document& document,
                                     std::string_view net_name);
  // Recomputes every crossing of an edited pipe.
  static void UpdateCrossingsAfterEditing(host::Document& document,
                                          std::string_view edited_pipe_oid);
  // Recomputes one annotation from the current records of its pipes.
  static void UpdateCrossingData(host::Document& document,
                                 host::Entity& my_crossing_anno);
  static PipeCrossingData GetCrossingDataOfPipe(host::Document& document,
                                                host::Entity& my_pipe,
                                                const host::Point3& int_pnt);
};

}  // namespace kestrana::crossing
