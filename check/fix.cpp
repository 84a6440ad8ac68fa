#include "check/fix.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include "check/drawing_index.h"
#include "check/reporter.h"
#include "core/general.h"
#include "core/guards.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/project_record.h"
#include "core/text.h"
#include "core/text_table.h"
#include "crossing/crossing.h"
#include "crossing/crossing_record.h"
#include "host/host.h"
#include "library/library.h"
#include "lowhigh/lowhigh.h"
#include "lowhigh/lowhigh_record.h"
#include "profile/profile_record.h"
#include "viewstyle/annotation_record.h"

namespace kestrana::check {

namespace {

template <class E>
int F(E field) {
  return static_cast<int>(field);
}
using core::NodeField;
using core::PipeField;

std::vector<std::string> ValuesOf(const core::Record& record, int field) {
  return ReferenceList(FieldText(record, field))
      .value_or(std::vector<std::string>());
}

std::string IdOf(const Item& item) {
  return std::to_string(item.entity->ObjectID());
}

bool HasCode(const std::vector<Finding>& findings, std::string_view prefix) {
  return std::any_of(findings.begin(), findings.end(), [&](const Finding& f) {
    return f.code.compare(0, prefix.size(), prefix) == 0;
  });
}

// Whether a finding names an object of one of these types.
bool Involves(const DrawingIndex& index, const std::vector<Finding>& findings,
              std::initializer_list<std::string_view> types) {
  std::set<std::string> handles;
  for (const auto& [id, item] : index.items())
    if (std::find(types.begin(), types.end(), item.type) != types.end())
      handles.insert(item.entity->Handle());
  for (const Finding& f : findings)
    for (const ObjectRef& r : f.objects)
      if (handles.count(r.handle)) return true;
  return false;
}

class Repairer {
 public:
  Repairer(host::Document& document, std::vector<std::string>& changes)
      : document_(document), index_(document), changes_(changes) {}

  const DrawingIndex& index() const { return index_; }

  // A single link the linked object does not name back is dropped.
  void DropBrokenSingle(const Item& owner, core::Record& record,
                        int label_field, int id_field, std::string_view type,
                        int back_id, const std::string& what) {
    std::string ids = FieldText(record, id_field);
    std::string labels = FieldText(record, label_field);
    if (ids.empty() && labels.empty()) return;
    std::optional<std::vector<std::string>> values = ReferenceList(ids);
    const Item* target =
        values && values->size() == 1 ? index_.Find((*values)[0]) : nullptr;
    bool good = target && target->type == type && target->whole &&
                ValuesOf(target->record, back_id) ==
                    std::vector<std::string>{IdOf(owner)} &&
                ReferenceList(labels).value_or(std::vector<std::string>())
                        .size() == 1;
    if (good) return;
    record.SetText(core::Field::At(label_field), "");
    record.SetText(core::Field::At(id_field), "");
    changes_.push_back("dropped the broken link of " + Describe(owner) +
                       " to its " + what);
  }

  // A node's pipe lists: the pipes that name it at that side, those it
  // listed first in their order, then any others.
  void RebuildNodeSide(const Item& node, core::Record& record, bool start,
                       const std::map<std::string, std::vector<const Item*>>&
                           naming) {
    int label_field =
        F(start ? NodeField::kPipesAtStartLabels : NodeField::kPipesAtEndLabels);
    int id_field = F(start ? NodeField::kPipesAtStartOID : NodeField::kPipesAtEndOID);
    std::vector<const Item*> pipes;
    auto it = naming.find(IdOf(node));
    std::vector<const Item*> all =
        it == naming.end() ? std::vector<const Item*>() : it->second;
    for (const std::string& id : ValuesOf(record, id_field))
      for (const Item* p : all)
        if (IdOf(*p) == id && std::find(pipes.begin(), pipes.end(), p) ==
                                  pipes.end())
          pipes.push_back(p);
    for (const Item* p : all)
      if (std::find(pipes.begin(), pipes.end(), p) == pipes.end())
        pipes.push_back(p);
    std::string labels, ids;
    for (const Item* p : pipes) {
      labels += core::ReferenceEntry(p->label);
      ids += core::ReferenceEntry(IdOf(*p));
    }
    if (labels == FieldText(record, label_field) &&
        ids == FieldText(record, id_field))
      return;
    record.SetText(core::Field::At(label_field), labels);
    record.SetText(core::Field::At(id_field), ids);
    changes_.push_back("rebuilt the list of pipes " +
                       std::string(start ? "starting" : "ending") + " at " +
                       Describe(node) + " from the pipes that name it");
  }

  void Links() {
    // Pipes naming each node at each side, through links that hold.
    std::map<std::string, std::vector<const Item*>> starting, ending;
    for (const auto& [id, item] : index_.items()) {
      if (!IsPipe(item) || !item.whole) continue;
      for (bool start : {true, false}) {
        std::vector<std::string> ids = ValuesOf(
            item.record, F(start ? PipeField::kStartNodeOID : PipeField::kEndNodeOID));
        const Item* node = ids.size() == 1 ? index_.Find(ids[0]) : nullptr;
        if (node && IsNode(*node) && node->whole)
          (start ? starting : ending)[ids[0]].push_back(&item);
      }
    }
    for (const auto& [id, item] : index_.items()) {
      if (!item.whole) continue;
      core::Record record = item.record;
      if (IsPipe(item)) {
        DropBrokenSingle(item, record, F(PipeField::kAnnotationLabelRef),
                         F(PipeField::kAnnotationOIDRef), viewstyle::kAnnotation,
                         F(viewstyle::AnnotationField::kElementOIDRef),
                         "annotation");
        DropBrokenSingle(item, record, F(PipeField::kArrowLabelRef),
                         F(PipeField::kArrowOIDRef), viewstyle::kArrow,
                         F(viewstyle::AnnotationField::kElementOIDRef),
                         "direction arrow");
        KeepNode(item, record, true);
        KeepNode(item, record, false);
        KeepProfiles(item, record);
      } else if (IsNode(item)) {
        DropBrokenSingle(item, record, F(NodeField::kAnnotationLabelRef),
                         F(NodeField::kAnnotationOIDRef), viewstyle::kAnnotation,
                         F(viewstyle::AnnotationField::kElementOIDRef),
                         "annotation");
        DropBrokenSingle(item, record, F(NodeField::kLowHighLabelRef),
                         F(NodeField::kLowHighOIDRef), lowhigh::kLowHighPoint,
                         F(lowhigh::LowHighField::kNodeOIDRef),
                         "low or high point");
        RebuildNodeSide(item, record, true, starting);
        RebuildNodeSide(item, record, false, ending);
      } else if (item.type == profile::kProfileKind) {
        KeepProfilePipes(item, record);
      }
      if (record.Items() != item.record.Items()) record.Write(*item.entity);
    }
  }

  // A pipe's node link is dropped only when it names no node at all.
  void KeepNode(const Item& pipe, core::Record& record, bool start) {
    int label_field = F(start ? PipeField::kStartNodeLabel : PipeField::kEndNodeLabel);
    int id_field = F(start ? PipeField::kStartNodeOID : PipeField::kEndNodeOID);
    std::optional<std::vector<std::string>> ids =
        ReferenceList(FieldText(record, id_field));
    const Item* node = ids && ids->size() == 1 ? index_.Find((*ids)[0]) : nullptr;
    if (node && IsNode(*node)) return;
    if (FieldText(record, id_field).empty() &&
        FieldText(record, label_field).empty())
      return;
    record.SetText(core::Field::At(label_field), "");
    record.SetText(core::Field::At(id_field), "");
    changes_.push_back("dropped the " + std::string(start ? "start" : "end") +
                       " node link of " + Describe(pipe) +
                       ", which named no node");
  }

  void KeepProfiles(const Item& pipe, core::Record& record) {
    int label_field = F(PipeField::kProfileRefs);
    int id_field = F(PipeField::kProfileOIDRefs);
    std::string labels, ids;
    for (const std::string& id : ValuesOf(record, id_field)) {
      const Item* prof = index_.Find(id);
      if (!prof || prof->type != profile::kProfileKind || !prof->whole) continue;
      if (!std::ranges::count(profile::ReadPipeChain(prof->record).ids,
                              IdOf(pipe)))
        continue;
      labels += core::ReferenceEntry(prof->label);
      ids += core::ReferenceEntry(id);
    }
    if (labels == FieldText(record, label_field) &&
        ids == FieldText(record, id_field))
      return;
    record.SetText(core::Field::At(label_field), labels);
    record.SetText(core::Field::At(id_field), ids);
    changes_.push_back("kept only the profiles of " + Describe(pipe) +
                       " that show it");
  }

  void KeepProfilePipes(const Item& prof, core::Record& record) {
    profile::PipeChain chain = profile::ReadPipeChain(record);
    profile::PipeChain kept;
    for (size_t i = 0; i < chain.ids.size(); ++i) {
      const Item* pipe = index_.Find(chain.ids[i]);
      if (!pipe || !IsPipe(*pipe) || !pipe->whole) continue;
      kept.ids.push_back(chain.ids[i]);
      kept.labels.push_back(pipe->label);
      kept.directions.push_back(chain.directions[i]);
    }
    if (kept.ids.size() == chain.ids.size()) return;
    profile::WritePipeChain(record, kept);
    record.SetInt16(profile::ProfileField::kUpdateFlag, profile::kNeedsUpdate);
    changes_.push_back("dropped the pipes " + Describe(prof) +
                       " named that are gone, and flagged it for update");
  }

  // Annotations, arrows and plan annotations whose owner is gone or does
  // not name them.
  void EraseOrphans() {
    for (const auto& [id, item] : index_.items()) {
      if (item.type != viewstyle::kAnnotation && item.type != viewstyle::kArrow)
        continue;
      std::vector<std::string> owners =
          ValuesOf(item.record, F(viewstyle::AnnotationField::kElementOIDRef));
      const Item* owner = owners.size() == 1 ? index_.Find(owners[0]) : nullptr;
      bool owned = false;
      if (owner && owner->whole && (IsPipe(*owner) || IsNode(*owner))) {
        int back = IsNode(*owner) ? F(NodeField::kAnnotationOIDRef)
                   : item.type == viewstyle::kArrow
                       ? F(PipeField::kArrowOIDRef)
                       : F(PipeField::kAnnotationOIDRef);
        // Read the owner as written by Links(): a dropped link frees it.
        std::optional<core::Record> now = core::Record::Read(*owner->entity);
        owned = now && ValuesOf(*now, back) == std::vector<std::string>{core::IdText(id)};
      }
      if (owned) continue;
      changes_.push_back("erased " + Describe(item) + ", which belonged to nothing");
      item.entity->Delete();
    }
  }

  void RebuildCrossings() {
    core::UnlockedLayers unlocked(document_);
    int erased = 0;
    for (const auto& [id, item] : index_.items()) {
      if (item.type == crossing::kCrossingPointAnnotation ||
          item.type == crossing::kCrossingPointLine) {
        if (item.type == crossing::kCrossingPointAnnotation) ++erased;
        item.entity->Delete();
      }
    }
    std::vector<host::Entity*> pipes;
    for (const auto& [id, item] : index_.items()) {
      if (!IsPipe(item) || !item.whole || item.entity->Erased()) continue;
      std::optional<core::Record> record = core::Record::Read(*item.entity);
      if (!FieldText(*record, F(PipeField::kCrossingRefs)).empty() ||
          !FieldText(*record, F(PipeField::kCrossingOIDRefs)).empty()) {
        record->SetText(PipeField::kCrossingRefs, "");
        record->SetText(PipeField::kCrossingOIDRefs, "");
        record->Write(*item.entity);
      }
      if (index_.FindNetwork(item.network) &&
          item.entity->Kind() == host::EntityKind::kLwPolyline)
        pipes.push_back(item.entity);
    }
    host::SelectionSet& set =
        core::General::InitializeSelectionSet(document_, "SetPipesForCrossing");
    set.AddItems(pipes);
    crossing::Crossing::BuildCrossingPointsAfterImporting(document_, set,
                                                          index_.units());
    int drawn =
        crossing::Crossing::GetExistingCrossingPointsSet(document_, "").Count();
    changes_.push_back("rebuilt the crossings: " + std::to_string(erased) +
                       " annotations erased, " + std::to_string(drawn) +
                       " drawn");
  }

  void RebuildLowHigh() {
    core::UnlockedLayers unlocked(document_);
    int erased = 0;
    for (const auto& [id, item] : index_.items())
      if (item.type == lowhigh::kLowHighPoint && !item.entity->Erased()) {
        item.entity->Delete();
        ++erased;
      }
    std::map<std::string, std::vector<std::string>> nodes_of;
    for (const auto& [id, item] : index_.items()) {
      if (!IsNode(item) || !item.whole) continue;
      std::optional<core::Record> record = core::Record::Read(*item.entity);
      if (!FieldText(*record, F(NodeField::kLowHighLabelRef)).empty() ||
          !FieldText(*record, F(NodeField::kLowHighOIDRef)).empty()) {
        record->SetText(NodeField::kLowHighLabelRef, "");
        record->SetText(NodeField::kLowHighOIDRef, "");
        record->Write(*item.entity);
      }
      const Network* network = index_.FindNetwork(item.network);
      if (network && network->type == core::kPressure &&
          item.type == core::kPressureNode)
        nodes_of[item.network].push_back(IdOf(item));
    }
    for (const auto& [network, nodes] : nodes_of)
      lowhigh::LowHigh::BuildLowHighPointsAfterImporting(document_, nodes,
                                                         network);
    changes_.push_back("rebuilt the low and high points: " +
                       std::to_string(erased) + " markers erased, " +
                       std::to_string(lowhigh::LowHigh::GetExistingLowHighPointsSet(
                                          document_, "")
                                          .Count()) +
                       " drawn");
  }

  void RecountLibraries() {
    std::map<std::string, int> materials;
    std::map<std::pair<std::string, std::string>, int> sizes;
    for (const auto& [id, item] : index_.items()) {
      if (!IsPipe(item) || !item.whole || item.entity->Erased()) continue;
      ++materials[FieldText(item.record, F(PipeField::kMaterial))];
      library::PipeSize size = library::PipeSizeOf(item.record);
      ++sizes[{size.key, size.shape}];
    }
    using library::Library;
    core::TextTable current = Library::GetMaterialsArray(document_);
    std::vector<std::pair<std::string, double>> material_change;
    std::set<std::string> listed;
    for (int row = 0; row < current.Rows(); ++row) {
      const std::string& name = current(row, library::materials_column::kName);
      if (!listed.insert(name).second) continue;
      auto it = materials.find(name);
      double want = it == materials.end() ? 0 : it->second;
      double have = core::NumericValue(current(row, library::materials_column::kCount));
      if (want != have) material_change.push_back({name, want - have});
    }
    for (const auto& [name, n] : materials)
      if (!listed.count(name)) material_change.push_back({name, double(n)});
    if (!material_change.empty()) {
      core::TextTable change(static_cast<int>(material_change.size()),
                             library::materials_column::kColumns);
      for (size_t i = 0; i < material_change.size(); ++i) {
        change(i, library::materials_column::kName) = material_change[i].first;
        change(i, library::materials_column::kCount) =
            core::GeneralText(material_change[i].second);
      }
      Library::UpdateMaterialUsage(document_, current, change);
      changes_.push_back("recounted " + std::to_string(material_change.size()) +
                         " materials in the library");
    }
    if (index_.units() != core::kMetric && index_.units() != core::kUS) return;
    core::TextTable circular = Library::GetSizesArray(document_, library::kCircular);
    core::TextTable box = Library::GetSizesArray(document_, library::kBox);
    std::vector<std::array<std::string, 3>> size_change;
    std::set<std::pair<std::string, std::string>> seen;
    for (const auto& [table, shape] :
         {std::pair{&circular, library::kCircular}, std::pair{&box, library::kBox}}) {
      for (int row = 0; row < table->Rows(); ++row) {
        std::string key = (*table)(row, library::sizes_column::kSize);
        // Box sizes show as "1200 x 800"; their key is "1200x800".
        std::erase(key, ' ');
        if (!seen.insert({key, shape}).second) continue;
        auto it = sizes.find({key, shape});
        double want = it == sizes.end() ? 0 : it->second;
        double have =
            core::NumericValue((*table)(row, library::sizes_column::kCount));
        if (want != have)
          size_change.push_back({key, shape, core::GeneralText(want - have)});
      }
    }
    for (const auto& [key, n] : sizes)
      if (!seen.count(key))
        size_change.push_back({key.first, key.second, std::to_string(n)});
    if (size_change.empty()) return;
    core::TextTable change(static_cast<int>(size_change.size()),
                           library::size_change_column::kColumns);
    for (size_t i = 0; i < size_change.size(); ++i)
      for (int c = 0; c < library::size_change_column::kColumns; ++c)
        change(i, c) = size_change[i][c];
    Library::UpdateSizeUsage(document_, circular, box, change);
    changes_.push_back("recounted " + std::to_string(size_change.size()) +
                       " sizes in the library");
  }

 private:
  host::Document& document_;
  DrawingIndex index_;
  std::vector<std::string>& changes_;
};

}  // namespace

std::vector<std::string> Repair(host::Document& document,
                                const std::vector<Finding>& findings) {
  std::vector<std::string> changes;
  if (findings.empty() || HasCode(findings, "no-project")) return changes;
  {
    Repairer links(document, changes);
    links.Links();
  }
  {
    Repairer orphans(document, changes);
    orphans.EraseOrphans();
  }
  // Each step reads the drawing as the step before left it.
  {
    Repairer crossings(document, changes);
    if (HasCode(findings, "crossing") ||
        Involves(crossings.index(), findings,
                 {crossing::kCrossingPointAnnotation,
                  crossing::kCrossingPointLine}))
      crossings.RebuildCrossings();
  }
  {
    Repairer low_high(document, changes);
    if (HasCode(findings, "lowhigh-") ||
        Involves(low_high.index(), findings, {lowhigh::kLowHighPoint}))
      low_high.RebuildLowHigh();
  }
  {
    Repairer counts(document, changes);
    if (HasCode(findings, "library-count")) counts.RecountLibraries();
  }
  return changes;
}

}  // namespace kestrana::check
