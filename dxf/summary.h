// Facts about a loaded drawing for the info and dump commands.
#pragma once

#include <string>
#include <vector>

#include "host/types.h"
#include "memhost/document.h"

namespace kestrana::dxf {

// The application name of every record the system writes.
inline constexpr char kAppName[] = "Kestrana";

struct LayerSummary {
  std::string name;
  int color = 7;
  bool on = true;
  bool frozen = false;
  bool locked = false;
  int entities = 0;  // live entities of model and paper space on it
};

struct DrawingSummary {
  std::string version;  // "AC1015"; a new drawing's is the one it is saved as
  bool from_file = false;
  // Model-space entities by type name, sorted by name.
  std::vector<std::pair<std::string, int>> model_space;
  int model_space_total = 0;
  int paper_space_total = 0;
  int block_definitions = 0;  // not counting layouts
  std::vector<LayerSummary> layers;
  // Model space's block record holds XData under "Kestrana".
  bool has_project = false;
};

DrawingSummary Summarize(memhost::MemDocument& doc);

// An object that carries a "Kestrana" record.
struct RecordDump {
  std::string handle;
  host::ObjectId id = 0;
  std::string type;   // "LWPOLYLINE", "INSERT", "BLOCK_RECORD", "LAYER", ...
  std::string layer;  // entities only
  std::string block;  // the block holding the entity, or the record's name
  host::XRecord record;
};

// Every object with a "Kestrana" record: block records first (model space
// and its project record lead), then entities block by block in drawing
// order (attributes after their reference), then layers and text styles.
std::vector<RecordDump> KestranaRecords(memhost::MemDocument& doc);

}  // namespace kestrana::dxf
