#include <optional>
#include <set>
#include <string>
#include <vector>

#include "core/general.h"
#include "core/guards.h"
#include "core/lists.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "core/references.h"
#include "crossing/crossing_record.h"
#include "events/element_kind.h"
#include "events/events.h"
#include "events/id_lists.h"
#include "host/host.h"
#include "viewstyle/view_style.h"

namespace kestrana::events {

namespace {

using core::NodeField;
using core::PipeField;
using core::Record;

// The IDs of the pipes that start or end at the node and are still there.
std::vector<std::string> PipesAtNode(host::Document& document,
                                     const host::Entity& node) {
  const Record record =
      core::ReadRecordWithFields(node, core::kNodeRecordLength, "node");
  std::vector<std::string> pipes;
  for (auto field : {NodeField::kPipesAtStartOID, NodeField::kPipesAtEndOID})
    for (const std::string& id : core::ReferenceValues(record.Text(field)))
      if (Exists(document, id)) pipes.push_back(id);
  return pipes;
}

// The entity a single-entry reference field names, when it is still there.
host::Entity* Linked(host::Document& document, const host::Entity& entity,
                     core::Field field) {
  const std::string id =
      core::SingleReference(Record::ReadRequired(entity), field);
  if (id.empty() || !Exists(document, id)) return nullptr;
  return &core::EntityFromIdText(document, id);
}

}  // namespace

PipeCourses CoursesBeforeMove(host::Document& document,
                              const std::vector<host::Entity*>& moving) {
  PipeCourses courses;
  auto take = [&](host::Entity& pipe) {
    courses.emplace(pipe.ObjectID(),
                    host::As<host::LwPolyline>(pipe).Coordinates());
  };
  for (host::Entity* entity : moving) {
    const ElementKind kind = KindOf(*entity);
    if (kind == ElementKind::kPipe) take(*entity);
    if (kind == ElementKind::kNode)
      for (const std::string& id : PipesAtNode(document, *entity))
        take(core::EntityFromIdText(document, id));
  }
  return courses;
}

std::vector<host::Entity*> ReactToMove(host::Document& document,
                                       const std::vector<host::Entity*>& moved,
                                       const PipeCourses& before) {
  core::EventsOff events_off(document);
  std::string moved_nodes;
  for (host::Entity* entity : moved) {
    switch (KindOf(*entity)) {
      case ElementKind::kPipe:
        Events::AdjustPipeEnds(document, *entity);
        break;
      case ElementKind::kNode:
        AppendOnce(moved_nodes, core::IdText(entity->ObjectID()));
        for (const std::string& id : PipesAtNode(document, *entity))
          Events::AdjustPipeEnds(document,
                                 core::EntityFromIdText(document, id));
        if (host::Entity* marker =
                Linked(document, *entity, NodeField::kLowHighOIDRef))
          Events::AdjustLowHighPoint(document,
                                     host::As<host::BlockReference>(*marker));
        break;
      case ElementKind::kLowHighPoint:
        Events::AdjustLowHighPoint(document,
                                   host::As<host::BlockReference>(*entity));
        break;
      case ElementKind::kCrossingAnno:
        if (host::Entity* line = Linked(
                document, *entity, crossing::CrossingAnnoField::kLineOIDRef))
          Events::AdjustCrossingLine(document, host::As<host::Line>(*line));
        break;
      case ElementKind::kCrossingLine:
        Events::AdjustCrossingLine(document, host::As<host::Line>(*entity));
        break;
      default:
        break;  // nothing follows it
    }
  }

  std::vector<host::Entity*> changed;
  std::string changed_ids, touched_nodes;
  for (const auto& [id, course] : before) {
    auto& pipe = host::As<host::LwPolyline>(document.ObjectIdToObject(id));
    if (pipe.Coordinates() == course) continue;
    changed.push_back(&pipe);
    changed_ids += core::IdListEntry(id);
    const Record record = Record::ReadRequired(pipe);
    for (auto field : {PipeField::kStartNodeOID, PipeField::kEndNodeOID})
      AppendOnce(touched_nodes, core::SingleReference(record, field));
  }
  if (!changed.empty()) {
    std::string to_be_erased;
    Events::RebuildPipeCrossingPoints(document, changed_ids, "", to_be_erased);
    for (const std::string& id : core::ListEntries(to_be_erased))
      core::EraseIfPresent(document, id);
    Events::FlagChangedPipesProfilesForUpdate(document, changed_ids, "", "");
  }
  // Annotations follow the new courses and node points; slopes the new
  // lengths.
  const std::string annotated = changed_ids + moved_nodes;
  if (!annotated.empty())
    viewstyle::ViewStyle::UpdateAnnotationsAfterEditing(document, annotated,
                                                        true);
  for (const std::string& id : core::ListEntries(moved_nodes))
    AppendOnce(touched_nodes, id);
  if (!touched_nodes.empty())
    Events::AnalyzeLowHighAfterDeleting(document, touched_nodes);
  return changed;
}

}  // namespace kestrana::events
