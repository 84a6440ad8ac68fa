// kestrana demo: the bundled town example from drawn lines to a designed
// network. Every step is one the commands offer, done on one open drawing.
#include "cli/demo.h"

#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <filesystem>
#include <functional>
#include <limits>
#include <map>
#include <ostream>
#include <queue>
#include <sstream>

#include "cli/command.h"
#include "cli/crossings.h"
#include "cli/editing.h"
#include "cli/lowhigh.h"
#include "cli/project.h"
#include "cli/session.h"
#include "core/filters.h"
#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "core/references.h"
#include "core/text.h"
#include "crossing/crossing.h"
#include "dxf/io.h"
#include "editing/editing.h"
#include "host/host.h"
#include "memhost/document.h"
#include "memhost/text_metrics.h"
#include "render/picture.h"
#include "render/svg.h"
#include "viewstyle/annotation_record.h"
#include "viewstyle/view_style.h"

namespace kestrana::cli {

namespace fs = std::filesystem;
using core::General;
using core::NodeField;
using core::PipeField;

namespace {

constexpr char kExampleDrawing[] = "town.dxf";
constexpr char kExampleSurface[] = "town-surface.xml";
constexpr char kSewer[] = "Sewer";
constexpr char kWater[] = "Water";
constexpr char kSewerLayer[] = "Sewer lines";
constexpr char kWaterLayer[] = "Water lines";
constexpr char kDrawingOut[] = "town-network.dxf";
constexpr char kPictureOut[] = "town-network.png";
constexpr char kReportOut[] = "report.txt";
constexpr int16_t kLayerCode = 8;

// The demo's design rules, in metres.
constexpr double kSewerCover = 1.8;       // ground to the top of a sewer
constexpr double kSewerMinSlope = 0.005;  // 1 in 200
constexpr double kWaterCover = 1.0;       // ground to the top of a main
constexpr double kMillimetres = 1000;

// Sewer sizes by the number of pipes that drain through a pipe.
struct SewerSize {
  int up_to_pipes;
  const char* size;
  const char* material;
};
constexpr SewerSize kSewerSizes[] = {
    {3, "200", "PVC"}, {7, "300", "Concrete"}, {INT_MAX, "400", "Concrete"}};
// Water mains: the two longest are the trunk mains.
constexpr int kTrunkMains = 2;
constexpr SewerSize kTrunkMain = {0, "200", "Ductile Iron"};
constexpr SewerSize kDistributionMain = {0, "150", "PE"};

std::string Fixed(double value, int places = 2) {
  return core::FormatNumber(core::RoundHalfEven(value, places),
                            places == 2 ? "0.00" : "0.000");
}

// --- The drawn sewer lines, turned to flow towards the outlet ---------------

struct DrawnLine {
  host::Entity* entity;
  std::pair<double, double> start, end;
  double length;
};

std::pair<double, double> Key(double x, double y) {
  return {core::RoundHalfEven(x, 5), core::RoundHalfEven(y, 5)};
}

std::vector<DrawnLine> DrawnLines(memhost::MemDocument& document,
                                  const std::string& layer) {
  std::vector<DrawnLine> lines;
  for (memhost::MemEntity* e :
       document.SelectAll({{kLayerCode, core::EscapeWildcards(layer)}})) {
    host::Entity& entity = e->AsHostEntity();
    if (auto* line = dynamic_cast<host::Line*>(&entity)) {
      lines.push_back({&entity, Key(line->StartPoint().x, line->StartPoint().y),
                       Key(line->EndPoint().x, line->EndPoint().y),
                       line->Length()});
    } else if (auto* pl = dynamic_cast<host::LwPolyline*>(&entity)) {
      const std::vector<double> xy = pl->Coordinates();
      lines.push_back({&entity, Key(xy[0], xy[1]),
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
    pl.SetCoordinates(
        editing::Editing::ReversePolylineCoordinates(pl.Coordinates()));
  }
}

// Sewers are drawn in the direction of flow. The outlet is the line end on
// the lowest ground; each line is turned so that its start is the end
// farther from the outlet along the lines.
void OrientTowardsOutlet(memhost::MemDocument& document,
                         const host::Surface& ground,
                         const std::string& layer) {
  std::vector<DrawnLine> lines = DrawnLines(document, layer);
  using Point = std::pair<double, double>;
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
  std::map<Point, double> distance{{outlet, 0}};
  using Item = std::pair<double, Point>;
  std::priority_queue<Item, std::vector<Item>, std::greater<>> queue;
  queue.push({0, outlet});
  while (!queue.empty()) {
    auto [d, point] = queue.top();
    queue.pop();
    if (d > distance[point]) continue;
    for (size_t i : at[point]) {
      const Point other =
          lines[i].start == point ? lines[i].end : lines[i].start;
      const double through = d + lines[i].length;
      if (!distance.contains(other) || through < distance[other]) {
        distance[other] = through;
        queue.push({through, other});
      }
    }
  }
  for (const DrawnLine& line : lines)
    if (distance.contains(line.start) && distance.contains(line.end) &&
        distance[line.start] < distance[line.end])
      Reverse(*line.entity);
}

// --- A converted network as a graph ------------------------------------------

struct Graph {
  struct Node {
    host::Entity* entity;
    std::string label;
    double ground;
    std::vector<size_t> in, out;  // pipes ending and starting here
  };
  struct Pipe {
    host::Entity* entity;
    std::string label;
    size_t from, to;
    double length;
  };
  std::vector<Node> nodes;
  std::vector<Pipe> pipes;
};

Graph ReadGraph(host::Document& document, const std::string& network) {
  Graph graph;
  std::map<std::string, size_t> node_at;
  for (host::Entity* node :
       General::GetNetworkSet(document, network, 2).Entities()) {
    core::Record record = core::Record::ReadRequired(*node);
    node_at[core::IdText(node->ObjectID())] = graph.nodes.size();
    graph.nodes.push_back({node,
                           General::EntityLabelFromCombined(
                               record.Text(NodeField::kCombinedLabel)),
                           record.Number(NodeField::kGroundLevel),
                           {},
                           {}});
  }
  for (host::Entity* pipe :
       General::GetNetworkSet(document, network, 1).Entities()) {
    core::Record record = core::Record::ReadRequired(*pipe);
    const size_t from = node_at.at(
        core::ReferenceValues(record.Text(PipeField::kStartNodeOID)).at(0));
    const size_t to = node_at.at(
        core::ReferenceValues(record.Text(PipeField::kEndNodeOID)).at(0));
    graph.nodes[from].out.push_back(graph.pipes.size());
    graph.nodes[to].in.push_back(graph.pipes.size());
    graph.pipes.push_back({pipe,
                           General::EntityLabelFromCombined(
                               record.Text(PipeField::kCombinedLabel)),
                           from, to,
                           host::As<host::LwPolyline>(*pipe).Length()});
  }
  return graph;
}

// Nodes with every upstream node before them.
std::vector<size_t> UpstreamFirst(const Graph& graph) {
  std::vector<size_t> waiting(graph.nodes.size()), order;
  for (size_t n = 0; n < graph.nodes.size(); ++n) {
    waiting[n] = graph.nodes[n].in.size();
    if (waiting[n] == 0) order.push_back(n);
  }
  for (size_t i = 0; i < order.size(); ++i)
    for (size_t p : graph.nodes[order[i]].out)
      if (--waiting[graph.pipes[p].to] == 0) order.push_back(graph.pipes[p].to);
  if (order.size() != graph.nodes.size())
    throw CommandError("the sewer of the example runs in a circle");
  return order;
}

// Sizes by the pipes draining through each pipe, then the sumps: the tops
// of the pipes lie at least the cover below ground and fall at least the
// minimum slope towards the outlet; with soffits matched at every manhole
// each pipe's invert follows from its manholes' sumps.
void DesignSewer(memhost::MemDocument& document) {
  const Graph graph = ReadGraph(document, kSewer);
  std::vector<int> draining(graph.pipes.size(), 0);
  std::function<int(size_t)> count = [&](size_t p) {
    if (draining[p] == 0) {
      draining[p] = 1;
      for (size_t q : graph.nodes[graph.pipes[p].from].in)
        draining[p] += count(q);
    }
    return draining[p];
  };
  std::vector<double> rise(graph.pipes.size());
  for (size_t p = 0; p < graph.pipes.size(); ++p) {
    const SewerSize* size = kSewerSizes;
    while (count(p) > size->up_to_pipes) ++size;
    SetPipeInDocument(document, {.network = kSewer,
                                 .label = graph.pipes[p].label,
                                 .size = size->size,
                                 .material = size->material});
    rise[p] = core::NumericValue(size->size) / kMillimetres;
  }
  std::vector<double> soffit(graph.nodes.size());
  for (size_t n : UpstreamFirst(graph)) {
    soffit[n] = graph.nodes[n].ground - kSewerCover;
    for (size_t p : graph.nodes[n].in)
      soffit[n] =
          std::min(soffit[n], soffit[graph.pipes[p].from] -
                                  kSewerMinSlope * graph.pipes[p].length);
  }
  for (size_t n = 0; n < graph.nodes.size(); ++n) {
    double tallest = 0;
    for (const std::vector<size_t>* pipes :
         {&graph.nodes[n].in, &graph.nodes[n].out})
      for (size_t p : *pipes) tallest = std::max(tallest, rise[p]);
    SetNodeInDocument(document, {.network = kSewer,
                                 .label = graph.nodes[n].label,
                                 .sump = soffit[n] - tallest,
                                 .matching = editing::kMatchSoffits});
  }
}

// The longest mains are trunk mains; every main's top lies the cover below
// ground at its nodes, centre lines matched.
void DesignWater(memhost::MemDocument& document) {
  const Graph graph = ReadGraph(document, kWater);
  std::vector<size_t> by_length(graph.pipes.size());
  for (size_t p = 0; p < by_length.size(); ++p) by_length[p] = p;
  std::sort(by_length.begin(), by_length.end(), [&](size_t a, size_t b) {
    return graph.pipes[a].length > graph.pipes[b].length;
  });
  std::vector<double> rise(graph.pipes.size());
  for (size_t rank = 0; rank < by_length.size(); ++rank) {
    const size_t p = by_length[rank];
    const SewerSize& size = rank < kTrunkMains ? kTrunkMain : kDistributionMain;
    SetPipeInDocument(document, {.network = kWater,
                                 .label = graph.pipes[p].label,
                                 .size = size.size,
                                 .material = size.material});
    rise[p] = core::NumericValue(size.size) / kMillimetres;
  }
  for (const Graph::Node& node : graph.nodes) {
    double tallest = 0;
    for (const std::vector<size_t>* pipes : {&node.in, &node.out})
      for (size_t p : *pipes) tallest = std::max(tallest, rise[p]);
    SetNodeInDocument(document, {.network = kWater,
                                 .label = node.label,
                                 .sump = node.ground - kWaterCover - tallest,
                                 .matching = editing::kMatchCenterlines});
  }
}

// --- Annotations moved clear of each other, as a user drags them ------------

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
viewstyle::AnnoAnchor AnchorAt(const std::vector<double>& xy, double station,
                               double correction) {
  double walked = 0;
  for (size_t i = 0; i + 3 < xy.size(); i += 2) {
    const double length = std::hypot(xy[i + 2] - xy[i], xy[i + 3] - xy[i + 1]);
    if (walked + length >= station || i + 4 >= xy.size()) {
      const double f = length > 0 ? (station - walked) / length : 0;
      return {xy[i] + (xy[i + 2] - xy[i]) * f,
              xy[i + 1] + (xy[i + 3] - xy[i + 1]) * f,
              viewstyle::ViewStyle::GetTextRotation(xy[i], xy[i + 1], xy[i + 2],
                                                    xy[i + 3], correction),
              viewstyle::ViewStyle::GetArrowRotation(xy[i], xy[i + 1],
                                                     xy[i + 2], xy[i + 3])};
    }
    walked += length;
  }
  return {};
}

// Carries the annotation (and arrow) from one anchor to another, turned to
// the new segment's direction.
void Carry(const PipeAnnotation& a, const viewstyle::AnnoAnchor& from,
           const viewstyle::AnnoAnchor& to) {
  const host::Point3 p{from.x, from.y, 0}, q{to.x, to.y, 0};
  a.annotation->Rotate(p, to.text_rotation - from.text_rotation);
  a.annotation->Move(p, q);
  if (a.arrow != nullptr) {
    a.arrow->Rotate(p, to.arrow_rotation - from.arrow_rotation);
    a.arrow->Move(p, q);
  }
}

Obstacles ObstaclesOf(memhost::MemDocument& document,
                      const std::vector<std::string>& networks,
                      std::vector<PipeAnnotation>& annotations) {
  Obstacles obstacles;
  for (const std::string& network : networks)
    for (host::Entity* e :
         General::GetNetworkSet(document, network, 0).Entities()) {
      if (auto* pipe = dynamic_cast<host::LwPolyline*>(e)) {
        obstacles.lines.push_back({pipe, pipe->Coordinates()});
        core::Record r = core::Record::ReadRequired(*pipe);
        if (host::BlockReference* annotation =
                Linked(document, r.Text(PipeField::kAnnotationOIDRef)))
          annotations.push_back(
              {pipe, annotation,
               Linked(document, r.Text(PipeField::kArrowOIDRef))});
      } else if (General::GetElementType(*e) == viewstyle::kAnnotation) {
        obstacles.texts.push_back(e);
      }
    }
  for (memhost::MemEntity* e :
       document.SelectAll({{kLayerCode, core::kCrossingLinesLayer}}))
    if (auto* line = dynamic_cast<host::Line*>(&e->AsHostEntity()))
      obstacles.lines.push_back({line,
                                 {line->StartPoint().x, line->StartPoint().y,
                                  line->EndPoint().x, line->EndPoint().y}});
  for (host::Entity* c :
       crossing::Crossing::GetExistingCrossingPointsSet(document, "")
           .Entities())
    obstacles.texts.push_back(c);
  return obstacles;
}

// A pipe annotation that a line runs through or that lies over another
// text slides along its pipe to the place nearest its own with the fewest
// such conflicts. A second round lets an annotation that gave way to one
// that has moved since come back.
void MoveAnnotationsClear(memhost::MemDocument& document,
                          const std::vector<std::string>& networks) {
  constexpr int kRounds = 2;
  std::vector<PipeAnnotation> annotations;
  const Obstacles obstacles = ObstaclesOf(document, networks, annotations);
  const double correction = General::GetCorrectionAngleForCS(document);
  std::vector<viewstyle::AnnoAnchor> at;
  for (const PipeAnnotation& a : annotations)
    at.push_back(viewstyle::ViewStyle::GetAnnoXYTheta(*a.pipe, core::kPipeKind,
                                                      correction));
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
      viewstyle::AnnoAnchor chosen = at[i];
      for (double station : stations) {
        const viewstyle::AnnoAnchor next = AnchorAt(xy, station, correction);
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

// --- The report --------------------------------------------------------------

void ReportNetwork(host::Document& document, const std::string& network,
                   std::ostream& out) {
  const Graph graph = ReadGraph(document, network);
  out << "\n"
      << network << " pipes (start node to end node; inverts at "
      << "start and end)\n";
  for (const Graph::Pipe& pipe : graph.pipes) {
    core::Record r = core::Record::ReadRequired(*pipe.entity);
    const double start = r.Number(PipeField::kStartInvert);
    const double end = r.Number(PipeField::kEndInvert);
    out << "  " << pipe.label << "  " << graph.nodes[pipe.from].label << " -> "
        << graph.nodes[pipe.to].label << "  "
        << memhost::DisplayText(General::BuildSectionSizeString(r)) << " "
        << r.Text(PipeField::kMaterial) << "  " << Fixed(pipe.length)
        << " m  I.L. " << Fixed(start) << " -> " << Fixed(end) << "  slope "
        << Fixed((start - end) / pipe.length * 100) << " %\n";
  }
  out << network << " nodes\n";
  for (const Graph::Node& node : graph.nodes) {
    core::Record r = core::Record::ReadRequired(*node.entity);
    const int16_t rule = r.Int16(NodeField::kMatching);
    const char* rules[] = {editing::kNoMatching, editing::kMatchCenterlines,
                           editing::kMatchSoffits, editing::kMatchInverts};
    out << "  " << node.label << "  ground " << Fixed(node.ground) << "  sump "
        << Fixed(r.Number(NodeField::kSumpLevel)) << "  depth "
        << Fixed(node.ground - r.Number(NodeField::kSumpLevel)) << "  "
        << (rule >= 0 && rule < 4 ? rules[rule] : "?") << "\n";
  }
}

std::string Report(memhost::MemDocument& document, const std::string& surface) {
  std::ostringstream out;
  out << "kestrana demo: the example town with a sewer and a water network\n"
      << "ground levels from the surface \"" << surface << "\"; sewer tops at "
      << "least " << Fixed(kSewerCover) << " m below ground falling at least "
      << Fixed(kSewerMinSlope * 100) << " % to the outlet, water mains "
      << Fixed(kWaterCover) << " m below ground\n\nNetworks\n";
  for (const NetworkInfo& n : ListNetworks(document))
    out << "  " << n.name << "  " << n.type << "  " << n.pipes << " pipes  "
        << n.nodes << " nodes\n";
  ReportNetwork(document, kSewer, out);
  ReportNetwork(document, kWater, out);
  out << "\nCrossings (invert levels at the crossing)\n";
  for (const CrossingListing& c : ListCrossings(document))
    out << "  " << c.network1 << " " << c.label1 << " "
        << memhost::DisplayText(c.size1) << " I.L. "
        << (c.invert1 ? Fixed(*c.invert1, 3) : "?") << "  x  " << c.network2
        << " " << c.label2 << " " << memhost::DisplayText(c.size2) << " I.L. "
        << (c.invert2 ? Fixed(*c.invert2, 3) : "?") << "  clearance "
        << Fixed(c.clearance, 3) << " m  at (" << core::GeneralText(c.easting)
        << ", " << core::GeneralText(c.northing) << ")\n";
  out << "\nLow and high points\n";
  for (const LowHighListing& p : ListLowHighPoints(document))
    out << "  " << p.kind << "  " << p.network << " " << p.node << "  at ("
        << core::GeneralText(p.x) << ", " << core::GeneralText(p.y) << ")\n";
  return out.str();
}

std::string ProgramDir() {
  std::error_code error;
  fs::path exe = fs::read_symlink("/proc/self/exe", error);
  return error ? "" : exe.parent_path().string();
}

}  // namespace

std::string FindExampleDir() {
  std::vector<fs::path> candidates;
  if (std::string dir = ProgramDir(); !dir.empty()) {
    candidates.push_back(fs::path(dir) / "examples");
    candidates.push_back(fs::path(dir) / ".." / "examples");
  }
  candidates.push_back(fs::path(KESTRANA_SOURCE_DIR) / "examples");
  for (const fs::path& dir : candidates)
    if (fs::exists(dir / kExampleDrawing) && fs::exists(dir / kExampleSurface))
      return fs::weakly_canonical(dir).string();
  throw CommandError(
      "the bundled example (examples/town.dxf and examples/town-surface.xml) "
      "is neither beside the program nor in " KESTRANA_SOURCE_DIR);
}

DemoResult RunDemo(const DemoOptions& options) {
  const fs::path examples = options.example_dir.value_or(FindExampleDir());
  const fs::path out = options.out_dir;
  fs::create_directories(out);
  DemoResult result{(out / kDrawingOut).string(), (out / kPictureOut).string(),
                    (out / kReportOut).string(), ""};

  std::vector<std::unique_ptr<memhost::MemSurface>> surfaces =
      ReadSurfaceFile((examples / kExampleSurface).string());
  const std::string surface = surfaces.front()->Name();
  std::unique_ptr<memhost::MemDocument> document = dxf::LoadDrawing(
      (examples / kExampleDrawing).string(), CommandLoadOptions());
  NewProject(*document, core::kMetric);
  OrientTowardsOutlet(*document, *surfaces.front(), kSewerLayer);

  ConvertOptions sewer{.network = kSewer, .type = core::kGravity};
  sewer.selection.layer = kSewerLayer;
  ConvertInDocument(*document, sewer);
  ConvertOptions water{.network = kWater, .type = core::kPressure};
  water.selection.layer = kWaterLayer;
  ConvertInDocument(*document, water);
  GroundInDocument(*document, std::move(surfaces),
                   {.networks = {kSewer, kWater}});
  DesignSewer(*document);
  DesignWater(*document);
  MoveAnnotationsClear(*document, {kSewer, kWater});

  dxf::SaveDrawing(*document, result.drawing);
  render::Options picture;
  picture.size_px = options.picture_px;
  render::SavePicture(render::RenderSvg(*document, picture).svg,
                      result.picture);
  result.report = Report(*document, surface);
  dxf::WriteFileAtomically(result.report_file, result.report);
  return result;
}

namespace {

int Run(const std::vector<std::string>& args, Io& io) {
  Args a(args, {}, {"examples", "size"});
  a.ExpectPositionals(1);
  DemoOptions options;
  if (!a.Positionals().empty()) options.out_dir = a.Positionals().front();
  options.example_dir = a.Option("examples");
  if (auto size = a.Option("size")) {
    options.picture_px = ParseInt(*size, "--size");
    if (options.picture_px < 16 || options.picture_px > 20000)
      throw UsageError("--size: a picture is 16 to 20000 pixels across");
  }
  DemoResult r = RunDemo(options);
  io.out << r.report << "\nwrote " << r.drawing << ", " << r.picture << " and "
         << r.report_file << "\n";
  return 0;
}

Registrar demo_command(
    {"demo", "the bundled example from drawn lines to a designed network",
     "Usage: kestrana demo [OUTDIR] [--size PX] [--examples DIR]\n\n"
     "Takes the bundled example town (examples/town.dxf: sewer lines and\n"
     "water mains drawn as plain lines over the LandXML surface\n"
     "examples/town-surface.xml), starts a metric project in it, turns the\n"
     "sewer lines towards their outlet and converts them into the gravity\n"
     "network \"Sewer\" and the mains into the pressure network \"Water\",\n"
     "takes the ground levels from the surface, sizes the pipes and sets\n"
     "their levels (sewers falling at least 1 in 200 to the outlet), and\n"
     "writes OUTDIR/town-network.dxf, a picture OUTDIR/town-network.png and\n"
     "OUTDIR/report.txt (networks, pipes, nodes, crossings with their\n"
     "clearances, low and high points). The example is only read.\n\n"
     "  OUTDIR          where to write (default ./demo-out)\n"
     "  --size PX       the picture's longer side in pixels (default 3200)\n"
     "  --examples DIR  the folder holding town.dxf and town-surface.xml\n",
     Run});

}  // namespace

}  // namespace kestrana::cli
