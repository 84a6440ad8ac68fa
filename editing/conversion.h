// Converting a set of polylines into a network, along either of two paths
// that give the same drawing: the documented steps one polyline at a time
// (every node walked, every label scanned, every node's pipes matched and
// refreshed after each pipe), or the batch path that CreateElementsInNetwork
// takes (nodes found by their rounded point, labels numbered from one scan,
// each touched node matched and each pipe refreshed once at the end).
#pragma once

#include <string_view>

namespace kestrana::host {
class Document;
class SelectionSet;
}  // namespace kestrana::host

namespace kestrana::editing {

enum class ConversionPath { kSteps, kBatch };

// What one conversion made, as it went.
struct ConversionCounts {
  int pipes = 0;
  int nodes = 0;
  int crossings = 0;  // crossing annotations drawn
};

ConversionCounts ConvertEntities(host::Document& document,
                     host::SelectionSet& set_entities_to_convert,
                     bool is_existing_network, std::string_view network_name,
                     std::string_view network_type, ConversionPath path);

}  // namespace kestrana::editing
