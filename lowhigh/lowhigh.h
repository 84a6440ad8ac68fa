// Class LowHigh: the local low points (for wash-outs) and high points (for
// air valves) of pressure networks, marked with blocks linked to their
// nodes. The analysis starts from the nodes an edit touched and spreads only
// through nodes that are neither low nor high. Operations keep nothing
// between calls.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/text_table.h"
#include "lowhigh/lowhigh_record.h"

namespace kestrana::host {
class Document;
class Entity;
class SelectionSet;
}  // namespace kestrana::host

namespace kestrana::lowhigh {

class LowHigh {
 public:
  // Analyses the nodes of the list (object IDs as text) and, through nodes
  // that are neither low nor high, their neighbours. Nothing happens for an
  // empty list or a gravity network.
  static void BuildLowHighPointsAfterImporting(
      host::Document& document,
      const std::vector<std::string>& ar_nodes_low_high_oid,
      std::string_view network_name);
  // The IDs of the set's nodes and of all their neighbours, each once, in
  // the order met; one empty ID for an empty set.
  static std::vector<std::string> GetInitialNodesOIDArrayForLowHigh(
      host::Document& document, host::SelectionSet& set_nodes);
  // Replaces the node's marker by one of the code (none for kNone); answers
  // the new marker's ID, or "".
  static std::string DrawLowHighPoint(host::Document& document,
                                      host::Entity& node_entity,
                                      LowHighCode low_high_code,
                                      std::string_view network_name);
  // Shows the markers of the networks switched on in the settings, hides
  // the others.
  static void ApplyLowHighSettings(host::Document& document,
                                   host::SelectionSet& set_low_high_points);
  // One row per pressure network, in definition order: the name, and "1"
  // when its markers are shown, else "0".
  static core::TextTable GetLowHighSettings(host::Document& document);
  static void SetLowHighSettings(host::Document& document,
                                 const core::TextTable& ar_low_high_settings);
  // The set "SetLowHighPoints" of every marker, or of one network's.
  static host::SelectionSet& GetExistingLowHighPointsSet(
      host::Document& document, std::string_view net_name);
  static void DeleteNetworkLowHighPoints(host::Document& document,
                                         std::string_view net_name);
};

}  // namespace kestrana::lowhigh
