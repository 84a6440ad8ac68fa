// Annotation blocks, annotation texts, anchors and rotations.
#include <cmath>
#include <stdexcept>
#include <string>

#include "core/general.h"
#include "core/geometry.h"
#include "core/guards.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "core/text.h"
#include "host/host.h"
#include "viewstyle/annotation_layout.h"
#include "viewstyle/annotation_record.h"
#include "viewstyle/view_style.h"

namespace kestrana::viewstyle {

namespace {

namespace col = format_column;
using core::General;
using core::NodeField;
using core::PipeField;

constexpr char kLayerZero[] = "0";
// Arrow triangle in text heights: base at -0.75 h, tip at 0.75 h.
constexpr double kArrowHalfLength = 0.75;
constexpr double kArrowHalfWidth = 0.5;
// A vertical pipe's direction before the arc tangent is taken.
constexpr double kVerticalRun = 1e-10;

bool Shown(const core::TextTable& format, int row) {
  return format(row, col::kShow) == kShown;
}

// A value rounded to the item's places and written with its pattern.
std::string FormatValue(double value, const std::string& precision,
                        const std::string& pattern) {
  int places = core::ToInt16(core::NumericValue(precision));
  return core::FormatNumber(core::RoundHalfEven(value, places), pattern);
}

// Rise in level units: millimetres, inches (circular) or feet (box).
double RiseDivisor(bool metric, const std::string& shape) {
  if (metric) return 1000;
  return shape == core::kSectionShapeCircular ? 12 : 1;
}

// What a pipe's items are made of, read once per pipe.
struct PipeFacts {
  double length;
  double start_invert, end_invert;
  double start_ground, end_ground;
  double rise;  // in level units
};

PipeFacts ReadPipeFacts(host::Document& document, host::Entity& entity,
                        const core::Record& pipe, bool metric) {
  auto ground = [&](PipeField node_link) {
    return General::GetGroundLevelAtNode(document,
                                         LinkedObjectId(pipe.Text(node_link)));
  };
  return {host::As<host::LwPolyline>(entity).Length(),
          pipe.Number(PipeField::kStartInvert),
          pipe.Number(PipeField::kEndInvert),
          ground(PipeField::kStartNodeOID),
          ground(PipeField::kEndNodeOID),
          pipe.Number(PipeField::kRise) /
              RiseDivisor(metric, pipe.Text(PipeField::kSectionShape))};
}

// The value text of one pipe item.
std::string PipeValue(const core::Record& pipe, const PipeFacts& f,
                      PipeItem item, int row, const core::TextTable& format) {
  auto number = [&](double value) {
    return FormatValue(value, format(row, col::kPrecision),
                       format(row, col::kPattern));
  };
  switch (item) {
    case PipeItem::kLabel:
      return General::EntityLabelFromCombined(
          pipe.Text(PipeField::kCombinedLabel));
    case PipeItem::kLength:
      return number(f.length);
    case PipeItem::kSize:
      return General::BuildSectionSizeString(pipe);
    case PipeItem::kSlope: {
      if (f.length == 0)
        throw std::domain_error("pipe " +
                                General::EntityLabelFromCombined(
                                    pipe.Text(PipeField::kCombinedLabel)) +
                                " has zero length, so it has no slope");
      // Written positive whatever the flow direction.
      double slope = std::abs(f.start_invert - f.end_invert) / f.length;
      return General::BuildSlopeString(slope, format(row, col::kPrecision),
                                       format(row, col::kDecimals),
                                       format(row, col::kNotation))
          .value_or("");
    }
    case PipeItem::kMaterial:
      return pipe.Text(PipeField::kMaterial);
    case PipeItem::kStartInvert:
      return number(f.start_invert);
    case PipeItem::kEndInvert:
      return number(f.end_invert);
    case PipeItem::kStartGround:
      return number(f.start_ground);
    case PipeItem::kEndGround:
      return number(f.end_ground);
    // Cover to the pipe's top, depth to its invert.
    case PipeItem::kStartCover:
      return number(f.start_ground - f.start_invert - f.rise);
    case PipeItem::kEndCover:
      return number(f.end_ground - f.end_invert - f.rise);
    case PipeItem::kStartDepth:
      return number(f.start_ground - f.start_invert);
    case PipeItem::kEndDepth:
      return number(f.end_ground - f.end_invert);
    case PipeItem::kArrow:
      break;
  }
  return "";
}

std::string NodeValue(const core::Record& node, NodeItem item, int row,
                      const core::TextTable& format) {
  auto number = [&](double value) {
    return FormatValue(value, format(row, col::kPrecision),
                       format(row, col::kPattern));
  };
  const double ground = node.Number(NodeField::kGroundLevel);
  const double sump = node.Number(NodeField::kSumpLevel);
  switch (item) {
    case NodeItem::kLabel:
      return General::EntityLabelFromCombined(
          node.Text(NodeField::kCombinedLabel));
    case NodeItem::kGround:
      return number(ground);
    case NodeItem::kSump:
      return number(sump);
    case NodeItem::kDepth:
      return number(ground - sump);
  }
  return "";
}

}  // namespace

AnnotationCounts ViewStyle::GetNumberOfAnnotationStrings(
    const core::TextTable& ar_annotation_format) {
  double sums[kElementKinds.size()] = {};
  for (const ItemInfo& item : Items()) {
    double show =
        core::NumericValue(ar_annotation_format(item.field, col::kShow));
    if (item.form == ItemForm::kFlag) continue;  // arrows are no lines
    // Coordinates are two lines, easting and northing.
    if (item.form == ItemForm::kCoordinates) show = show == 1 ? 2 : 0;
    sums[static_cast<int>(item.kind)] += show;
  }
  AnnotationCounts counts;
  for (size_t k = 0; k < counts.size(); ++k) counts[k] = core::ToInt16(sums[k]);
  return counts;
}

void ViewStyle::DefineAttributeBlocks(host::Document& document,
                                      const core::TextTable& ar_anno_format) {
  AnnotationCounts counts = GetNumberOfAnnotationStrings(ar_anno_format);
  core::SavedActiveTextStyle previous(document);
  // New attribute definitions take the active text style; a style the
  // drawing lacks fails here, before any block is touched.
  document.SetActiveTextStyle(document.GetTextStyles().Item(ar_anno_format(
      static_cast<int>(ViewStyleField::kTextStyle), col::kShow)));
  InitializeAttributeBlocks(document, counts, ar_anno_format);
}

void ViewStyle::InitializeAttributeBlocks(
    host::Document& document,
    const AnnotationCounts& ar_count_attribute_strings,
    const core::TextTable& ar_anno_format) {
  host::Blocks& blocks = document.GetBlocks();
  std::vector<const char*> names;
  for (ElementKind kind : kElementKinds)
    names.push_back(AttributeBlockName(kind));
  names.push_back(kDirectionArrowBlock);
  for (const char* name : names)
    if (host::Block* block = blocks.Find(name))
      while (block->Count() > 0) block->Item(0).Delete();
  for (const char* name : names)
    if (!blocks.Find(name)) blocks.Add({0, 0, 0}, name);

  const double height = StyleTextHeight(ar_anno_format);
  const double pitch = LinePitch(height);
  for (ElementKind kind : kElementKinds) {
    int count = ar_count_attribute_strings[static_cast<int>(kind)];
    if (count == 0) continue;
    host::Block& block = blocks.Item(AttributeBlockName(kind));
    std::vector<double> offsets =
        LineOffsets(count, DefinitionMiddleIndex(kind, count), pitch);
    for (int k = 1; k <= count; ++k) {
      std::string number = std::to_string(k);
      host::AttributeDefinition& attribute = block.AddAttribute(
          height, 0, kAttributePrompt + number, {0, offsets[k - 1], 0},
          kAttributeTag + number, "");
      attribute.SetLayer(kLayerZero);
    }
  }

  host::Block& arrow = blocks.Item(kDirectionArrowBlock);
  const double along = kArrowHalfLength * height;
  const double across = kArrowHalfWidth * height;
  host::LwPolyline& triangle =
      arrow.AddLightWeightPolyline({-along, -across, -along, across, along, 0});
  triangle.SetClosed(true);
  triangle.SetLayer(kLayerZero);
  host::Hatch& fill = arrow.AddHatch(1, "SOLID", true);
  fill.SetLayer(kLayerZero);
  fill.AppendOuterLoop({&triangle});
  fill.Evaluate();
}

std::vector<std::string> ViewStyle::GetAnnotationStrings(
    host::Document& document, host::Entity& entity,
    const core::TextTable& ar_anno_format) {
  const core::TextTable& format = ar_anno_format;
  core::Record record = core::Record::ReadRequired(entity);
  const bool metric = General::GetModelUnits(document) == core::kMetric;
  std::optional<ElementKind> kind = KindOfElementType(
      record.Has(PipeField::kElementType) ? record.Text(PipeField::kElementType)
                                          : "");
  std::vector<std::string> texts;
  if (!kind) return texts;
  auto add = [&](int row, const std::string& value) {
    texts.push_back(format(row, col::kPrefix) + value +
                    format(row, col::kSuffix));
  };
  if (IsPipe(*kind)) {
    // The end nodes are read even when no level is shown: a pipe that names
    // no node is damaged, and says so.
    PipeFacts facts = ReadPipeFacts(document, entity, record, metric);
    for (int offset = 0; offset < kPipeTextItems; ++offset) {
      PipeItem item = static_cast<PipeItem>(offset);
      int row = ItemField(*kind, item);
      if (Shown(format, row))
        add(row, PipeValue(record, facts, item, row, format));
    }
    return texts;
  }
  for (int offset = 0; offset < kNodeTextItems; ++offset) {
    NodeItem item = static_cast<NodeItem>(offset);
    int row = ItemField(*kind, item);
    if (Shown(format, row)) add(row, NodeValue(record, item, row, format));
  }
  int row = CoordinatesField(*kind);
  if (Shown(format, row)) {
    host::Point3 at = host::As<host::BlockReference>(entity).InsertionPoint();
    const std::string& precision = format(row, col::kCoordinatesPrecision);
    const std::string& pattern = format(row, col::kCoordinatesPattern);
    texts.push_back("E " + FormatValue(at.x, precision, pattern));
    texts.push_back("N " + FormatValue(at.y, precision, pattern));
  }
  return texts;
}

AnnoAnchor ViewStyle::GetAnnoXYTheta(host::Entity& element_entity,
                                     std::string_view element_type,
                                     double correction_angle_for_cs) {
  AnnoAnchor anchor;
  if (element_type != core::kPipeKind) {
    host::Point3 at =
        host::As<host::BlockReference>(element_entity).InsertionPoint();
    anchor.x = at.x;
    anchor.y = at.y;
    anchor.text_rotation = correction_angle_for_cs;
    return anchor;
  }
  auto& pipe = host::As<host::LwPolyline>(element_entity);
  const std::vector<double> xy = pipe.Coordinates();
  const double half = pipe.Length() / 2;
  double walked = 0;
  for (size_t i = 0; i + 3 < xy.size(); i += 2) {
    const double x1 = xy[i], y1 = xy[i + 1], x2 = xy[i + 2], y2 = xy[i + 3];
    const double segment = core::PlanDistance(x1, y1, x2, y2);
    if (walked + segment < half) {
      walked += segment;
      continue;
    }
    const double t = segment > 0 ? (half - walked) / segment : 0;
    anchor.x = x1 + (x2 - x1) * t;
    anchor.y = y1 + (y2 - y1) * t;
    anchor.text_rotation =
        GetTextRotation(x1, y1, x2, y2, correction_angle_for_cs);
    anchor.arrow_rotation = GetArrowRotation(x1, y1, x2, y2);
    break;
  }
  return anchor;
}

double ViewStyle::GetTextRotation(double x1, double y1, double x2, double y2,
                                  double correction_angle_for_cs) {
  const double a = General::GetAngleFromDelta(x2 - x1, y2 - y1);
  double d = a - correction_angle_for_cs;
  if (d < 0) d += core::kTwoPi;
  // Turn texts that would read downwards or upside down by half a turn.
  if (core::kPi / 2 < d && d <= core::kPi) return a + core::kPi;
  if (core::kPi < d && d <= core::kThreePi / 2) return a - core::kPi;
  return a;
}

double ViewStyle::GetArrowRotation(double x1, double y1, double x2, double y2) {
  const double dx = x2 - x1, dy = y2 - y1;
  const double r = std::atan(dy / (dx == 0 ? kVerticalRun : dx));
  if (dx < 0) return r + core::kPi;
  if (dy < 0) return r + core::kTwoPi;
  return r;
}

}  // namespace kestrana::viewstyle
