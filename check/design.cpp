// The design review: what a reviewing engineer marks in red. Warnings only;
// a level of 0 is taken as not entered yet and is not judged.
#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include "check/reporter.h"
#include "core/general.h"
#include "core/geometry.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/project_record.h"
#include "core/text.h"
#include "crossing/crossing_search.h"
#include "host/host.h"
#include "library/library.h"
#include "library/library_record.h"

namespace kestrana::check {

namespace {

template <class E>
int F(E field) {
  return static_cast<int>(field);
}
using core::NodeField;
using core::PipeField;

// A node lying on a pipe this close to its line, in drawing units.
constexpr double kOnPipeTolerance = 1e-4;
// Slopes computed from rounded levels land a hair beside their limit.
constexpr double kSlopeTolerance = 1e-9;

std::vector<std::string> ValuesOf(const Item& item, int field) {
  return ReferenceList(FieldText(item.record, field))
      .value_or(std::vector<std::string>());
}

double Num(const Item& item, int field) {
  return core::NumericValue(item.record.Value(core::Field::At(field)));
}

const Item* EndNode(const DrawingIndex& index, const Item& pipe, bool start) {
  std::vector<std::string> ids =
      ValuesOf(pipe, F(start ? PipeField::kStartNodeOID : PipeField::kEndNodeOID));
  const Item* node = ids.size() == 1 ? index.Find(ids[0]) : nullptr;
  return node && IsNode(*node) && node->whole ? node : nullptr;
}

Finding& Warn(Reporter& report, std::string code, std::vector<ObjectRef> refs,
              std::string sentence) {
  return report.Add(std::move(code), std::move(refs), std::move(sentence),
                    Severity::kWarning);
}

// A level, slope or length as a sentence shows it.
std::string Shown(double v) {
  return core::GeneralText(core::RoundHalfEven(v, 4));
}

// The distance from a point to a polyline's segments.
double DistanceToLine(const std::vector<double>& xy, double px, double py) {
  double best = INFINITY;
  for (size_t i = 0; i + 3 < xy.size(); i += 2) {
    double ax = xy[i], ay = xy[i + 1], bx = xy[i + 2], by = xy[i + 3];
    double dx = bx - ax, dy = by - ay, len2 = dx * dx + dy * dy;
    double t = len2 > 0 ? ((px - ax) * dx + (py - ay) * dy) / len2 : 0;
    t = std::clamp(t, 0.0, 1.0);
    best = std::min(best, std::hypot(px - (ax + t * dx), py - (ay + t * dy)));
  }
  return best;
}

}  // namespace

void CheckDesign(const DrawingIndex& index, Reporter& report,
                 const DesignSettings& settings) {
  const std::string& units = index.units();
  const UnitLimits& limits = settings.For(units);
  std::map<std::pair<std::string, std::string>, const Item*> between;
  std::set<std::string> sizes_in_library;
  if (const Item* marker = index.Find(FieldText(
          *index.project(), F(core::ProjectField::kSizesLibrary)));
      marker && marker->whole) {
    bool metric = units == core::kMetric;
    for (auto list : {metric ? library::kMetricCircularList
                             : library::kUsCircularList,
                      metric ? library::kMetricBoxList : library::kUsBoxList})
      for (const std::string& key :
           core::ListEntries(FieldText(marker->record, F(list.sizes))))
        sizes_in_library.insert(key);
  }

  for (const auto& [id, pipe] : index.items()) {
    if (!IsPipe(pipe) || !pipe.whole ||
        pipe.entity->Kind() != host::EntityKind::kLwPolyline)
      continue;
    double length = host::As<host::LwPolyline>(*pipe.entity).Length();
    double start_invert = Num(pipe, F(PipeField::kStartInvert));
    double end_invert = Num(pipe, F(PipeField::kEndInvert));
    double rise = crossing::RiseInLevelUnits(pipe.record, units);
    const Item* from = EndNode(index, pipe, true);
    const Item* to = EndNode(index, pipe, false);

    if (pipe.type == core::kGravityPipe && length > 0 &&
        (start_invert != 0 || end_invert != 0)) {
      double slope = (start_invert - end_invert) / length;
      double span = Num(pipe, F(PipeField::kSpan));
      double minimum =
          FieldText(pipe.record, F(PipeField::kSectionShape)) ==
                  core::kSectionShapeCircular
              ? limits.MinSlopeFor(span)
              : limits.min_slope;
      if (slope < 0)
        Warn(report, "adverse-slope", {RefOf(pipe)},
             Describe(pipe) + " rises by " + Shown(-slope * length) +
                 " along its drawn direction: a gravity pipe must fall.")
            .values = {{"slope", Shown(slope)}};
      else if (slope < minimum - kSlopeTolerance)
        Warn(report, "flat-slope", {RefOf(pipe)},
             Describe(pipe) + " falls at " + Shown(slope) +
                 ", flatter than the minimum " + Shown(minimum) + " for its size.")
            .values = {{"slope", Shown(slope)}, {"minimum", Shown(minimum)}};
    }
    for (bool start : {true, false}) {
      const Item* node = start ? from : to;
      if (!node) continue;
      double ground = Num(*node, F(NodeField::kGroundLevel));
      double invert = start ? start_invert : end_invert;
      if (ground == 0 || invert == 0) continue;
      double crown = invert + rise;
      if (ground < crown)
        Warn(report, "ground-below-crown", {RefOf(pipe), RefOf(*node)},
             "At node " + node->label + " the ground " + Shown(ground) +
                 " lies below the crown " + Shown(crown) + " of " +
                 Describe(pipe) + ".")
            .values = {{"ground", Shown(ground)}, {"crown", Shown(crown)}};
      else if (ground - crown < limits.min_cover)
        Warn(report, "low-cover", {RefOf(pipe), RefOf(*node)},
             Describe(pipe) + " has " + Shown(ground - crown) + " of cover at " +
                 node->label + ", less than the minimum " +
                 Shown(limits.min_cover) + ".")
            .values = {{"cover", Shown(ground - crown)},
                       {"minimum", Shown(limits.min_cover)}};
    }
    if (!sizes_in_library.empty()) {
      library::PipeSize size = library::PipeSizeOf(pipe.record);
      if (!sizes_in_library.count(size.key))
        Warn(report, "size-not-in-library", {RefOf(pipe)},
             "The size " + size.key + " of " + Describe(pipe) +
                 " is not in the project's library.")
            .values = {{"size", size.key}};
    }
    if (from && to) {
      // minmax hands back references: keep the texts alive.
      const std::string a = std::to_string(from->entity->ObjectID());
      const std::string b = std::to_string(to->entity->ObjectID());
      auto [it, first] = between.emplace(std::pair(std::min(a, b), std::max(a, b)), &pipe);
      if (!first)
        Warn(report, "parallel-pipes", {RefOf(pipe), RefOf(*it->second)},
             Describe(pipe) + " and " + Describe(*it->second) +
                 " both run between " + from->label + " and " + to->label +
                 ".");
    }
  }

  for (const auto& [id, node] : index.items()) {
    if (!IsNode(node) || !node.whole) continue;
    double ground = Num(node, F(NodeField::kGroundLevel));
    double sump = Num(node, F(NodeField::kSumpLevel));
    if (ground != 0 && sump != 0 && ground < sump)
      Warn(report, "ground-below-sump", {RefOf(node)},
           "The ground " + Shown(ground) + " of " + Describe(node) +
               " lies below its sump " + Shown(sump) + ".")
          .values = {{"ground", Shown(ground)}, {"sump", Shown(sump)}};
    // A gravity node where a pipe leaves smaller than one that arrives.
    if (node.type != core::kGravityNode) continue;
    double largest_in = 0;
    const Item* largest = nullptr;
    for (const std::string& pid : ValuesOf(node, F(NodeField::kPipesAtEndOID))) {
      const Item* in = index.Find(pid);
      if (!in || !IsPipe(*in) || !in->whole) continue;
      double rise = crossing::RiseInLevelUnits(in->record, units);
      if (rise > largest_in) largest_in = rise, largest = in;
    }
    for (const std::string& pid :
         ValuesOf(node, F(NodeField::kPipesAtStartOID))) {
      const Item* out = index.Find(pid);
      if (!largest || !out || !IsPipe(*out) || !out->whole) continue;
      double rise = crossing::RiseInLevelUnits(out->record, units);
      if (rise < largest_in)
        Warn(report, "smaller-downstream", {RefOf(*largest), RefOf(*out)},
             Describe(*largest) + " flows at " + node.label + " into " +
                 Describe(*out) + ", which is smaller.")
            .values = {{"upstream rise", Shown(largest_in)},
                       {"downstream rise", Shown(rise)}};
    }
  }

  // A node on a pipe of its network that is not one of the pipe's ends.
  for (const auto& [pid, pipe] : index.items()) {
    if (!IsPipe(pipe) || !pipe.whole ||
        pipe.entity->Kind() != host::EntityKind::kLwPolyline)
      continue;
    std::vector<double> xy =
        host::As<host::LwPolyline>(*pipe.entity).Coordinates();
    host::BoundingBox box = pipe.entity->GetBoundingBox();
    const Item* ends[] = {EndNode(index, pipe, true), EndNode(index, pipe, false)};
    for (const auto& [nid, node] : index.items()) {
      if (!IsNode(node) || node.network != pipe.network ||
          node.entity->Kind() != host::EntityKind::kBlockReference ||
          &node == ends[0] || &node == ends[1])
        continue;
      host::Point3 p =
          host::As<host::BlockReference>(*node.entity).InsertionPoint();
      if (p.x < box.min.x - kOnPipeTolerance ||
          p.x > box.max.x + kOnPipeTolerance ||
          p.y < box.min.y - kOnPipeTolerance || p.y > box.max.y + kOnPipeTolerance)
        continue;
      if (DistanceToLine(xy, p.x, p.y) <= kOnPipeTolerance)
        Warn(report, "node-on-pipe", {RefOf(node), RefOf(pipe)},
             Describe(node) + " lies on " + Describe(pipe) +
                 " without being connected to it.");
    }
  }
}

}  // namespace kestrana::check
