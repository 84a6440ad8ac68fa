#include "oids/update_oids.h"

#include <algorithm>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "core/filters.h"
#include "core/general.h"
#include "core/guards.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/project_record.h"
#include "core/record.h"
#include "core/references.h"
#include "core/text.h"
#include "core/values.h"
#include "crossing/crossing_record.h"
#include "host/host.h"
#include "library/library_record.h"
#include "lowhigh/lowhigh_record.h"
#include "profile/profile_record.h"
#include "profile/profile_style_record.h"
#include "viewstyle/annotation_record.h"
#include "viewstyle/view_style_record.h"

namespace kestrana::oids {

namespace {

using core::Field;
using core::General;
using core::NodeField;
using core::PipeField;
using core::Record;

// What an object with a record is, by field 2. Annotations are told apart
// by the kind of element they belong to: a pipe and a node of one network
// may share a label, and so would their annotations.
enum class Category {
  kPipe,
  kNode,
  kPipeAnnotation,
  kNodeAnnotation,
  kArrow,
  kCrossingAnnotation,
  kCrossingLine,
  kLowHigh,
  kProfile,
  kPlanAnnotation,
  kViewStyleMarker,
  kMaterialMarker,
  kSizeMarker,
  kProfileStyleMarker,
};

std::optional<Category> ClassifyElementType(const host::Entity& entity,
                                            const std::string& type) {
  if (type == core::kGravityPipe || type == core::kPressurePipe)
    return Category::kPipe;
  if (type == core::kGravityNode || type == core::kPressureNode)
    return Category::kNode;
  if (type == viewstyle::kAnnotation) {
    const auto* reference = dynamic_cast<const host::BlockReference*>(&entity);
    const bool of_node =
        reference != nullptr &&
        reference->Name().find(core::kNodeKind) != std::string::npos;
    return of_node ? Category::kNodeAnnotation : Category::kPipeAnnotation;
  }
  if (type == viewstyle::kArrow) return Category::kArrow;
  if (type == crossing::kCrossingPointAnnotation)
    return Category::kCrossingAnnotation;
  if (type == crossing::kCrossingPointLine) return Category::kCrossingLine;
  if (type == lowhigh::kLowHighPoint) return Category::kLowHigh;
  if (type == profile::kProfileKind) return Category::kProfile;
  if (type == profile::kPlanAnnoKind) return Category::kPlanAnnotation;
  if (type == viewstyle::kViewStylePoint) return Category::kViewStyleMarker;
  if (type == library::kMaterialLibraryPoint) return Category::kMaterialMarker;
  if (type == library::kSectionSizeLibraryPoint) return Category::kSizeMarker;
  if (type == profile::kProfileStylePoint) return Category::kProfileStyleMarker;
  return std::nullopt;
}

// An object of the project with its record, classified.
struct ProjectObject {
  host::Entity* entity;
  Record record;
  Category category;
  std::string network;  // the second piece of field 1
  std::string label;    // the third: what references name it by
};

// (category, network, label) -> current ID as decimal text.
class IdentityTable {
 public:
  void Add(const ProjectObject& object) {
    ids_.emplace(Key(object.category, object.network, object.label),
                 core::IdText(object.entity->ObjectID()));
    if (object.category == Category::kProfile)
      profiles_by_name_.emplace(object.label,
                                core::IdText(object.entity->ObjectID()));
  }
  const std::string* Find(Category category, const std::string& network,
                          const std::string& label) const {
    auto it = ids_.find(Key(category, network, label));
    return it == ids_.end() ? nullptr : &it->second;
  }
  // Profile styles list their profiles by name alone, across networks.
  const std::string* FindProfileByName(const std::string& name) const {
    auto it = profiles_by_name_.find(name);
    return it == profiles_by_name_.end() ? nullptr : &it->second;
  }

 private:
  static std::string Key(Category category, const std::string& network,
                         const std::string& label) {
    // Unit separators cannot stand in names (they are control characters).
    return std::to_string(static_cast<int>(category)) + '\x1f' + network +
           '\x1f' + label;
  }
  std::unordered_map<std::string, std::string> ids_;
  std::unordered_map<std::string, std::string> profiles_by_name_;
};

// Rewrites one record's reference pairs and remembers whether anything
// changed, so that untouched records are not written.
class RecordRewrite {
 public:
  RecordRewrite(Record& record, const IdentityTable& table)
      : record_(record), table_(table) {}

  // A list of references: the ID list rebuilt from the labels, in their
  // order; labels that name nothing are dropped from both lists.
  void List(Field labels, Field ids, Category category,
            const std::string& network) {
    Lists(labels, ids, [&](const std::string& label) {
      return table_.Find(category, network, label);
    });
  }
  template <class Lookup>
  void Lists(Field labels, Field ids, Lookup&& lookup) {
    if (!record_.Has(labels) || !record_.Has(ids)) return;
    std::string kept, renewed;
    for (const std::string& label :
         core::ReferenceValues(record_.Text(labels))) {
      const std::string* id = lookup(label);
      if (id == nullptr) continue;
      kept += core::ReferenceEntry(label);
      renewed += core::ReferenceEntry(*id);
    }
    Set(labels, kept);
    Set(ids, renewed);
  }
  // A single reference; one that names nothing is removed with its label.
  void Single(Field labels, Field ids, Category category,
              const std::string& network) {
    if (!record_.Has(labels) || !record_.Has(ids)) return;
    if (record_.Text(labels).empty()) return;
    List(labels, ids, category, network);
  }
  void Set(Field field, const std::string& text) {
    if (record_.Text(field) == text) return;
    record_.SetText(field, text);
    changed_ = true;
  }
  bool Changed() const { return changed_; }

 private:
  Record& record_;
  const IdentityTable& table_;
  bool changed_ = false;
};

// The network and label pieces of field 1 ("Kind;network;label"); markers
// carry names of other forms, which give what pieces they have.
std::pair<std::string, std::string> NetworkAndLabel(const Record& record) {
  core::CombinedLabel combined =
      core::CombinedLabel::ParsePadded(record.Text(PipeField::kCombinedLabel));
  return {std::move(combined.network), std::move(combined.label)};
}

std::vector<ProjectObject> CollectProjectObjects(host::Document& document) {
  host::SelectionSet& set =
      General::InitializeSelectionSet(document, "TotalSet");
  set.Select(host::SelectMode::kAll, {}, {}, core::ProjectObjectsFilter());
  std::vector<ProjectObject> objects;
  for (host::Entity* entity : set.Entities()) {
    std::optional<Record> record = Record::Read(*entity);
    if (!record || !record->Has(PipeField::kElementType)) continue;
    const host::XValue& type = record->Value(PipeField::kElementType);
    if (!type.IsText()) continue;
    std::optional<Category> category =
        ClassifyElementType(*entity, type.Text());
    if (!category || !record->Value(PipeField::kCombinedLabel).IsText())
      continue;
    auto [network, label] = NetworkAndLabel(*record);
    objects.push_back({entity, std::move(*record), *category,
                       std::move(network), std::move(label)});
  }
  return objects;
}

// Per category, the reference fields of the record and what they name.
void RewriteReferences(ProjectObject& object, const IdentityTable& table,
                       RecordRewrite& rewrite) {
  const std::string& net = object.network;
  switch (object.category) {
    case Category::kPipe:
      rewrite.Single(PipeField::kStartNodeLabel, PipeField::kStartNodeOID,
                     Category::kNode, net);
      rewrite.Single(PipeField::kEndNodeLabel, PipeField::kEndNodeOID,
                     Category::kNode, net);
      rewrite.Single(PipeField::kAnnotationLabelRef,
                     PipeField::kAnnotationOIDRef, Category::kPipeAnnotation,
                     net);
      rewrite.Single(PipeField::kArrowLabelRef, PipeField::kArrowOIDRef,
                     Category::kArrow, net);
      rewrite.List(PipeField::kCrossingRefs, PipeField::kCrossingOIDRefs,
                   Category::kCrossingAnnotation, "");
      rewrite.List(PipeField::kProfileRefs, PipeField::kProfileOIDRefs,
                   Category::kProfile, net);
      return;
    case Category::kNode:
      rewrite.List(NodeField::kPipesAtStartLabels, NodeField::kPipesAtStartOID,
                   Category::kPipe, net);
      rewrite.List(NodeField::kPipesAtEndLabels, NodeField::kPipesAtEndOID,
                   Category::kPipe, net);
      rewrite.Single(NodeField::kAnnotationLabelRef,
                     NodeField::kAnnotationOIDRef, Category::kNodeAnnotation,
                     net);
      rewrite.Single(NodeField::kLowHighLabelRef, NodeField::kLowHighOIDRef,
                     Category::kLowHigh, net);
      return;
    case Category::kPipeAnnotation:
    case Category::kArrow:
      rewrite.Single(viewstyle::AnnotationField::kElementLabelRef,
                     viewstyle::AnnotationField::kElementOIDRef,
                     Category::kPipe, net);
      return;
    case Category::kNodeAnnotation:
      rewrite.Single(viewstyle::AnnotationField::kElementLabelRef,
                     viewstyle::AnnotationField::kElementOIDRef,
                     Category::kNode, net);
      return;
    case Category::kCrossingAnnotation: {
      using F = crossing::CrossingAnnoField;
      const Record& r = object.record;
      const std::string net1 = r.Has(F::kPipe1Net) ? r.Text(F::kPipe1Net) : "";
      const std::string net2 = r.Has(F::kPipe2Net) ? r.Text(F::kPipe2Net) : "";
      rewrite.Single(F::kPipe1LabelRef, F::kPipe1OIDRef, Category::kPipe, net1);
      rewrite.Single(F::kPipe2LabelRef, F::kPipe2OIDRef, Category::kPipe, net2);
      rewrite.Single(F::kLineLabelRef, F::kLineOIDRef, Category::kCrossingLine,
                     "");
      return;
    }
    case Category::kCrossingLine:
      rewrite.Single(crossing::CrossingLineField::kAnnoLabelRef,
                     crossing::CrossingLineField::kAnnoOIDRef,
                     Category::kCrossingAnnotation, "");
      return;
    case Category::kLowHigh:
      rewrite.Single(lowhigh::LowHighField::kNodeLabelRef,
                     lowhigh::LowHighField::kNodeOIDRef, Category::kNode, net);
      return;
    case Category::kProfile: {
      using F = profile::ProfileField;
      rewrite.List(F::kPipeLabels, F::kPipeOIDs, Category::kPipe, net);
      rewrite.Single(F::kStyleNameRef, F::kStyleOIDRef,
                     Category::kProfileStyleMarker, "");
      rewrite.Single(F::kPlanAnnoLabelRef, F::kPlanAnnoOIDRef,
                     Category::kPlanAnnotation, net);
      return;
    }
    case Category::kPlanAnnotation:
      rewrite.Single(profile::PlanAnnoField::kProfileNameRef,
                     profile::PlanAnnoField::kProfileOIDRef, Category::kProfile,
                     net);
      return;
    case Category::kProfileStyleMarker:
      rewrite.Lists(profile::ProfileStyleItem::kProfileNames,
                    profile::ProfileStyleItem::kProfileOIDs,
                    [&](const std::string& name) {
                      return table.FindProfileByName(name);
                    });
      return;
    case Category::kViewStyleMarker:
    case Category::kMaterialMarker:
    case Category::kSizeMarker:
      return;
  }
}

// "<id>;<id>;" of the markers, or `stored` when it names the same markers
// in another order: a drawing whose IDs held keeps its record as it was.
std::string MarkerList(const std::vector<std::string>& ids,
                       const std::string& stored) {
  std::string list;
  for (const std::string& id : ids) list += id + ";";
  std::vector<std::string> a = ids, b = core::ListEntries(stored);
  std::sort(a.begin(), a.end());
  std::sort(b.begin(), b.end());
  return a == b ? stored : list;
}

// Fields 1, 5, 6 and 10 of the project record from the markers' current
// IDs; true when the record was written.
bool RewriteProjectRecord(host::Document& document,
                          const std::vector<ProjectObject>& objects) {
  using core::ProjectField;
  std::optional<Record> found = core::FindProjectRecord(document);
  if (!found) return false;
  Record& project = *found;
  std::vector<std::string> view_styles, profile_styles;
  std::optional<std::string> materials, sizes;
  for (const ProjectObject& object : objects) {
    const std::string id = core::IdText(object.entity->ObjectID());
    switch (object.category) {
      case Category::kViewStyleMarker:
        view_styles.push_back(id);
        break;
      case Category::kProfileStyleMarker:
        profile_styles.push_back(id);
        break;
      case Category::kMaterialMarker:
        materials = id;
        break;
      case Category::kSizeMarker:
        sizes = id;
        break;
      default:
        break;
    }
  }
  const IdentityTable none;
  RecordRewrite rewrite(project, none);
  if (project.Has(ProjectField::kViewStyles)) {
    core::ViewStylesField field =
        core::ViewStylesField::Parse(project.Text(ProjectField::kViewStyles));
    std::vector<std::string> stored;
    for (const std::string& id : field.markers)
      if (!id.empty()) stored.push_back(id);
    field.markers =
        core::ListEntries(MarkerList(view_styles, core::JoinEntries(stored)));
    rewrite.Set(ProjectField::kViewStyles, field.Format());
  }
  if (materials && project.Has(ProjectField::kMaterialsLibrary))
    rewrite.Set(ProjectField::kMaterialsLibrary, *materials);
  if (sizes && project.Has(ProjectField::kSizesLibrary))
    rewrite.Set(ProjectField::kSizesLibrary, *sizes);
  if (project.Has(ProjectField::kProfileStyles))
    rewrite.Set(
        ProjectField::kProfileStyles,
        MarkerList(profile_styles, project.Text(ProjectField::kProfileStyles)));
  if (!rewrite.Changed()) return false;
  core::WriteProjectRecord(document, project);
  return true;
}

}  // namespace

int UpdateOIDs::UpdateObjectIDs(host::Document& document) {
  core::UnlockedLayers unlocked(document);
  std::vector<ProjectObject> objects = CollectProjectObjects(document);
  IdentityTable table;
  for (const ProjectObject& object : objects) table.Add(object);
  int written = 0;
  for (ProjectObject& object : objects) {
    RecordRewrite rewrite(object.record, table);
    RewriteReferences(object, table, rewrite);
    if (!rewrite.Changed()) continue;
    object.record.Write(*object.entity);
    ++written;
  }
  written += RewriteProjectRecord(document, objects) ? 1 : 0;
  return written;
}

bool UpdateOIDs::StoredIdsAreStale(host::Document& document) {
  std::optional<Record> project = core::FindProjectRecord(document);
  if (!project || !project->Has(core::ProjectField::kMaterialsLibrary))
    return false;
  const std::string stored =
      project->Text(core::ProjectField::kMaterialsLibrary);
  if (stored.empty()) return false;
  // One lookup, not a walk: the marker stands where the record says, or the
  // record's IDs are another session's.
  try {
    using F = library::MaterialLibraryField;
    std::optional<Record> marker =
        Record::Read(core::ObjectFromIdText(document, stored));
    return !marker || !marker->Has(F::kElementType) ||
           !marker->Value(F::kElementType).IsText() ||
           marker->Text(F::kElementType) != library::kMaterialLibraryPoint;
  } catch (const host::HostError&) {
    return true;
  }
}

}  // namespace kestrana::oids
