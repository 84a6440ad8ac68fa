#include "dxf/summary.h"

#include <map>

#include "dxf/image.h"
#include "dxf/writer.h"

namespace kestrana::dxf {

DrawingSummary Summarize(memhost::MemDocument& doc) {
  DrawingSummary s;
  if (FileImage* img = ImageOf(doc)) {
    s.version = img->version;
    s.from_file = true;
  } else {
    s.version = std::string(kNewDrawingVersion);
  }
  std::map<std::string, int> counts;
  std::map<std::string, int> per_layer;
  for (memhost::MemEntity* e : doc.ModelSpaceBlock().MemEntities()) {
    ++counts[e->AsHostEntity().EntityName()];
    ++per_layer[e->LayerName()];
    ++s.model_space_total;
  }
  for (memhost::MemEntity* e : doc.PaperSpaceBlock().MemEntities()) {
    ++per_layer[e->LayerName()];
    ++s.paper_space_total;
  }
  s.model_space.assign(counts.begin(), counts.end());
  for (memhost::MemBlock* b : doc.BlockList())
    if (!b->is_layout_) ++s.block_definitions;
  for (memhost::MemLayer* l : doc.LayerList()) {
    LayerSummary ls;
    ls.name = l->name_;
    ls.color = l->color_;
    ls.on = l->on_;
    ls.frozen = l->frozen_;
    ls.locked = l->locked_;
    auto it = per_layer.find(l->name_);
    ls.entities = it == per_layer.end() ? 0 : it->second;
    s.layers.push_back(std::move(ls));
  }
  s.has_project = doc.ModelSpaceBlock().GetXData(kAppName).has_value();
  return s;
}

std::vector<RecordDump> KestranaRecords(memhost::MemDocument& doc) {
  std::vector<RecordDump> out;
  auto add = [&](memhost::MemObject& obj, std::string type, std::string layer,
                 std::string block) {
    auto record = obj.AsHostObject().GetXData(kAppName);
    if (!record) return;
    RecordDump d;
    d.handle = obj.AsHostObject().Handle();
    d.id = obj.Id();
    d.type = std::move(type);
    d.layer = std::move(layer);
    d.block = std::move(block);
    d.record = std::move(*record);
    out.push_back(std::move(d));
  };
  for (memhost::MemBlock* b : doc.BlockList())
    add(*b, "BLOCK_RECORD", "", b->name_);
  for (memhost::MemBlock* b : doc.BlockList()) {
    for (memhost::MemEntity* e : b->MemEntities()) {
      add(*e, e->AsHostEntity().EntityName(), e->LayerName(), b->name_);
      if (auto* ref = dynamic_cast<memhost::MemBlockReference*>(e))
        for (auto* a : ref->Attributes())
          if (!a->IsErased()) add(*a, "ATTRIB", a->LayerName(), b->name_);
    }
  }
  for (memhost::MemLayer* l : doc.LayerList()) add(*l, "LAYER", "", l->name_);
  for (memhost::MemTextStyle* s : doc.TextStyleList())
    add(*s, "STYLE", "", s->name_);
  return out;
}

}  // namespace kestrana::dxf
