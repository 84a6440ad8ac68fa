#include "viewstyle/declutter.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <utility>

#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "core/references.h"
#include "crossing/crossing.h"
#include "host/host.h"
#include "viewstyle/annotation_record.h"
#include "viewstyle/view_style.h"

namespace kestrana::viewstyle {

using core::General;
using core::PipeField;

namespace {

constexpr double kSlideStep = 1.0;    // along the pipe, drawing units
constexpr double kSlideMargin = 5.0;  // kept from the pipe's ends
constexpr double kGap = 1.5;          // kept around a text box
// A line through a text still reads; texts over texts do not.
constexpr int kLineThroughText = 1;
constexpr int kTextOverText = 2;

bool SegmentTouchesBox(double ax, double ay, double bx, double by,
                       const host::Box2& box) {
  // Liang-Barsky: clip the segment's parameter range to the box.
  double t0 = 0, t1 = 1;
  const double dx = bx - ax, dy = by - ay;
  const double p[4] = {-dx, dx, -dy, dy};
  const double q[4] = {ax - box.min_x, box.max_x - ax, ay - box.min_y,
                       box.max_y - ay};
  for (int i = 0; i < 4; ++i) {
    if (p[i] == 0) {
      if (q[i] < 0) return false;
      continue;
    }
    const double t = q[i] / p[i];
    if (p[i] < 0)
      t0 = std::max(t0, t);
    else
      t1 = std::min(t1, t);
    if (t0 > t1) return false;
  }
  return true;
}

host::Box2 BoxOf(const host::Entity& entity, double gap = 0) {
  const host::BoundingBox b = entity.GetBoundingBox();
  host::Box2 box;
  box.Add(b.min.x - gap, b.min.y - gap);
  box.Add(b.max.x + gap, b.max.y + gap);
  return box;
}

host::BlockReference* Linked(host::Document& document, const std::string& ref) {
  std::vector<std::string> ids = core::ReferenceValues(ref);
  return ids.empty() ? nullptr
                     : &host::As<host::BlockReference>(
                           core::EntityFromIdText(document, ids.front()));
}

struct PipeAnnotation {
  host::LwPolyline* pipe;
  host::BlockReference* annotation;
  host::BlockReference* arrow;  // may be null
};

// What a pipe annotation must keep clear of: the lines of the pipes and
// crossing leaders, and the other texts.
struct Obstacles {
  std::vector<std::pair<host::Entity*, std::vector<double>>> lines;
  std::vector<host::Entity*> texts;
};

int Conflicts(const PipeAnnotation& a, const Obstacles& obstacles) {
  const host::Box2 box = BoxOf(*a.annotation, kGap);
  int conflicts = 0;
  for (const auto& [entity, xy] : obstacles.lines) {
    if (entity == a.pipe) continue;
    for (size_t i = 0; i + 3 < xy.size(); i += 2)
      if (SegmentTouchesBox(xy[i], xy[i + 1], xy[i + 2], xy[i + 3], box)) {
        conflicts += kLineThroughText;
        break;
      }
  }
  for (host::Entity* text : obstacles.texts)
    if (text != a.annotation && box.Overlaps(BoxOf(*text)))
      conflicts += kTextOverText;
  return conflicts;
}

// The point at a station and the text direction of its segment.
AnnoAnchor AnchorAt(const std::vector<double>& xy, double station,
                    double correction) {
  double walked = 0;
  for (size_t i = 0; i + 3 < xy.size(); i += 2) {
    const double length = std::hypot(xy[i + 2] - xy[i], xy[i + 3] - xy[i + 1]);
    if (walked + length >= station || i + 4 >= xy.size()) {
      const double f = length > 0 ? (station - walked) / length : 0;
      return {
          xy[i] + (xy[i + 2] - xy[i]) * f,
          xy[i + 1] + (xy[i + 3] - xy[i + 1]) * f,
          ViewStyle::GetTextRotation(xy[i], xy[i + 1], xy[i + 2], xy[i + 3],
                                     correction),
          ViewStyle::GetArrowRotation(xy[i], xy[i + 1], xy[i + 2], xy[i + 3])};
    }
    walked += length;
  }
  return {};
}

// Carries the annotation (and arrow) from one anchor to another, turned to
// the new segment's direction.
void Carry(const PipeAnnotation& a, const AnnoAnchor& from,
           const AnnoAnchor& to) {
  const host::Point3 p{from.x, from.y, 0}, q{to.x, to.y, 0};
  a.annotation->Rotate(p, to.text_rotation - from.text_rotation);
  a.annotation->Move(p, q);
  if (a.arrow != nullptr) {
    a.arrow->Rotate(p, to.arrow_rotation - from.arrow_rotation);
    a.arrow->Move(p, q);
  }
}

Obstacles ObstaclesOf(host::Document& document,
                      const std::vector<std::string>& networks,
                      std::vector<PipeAnnotation>& annotations) {
  Obstacles obstacles;
  for (const std::string& network : networks)
    for (host::Entity* e :
         General::GetNetworkSet(document, network,
                                core::network_set::kElementsAndBlocks)
             .Entities()) {
      if (auto* pipe = dynamic_cast<host::LwPolyline*>(e)) {
        obstacles.lines.push_back({pipe, pipe->Coordinates()});
        core::Record r = core::Record::ReadRequired(*pipe);
        if (host::BlockReference* annotation =
                Linked(document, r.Text(PipeField::kAnnotationOIDRef)))
          annotations.push_back(
              {pipe, annotation,
               Linked(document, r.Text(PipeField::kArrowOIDRef))});
      } else if (General::GetElementType(*e) == kAnnotation) {
        obstacles.texts.push_back(e);
      }
    }
  host::SelectionSet& leaders =
      General::InitializeSelectionSet(document, "SetCrossingLeaders");
  leaders.Select(host::SelectMode::kAll, {}, {},
                 {{core::code::kLayer, core::kCrossingLinesLayer}});
  for (host::Entity* e : leaders.Entities())
    if (auto* line = dynamic_cast<host::Line*>(e))
      obstacles.lines.push_back({line,
                                 {line->StartPoint().x, line->StartPoint().y,
                                  line->EndPoint().x, line->EndPoint().y}});
  for (host::Entity* c :
       crossing::Crossing::GetExistingCrossingPointsSet(document, "")
           .Entities())
    obstacles.texts.push_back(c);
  return obstacles;
}

}  // namespace

void MoveAnnotationsClear(host::Document& document,
                          const std::vector<std::string>& networks) {
  constexpr int kRounds = 2;
  std::vector<PipeAnnotation> annotations;
  const Obstacles obstacles = ObstaclesOf(document, networks, annotations);
  const double correction = General::GetCorrectionAngleForCS(document);
  std::vector<AnnoAnchor> at;
  for (const PipeAnnotation& a : annotations)
    at.push_back(
        ViewStyle::GetAnnoXYTheta(*a.pipe, core::kPipeKind, correction));
  for (int round = 0; round < kRounds; ++round) {
    for (size_t i = 0; i < annotations.size(); ++i) {
      const PipeAnnotation& a = annotations[i];
      const std::vector<double> xy = a.pipe->Coordinates();
      const double length = a.pipe->Length();
      std::vector<double> stations = {length / 2};
      for (int k = 1; k * kSlideStep < length / 2 - kSlideMargin; ++k) {
        stations.push_back(length / 2 - k * kSlideStep);
        stations.push_back(length / 2 + k * kSlideStep);
      }
      int best = INT_MAX;
      AnnoAnchor chosen = at[i];
      for (double station : stations) {
        const AnnoAnchor next = AnchorAt(xy, station, correction);
        Carry(a, at[i], next);
        at[i] = next;
        if (const int conflicts = Conflicts(a, obstacles); conflicts < best) {
          best = conflicts;
          chosen = next;
          if (best == 0) break;
        }
      }
      Carry(a, at[i], chosen);
      at[i] = chosen;
    }
  }
}

}  // namespace kestrana::viewstyle
