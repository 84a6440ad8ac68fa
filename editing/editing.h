// Class Editing: turning drawn lines and polylines into pipes and nodes,
// the levels and data of nodes and pipes with their matching rules, ground
// levels from a terrain surface, and the vertex-list operations that other
// edits build on. Everything lives in the drawing; nothing is kept between
// calls, so the operations are static.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/text_table.h"
#include "host/types.h"

namespace kestrana::host {
class BlockReference;
class Document;
class Entity;
class LwPolyline;
class SelectionSet;
}  // namespace kestrana::host

namespace kestrana::editing {

// Node field 4 and the texts the node form passes for it.
enum class Matching : int16_t {
  kNone = 0,
  kCenterlines = 1,
  kSoffits = 2,
  kInverts = 3,
};
inline constexpr char kNoMatching[] = "No Matching";
inline constexpr char kMatchCenterlines[] = "Match Centerlines";
inline constexpr char kMatchSoffits[] = "Match Soffits";
inline constexpr char kMatchInverts[] = "Match Inverts";

// The prompt of the conversion's on-screen selection.
inline constexpr char kConvertPrompt[] = "Select Entities to Convert:";
inline constexpr char kReversePrompt[] = "Select Pipes to Reverse:";
inline constexpr char kMergePrompt[] = "Select Pipes to Merge:";
inline constexpr char kSplitPipePrompt[] = "Select pipe to split:";
inline constexpr char kSplitPointPrompt[] = "Pick split point:";
inline constexpr char kNotAPipeMessage[] = "The selected entity is not a pipe!";
inline constexpr char kPointAtPipeEndMessage[] =
    "The picked point lies at the pipe end!";
inline constexpr char kPointOffPipeMessage[] =
    "The picked point doesn't lie on the pipe!";
inline constexpr char kGroupEditingPrompt[] = "Select Elements to Edit:";

// Label prefixes: "P-<n>" for pipes, "N-<n>" for nodes.
inline constexpr char kPipeLabelPrefix[] = "P-";
inline constexpr char kNodeLabelPrefix[] = "N-";

// Sides of a pipe as GetMinimumLevel names them.
inline constexpr char kStartSide[] = "Start";
inline constexpr char kEndSide[] = "End";

class Editing {
 public:
  // --- Converting drawing entities into a network ------------------------

  // Asks for lines and polylines on screen; answers the set
  // "SetEntitiesToConvert" with polylines only: entities that already carry
  // a record are dropped, lines are replaced by two-vertex polylines.
  static host::SelectionSet& GetEntitiesToConvert(host::Document& document);
  // Turns every polyline of the set into a pipe of the network, with nodes
  // found or made at its ends, then builds crossings and low/high points.
  static void CreateElementsInNetwork(
      host::Document& document, host::SelectionSet& set_entities_to_convert,
      bool is_existing_network, std::string_view network_name,
      std::string_view network_type);
  // One polyline. Nodes made here join `set_existing_nodes`; both end nodes
  // join `set_nodes_for_low_high`.
  static void ConvertPlIntoPipe(host::Document& document,
                                host::LwPolyline& pipe_entity,
                                host::SelectionSet& set_existing_nodes,
                                std::string_view network_name,
                                std::string_view network_type,
                                host::SelectionSet& set_nodes_for_low_high);
  static host::BlockReference& CreateNewNode(
      host::Document& document, double ins_pnt_x, double ins_pnt_y,
      std::string_view network_name, std::string_view network_type,
      host::SelectionSet& set_existing_nodes);
  // "P-<n>" or "N-<n>" with the smallest free number of the network and
  // element type.
  static std::string GetNextLabel(host::Document& document,
                                  std::string_view network_name,
                                  std::string_view element_type);
  // The labels of the network's elements of that type, skipping the given
  // object IDs; always ends with one empty entry.
  static std::vector<std::string> GetExistingLabelsArray(
      host::Document& document, std::string_view network_name,
      std::string_view element_type,
      const std::vector<std::string>& ar_elements_to_ignore_oids);

  // --- Node and pipe data ------------------------------------------------

  static void UpdateNodeData(host::Document& document,
                             std::string_view node_oid, std::string_view label,
                             double ground_level, double sump_level,
                             std::string_view pipes_matching,
                             host::SelectionSet& set_nodes_for_low_high);
  // `section_size_shape` is the form's text: "Circular - 300" (the diameter
  // after 11 characters) or "Box - 1200x800" (after 6).
  static void UpdatePipeData(
      host::Document& document, std::string_view pipe_oid,
      std::string_view label, double start_invert, double end_invert,
      std::string_view material, std::string_view section_size_shape,
      int16_t number_of_cells, const core::TextTable& ar_circular_sizes,
      const core::TextTable& ar_box_sizes, const core::TextTable& ar_materials,
      host::SelectionSet& set_nodes_for_low_high);
  // `rise` in level units.
  static void UpdateConnectedNodeAtPipe(host::Document& document,
                                        std::string_view node_oid,
                                        std::string_view pipe_label,
                                        std::string_view pipe_oid,
                                        double invert_level, double rise);
  // The lists are the node's reference lists of pipe IDs.
  static void UpdateConnectedPipesAtNode(host::Document& document,
                                         host::Entity& node_entity,
                                         std::string_view node_label,
                                         std::string_view pipes_at_start_oid,
                                         std::string_view pipes_at_end_oid,
                                         double sump_level, int16_t matching);
  // In level units; 0 for a node without pipes.
  static double GetLargestRise(host::Document& document,
                               host::Entity& node_entity);
  static double GetSumpElevation(host::Document& document,
                                 std::string_view pipes_at_start_oids,
                                 std::string_view pipes_atend_oids);
  // -999 for an empty list.
  static double GetMinimumLevel(host::Document& document,
                                std::string_view pipes_oids,
                                std::string_view side);
  static void UpdateGroundLevelsFromSurface(
      host::Document& document, const std::vector<std::string>& ar_net_names,
      std::string_view surface_name);

  // --- Splitting a pipe --------------------------------------------------

  // Asks for a pipe and a point on it away from its ends, with the
  // system's messages until both are right; false when the user cancels.
  static bool GetSplitPipeAndPoint(host::Document& document,
                                   host::Entity*& split_pipe_entity,
                                   host::Point3& split_point);
  // The two new pipes on either side of the point, on the pipe's layer,
  // and a node block at the point.
  static void CreateSplitEntities(host::Document& document,
                                  host::Entity& split_pipe_entity,
                                  const host::Point3& split_point,
                                  host::LwPolyline*& new_pipe_entity1,
                                  host::LwPolyline*& new_pipe_entity2,
                                  host::BlockReference*& new_node_entity);
  // Records of the new pipes (the first keeps the old label) and node with
  // levels interpolated at the point; the end nodes relinked; annotations.
  static void AssignSplitXdata(host::Document& document,
                               host::Entity& split_pipe_entity,
                               const host::Point3& split_point,
                               host::Entity& new_pipe_entity1,
                               host::Entity& new_pipe_entity2,
                               host::Entity& new_node_entity);
  // One more pipe of the old pipe's material and size.
  static void UpdateLibrariesAfterSplitting(host::Document& document,
                                            host::Entity& split_pipe_entity);
  // Each crossing of the old pipe goes to the new pipe it lies on.
  static void UpdateCrossingsAfterSplitting(host::Document& document,
                                            host::Entity& split_pipe_entity,
                                            host::Entity& new_pipe_entity1,
                                            host::Entity& new_pipe_entity2);
  // Each profile lists the two new pipes where the old one was.
  static void UpdateProfilesAfterSplitting(host::Document& document,
                                           host::Entity& split_pipe_entity,
                                           host::Entity& new_pipe_entity1,
                                           host::Entity& new_pipe_entity2);
  // Erases the old pipe with its annotation and arrow.
  static void DeleteSplitPipe(host::Document& document,
                              host::Entity& split_pipe_entity);

  // --- Merging pipes -----------------------------------------------------

  // One selected pipe's ends: node label references (";RelatedTo<label>")
  // and node IDs.
  struct MergeRunRow {
    std::string start_label, end_label, start_oid, end_oid;
  };

  // Asks for pipes on screen; the set "TempSetPipesToMerge", emptied (with
  // the system's message) when they are not one unbranched run of one
  // network, material and size.
  static host::SelectionSet& GetPipesToMerge(host::Document& document);
  // False when a node inside the run has a third pipe.
  static bool CheckInternalNodes(host::Document& document,
                                 const std::vector<MergeRunRow>& ar_nodes,
                                 int count_pipes);
  // Orders the pipes along the run (from the end with the higher start
  // invert) and adds the joined polyline; fills the order and the joined
  // crossing lists of all the pipes.
  static host::LwPolyline& CreateMergedPipe(
      host::Document& document, host::SelectionSet& set_pipes_to_merge,
      std::vector<host::Entity*>& ar_final_sequence_pipes,
      std::string& cross_point_labels_string,
      std::string& cross_point_oids_string);
  // The merged pipe's record (the first pipe's, with the run's ends,
  // inverts, crossings and profiles) and annotations; its end nodes are
  // relinked, matched and added to `set_nodes_for_low_high`.
  static void AssignMergedXdata(
      host::Document& document, host::Entity& merged_pipe_entity,
      const std::vector<host::Entity*>& ar_final_sequence_pipes,
      std::string_view cross_point_labels_string,
      std::string_view cross_point_oids_string,
      host::Entity*& first_merged_pipe_entity,
      host::Entity*& last_merged_pipe_entity,
      std::string& final_start_node_label, std::string& final_end_node_label,
      std::string& merged_element_type, std::string& merged_element_network,
      host::SelectionSet& set_nodes_for_low_high);
  // The run counts as one pipe in the libraries.
  static void UpdateLibrariesAfterMerging(
      host::Document& document, host::Entity& first_merged_pipe_entity,
      int count_pipes);
  // Each crossing of an old pipe now names the merged pipe.
  static void UpdateCrossingsAfterMerging(
      host::Document& document, std::string_view cross_point_labels_string,
      std::string_view cross_point_oids_string,
      host::Entity& merged_pipe_entity, host::SelectionSet& set_pipes_to_merge);
  // Each profile's chain has one entry for the merged pipe where the old
  // pipes' entries were.
  static void UpdateProfilesAfterMerging(
      host::Document& document, host::Entity& merged_pipe_entity,
      host::SelectionSet& set_pipes_to_merge);
  // Erases the old pipes with their annotations and arrows, and the nodes
  // inside the run with theirs.
  static void DeleteOldMergedPipes(host::Document& document,
                                   host::SelectionSet& set_pipes_to_merge,
                                   std::string_view final_start_node_label,
                                   std::string_view final_end_node_label);

  // --- Reversing pipes and group editing ----------------------------------

  // Asks for pipes on screen; the set "SetPipesToReverse".
  static host::SelectionSet& GetPipesToReverse(host::Document& document);
  // Turns each pipe of the set round, in set order: its vertices, its ends
  // and inverts in its record, its entries in its two nodes' lists (moved
  // to the other side), its profiles' chains and its annotation and arrow.
  // Node levels are left as they are.
  static void ReverseSelectedPipes(host::Document& document,
                                   host::SelectionSet& set_pipes_to_reverse);
  // Moves the pipe's entries in the node's lists from the start side
  // (indicator 0) or the end side (1) to the end of the other side's.
  static void ReversePipeReferenceInNode(host::Document& document,
                                         std::string_view pipe_label,
                                         std::string_view pipe_oid,
                                         std::string_view node_oid,
                                         int indicator);
  // Asks for pipes and nodes on screen; the set "GrEd_SetElementsGroup".
  static host::SelectionSet& GetSelectionForGroupEditing(
      host::Document& document);

  // --- Vertex lists ------------------------------------------------------

  // The two lists joined at their shared end point, which appears once;
  // std::invalid_argument when they share none.
  static std::vector<double> MergeTwoCoordinatesArrays(
      const std::vector<double>& first_array,
      const std::vector<double>& second_array);
  static std::vector<double> ReversePolylineCoordinates(
      const std::vector<double>& ar_coordinates);
};

}  // namespace kestrana::editing
