#include "editing/flow_direction.h"

#include <functional>
#include <map>
#include <queue>
#include <utility>
#include <vector>

#include "core/filters.h"
#include "core/general.h"
#include "core/record.h"
#include "core/text.h"
#include "editing/editing.h"
#include "host/host.h"

namespace kestrana::editing {

namespace {

using Point = std::pair<double, double>;

struct DrawnLine {
  host::Entity* entity;
  Point start, end;
  double length;
};

// Ends meet when they agree to 5 decimal places, as conversion matches them.
Point Key(double x, double y) {
  return {core::RoundHalfEven(x, 5), core::RoundHalfEven(y, 5)};
}

std::vector<DrawnLine> DrawnLines(host::Document& document,
                                  std::string_view layer) {
  host::SelectionSet& set =
      core::General::InitializeSelectionSet(document, "SetDrawnLines");
  set.Select(host::SelectMode::kAll, {}, {},
             {{core::code::kLayer, core::EscapeWildcards(layer)}});
  std::vector<DrawnLine> lines;
  for (host::Entity* entity : set.Entities()) {
    if (auto* line = dynamic_cast<host::Line*>(entity)) {
      lines.push_back({entity, Key(line->StartPoint().x, line->StartPoint().y),
                       Key(line->EndPoint().x, line->EndPoint().y),
                       line->Length()});
    } else if (auto* pl = dynamic_cast<host::LwPolyline*>(entity)) {
      const std::vector<double> xy = pl->Coordinates();
      lines.push_back({entity, Key(xy[0], xy[1]),
                       Key(xy[xy.size() - 2], xy[xy.size() - 1]),
                       pl->Length()});
    }
  }
  return lines;
}

void Reverse(host::Entity& entity) {
  if (auto* line = dynamic_cast<host::Line*>(&entity)) {
    const host::Point3 start = line->StartPoint();
    line->SetStartPoint(line->EndPoint());
    line->SetEndPoint(start);
  } else {
    auto& pl = host::As<host::LwPolyline>(entity);
    pl.SetCoordinates(Editing::ReversePolylineCoordinates(pl.Coordinates()));
  }
}

// The distance of every line end from `outlet` along the lines.
std::map<Point, double> DistancesFrom(
    const Point& outlet, const std::vector<DrawnLine>& lines,
    const std::map<Point, std::vector<size_t>>& at) {
  std::map<Point, double> distance{{outlet, 0}};
  using Item = std::pair<double, Point>;
  std::priority_queue<Item, std::vector<Item>, std::greater<>> queue;
  queue.push({0, outlet});
  while (!queue.empty()) {
    auto [d, point] = queue.top();
    queue.pop();
    if (d > distance[point]) continue;
    for (size_t i : at.at(point)) {
      const Point other =
          lines[i].start == point ? lines[i].end : lines[i].start;
      const double through = d + lines[i].length;
      if (!distance.contains(other) || through < distance[other]) {
        distance[other] = through;
        queue.push({through, other});
      }
    }
  }
  return distance;
}

}  // namespace

void OrientTowardsOutlet(host::Document& document, const host::Surface& ground,
                         std::string_view layer) {
  std::vector<DrawnLine> lines = DrawnLines(document, layer);
  std::map<Point, std::vector<size_t>> at;
  for (size_t i = 0; i < lines.size(); ++i) {
    at[lines[i].start].push_back(i);
    at[lines[i].end].push_back(i);
  }
  if (at.empty()) return;
  Point outlet = at.begin()->first;
  for (const auto& [point, _] : at)
    if (ground.FindElevationAtXY(point.first, point.second) <
        ground.FindElevationAtXY(outlet.first, outlet.second))
      outlet = point;
  std::map<Point, double> distance = DistancesFrom(outlet, lines, at);
  for (const DrawnLine& line : lines)
    if (distance.contains(line.start) && distance.contains(line.end) &&
        distance[line.start] < distance[line.end])
      Reverse(*line.entity);
}

}  // namespace kestrana::editing
