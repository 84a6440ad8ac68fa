// What the records derive: library usage counts, crossing annotations and
// low and high points, each compared with what the pipes and nodes of the
// drawing give now.
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
#include "crossing/crossing.h"
#include "crossing/crossing_record.h"
#include "crossing/crossing_search.h"
#include "host/host.h"
#include "library/library.h"
#include "library/library_record.h"
#include "lowhigh/lowhigh_record.h"

namespace kestrana::check {

namespace {

template <class E>
int F(E field) {
  return static_cast<int>(field);
}

using core::NodeField;
using core::PipeField;
using crossing::CrossingAnnoField;

// Counts stored as reals may carry a fraction; two counts agree when they
// name the same whole number of pipes.
constexpr double kCountTolerance = 1e-9;
// Clearances are written as reals computed from the same records.
constexpr double kClearanceTolerance = 1e-6;

std::vector<std::string> ValuesOf(const Item& item, int field) {
  return ReferenceList(FieldText(item.record, field))
      .value_or(std::vector<std::string>());
}

void CompareCounts(Reporter& report, const Item& marker,
                   const std::string& what, const std::string& names_text,
                   const std::string& counts_text,
                   const std::map<std::string, int>& used) {
  std::vector<std::string> names = core::ListEntries(names_text);
  std::vector<std::string> counts = core::ListEntries(counts_text);
  if (names.size() != counts.size())
    report.Add("library-form", {RefOf(marker)},
               "The " + what + " library lists " +
                   std::to_string(names.size()) + " entries but " +
                   std::to_string(counts.size()) + " usage counts.");
  std::set<std::string> listed;
  for (size_t i = 0; i < names.size(); ++i) {
    listed.insert(names[i]);
    auto it = used.find(names[i]);
    int actual = it == used.end() ? 0 : it->second;
    std::string stored = i < counts.size() ? counts[i] : "";
    std::optional<double> value = SafeNumber(stored);
    if (value && std::abs(*value - actual) < kCountTolerance) continue;
    report
        .Add("library-count", {RefOf(marker)},
             "The " + what + " library counts '" + stored + "' uses of " +
                 names[i] + ", but " + std::to_string(actual) +
                 " pipes use it.")
        .values = {{"entry", names[i]},
                   {"stored", stored},
                   {"actual", std::to_string(actual)}};
  }
  for (const auto& [name, n] : used)
    if (!listed.count(name))
      report
          .Add("library-count", {RefOf(marker)},
               std::to_string(n) + " pipes use " + name + ", which the " +
                   what + " library does not list.")
          .values = {{"entry", name},
                     {"stored", ""},
                     {"actual", std::to_string(n)}};
}

std::vector<const Item*> WholePipes(const DrawingIndex& index) {
  std::vector<const Item*> pipes;
  for (const auto& [id, item] : index.items())
    if (IsPipe(item) && item.whole) pipes.push_back(&item);
  return pipes;
}

}  // namespace

void CheckLibraryCounts(const DrawingIndex& index, Reporter& report) {
  std::map<std::string, int> materials, circular, box;
  for (const Item* pipe : WholePipes(index)) {
    ++materials[FieldText(pipe->record, F(PipeField::kMaterial))];
    library::PipeSize size = library::PipeSizeOf(pipe->record);
    ++(size.shape == library::kBox ? box : circular)[size.key];
  }
  const core::Record& project = *index.project();
  const Item* marker = index.Find(
      FieldText(project, F(core::ProjectField::kMaterialsLibrary)));
  using library::MaterialLibraryField;
  if (marker && marker->whole &&
      marker->type == library::kMaterialLibraryPoint)
    CompareCounts(report, *marker, "materials",
                  FieldText(marker->record, F(MaterialLibraryField::kNames)),
                  FieldText(marker->record, F(MaterialLibraryField::kCounts)),
                  materials);
  marker = index.Find(FieldText(project, F(core::ProjectField::kSizesLibrary)));
  if (!marker || !marker->whole ||
      marker->type != library::kSectionSizeLibraryPoint)
    return;
  bool metric = index.units() == core::kMetric;
  if (!metric && index.units() != core::kUS) return;  // reported already
  const library::SizeListFields circular_list =
      metric ? library::kMetricCircularList : library::kUsCircularList;
  const library::SizeListFields box_list =
      metric ? library::kMetricBoxList : library::kUsBoxList;
  CompareCounts(report, *marker, "circular sizes",
                FieldText(marker->record, F(circular_list.sizes)),
                FieldText(marker->record, F(circular_list.counts)), circular);
  CompareCounts(report, *marker, "box sizes",
                FieldText(marker->record, F(box_list.sizes)),
                FieldText(marker->record, F(box_list.counts)), box);
}

void CheckCrossings(const DrawingIndex& index, Reporter& report, bool design) {
  host::Document& document = index.document();
  // Every crossing the plan holds now, by its pair of pipes.
  std::map<std::pair<std::string, std::string>, types::CrossPoint> expected;
  try {
    host::SelectionSet& pipes =
        core::General::InitializeSelectionSet(document, "CheckPipesSet");
    std::vector<host::Entity*> entities;
    for (const Item* pipe : WholePipes(index))
      if (index.FindNetwork(pipe->network) &&
          pipe->entity->Kind() == host::EntityKind::kLwPolyline)
        entities.push_back(pipe->entity);
    pipes.AddItems(entities);
    if (index.networks().size() > 1 && pipes.Count() > 0) {
      for (const types::CrossPoint& p :
           crossing::Crossing::GetCrossingPointsArrayForSetOfPipes(document,
                                                                   pipes)) {
        if (p.Pipe1Label.empty() && p.Pipe1OID.empty()) continue;
        auto key = std::minmax(p.Pipe1OID, p.Pipe2OID);
        expected.emplace(std::pair(key.first, key.second), p);
      }
    }
  } catch (const std::exception& e) {
    report.Add("crossings-not-checked", {},
               std::string("The crossings could not be worked out: ") +
                   e.what());
    return;
  }

  std::string threshold_text = core::Split(FieldText(
      *index.project(), F(core::ProjectField::kCrossingSettings)))[0];
  std::optional<double> threshold = SafeNumber(threshold_text);

  std::map<std::pair<std::string, std::string>, const Item*> annotated;
  for (host::ObjectId id : index.OfType(crossing::kCrossingPointAnnotation)) {
    const Item& anno = *index.Find(id);
    if (!anno.whole) continue;
    std::vector<std::string> id1 =
        ValuesOf(anno, F(CrossingAnnoField::kPipe1OIDRef));
    std::vector<std::string> id2 =
        ValuesOf(anno, F(CrossingAnnoField::kPipe2OIDRef));
    if (id1.size() != 1 || id2.size() != 1) continue;  // reported as links
    const Item* pipe1 = index.Find(id1[0]);
    const Item* pipe2 = index.Find(id2[0]);
    if (!pipe1 || !pipe2 || !IsPipe(*pipe1) || !IsPipe(*pipe2) ||
        !pipe1->whole || !pipe2->whole)
      continue;
    auto key = std::minmax(id1[0], id2[0]);
    std::pair pair_key(key.first, key.second);
    if (!expected.count(pair_key)) {
      report.Add("crossing-extra", {RefOf(anno), RefOf(*pipe1), RefOf(*pipe2)},
                 "There is a crossing annotation for " + Describe(*pipe1) +
                     " and " + Describe(*pipe2) +
                     ", but the two pipes do not cross.");
      continue;
    }
    auto [it, first] = annotated.emplace(pair_key, &anno);
    if (!first) {
      report.Add("crossing-duplicated",
                 {RefOf(anno), RefOf(*it->second), RefOf(*pipe1), RefOf(*pipe2)},
                 "The crossing of " + Describe(*pipe1) + " and " +
                     Describe(*pipe2) + " is annotated twice.");
      continue;
    }
    // The clearance at the annotated point from the levels of now.
    std::vector<std::string> point =
        core::Split(FieldText(anno.record, F(CrossingAnnoField::kPoint)));
    std::optional<double> e = SafeNumber(point[0]);
    std::optional<double> n =
        point.size() == 2 ? SafeNumber(point[1]) : std::nullopt;
    if (!e || !n) {
      report.Add("crossing-point", {RefOf(anno)},
                 Describe(anno) + " holds no crossing point.");
      continue;
    }
    host::Point3 at{*e, *n, 0};
    if (pipe1->entity->Kind() != host::EntityKind::kLwPolyline ||
        pipe2->entity->Kind() != host::EntityKind::kLwPolyline)
      continue;
    // On both pipes by the measure stations are taken with: a split keeps
    // the point of its crossings while the picked split point may lie a
    // hair beside the old line.
    auto on = [&](const Item& pipe) {
      return core::PointPositionOnVertexList(
                 host::As<host::LwPolyline>(*pipe.entity).Coordinates(), at.x,
                 at.y) != 0;
    };
    if (!on(*pipe1) || !on(*pipe2)) {
      report.Add("crossing-point", {RefOf(anno), RefOf(*pipe1), RefOf(*pipe2)},
                 Describe(anno) + " stands at " + point[0] + ", " + point[1] +
                     ", which is not where its pipes cross.");
      continue;
    }
    std::string units = index.units();
    double clearance;
    try {
      auto& line1 = host::As<host::LwPolyline>(*pipe1->entity);
      auto& line2 = host::As<host::LwPolyline>(*pipe2->entity);
      double invert1 = crossing::InvertAt(
          pipe1->record, crossing::StationRatio(line1, pipe1->record, at));
      double invert2 = crossing::InvertAt(
          pipe2->record, crossing::StationRatio(line2, pipe2->record, at));
      clearance = crossing::Clearance(
          invert1, crossing::RiseInLevelUnits(pipe1->record, units), invert2,
          crossing::RiseInLevelUnits(pipe2->record, units));
    } catch (const std::exception& error) {
      report.Add("crossings-not-checked", {RefOf(anno)},
                 "The clearance of " + Describe(anno) +
                     " could not be worked out: " + error.what());
      continue;
    }
    double stored = core::NumericValue(anno.record.Value(CrossingAnnoField::kClearance));
    if (std::abs(stored - clearance) > kClearanceTolerance)
      report
          .Add("crossing-clearance", {RefOf(anno), RefOf(*pipe1), RefOf(*pipe2)},
               Describe(anno) + " shows a clearance of " +
                   core::GeneralText(stored) + ", but the levels give " +
                   core::GeneralText(clearance) + ".")
          .values = {{"stored", core::GeneralText(stored)},
                     {"expected", core::GeneralText(clearance)}};
    if (design && threshold && *threshold >= 0 && clearance < *threshold)
      report
          .Add("crossing-clearance-low",
               {RefOf(*pipe1), RefOf(*pipe2)},
               "The clearance between " + Describe(*pipe1) + " and " +
                   Describe(*pipe2) + " is " + core::GeneralText(clearance) +
                   ", below the crossing threshold " + threshold_text + ".",
               Severity::kWarning)
          .values = {{"clearance", core::GeneralText(clearance)},
                     {"threshold", threshold_text}};
  }
  for (const auto& [key, p] : expected) {
    if (annotated.count(key)) continue;
    const Item* pipe1 = index.Find(key.first);
    const Item* pipe2 = index.Find(key.second);
    report
        .Add("crossing-missing", {RefOf(*pipe1), RefOf(*pipe2)},
             Describe(*pipe1) + " and " + Describe(*pipe2) + " cross at " +
                 core::GeneralText(p.Easting) + ", " +
                 core::GeneralText(p.Northing) +
                 ", but no crossing annotation shows it.")
        .values = {{"x", core::GeneralText(p.Easting)},
                   {"y", core::GeneralText(p.Northing)}};
  }
}

void CheckLowHigh(const DrawingIndex& index, Reporter& report) {
  // The node at the far end of each pipe listed at a node, or null when a
  // link is broken (reported by the link checks).
  auto level = [](const Item& node) {
    return core::RoundHalfEven(
        core::NumericValue(node.record.Value(NodeField::kSumpLevel)), 7);
  };
  for (const auto& [id, node] : index.items()) {
    if (!IsNode(node) || !node.whole) continue;
    const Network* network = index.FindNetwork(node.network);
    std::vector<std::string> markers =
        ValuesOf(node, F(NodeField::kLowHighOIDRef));
    const Item* marker = markers.size() == 1 ? index.Find(markers[0]) : nullptr;
    if (marker && marker->type != lowhigh::kLowHighPoint) marker = nullptr;
    std::string found = "none";
    if (marker && marker->entity->Kind() == host::EntityKind::kBlockReference) {
      std::string block = host::As<host::BlockReference>(*marker->entity).Name();
      found = block == core::kLowPointBlock    ? "low"
              : block == core::kHighPointBlock ? "high"
                                               : "none";
    }
    std::string wanted = "none";
    bool known = true;
    if (network && network->type == core::kPressure) {
      double s = level(node);
      double lowest = 1e9, highest = -1e9;
      int neighbours = 0;
      for (bool start : {true, false}) {
        for (const std::string& pipe_id :
             ValuesOf(node, F(start ? NodeField::kPipesAtStartOID
                                    : NodeField::kPipesAtEndOID))) {
          const Item* pipe = index.Find(pipe_id);
          std::vector<std::string> far =
              pipe && IsPipe(*pipe) && pipe->whole
                  ? ValuesOf(*pipe, F(start ? PipeField::kEndNodeOID
                                            : PipeField::kStartNodeOID))
                  : std::vector<std::string>();
          const Item* other = far.size() == 1 ? index.Find(far[0]) : nullptr;
          if (!other || !IsNode(*other) || !other->whole) {
            known = false;
            continue;
          }
          double n = level(*other);
          lowest = std::min(lowest, n);
          highest = std::max(highest, n);
          ++neighbours;
        }
      }
      if (neighbours > 0 && s <= lowest) wanted = "low";
      else if (neighbours > 0 && s >= highest) wanted = "high";
    }
    if (!known || wanted == found) continue;
    std::string code = found == "none"    ? "lowhigh-missing"
                       : wanted == "none" ? "lowhigh-extra"
                                          : "lowhigh-wrong";
    report
        .Add(code, {RefOf(node)},
             Describe(node) + (wanted == "none"
                                   ? " is marked as a " + found +
                                         " point, but it is none."
                                   : " is a " + wanted + " point, but " +
                                         (found == "none"
                                              ? std::string("has no marker.")
                                              : "is marked as a " + found +
                                                    " point.")))
        .values = {{"expected", wanted}, {"found", found}};
  }
}

}  // namespace kestrana::check
