#include "profile/profile_sheet.h"

#include <algorithm>
#include <cmath>

#include "core/names.h"
#include "core/record.h"
#include "core/text.h"
#include "host/errors.h"
#include "host/host.h"
#include "profile/profile.h"
#include "profile/profile_style_record.h"
#include "profile/style_fields.h"

namespace kestrana::profile {

namespace {

enum class TextSetting : int {
  kStyle = 0,
  kDataHeight = 1,
  kLabelHeight = 2,
  kTitleHeight = 3
};

}  // namespace

TextSettings ReadTextSettings(const core::Record& style) {
  const ItemFields item(style.Text(ProfileStyleItem::kText));
  TextSettings text;
  text.style = item.Text(TextSetting::kStyle);
  text.data_height = item.Number(TextSetting::kDataHeight);
  text.label_height = item.Number(TextSetting::kLabelHeight);
  text.title_height = item.Number(TextSetting::kTitleHeight);
  return text;
}

double ManholeHalfWidth(std::string_view model_units) {
  return model_units == core::kMetric ? 0.6 : 2.0;
}

double RiseInLevels(double rise, bool circular, std::string_view model_units) {
  if (model_units == core::kMetric) return rise / 1000;
  return circular ? rise / 12 : rise;
}

double SpanInLevels(double span, bool circular, std::string_view model_units) {
  return RiseInLevels(span, circular, model_units);
}

std::vector<std::string> Values(std::string_view series) {
  std::vector<std::string> values = core::Split(series);
  values.erase(values.begin());
  return values;
}

std::vector<double> Numbers(std::string_view series) {
  std::vector<double> numbers;
  for (const std::string& value : Values(series))
    numbers.push_back(core::NumericValue(value));
  return numbers;
}

std::vector<double> NodePositions(std::string_view lengths_series) {
  return Profile::GetProhibitedDistancesArray(core::Split(lengths_series));
}

TextMeasure::~TextMeasure() {
  if (probe_ == nullptr) return;
  try {
    probe_->Delete();
  } catch (const host::HostError&) {
    // Its layer was locked meanwhile; an empty text draws nothing.
  }
}

double TextMeasure::Length(const std::string& text,
                           const std::string& text_style, double height) {
  if (text.empty()) return 0;
  const auto key = std::make_tuple(text, text_style, height);
  const auto found = lengths_.find(key);
  if (found != lengths_.end()) return found->second;
  double length = 0;
  const host::Layer* layer =
      probe_ == nullptr ? nullptr : document_.GetLayers().Find(probe_->Layer());
  if (probe_ == nullptr || (layer != nullptr && layer->Lock())) {
    length = Profile::GetTextLengthOnDrawing(document_, text, text_style,
                                             height);
    if (probe_ == nullptr)
      probe_ = &document_.ModelSpace().AddText("", {0, 0, 0}, height);
  } else {
    probe_->SetTextString(text);
    probe_->SetHeight(height);
    if (!text_style.empty() &&
        document_.GetTextStyles().Find(text_style) != nullptr)
      probe_->SetStyleName(text_style);
    const host::BoundingBox box = probe_->GetBoundingBox();
    length = std::abs(box.max.x - box.min.x);
    probe_->SetTextString("");
  }
  lengths_.emplace(key, length);
  return length;
}

Sheet::Sheet(host::Document& document, host::Block& block,
             std::string text_style, TextMeasure& measure)
    : document_(document),
      block_(block),
      text_style_(std::move(text_style)),
      measure_(measure) {
  // Texts of a style the drawing lacks keep the drawing's default style.
  if (!text_style_.empty() &&
      document.GetTextStyles().Find(text_style_) == nullptr)
    text_style_.clear();
}

namespace {

bool KeptClear(const char* layer) {
  return std::string_view(layer) == kPipeLayer ||
         std::string_view(layer) == kGroundLayer ||
         std::string_view(layer) == kManholeLayer;
}

}  // namespace

bool Box2::Crosses(const Segment& s) const {
  // Liang-Barsky: the part of the segment inside each slab.
  double t0 = 0, t1 = 1;
  const double dx = s.x2 - s.x1, dy = s.y2 - s.y1;
  const double p[4] = {-dx, dx, -dy, dy};
  const double q[4] = {s.x1 - min_x, max_x - s.x1, s.y1 - min_y, max_y - s.y1};
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

host::Line& Sheet::Line(const host::Point3& a, const host::Point3& b,
                        const char* layer) {
  if (KeptClear(layer)) linework_.push_back({a.x, a.y, b.x, b.y});
  host::Line& line = block_.AddLine(a, b);
  line.SetLayer(layer);
  return line;
}

host::LwPolyline& Sheet::Polyline(const std::vector<double>& xy, bool closed,
                                  const char* layer) {
  if (KeptClear(layer)) {
    for (size_t i = 0; i + 3 < xy.size(); i += 2)
      linework_.push_back({xy[i], xy[i + 1], xy[i + 2], xy[i + 3]});
    if (closed && xy.size() >= 4)
      linework_.push_back(
          {xy[xy.size() - 2], xy.back(), xy[0], xy[1]});
  }
  host::LwPolyline& polyline = block_.AddLightWeightPolyline(xy);
  polyline.SetClosed(closed);
  polyline.SetLayer(layer);
  return polyline;
}

host::Text& Sheet::Text(const std::string& text, const host::Point3& at,
                        double height, const char* layer, double rotation,
                        host::TextAlignment alignment) {
  host::Text& entity = block_.AddText(text, at, height);
  entity.SetLayer(layer);
  if (!text_style_.empty()) entity.SetStyleName(text_style_);
  if (alignment != host::TextAlignment::kLeft) {
    entity.SetAlignment(alignment);
    entity.SetTextAlignmentPoint(at);
  }
  if (rotation != 0) entity.SetRotation(rotation);
  return entity;
}

double Sheet::TextLength(const std::string& text, double height) {
  return measure_.Length(text, text_style_, height);
}

}  // namespace kestrana::profile
