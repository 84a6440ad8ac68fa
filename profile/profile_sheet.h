// What the drawing of a profile shares between its files: the layers, the
// text settings of the style, and the sheet every routine draws on (a block
// definition, the style's text style, measured text lengths).
#pragma once

#include <map>
#include <tuple>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/types.h"

namespace kestrana::host {
class Block;
class Document;
class Line;
class LwPolyline;
class Text;
}  // namespace kestrana::host

namespace kestrana::core {
class Record;
}

namespace kestrana::profile {

inline constexpr char kLabelLayer[] = "Profile - Label";
inline constexpr char kDataLayer[] = "Profile - Data";
inline constexpr char kDimensionLayer[] = "Profile - Dimension";
inline constexpr char kFrameLayer[] = "Profile - Frame";
inline constexpr char kGroundLayer[] = "Profile - Ground";
inline constexpr char kPipeLayer[] = "Profile - Pipe";
inline constexpr char kManholeLayer[] = "Profile - Manhole";
inline constexpr char kGridLayer[] = "Profile - Grid";
inline constexpr char kPlanTitleLayer[] = "Profile - Plan Title";
inline constexpr char kPlanStationsLayer[] = "Profile - Plan Stations";

// Vertical texts: a quarter turn, as the system computes it.
inline constexpr double kQuarterTurn = 282.74333886 / 180;

// Parts are drawn side by side this far apart (beyond the label column).
inline constexpr double kPartGap = 60.0;

// Style item 5.
struct TextSettings {
  std::string style;
  double data_height = 0;   // h_d: values in the table and on the profile
  double label_height = 0;  // h: labels; most spacings are multiples of it
  double title_height = 0;  // h_t
};
TextSettings ReadTextSettings(const core::Record& style);

// Manhole half-width on the profile: 0.6 (metric) or 2.0 drawing units.
double ManholeHalfWidth(std::string_view model_units);
// A pipe's rise in level units from the sections series: mm / 1000 in a
// metric project, inches / 12 for circular pipes otherwise, feet for boxes.
double RiseInLevels(double rise, bool circular, std::string_view model_units);
double SpanInLevels(double span, bool circular, std::string_view model_units);

// The values of a series (the pieces after the leading empty one) and the
// same read as numbers.
std::vector<std::string> Values(std::string_view series);
std::vector<double> Numbers(std::string_view series);
// Node positions along a part: 0, then the running sums of the lengths.
std::vector<double> NodePositions(std::string_view lengths_series);

// A straight piece of a drawn line.
struct Segment {
  double x1, y1, x2, y2;
};

// Measures texts on the drawing as GetTextLengthOnDrawing does, with one
// probe text kept for the measurer's life and each text, style and height
// measured once; the profiles a command draws share one measurer.
class TextMeasure {
 public:
  explicit TextMeasure(host::Document& document) : document_(document) {}
  ~TextMeasure();
  TextMeasure(const TextMeasure&) = delete;
  TextMeasure& operator=(const TextMeasure&) = delete;

  double Length(const std::string& text, const std::string& text_style,
                double height);

 private:
  host::Document& document_;
  host::Text* probe_ = nullptr;
  std::map<std::tuple<std::string, std::string, double>, double> lengths_;
};

// A block definition being drawn, with the style's text style.
class Sheet {
 public:
  Sheet(host::Document& document, host::Block& block, std::string text_style,
        TextMeasure& measure);

  host::Document& document() const { return document_; }
  host::Block& block() const { return block_; }

  host::Line& Line(const host::Point3& a, const host::Point3& b,
                   const char* layer);
  host::LwPolyline& Polyline(const std::vector<double>& xy, bool closed,
                             const char* layer);
  // A text on the layer; `at` is the alignment point for any alignment
  // but left.
  host::Text& Text(const std::string& text, const host::Point3& at,
                   double height, const char* layer, double rotation = 0,
                   host::TextAlignment alignment = host::TextAlignment::kLeft);
  // Drawn length of a text in the sheet's text style.
  double TextLength(const std::string& text, double height);
  // The pieces of the pipes, ground line and manholes drawn so far, which
  // annotations keep clear of.
  const std::vector<Segment>& Linework() const { return linework_; }

 private:
  host::Document& document_;
  host::Block& block_;
  std::string text_style_;
  TextMeasure& measure_;
  std::vector<Segment> linework_;
};

// A rectangle: x from min to max, y likewise.
struct Box2 {
  double min_x, min_y, max_x, max_y;
  bool Overlaps(const Box2& o) const {
    return min_x < o.max_x && o.min_x < max_x && min_y < o.max_y &&
           o.min_y < max_y;
  }
  // Whether the segment runs through the box (clipped against it).
  bool Crosses(const Segment& s) const;
};

}  // namespace kestrana::profile
