#include <cmath>
#include <optional>
#include <string>
#include <vector>

#include "core/general.h"
#include "core/geometry.h"
#include "core/lists.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "core/references.h"
#include "core/text.h"
#include "crossing/crossing.h"
#include "crossing/crossing_record.h"
#include "editing/node_index.h"
#include "events/events.h"
#include "events/id_lists.h"
#include "host/host.h"
#include "lowhigh/lowhigh_record.h"
#include "profile/profile.h"

namespace kestrana::events {

namespace {

using core::General;
using core::PipeField;
using core::Record;

host::Point3 NodePoint(host::Document& document, const std::string& id) {
  return host::As<host::BlockReference>(core::EntityFromIdText(document, id))
      .InsertionPoint();
}

// Where a point of the annotation's block definition lies in the drawing.
host::Point3 InDrawing(const host::BlockReference& annotation,
                       const host::Block& definition, const host::Point3& p) {
  const host::Point3 origin = definition.Origin();
  const double x = (p.x - origin.x) * annotation.XScaleFactor();
  const double y = (p.y - origin.y) * annotation.YScaleFactor();
  const double turn = annotation.Rotation();
  const host::Point3 at = annotation.InsertionPoint();
  return {at.x + x * std::cos(turn) - y * std::sin(turn),
          at.y + x * std::sin(turn) + y * std::cos(turn), at.z};
}

// The points of the table a leader line may end at: the ends of its lines.
// The texts inside the table give none.
std::vector<host::Point3> TablePoints(const host::Block& definition) {
  std::vector<host::Point3> points;
  for (const host::Entity* entity : definition.Entities()) {
    if (const auto* line = dynamic_cast<const host::Line*>(entity)) {
      points.push_back(line->StartPoint());
      points.push_back(line->EndPoint());
    } else if (const auto* polyline =
                   dynamic_cast<const host::LwPolyline*>(entity)) {
      const std::vector<double> xy = polyline->Coordinates();
      for (size_t i = 0; i + 1 < xy.size(); i += 2)
        points.push_back({xy[i], xy[i + 1], 0});
    }
  }
  return points;
}

}  // namespace

void Events::AdjustPipeEnds(host::Document& document, host::Entity& pipe) {
  const Record record =
      core::ReadRecordWithFields(pipe, core::kPipeRecordLength, "pipe");
  auto& polyline = host::As<host::LwPolyline>(pipe);
  std::vector<double> xy = polyline.Coordinates();
  if (xy.size() < 4) return;
  bool changed = false;
  auto put_on_node = [&](size_t at, PipeField node_field) {
    const std::string node = core::SingleReference(record, node_field);
    if (node.empty()) return;
    const host::Point3 p = NodePoint(document, node);
    if (editing::KeyOf(xy[at], xy[at + 1]) == editing::KeyOf(p.x, p.y)) return;
    xy[at] = p.x;
    xy[at + 1] = p.y;
    changed = true;
  };
  put_on_node(0, PipeField::kStartNodeOID);
  put_on_node(xy.size() - 2, PipeField::kEndNodeOID);
  if (changed) polyline.SetCoordinates(xy);
}

void Events::AdjustLowHighPoint(host::Document& document,
                                host::BlockReference& point) {
  const Record record = core::ReadRecordWithFields(
      point, lowhigh::kLowHighRecordLength, "low or high point");
  const host::Point3 node = NodePoint(
      document,
      core::SingleReference(record, lowhigh::LowHighField::kNodeOIDRef));
  point.SetInsertionPoint(node);
}

void Events::AdjustCrossingLine(host::Document& document, host::Line& line) {
  using F = crossing::CrossingAnnoField;
  const Record line_record = core::ReadRecordWithFields(
      line, crossing::kCrossingLineRecordLength, "crossing line");
  auto& annotation = host::As<host::BlockReference>(core::EntityFromIdText(
      document, core::SingleReference(
                    line_record, crossing::CrossingLineField::kAnnoOIDRef)));
  const Record record = core::ReadRecordWithFields(
      annotation, crossing::kCrossingAnnoRecordLength, "crossing annotation");
  std::vector<std::string> location = core::Split(record.Text(F::kPoint));
  location.resize(2);
  const host::Point3 at{core::NumericValue(location[0]),
                        core::NumericValue(location[1]), 0};
  line.SetStartPoint(at);

  const host::Block& definition = document.GetBlocks().Item(annotation.Name());
  double nearest = 1000000000;
  std::optional<host::Point3> end;
  for (const host::Point3& p : TablePoints(definition)) {
    const host::Point3 candidate = InDrawing(annotation, definition, p);
    const double distance =
        core::PlanDistance(at.x, at.y, candidate.x, candidate.y);
    if (distance < nearest) {
      nearest = distance;
      end = candidate;
    }
  }
  if (end) line.SetEndPoint({end->x, end->y, at.z});
}

void Events::RebuildPipeCrossingPoints(host::Document& document,
                                       std::string_view changed_pipe_object_id,
                                       std::string_view erased,
                                       std::string& to_be_erased) {
  host::SelectionSet& pipes =
      General::InitializeSelectionSet(document, "SetPipesForCrossing");
  for (const std::string& pipe_id : core::ListEntries(changed_pipe_object_id)) {
    if (Listed(pipe_id, erased) || !Exists(document, pipe_id)) continue;
    host::Entity& pipe = core::EntityFromIdText(document, pipe_id);
    const Record record = Record::ReadRequired(pipe);
    for (const std::string& id :
         core::ReferenceValues(record.Text(PipeField::kCrossingOIDRefs))) {
      if (Listed(id, erased) || Listed(id, to_be_erased) ||
          !Exists(document, id))
        continue;
      host::Entity& annotation = core::EntityFromIdText(document, id);
      CrossingAnnoWillBeErased(document, annotation, erased, to_be_erased);
      annotation.Delete();
    }
    pipes.AddItems({&pipe});
  }
  crossing::Crossing::BuildCrossingPointsAfterImporting(
      document, pipes, General::GetModelUnits(document));
}

void Events::FlagChangedPipesProfilesForUpdate(
    host::Document& document, std::string_view changed_pipe_object_id,
    std::string_view erased, std::string_view to_be_erased) {
  for (const std::string& pipe_id : core::ListEntries(changed_pipe_object_id)) {
    if (Listed(pipe_id, erased) || !Exists(document, pipe_id)) continue;
    const Record record =
        Record::ReadRequired(core::EntityFromIdText(document, pipe_id));
    for (const std::string& id :
         core::ReferenceValues(record.Text(PipeField::kProfileOIDRefs)))
      if (!Listed(id, erased) && !Listed(id, to_be_erased) &&
          Exists(document, id))
        profile::Profile::FlagProfileForUpdate(document, id);
  }
}

}  // namespace kestrana::events
