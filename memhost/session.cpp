#include "memhost/session.h"

#include <algorithm>
#include <cmath>
#include <sstream>

namespace kestrana::memhost {

using host::ErrorCode;
using host::HostError;

Input Input::PointAt(double x, double y, double z) {
  Input in;
  in.kind = Kind::kPoint;
  in.point = {x, y, z};
  return in;
}

Input Input::EntityAt(ObjectId id, const Point3& pick_point) {
  Input in;
  in.kind = Kind::kEntity;
  in.entity = id;
  in.point = pick_point;
  return in;
}

Input Input::Objects(std::vector<ObjectId> ids) {
  Input in;
  in.kind = Kind::kSelection;
  in.pick = Pick::kObjects;
  in.objects = std::move(ids);
  return in;
}

Input Input::Window(const Point3& c1, const Point3& c2) {
  Input in;
  in.kind = Kind::kSelection;
  in.pick = Pick::kWindow;
  in.corner1 = c1;
  in.corner2 = c2;
  return in;
}

Input Input::Crossing(const Point3& c1, const Point3& c2) {
  Input in = Window(c1, c2);
  in.pick = Pick::kCrossing;
  return in;
}

Input Input::All(host::Filter extra) {
  Input in;
  in.kind = Kind::kSelection;
  in.pick = Pick::kAll;
  in.extra_filter = std::move(extra);
  return in;
}

Input Input::Answer(int answer) {
  Input in;
  in.kind = Kind::kAnswer;
  in.answer = answer;
  return in;
}

Input Input::Cancel() { return Input{}; }

namespace {
const char* KindName(Input::Kind kind) {
  switch (kind) {
    case Input::Kind::kPoint:
      return "a point";
    case Input::Kind::kEntity:
      return "an entity pick";
    case Input::Kind::kSelection:
      return "a selection";
    case Input::Kind::kAnswer:
      return "a message box answer";
    case Input::Kind::kCancel:
      return "a cancel";
  }
  return "input";
}
}  // namespace

Input Session::Next(Input::Kind kind, const std::string& what) {
  if (script_.empty())
    throw HostError(
        ErrorCode::kNoInput,
        "no input given for " + what + " (expected " + KindName(kind) + ")");
  Input in = script_.front();
  if (in.kind != kind && in.kind != Input::Kind::kCancel)
    throw HostError(ErrorCode::kNoInput, "the input for " + what + " is " +
                                             KindName(in.kind) + ", expected " +
                                             KindName(kind));
  script_.pop_front();
  return in;
}

std::optional<int> Session::NextAnswer() {
  if (script_.empty() || script_.front().kind != Input::Kind::kAnswer)
    return std::nullopt;
  int answer = script_.front().answer;
  script_.pop_front();
  return answer;
}

std::vector<std::string> Session::Messages() const {
  std::vector<std::string> out;
  for (const auto& e : log_)
    if (e.kind == LogEntry::Kind::kMessage) out.push_back(e.text);
  return out;
}

std::vector<std::string> Session::Prompts() const {
  std::vector<std::string> out;
  for (const auto& e : log_)
    if (e.kind != LogEntry::Kind::kMessage &&
        e.kind != LogEntry::Kind::kCommand)
      out.push_back(e.text);
  return out;
}

// Triangles bucketed by a uniform grid over the surface's extent; each cell
// lists the triangles whose extents touch it (compressed rows).
struct MemSurface::Grid {
  double min_x = 0, min_y = 0, cell = 1;
  int nx = 1, ny = 1;
  std::vector<uint32_t> offsets;
  std::vector<uint32_t> items;

  int CellX(double x) const {
    return std::clamp(static_cast<int>(std::floor((x - min_x) / cell)), 0,
                      nx - 1);
  }
  int CellY(double y) const {
    return std::clamp(static_cast<int>(std::floor((y - min_y) / cell)), 0,
                      ny - 1);
  }
};

MemSurface::MemSurface(std::string name, std::vector<Point3> points,
                       std::vector<std::array<int, 3>> triangles)
    : name_(std::move(name)),
      points_(std::move(points)),
      triangles_(std::move(triangles)),
      grid_(std::make_unique<Grid>()) {
  for (const auto& t : triangles_)
    for (int v : t)
      if (v < 0 || static_cast<size_t>(v) >= points_.size())
        throw HostError(ErrorCode::kBadArgument,
                        "surface \"" + name_ + "\" has a triangle corner " +
                            std::to_string(v) + " that names no point");
  if (triangles_.empty()) return;
  host::Box2 box;
  for (const auto& t : triangles_)
    for (int v : t) {
      const Point3& p = points_[v];
      if (!std::isfinite(p.x) || !std::isfinite(p.y) || !std::isfinite(p.z))
        throw HostError(ErrorCode::kBadArgument,
                        "surface \"" + name_ + "\" has a triangle corner " +
                            std::to_string(v) + " that is not a number");
      box.Add(p.x, p.y);
    }
  Grid& g = *grid_;
  double w = std::max(box.max_x - box.min_x, 1e-9);
  double h = std::max(box.max_y - box.min_y, 1e-9);
  if (!std::isfinite(w) || !std::isfinite(h))
    throw HostError(ErrorCode::kBadArgument,
                    "surface \"" + name_ + "\" is too large to index");
  double cells = std::max(1.0, static_cast<double>(triangles_.size()));
  g.cell = std::max(std::sqrt(w * h / cells), 1e-9);
  g.nx = std::clamp(static_cast<int>(std::ceil(w / g.cell)), 1, 4096);
  g.ny = std::clamp(static_cast<int>(std::ceil(h / g.cell)), 1, 4096);
  g.cell = std::max(w / g.nx, h / g.ny);
  g.min_x = box.min_x;
  g.min_y = box.min_y;
  std::vector<uint32_t> counts(static_cast<size_t>(g.nx) * g.ny + 1, 0);
  auto for_cells = [&](const std::array<int, 3>& t, auto&& fn) {
    double x0 = points_[t[0]].x, x1 = x0, y0 = points_[t[0]].y, y1 = y0;
    for (int v : t) {
      x0 = std::min(x0, points_[v].x);
      x1 = std::max(x1, points_[v].x);
      y0 = std::min(y0, points_[v].y);
      y1 = std::max(y1, points_[v].y);
    }
    for (int cy = g.CellY(y0); cy <= g.CellY(y1); ++cy)
      for (int cx = g.CellX(x0); cx <= g.CellX(x1); ++cx)
        fn(static_cast<size_t>(cy) * g.nx + cx);
  };
  for (const auto& t : triangles_)
    for_cells(t, [&](size_t c) { ++counts[c + 1]; });
  for (size_t i = 1; i < counts.size(); ++i) counts[i] += counts[i - 1];
  g.offsets = counts;
  g.items.resize(counts.back());
  std::vector<uint32_t> fill(counts.begin(), counts.end() - 1);
  for (uint32_t i = 0; i < triangles_.size(); ++i)
    for_cells(triangles_[i], [&](size_t c) { g.items[fill[c]++] = i; });
}

MemSurface::~MemSurface() = default;

double MemSurface::FindElevationAtXY(double x, double y) const {
  if (!triangles_.empty()) {
    const Grid& g = *grid_;
    double tol = g.cell * 1e-9;
    bool inside_extent = x >= g.min_x - tol && y >= g.min_y - tol &&
                         x <= g.min_x + g.nx * g.cell + tol &&
                         y <= g.min_y + g.ny * g.cell + tol;
    if (inside_extent) {
      size_t c = static_cast<size_t>(g.CellY(y)) * g.nx + g.CellX(x);
      for (uint32_t k = g.offsets[c]; k < g.offsets[c + 1]; ++k) {
        const auto& t = triangles_[g.items[k]];
        const Point3 &a = points_[t[0]], &b = points_[t[1]], &p = points_[t[2]];
        double det = (b.y - p.y) * (a.x - p.x) + (p.x - b.x) * (a.y - p.y);
        if (std::fabs(det) < 1e-15) continue;  // degenerate triangle
        double l1 = ((b.y - p.y) * (x - p.x) + (p.x - b.x) * (y - p.y)) / det;
        double l2 = ((p.y - a.y) * (x - p.x) + (a.x - p.x) * (y - p.y)) / det;
        double l3 = 1 - l1 - l2;
        constexpr double kEdge = -1e-9;  // points on an edge belong to it
        if (l1 >= kEdge && l2 >= kEdge && l3 >= kEdge)
          return l1 * a.z + l2 * b.z + l3 * p.z;
      }
    }
  }
  std::ostringstream msg;
  msg.precision(15);
  msg << "the point (" << x << ", " << y << ") is outside surface \"" << name_
      << "\"";
  throw HostError(ErrorCode::kOutsideSurface, msg.str());
}

host::Surface& MemSurfaces::Item(int index) const {
  if (index < 0 || index >= Count())
    throw HostError(ErrorCode::kNoSuchKey,
                    "no surface at position " + std::to_string(index));
  return *surfaces_[index];
}

host::Surface& MemSurfaces::Item(const std::string& name) const {
  for (const auto& s : surfaces_)
    if (s->Name() == name) return *s;
  throw HostError(ErrorCode::kNoSuchKey, "no surface named \"" + name + "\"");
}

MemSurface& MemSurfaces::Add(std::unique_ptr<MemSurface> surface) {
  surfaces_.push_back(std::move(surface));
  return *surfaces_.back();
}

std::string MemApplication::CivilProgId() const {
  // The host's leading version number picks the extension's release.
  double v = std::atof(version_.c_str());
  int tenths = static_cast<int>(std::lround(v * 10));
  if (std::fabs(v * 10 - tenths) > 1e-9) return "";
  switch (tenths) {
    case 161:
      return "AeccXUiLand.AeccApplication.2.0";
    case 162:
      return "AeccXUiLand.AeccApplication.3.0";
    case 170:
      return "AeccXUiLand.AeccApplication.4.0";
    case 171:
      return "AeccXUiLand.AeccApplication.5.0";
    case 172:
      return "AeccXUiLand.AeccApplication.6.0";
    default:
      return "";
  }
}

host::CivilApplication& MemApplication::GetInterfaceObject(
    const std::string& prog_id) {
  std::string expected = CivilProgId();
  if (!civil_installed_ || expected.empty() || prog_id != expected)
    throw HostError(ErrorCode::kNoSuchKey,
                    "no application is registered as \"" + prog_id + "\"");
  return civil_;
}

int MemApplication::MessageBox(const std::string& text, int buttons, int icon,
                               const std::string& title) {
  int answer = host::msgbox::kAnswerOk;
  if (auto scripted = session_.NextAnswer()) {
    answer = *scripted;
  } else if (auto it = defaults_.find(buttons); it != defaults_.end()) {
    answer = it->second;
  } else if (buttons == host::msgbox::kYesNo) {
    answer = host::msgbox::kAnswerYes;
  }
  LogEntry e;
  e.kind = LogEntry::Kind::kMessage;
  e.text = text;
  e.buttons = buttons;
  e.icon = icon;
  e.title = title;
  e.answer = answer;
  session_.Record(e);
  return answer;
}

std::string MemComboBox::List(int index) const {
  if (index < 0 || index >= ListCount())
    throw HostError(ErrorCode::kBadArgument,
                    "list index " + std::to_string(index) + " is out of range");
  return items_[index];
}

void MemComboBox::Clear() {
  items_.clear();
  index_ = -1;
  text_.clear();
}

void MemComboBox::SetListIndex(int index) {
  if (index < -1 || index >= ListCount())
    throw HostError(ErrorCode::kBadArgument,
                    "list index " + std::to_string(index) + " is out of range");
  index_ = index;
  text_ = index >= 0 ? items_[index] : std::string();
}

void MemComboBox::SetText(const std::string& text) {
  text_ = text;
  auto it = std::find(items_.begin(), items_.end(), text);
  index_ = it == items_.end() ? -1 : static_cast<int>(it - items_.begin());
}

void MemCheckBox::SetValue(int value) {
  if (value != 0 && value != 1)
    throw HostError(ErrorCode::kBadArgument,
                    "a check box holds 0 or 1, not " + std::to_string(value));
  value_ = value;
}

namespace {
template <class T>
T& AddControl(std::map<std::string, std::unique_ptr<T>>& map,
              const std::string& name) {
  auto& slot = map[name];
  if (!slot) slot = std::make_unique<T>();
  return *slot;
}

template <class T>
T& FindControl(const std::map<std::string, std::unique_ptr<T>>& map,
               const std::string& name, const char* kind) {
  auto it = map.find(name);
  if (it == map.end())
    throw HostError(
        ErrorCode::kNoSuchKey,
        std::string("the form has no ") + kind + " named \"" + name + "\"");
  return *it->second;
}
}  // namespace

MemComboBox& MemForm::AddComboBox(const std::string& n) {
  return AddControl(combos_, n);
}
MemCheckBox& MemForm::AddCheckBox(const std::string& n) {
  return AddControl(checks_, n);
}
MemCommandButton& MemForm::AddCommandButton(const std::string& n) {
  return AddControl(buttons_, n);
}
MemTextBox& MemForm::AddTextBox(const std::string& n) {
  return AddControl(texts_, n);
}

host::ComboBox& MemForm::GetComboBox(const std::string& n) {
  return FindControl(combos_, n, "combo box");
}
host::CheckBox& MemForm::GetCheckBox(const std::string& n) {
  return FindControl(checks_, n, "check box");
}
host::CommandButton& MemForm::GetCommandButton(const std::string& n) {
  return FindControl(buttons_, n, "command button");
}
host::TextBox& MemForm::GetTextBox(const std::string& n) {
  return FindControl(texts_, n, "text box");
}

std::string MemDataGrid::Value(int row, int column) const {
  if (row < 0 || row >= RowCount() || column < 0 || column >= columns_)
    throw HostError(ErrorCode::kBadArgument,
                    "grid cell (" + std::to_string(row) + ", " +
                        std::to_string(column) + ") is out of range");
  const auto& r = rows_[row];
  return static_cast<size_t>(column) < r.size() ? r[column] : std::string();
}

}  // namespace kestrana::memhost
