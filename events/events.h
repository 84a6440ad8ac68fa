// Reactions to the drawing editor's own edits. Erasing: what survives is
// repaired, what depends on the erased objects is queued to go with them.
// Three object-ID lists ("<id>;<id>;") travel through one erase operation:
// the entities erased in it (never repaired), those the reactions queue for
// erasure, and the nodes whose low and high points must be analysed again.
// Copying: the copies become elements of their own. Moving: pipes, markers
// and crossing lines are put back onto what they belong to.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "host/types.h"

namespace kestrana::host {
class BlockReference;
class Document;
class Entity;
class Line;
}  // namespace kestrana::host

namespace kestrana::events {

class Events {
 public:
  // The pipe leaves its nodes (their sumps recomputed), its annotation,
  // arrow and crossings are queued, its profiles are cut at it and the
  // libraries count it no more.
  static void PipeWillBeErased(host::Document& document, host::Entity& pipe,
                               std::string_view erased_entites_object_id,
                               std::string& entities_to_be_erased_object_id,
                               std::string& nodes_for_low_high_check_oid);
  // The node's pipes go with it, and its annotation and low/high marker.
  static void NodeWillBeErased(host::Document& document, host::Entity& node,
                               std::string_view erased_entites_object_id,
                               std::string& entities_to_be_erased_object_id,
                               std::string& nodes_for_low_high_check_oid);
  // Both pipes forget the crossing; its leader line is queued.
  static void CrossingAnnoWillBeErased(
      host::Document& document, host::Entity& crossing_anno,
      std::string_view erased_entites_object_id,
      std::string& entities_to_be_erased_object_id);
  // The owner forgets its annotation or arrow.
  static void AnnotationWillBeErased(host::Document& document,
                                     host::Entity& annotation,
                                     std::string_view erased_entites_object_id);
  static void ArrowWillBeErased(host::Document& document, host::Entity& arrow,
                                std::string_view erased_entites_object_id);
  // A profile block about to go: its entry leaves the style's profile lists
  // and the profile lists of its pipes (those not erased or about to be),
  // and its plan annotation is erased.
  static void ProfileWillBeErased(
      host::Document& document, host::BlockReference& profile_block,
      std::string_view erased_entites_object_id,
      std::string_view entities_to_be_erased_object_id);
  // Cuts the profile's chain at the pipe (the pipes after it leave the
  // profile too); a profile left without pipes is queued for erasure.
  static void DeletePipeFromProfile(
      host::Document& document, std::string_view profile_oid,
      std::string_view pipe_oid, std::string_view erased_entites_object_id,
      std::string& entities_to_be_erased_object_id);
  // Low and high points of the pressure networks around the listed nodes
  // (those still there).
  static void AnalyzeLowHighAfterDeleting(
      host::Document& document, std::string_view ar_nodes_for_low_high_oid);

  // --- Copies ----------------------------------------------------------

  // Makes freshly copied pipes and nodes (an object-ID list) elements of
  // their own: labels free in their network ("New " in front as often as
  // needed), links among the copies only (a pipe whose end nodes were not
  // copied along is erased), annotations, library counts, crossings and
  // low and high points.
  static void VerifyCopiedElements(host::Document& document,
                                   std::string_view changed_pipe_object_id,
                                   std::string_view copied_elements_oid);
  // True when the network was defined already; otherwise defines it.
  static bool CheckAndAddNetworkDefinition(host::Document& document,
                                           std::string_view network_name,
                                           std::string_view network_type);
  // `original_label`, or "New " in front of it until no label of
  // `ex_labels_array` (ended by an empty entry) equals it.
  static std::string GetFinalLabel(
      const std::string& original_label,
      const std::vector<std::string>& ex_labels_array);

  // --- Moves and stretches ---------------------------------------------
  // Nodes are authoritative: what belongs to a node is put back onto it.

  // An end vertex that does not meet its node (x and y to 5 decimal places)
  // is set to the node's point; inner vertices are left as they are.
  static void AdjustPipeEnds(host::Document& document, host::Entity& pipe);
  // A low or high point marker goes back onto its node.
  static void AdjustLowHighPoint(host::Document& document,
                                 host::BlockReference& point);
  // The leader line runs from the crossing point to the corner or line end
  // of its annotation's table nearest to that point.
  static void AdjustCrossingLine(host::Document& document, host::Line& line);
  // The crossings of the changed pipes (an object-ID list) are found anew
  // against all networks; the old annotations are erased at once, their
  // leader lines queued.
  static void RebuildPipeCrossingPoints(
      host::Document& document, std::string_view changed_pipe_object_id,
      std::string_view erased_entites_object_id,
      std::string& entities_to_be_erased_object_id);
  // Every profile along the changed pipes that stays needs an update.
  static void FlagChangedPipesProfilesForUpdate(
      host::Document& document, std::string_view changed_pipe_object_id,
      std::string_view erased_entites_object_id,
      std::string_view entities_to_be_erased_object_id);
};

// What the editor does when the user erases `chosen`: the reaction of each
// one's kind, then the erasure of the chosen and of everything the
// reactions queued, then the low/high analysis around the touched nodes.
// Answers how many objects were erased in all.
int EraseWithReactions(host::Document& document,
                       const std::vector<host::Entity*>& chosen);

// The courses (vertex lists) of the pipes a move may reshape, by pipe ID:
// the pipes among the entities and the pipes at the nodes among them.
// Taken before the editor moves anything.
using PipeCourses = std::map<host::ObjectId, std::vector<double>>;
PipeCourses CoursesBeforeMove(host::Document& document,
                              const std::vector<host::Entity*>& moving);

// What the add-on does after the editor moved or stretched `moved`, with
// events off: pipes back onto their nodes, markers onto theirs, crossing
// lines to their tables; then for the pipes whose course differs from
// `before` the crossings rebuilt, the profiles flagged and the annotations
// and arrows placed anew (with those of the moved nodes), and the low and
// high points around the nodes concerned analysed again. Answers the pipes
// whose course changed, in ID order.
std::vector<host::Entity*> ReactToMove(host::Document& document,
                                       const std::vector<host::Entity*>& moved,
                                       const PipeCourses& before);

}  // namespace kestrana::events
