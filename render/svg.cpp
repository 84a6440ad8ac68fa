#include "render/svg.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <numbers>
#include <set>
#include <stdexcept>
#include <unordered_map>

#include "memhost/document.h"
#include "memhost/text_metrics.h"
#include "memhost/utf8.h"
#include "render/colors.h"
#include "render/path.h"

namespace kestrana::render {

namespace {

using host::EntityKind;
using memhost::CurvePiece;
using memhost::MemBlock;
using memhost::MemBlockReference;
using memhost::MemDocument;
using memhost::MemEntity;

constexpr double kTwoPi = 2 * std::numbers::pi;
// Capital height of the face the text width table describes, in ems: a
// text of height h is set at font size h / kCapHeightEm.
constexpr double kCapHeightEm = 0.716;
constexpr const char* kFontFamily =
    "Liberation Sans, Arial, Helvetica, sans-serif";
// Under- and overlines, in text heights from the baseline.
constexpr double kUnderlineAt = -0.2;
constexpr double kOverlineAt = 1.2;
// The fitted view leaves this share of its size around the drawing.
constexpr double kMargin = 0.05;
// Default lines are this fraction of the view's size, thin but readable.
constexpr double kLineShare = 1.0 / 800;
// A visible point is a dot of this many line widths across.
constexpr double kPointDot = 4;
// Blocks nested deeper than this are taken to be inserted in themselves.
constexpr int kMaxDepth = 64;
// Tapered arcs of wide polylines are drawn as polygons this fine.
constexpr double kTaperStep = std::numbers::pi / 36;

std::string Upper(std::string s) {
  for (char& c : s)
    c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return s;
}

// Comments may not hold "--".
std::string CommentSafe(std::string s) {
  for (size_t i = s.find("--"); i != std::string::npos; i = s.find("--", i))
    s[i + 1] = '=';
  return s;
}

std::string Attr(const char* name, const std::string& value) {
  return std::string(" ") + name + "=\"" + value + "\"";
}

// One piece of the picture, in drawing order. Groups bracket the contents
// of an insert.
struct Prim {
  enum class Kind { kElement, kPoint, kOpen, kClose };
  Kind kind = Kind::kElement;
  std::string text;  // kElement: the element; kPoint, kOpen: attributes
  Point3 at;         // kPoint
  Box2 box;          // kElement, kPoint
};

struct LayerState {
  bool frozen = false;
  bool off = false;
  int color = host::color::kWhite;
};

// What an insert passes to its contents.
struct Context {
  Affine m;                // block coordinates to drawing coordinates
  std::string layer_zero;  // the layer that layer "0" stands for
  int by_block = host::color::kWhite;
};

// What a text looks like, whatever kind of entity shows it.
struct TextLook {
  std::string raw;
  double height = 0;
  double oblique = 0;
  std::array<Point3, 4> corners;  // baseline start, end, top end, top start
};

template <class T>
TextLook LookOf(const T& text, const std::string& raw) {
  return {raw, text.height_, text.oblique_, text.Corners()};
}

// The values of an entity's plane seen from above, then under `m`.
Affine Tilted(const Point3& normal, double z, const Affine& m) {
  return memhost::TiltToPlan(normal, z).Then(m);
}

// Sweep of a hatch edge arc, whichever way its angles were stored.
double EdgeSweep(double start, double end, bool counter_clockwise) {
  double s = std::fmod(end - start, kTwoPi);
  if (counter_clockwise) {
    if (s <= 1e-12) s += kTwoPi;
    return s;
  }
  if (s >= -1e-12) s -= kTwoPi;
  return s;
}

class Collector {
 public:
  Collector(MemDocument& doc, const Options& options)
      : doc_(doc), progress_(options.progress) {
    for (const std::string& name : options.layers) filter_.insert(Upper(name));
  }

  void Walk(const MemBlock& block, const Context& ctx, bool root) {
    const auto entities = block.MemEntities();
    size_t done = 0;
    for (MemEntity* e : entities) {
      Draw(*e, ctx, root);
      // Only the drawn block's own entities count, not those of inserts.
      if (root && progress_) progress_(++done, entities.size());
    }
  }

  std::vector<Prim>& Prims() { return prims_; }
  std::map<std::string, int>& Skipped() { return skipped_; }

 private:
  const LayerState& Layer(const std::string& name) {
    auto it = layers_.find(name);
    if (it != layers_.end()) return it->second;
    LayerState state;
    if (const memhost::MemLayer* layer = doc_.FindLayer(name)) {
      state.frozen = layer->frozen_;
      // A negative colour is how files mark a layer that is off.
      state.off = !layer->on_ || layer->color_ < 0;
      state.color = std::abs(layer->color_);
    }
    if (state.color < 1 || state.color > 255) state.color = host::color::kWhite;
    if (!filter_.empty() && filter_.count(Upper(name)) == 0) state.off = true;
    return layers_.emplace(name, state).first->second;
  }

  // Inside a block, layer "0" takes the layer of the insert.
  static std::string EffectiveLayer(const MemEntity& e, const Context& ctx) {
    if (e.LayerName() == "0" && !ctx.layer_zero.empty()) return ctx.layer_zero;
    return e.LayerName();
  }

  static int IndexColor(const MemEntity& e, const LayerState& layer,
                        const Context& ctx) {
    if (e.color_ == host::color::kByLayer) return layer.color;
    if (e.color_ == host::color::kByBlock) return ctx.by_block;
    return e.color_;
  }

  static std::string Tags(MemEntity& e, const std::string& layer) {
    return Attr("data-layer", Xml(layer)) +
           Attr("data-handle", e.AsHostEntity().Handle());
  }

  void Element(std::string text, const Box2& box) {
    prims_.push_back({Prim::Kind::kElement, std::move(text), {}, box});
  }

  void Draw(MemEntity& e, const Context& ctx, bool root) {
    EntityKind kind = e.AsHostEntity().Kind();
    if (kind == EntityKind::kBlockReference)
      return Insert(static_cast<MemBlockReference&>(e), ctx);
    // Inserts show attribute references, not the definitions.
    if (kind == EntityKind::kAttributeDefinition && !root) return;
    if (!e.visible_) return;
    std::string layer = EffectiveLayer(e, ctx);
    const LayerState& state = Layer(layer);
    if (state.frozen || state.off) return;
    std::string color = HexColor(DrawRgb(IndexColor(e, state, ctx)));
    std::string tags = Tags(e, layer);
    const Affine& m = ctx.m;
    switch (kind) {
      case EntityKind::kLine: {
        const auto& line = static_cast<const memhost::MemLine&>(e);
        Point3 a = m.Apply(line.start_), b = m.Apply(line.end_);
        Box2 box;
        box.Add(a.x, a.y);
        box.Add(b.x, b.y);
        Element("<line" + Attr("x1", Num(a.x)) + Attr("y1", Num(-a.y)) +
                    Attr("x2", Num(b.x)) + Attr("y2", Num(-b.y)) +
                    Attr("stroke", color) + tags + "/>",
                box);
        return;
      }
      case EntityKind::kLwPolyline: {
        const auto& pl = static_cast<const memhost::MemLwPolyline&>(e);
        // Vertices stay in the polyline's plane: copies mirrored in the host
        // (normal (0,0,-1)) have X turned over.
        return Polyline(pl,
                        memhost::OcsToPlan(pl.normal_, pl.elevation_).Then(m),
                        color, tags);
      }
      // Kinds with a plane hold world values unless the plane is tilted;
      // a tilted one is drawn as seen from above.
      case EntityKind::kCircle: {
        const auto& circle = static_cast<const memhost::MemCircle&>(e);
        Affine plane = Tilted(circle.normal_, circle.center_.z, m);
        return FullConic(
            Conic::Circle(circle.center_, circle.radius_).Mapped(plane), color,
            tags);
      }
      case EntityKind::kArc: {
        const auto& arc = static_cast<const memhost::MemArc&>(e);
        PathBuilder path(Tilted(arc.normal_, arc.center_.z, m));
        path.CircularArc(arc.center_, arc.radius_, arc.start_angle_,
                         memhost::ArcSweep(arc.start_angle_, arc.end_angle_));
        Element("<path" + Attr("d", path.Data()) + Attr("stroke", color) +
                    tags + "/>",
                path.Extent());
        return;
      }
      case EntityKind::kEllipse: {
        const auto& ellipse = static_cast<const memhost::MemEllipse&>(e);
        Conic conic{ellipse.center_, ellipse.major_axis_,
                    memhost::EllipseMinorAxis(ellipse.major_axis_,
                                              ellipse.ratio_, ellipse.normal_)};
        double sweep =
            std::fmod(ellipse.end_param_ - ellipse.start_param_, kTwoPi);
        if (sweep <= 1e-12) sweep += kTwoPi;
        if (sweep >= kTwoPi - 1e-9)
          return FullConic(conic.Mapped(m), color, tags);
        PathBuilder path(m);
        path.ArcTo(conic, ellipse.start_param_, sweep);
        Element("<path" + Attr("d", path.Data()) + Attr("stroke", color) +
                    tags + "/>",
                path.Extent());
        return;
      }
      case EntityKind::kHatch: {
        const auto& hatch = static_cast<const memhost::MemHatch&>(e);
        return Hatch(hatch, Tilted(hatch.normal_, hatch.elevation_, m), color,
                     tags);
      }
      case EntityKind::kPoint: {
        const auto& point = static_cast<const memhost::MemPoint&>(e);
        Prim prim{Prim::Kind::kPoint,
                  Attr("fill", color) + tags,
                  m.Apply(point.position_),
                  {}};
        prim.box.Add(prim.at.x, prim.at.y);
        prims_.push_back(std::move(prim));
        return;
      }
      case EntityKind::kText: {
        const auto& text = static_cast<const memhost::MemText&>(e);
        return Text(LookOf(text, text.text_),
                    Tilted(text.normal_, text.insertion_.z, m), color, tags);
      }
      case EntityKind::kAttributeReference: {
        const auto& attribute =
            static_cast<const memhost::MemAttributeReference&>(e);
        if (attribute.invisible_) return;
        return Text(LookOf(attribute, attribute.text_),
                    Tilted(attribute.normal_, attribute.insertion_.z, m), color,
                    tags);
      }
      case EntityKind::kAttributeDefinition: {
        // Outside inserts the host shows a definition by its tag.
        const auto& definition =
            static_cast<const memhost::MemAttributeDefinition&>(e);
        memhost::MemText shown;
        shown.text_ = definition.tag_;
        shown.height_ = definition.height_;
        shown.alignment_ = definition.alignment_;
        shown.insertion_ = definition.insertion_;
        shown.alignment_point_ = definition.alignment_point_;
        shown.rotation_ = definition.rotation_;
        shown.width_factor_ = definition.width_factor_;
        shown.oblique_ = definition.oblique_;
        shown.normal_ = definition.normal_;
        return Text(LookOf(shown, shown.text_),
                    Tilted(shown.normal_, shown.insertion_.z, m), color, tags);
      }
      default:
        ++skipped_[e.AsHostEntity().EntityName()];
        return;
    }
  }

  void Insert(MemBlockReference& ref, const Context& ctx) {
    if (!ref.visible_) return;
    std::string layer = EffectiveLayer(ref, ctx);
    const LayerState& state = Layer(layer);
    // A frozen layer hides the whole insert; an off one only what is drawn
    // on it, so contents on other layers stay visible, as in the host.
    if (state.frozen) return;
    int color = IndexColor(ref, state, ctx);
    prims_.push_back(
        {Prim::Kind::kOpen,
         Attr("data-block", Xml(ref.block_name_)) + Tags(ref, layer),
         {},
         {}});
    MemBlock* block = doc_.FindBlock(ref.block_name_);
    if (block == nullptr) {
      ++skipped_["INSERT of a missing block"];
    } else if (std::count(stack_.begin(), stack_.end(), block) > 0 ||
               static_cast<int>(stack_.size()) >= kMaxDepth) {
      ++skipped_["INSERT of a block inside itself"];
    } else {
      stack_.push_back(block);
      Affine to_owner = ref.BlockTransform().Then(
          Tilted(ref.normal_, ref.insertion_.z, ctx.m));
      Walk(*block, Context{to_owner, layer, color}, false);
      stack_.pop_back();
    }
    // Attributes live in the insert's own space and take its colour ByBlock.
    Context attributes{ctx.m, ctx.layer_zero, color};
    for (memhost::MemAttributeReference* a : ref.Attributes())
      if (!a->IsErased()) Draw(*a, attributes, false);
    prims_.push_back({Prim::Kind::kClose, {}, {}, {}});
  }

  void FullConic(const Conic& world, const std::string& color,
                 const std::string& tags) {
    Box2 box;
    world.AddArcExtents(0, kTwoPi, box);
    Element(ConicElement(world) + Attr("stroke", color) + tags + "/>", box);
  }

  static void Pieces(PathBuilder& path, const std::vector<CurvePiece>& pieces) {
    for (const CurvePiece& piece : pieces) {
      if (piece.is_arc) {
        path.CircularArc(piece.center, piece.radius, piece.start_angle,
                         piece.sweep);
      } else {
        path.ContinueTo(piece.p0);
        path.LineTo(piece.p1);
      }
    }
  }

  void Polyline(const memhost::MemLwPolyline& pl, const Affine& m,
                const std::string& color, const std::string& tags) {
    std::vector<CurvePiece> pieces =
        memhost::PolylinePieces(pl.xy_, pl.bulges_, pl.closed_);
    if (pieces.empty()) return;
    // Vertex widths win over the constant width where they are set.
    auto widths = [&](size_t i) -> std::pair<double, double> {
      if (i < pl.widths_.size() &&
          (pl.widths_[i].first != 0 || pl.widths_[i].second != 0))
        return pl.widths_[i];
      return {pl.constant_width_, pl.constant_width_};
    };
    double width = widths(0).first;
    bool uniform = true;
    for (size_t i = 0; i < pieces.size(); ++i) {
      auto [start, end] = widths(i);
      uniform = uniform && start == width && end == width;
    }
    if (uniform) {
      PathBuilder path(m);
      Pieces(path, pieces);
      if (pl.closed_) path.Close();
      std::string text =
          "<path" + Attr("d", path.Data()) + Attr("stroke", color);
      Box2 box = path.Extent();
      if (width > 0) {
        // Wide polylines end square and meet in mitres, as the host draws them.
        double w = width * m.Scale();
        text += Attr("stroke-width", Num(w)) + Attr("stroke-linecap", "butt") +
                Attr("stroke-linejoin", "miter");
        box.Add(box.min_x - w / 2, box.min_y - w / 2);
        box.Add(box.max_x + w / 2, box.max_y + w / 2);
      }
      Element(text + tags + "/>", box);
      return;
    }
    for (size_t i = 0; i < pieces.size(); ++i) {
      auto [start, end] = widths(i);
      PathBuilder path(m);
      if (start == 0 && end == 0) {
        Pieces(path, {pieces[i]});
        Element("<path" + Attr("d", path.Data()) + Attr("stroke", color) +
                    tags + "/>",
                path.Extent());
        continue;
      }
      WideSegment(path, pieces[i], start, end);
      if (path.Empty()) continue;
      Element("<path" + Attr("d", path.Data()) + Attr("fill", color) +
                  Attr("stroke", "none") + tags + "/>",
              path.Extent());
    }
  }

  // The outline of one segment drawn `start` wide at its start and `end`
  // wide at its end.
  static void WideSegment(PathBuilder& path, const CurvePiece& piece,
                          double start, double end) {
    if (!piece.is_arc) {
      double dx = piece.p1.x - piece.p0.x, dy = piece.p1.y - piece.p0.y;
      double len = std::hypot(dx, dy);
      if (len == 0) return;
      double nx = -dy / len, ny = dx / len;
      auto side = [&](const Point3& p, double w, double s) {
        return Point3{p.x + nx * w / 2 * s, p.y + ny * w / 2 * s, 0};
      };
      path.MoveTo(side(piece.p0, start, 1));
      path.LineTo(side(piece.p1, end, 1));
      path.LineTo(side(piece.p1, end, -1));
      path.LineTo(side(piece.p0, start, -1));
      path.Close();
      return;
    }
    double r = piece.radius, a0 = piece.start_angle, sweep = piece.sweep;
    if (start == end) {
      Conic outer = Conic::Circle(piece.center, r + start / 2);
      Conic inner = Conic::Circle(piece.center, std::max(0.0, r - start / 2));
      path.ArcTo(outer, a0, sweep);
      path.ArcTo(inner, a0 + sweep, -sweep);
      path.Close();
      return;
    }
    int steps =
        std::max(8, static_cast<int>(std::ceil(std::fabs(sweep) / kTaperStep)));
    auto at = [&](int k, double s) {
      double f = static_cast<double>(k) / steps;
      double w = start + (end - start) * f;
      double rr = std::max(0.0, r + s * w / 2), a = a0 + sweep * f;
      return Point3{piece.center.x + rr * std::cos(a),
                    piece.center.y + rr * std::sin(a), 0};
    };
    path.MoveTo(at(0, 1));
    for (int k = 1; k <= steps; ++k) path.LineTo(at(k, 1));
    for (int k = steps; k >= 0; --k) path.LineTo(at(k, -1));
    path.Close();
  }

  void Hatch(const memhost::MemHatch& hatch, const Affine& m,
             const std::string& color, const std::string& tags) {
    PathBuilder path(m);
    for (const host::HatchLoop& loop : hatch.loops_) {
      if (loop.is_polyline) {
        Pieces(path, memhost::PolylinePieces(loop.vertices, loop.bulges, true));
        path.Close();
        continue;
      }
      for (const host::HatchEdge& edge : loop.edges) {
        using Type = host::HatchEdge::Type;
        switch (edge.type) {
          case Type::kLine:
            path.ContinueTo(edge.start);
            path.LineTo(edge.end);
            break;
          case Type::kArc:
            path.CircularArc(edge.center, edge.radius, edge.start_angle,
                             EdgeSweep(edge.start_angle, edge.end_angle,
                                       edge.counter_clockwise));
            break;
          case Type::kEllipseArc:
            path.ArcTo(Conic::Ellipse(edge.center, edge.major_axis, edge.ratio),
                       edge.start_angle,
                       EdgeSweep(edge.start_angle, edge.end_angle,
                                 edge.counter_clockwise));
            break;
          case Type::kSpline:
            for (const Point3& p : edge.control_points) path.ContinueTo(p);
            break;
        }
      }
      path.Close();
    }
    if (path.Empty()) return;
    // Loops inside loops are holes, as the host's normal island style has it.
    std::string text = "<path" + Attr("d", path.Data()) + Attr("fill", color) +
                       Attr("fill-rule", "evenodd");
    if (hatch.IsSolidFill()) {
      text += Attr("stroke", "none");
    } else {
      // Patterns are shown as a tint inside their outline.
      text += Attr("fill-opacity", "0.3") + Attr("stroke", color);
    }
    Element(text + tags + "/>", path.Extent());
  }

  void Text(const TextLook& look, const Affine& m, const std::string& color,
            const std::string& tags) {
    std::vector<memhost::DisplayRun> runs = memhost::DisplayRuns(look.raw);
    std::vector<double> run_widths;
    double natural = 0;  // width at width factor 1
    for (const auto& run : runs) {
      double w = 0;
      for (char32_t cp : memhost::DecodeUtf8(run.text))
        w += memhost::CharAdvance(cp);
      run_widths.push_back(w * look.height);
      natural += w * look.height;
    }
    // Named corners, not a structured binding: lambdas below capture them.
    const Point3& c0 = look.corners[0];
    const Point3& c1 = look.corners[1];
    const Point3& c3 = look.corners[3];
    double len = std::hypot(c1.x - c0.x, c1.y - c0.y);
    if (natural <= 0 || look.height <= 0 || len <= 0) return;
    // The text's frame: x along the baseline, stretched so that the natural
    // width reaches the measured end; y up the height, slanted when oblique.
    Point3 ex{(c1.x - c0.x) / natural, (c1.y - c0.y) / natural, 0};
    Point3 dir{(c1.x - c0.x) / len, (c1.y - c0.y) / len, 0};
    Point3 up{(c3.x - c0.x) / look.height, (c3.y - c0.y) / look.height, 0};
    double slant = std::tan(look.oblique);
    Point3 ey{up.x + dir.x * slant, up.y + dir.y * slant, 0};
    Point3 exw = m.ApplyVector(ex), eyw = m.ApplyVector(ey),
           origin = m.Apply(c0);
    std::string matrix = "matrix(" + Num(exw.x) + " " + Num(-exw.y) + " " +
                         Num(-eyw.x) + " " + Num(eyw.y) + " " + Num(origin.x) +
                         " " + Num(-origin.y) + ")";
    Box2 box;
    for (const Point3& corner : look.corners) {
      Point3 p = m.Apply(corner);
      box.Add(p.x, p.y);
    }
    // textLength holds the text to the measured width in viewers whose font
    // differs from the width table's.
    Element("<text" + Attr("transform", matrix) +
                Attr("font-size", Num(look.height / kCapHeightEm)) +
                Attr("textLength", Num(natural)) +
                Attr("lengthAdjust", "spacingAndGlyphs") + Attr("fill", color) +
                tags + Attr("xml:space", "preserve") + ">" +
                Xml(memhost::DisplayText(look.raw)) + "</text>",
            box);
    double offset = 0;
    for (size_t i = 0; i < runs.size(); ++i) {
      double from = offset, to = offset + run_widths[i];
      offset = to;
      for (const auto& line : {std::pair{runs[i].underline, kUnderlineAt},
                               std::pair{runs[i].overline, kOverlineAt}}) {
        if (!line.first) continue;
        double at = line.second;
        auto point = [&](double u) {
          return m.Apply(Point3{c0.x + ex.x * u + up.x * at * look.height,
                                c0.y + ex.y * u + up.y * at * look.height, 0});
        };
        Point3 a = point(from), b = point(to);
        Box2 line_box;
        line_box.Add(a.x, a.y);
        line_box.Add(b.x, b.y);
        Element("<line" + Attr("x1", Num(a.x)) + Attr("y1", Num(-a.y)) +
                    Attr("x2", Num(b.x)) + Attr("y2", Num(-b.y)) +
                    Attr("stroke", color) + tags + "/>",
                line_box);
      }
    }
  }

  MemDocument& doc_;
  const std::function<void(size_t, size_t)>& progress_;
  std::set<std::string> filter_;
  std::unordered_map<std::string, LayerState> layers_;
  std::vector<const MemBlock*> stack_;
  std::vector<Prim> prims_;
  std::map<std::string, int> skipped_;
};

// Writes the pieces, leaving out groups that ended up empty.
std::string Body(const std::vector<Prim>& prims, double dot_radius,
                 int& elements) {
  struct Open {
    std::string head;
    std::string body;
  };
  std::vector<Open> stack(1);
  for (const Prim& prim : prims) {
    switch (prim.kind) {
      case Prim::Kind::kOpen:
        stack.push_back({"<g" + prim.text + ">\n", {}});
        break;
      case Prim::Kind::kClose: {
        Open group = std::move(stack.back());
        stack.pop_back();
        if (!group.body.empty())
          stack.back().body += group.head + group.body + "</g>\n";
        break;
      }
      case Prim::Kind::kElement:
        stack.back().body += prim.text + "\n";
        ++elements;
        break;
      case Prim::Kind::kPoint:
        stack.back().body += "<circle" + Attr("cx", Num(prim.at.x)) +
                             Attr("cy", Num(-prim.at.y)) +
                             Attr("r", Num(dot_radius)) +
                             Attr("stroke", "none") + prim.text + "/>\n";
        ++elements;
        break;
    }
  }
  return stack.front().body;
}

std::string SkippedNote(const std::map<std::string, int>& skipped) {
  int total = 0;
  std::string kinds;
  for (const auto& [kind, count] : skipped) {
    total += count;
    if (!kinds.empty()) kinds += ", ";
    kinds += std::to_string(count) + " " + kind;
  }
  if (total == 0) return {};
  return "<!-- not drawn: " + std::to_string(total) + " entit" +
         (total == 1 ? "y" : "ies") + " of kinds this picture cannot show (" +
         CommentSafe(kinds) + ") -->\n";
}

}  // namespace

Result RenderSvg(MemDocument& doc, const Options& options) {
  MemBlock* root = options.block.empty() ? &doc.ModelSpaceBlock()
                                         : doc.FindBlock(options.block);
  if (root == nullptr)
    throw std::invalid_argument("the drawing has no block named \"" +
                                options.block + "\"");
  std::string layers_note;
  for (const std::string& name : options.layers) {
    if (doc.FindLayer(name) == nullptr)
      throw std::invalid_argument("the drawing has no layer named \"" + name +
                                  "\"");
    layers_note += (layers_note.empty() ? "" : ",") + name;
  }
  std::string what = options.block.empty() ? std::string("model space")
                                           : "block \"" + root->name_ + "\"";

  Collector collector(doc, options);
  collector.Walk(*root, Context{}, true);
  std::vector<Prim>& prims = collector.Prims();

  Result result;
  result.skipped = collector.Skipped();
  Box2 view;
  if (options.window) {
    const Window& w = *options.window;
    view.Add(w.x1, w.y1);
    view.Add(w.x2, w.y2);
    if (view.max_x == view.min_x || view.max_y == view.min_y)
      throw std::invalid_argument(
          "a window needs two corners that differ in X and in Y");
    std::erase_if(prims, [&](const Prim& p) {
      bool drawn =
          p.kind == Prim::Kind::kElement || p.kind == Prim::Kind::kPoint;
      return drawn && !p.box.Overlaps(view);
    });
  }
  Box2 content;
  for (const Prim& p : prims) content.Add(p.box);
  if (content.empty) {
    std::string where = options.window
                            ? " in the window " + Num(options.window->x1) +
                                  "," + Num(options.window->y1) + "," +
                                  Num(options.window->x2) + "," +
                                  Num(options.window->y2)
                            : std::string();
    std::string on = layers_note.empty() ? "" : " on layers " + layers_note;
    throw std::runtime_error("no entities to draw" + where + " (" + what + on +
                             ")");
  }
  if (!options.window) {
    double size =
        std::max(content.max_x - content.min_x, content.max_y - content.min_y);
    double margin = size > 0 ? size * kMargin : 1.0;
    view = content;
    view.Add(content.min_x - margin, content.min_y - margin);
    view.Add(content.max_x + margin, content.max_y + margin);
  }
  result.view = view;

  double width = view.max_x - view.min_x, height = view.max_y - view.min_y;
  double line = std::max(width, height) * kLineShare;
  int px = std::max(1, options.size_px);
  int px_w =
      width >= height
          ? px
          : std::max(1, static_cast<int>(std::lround(px * width / height)));
  int px_h =
      width >= height
          ? std::max(1, static_cast<int>(std::lround(px * height / width)))
          : px;
  std::string box = Num(view.min_x) + " " + Num(-view.max_y) + " " +
                    Num(width) + " " + Num(height);

  std::string body = Body(prims, line * kPointDot / 2, result.elements);
  std::string& svg = result.svg;
  svg = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
  svg += "<svg xmlns=\"http://www.w3.org/2000/svg\"" +
         Attr("width", std::to_string(px_w)) +
         Attr("height", std::to_string(px_h)) + Attr("viewBox", box) + ">\n";
  svg += "<title>" + Xml(doc.Name() + ": " + what) + "</title>\n";
  svg += "<!-- " + CommentSafe(what) + ", " + std::to_string(result.elements) +
         " elements; white background, index colour 7 drawn black; Y axis up "
         "as in "
         "the drawing (SVG y = -Y) -->\n";
  svg += SkippedNote(result.skipped);
  svg += "<rect" + Attr("x", Num(view.min_x)) + Attr("y", Num(-view.max_y)) +
         Attr("width", Num(width)) + Attr("height", Num(height)) +
         Attr("fill", HexColor(kBackground)) + "/>\n";
  std::string clip;
  if (options.window) {
    svg += "<defs><clipPath id=\"window\"><rect" + Attr("x", Num(view.min_x)) +
           Attr("y", Num(-view.max_y)) + Attr("width", Num(width)) +
           Attr("height", Num(height)) + "/></clipPath></defs>\n";
    clip = Attr("clip-path", "url(#window)");
  }
  svg += "<g id=\"drawing\"" + clip + Attr("fill", "none") +
         Attr("stroke-width", Num(line)) + Attr("stroke-linecap", "round") +
         Attr("stroke-linejoin", "round") + Attr("font-family", kFontFamily) +
         ">\n";
  svg += body;
  svg += "</g>\n</svg>\n";
  return result;
}

}  // namespace kestrana::render
