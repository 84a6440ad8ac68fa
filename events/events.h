// Reactions to objects being erased: what survives is repaired, what
// depends on the erased objects is queued to go with them. Three object-ID
// lists ("<id>;<id>;") travel through one erase operation: the entities
// erased in it (never repaired), those the reactions queue for erasure,
// and the nodes whose low and high points must be analysed again.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kestrana::host {
class BlockReference;
class Document;
class Entity;
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
};

// What the editor does when the user erases `chosen`: the reaction of each
// one's kind, then the erasure of the chosen and of everything the
// reactions queued, then the low/high analysis around the touched nodes.
// Answers how many objects were erased in all.
int EraseWithReactions(host::Document& document,
                       const std::vector<host::Entity*>& chosen);

}  // namespace kestrana::events
