// Drawing crossing annotations with their leader lines, records and links.
#include <algorithm>

#include "core/filters.h"
#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/pipe_record.h"
#include "core/references.h"
#include "core/text.h"
#include "core/values.h"
#include "crossing/annotation_texts.h"
#include "crossing/crossing.h"
#include "crossing/crossing_record.h"
#include "crossing/crossing_search.h"
#include "host/host.h"
#include "profile/profile.h"

namespace kestrana::crossing {

using core::General;
using core::PipeField;

namespace {

void AppendLink(host::Document& document, const std::string& pipe_oid,
                const std::string& anno_label, host::ObjectId anno_id) {
  host::Entity& pipe = core::EntityFromIdText(document, pipe_oid);
  core::Record record = ReadPipeRecord(pipe);
  core::AddLink(record, core::kCrossingLinks, anno_label,
                core::IdText(anno_id));
  record.Write(pipe);
}

}  // namespace

int Crossing::BuildCrossingPointsAfterImporting(host::Document& document,
                                                host::SelectionSet& set_pipes,
                                                std::string_view model_units) {
  if (General::GetNetworkDefinitions(document).Rows() < 2 ||
      set_pipes.Count() == 0)
    return 0;
  std::vector<types::CrossPoint> points = CheckCrossingPointsDuplication(
      document, GetCrossingPointsArrayForSetOfPipes(document, set_pipes));
  if (types::IsNoCrossing(points.front())) return 0;
  ApplyCrossingSettings(document, DrawCrossingPoints(document, points), false);
  profile::Profile::FlagProfilesRelatedToCrossingPoints(document, points);
  return static_cast<int>(std::count_if(
      points.begin(), points.end(),
      [](const types::CrossPoint& p) { return !types::IsNoCrossing(p); }));
}

host::SelectionSet& Crossing::DrawCrossingPoints(
    host::Document& document,
    const std::vector<types::CrossPoint>& ar_cross_points) {
  General::CreateStandardBlock(document, "CrossingPoint");
  const double angle = General::GetCorrectionAngleForCS(document);
  host::SelectionSet& drawn =
      General::InitializeSelectionSet(document, "SetCrossingPoints");
  host::Block& model = document.ModelSpace();
  for (const types::CrossPoint& point : ar_cross_points) {
    if (types::IsNoCrossing(point)) continue;
    const ShownPipe pipe1{point.Pipe1Net, point.Pipe1SizeString,
                          point.Pipe1Invert};
    const ShownPipe pipe2{point.Pipe2Net, point.Pipe2SizeString,
                          point.Pipe2Invert};
    const host::Point3 at{point.Easting, point.Northing, 0};
    const host::Point3 anchor{point.Easting + kAnnotationOffset,
                              point.Northing + kAnnotationOffset, 0};
    host::BlockReference& annotation = model.InsertBlock(
        anchor, AnnotationBlockName(pipe1.SizeText(), pipe2.SizeText()), 1, 1,
        1, 0);
    annotation.SetLayer(core::kCrossingTextLayer);
    WriteAttributeTexts(annotation,
                        MakeAttributeTexts(pipe1, pipe2, point.Clearance));
    host::Line& line = model.AddLine(at, anchor);
    line.SetLayer(core::kCrossingLinesLayer);
    line.Rotate(at, angle);
    annotation.Rotate(at, angle);
    AddCorssingPointXdata(document, point, annotation, line);
    drawn.AddItems({&annotation, &line});
  }
  return drawn;
}

void Crossing::AddCorssingPointXdata(host::Document& document,
                                     const types::CrossPoint& my_cross_point,
                                     host::BlockReference& cross_point_anno,
                                     host::Line& cross_point_line) {
  const types::CrossPoint& p = my_cross_point;
  const std::string anno_label = CrossingLabel(
      p.Pipe1Net, p.Pipe1Label, p.Pipe2Net, p.Pipe2Label, kAnnoLabelSuffix);
  const std::string line_label = CrossingLabel(
      p.Pipe1Net, p.Pipe1Label, p.Pipe2Net, p.Pipe2Label, kLineLabelSuffix);
  const std::string anno_id = core::IdText(cross_point_anno.ObjectID());
  const std::string line_id = core::IdText(cross_point_line.ObjectID());

  using F = CrossingAnnoField;
  core::Record anno = core::Record::WithCodes(kCrossingAnnoRecordCodes);
  anno.SetText(F::kCombinedLabel,
               core::CombinedLabel{kAnnoKind, "", anno_label}.Format());
  anno.SetText(F::kElementType, kCrossingPointAnnotation);
  anno.SetText(F::kPipe1Net, p.Pipe1Net);
  anno.SetText(F::kPipe2Net, p.Pipe2Net);
  anno.SetText(F::kPipe1LabelRef, core::ReferenceEntry(p.Pipe1Label));
  anno.SetText(F::kPipe2LabelRef, core::ReferenceEntry(p.Pipe2Label));
  anno.SetReal(F::kPipe1Rise, p.Pipe1Rise);
  anno.SetReal(F::kPipe2Rise, p.Pipe2Rise);
  anno.SetText(F::kPipe1SizeString, p.Pipe1SizeString);
  anno.SetText(F::kPipe2SizeString, p.Pipe2SizeString);
  anno.SetReal(F::kClearance, p.Clearance);
  anno.SetText(F::kPipe1OIDRef, core::ReferenceEntry(p.Pipe1OID));
  anno.SetText(F::kPipe2OIDRef, core::ReferenceEntry(p.Pipe2OID));
  anno.SetText(F::kLineLabelRef, core::ReferenceEntry(line_label));
  anno.SetText(F::kLineOIDRef, core::ReferenceEntry(line_id));
  anno.SetText(F::kPoint, core::CrossingPoint{p.Easting, p.Northing}.Format());
  anno.Write(cross_point_anno);

  using L = CrossingLineField;
  core::Record line = core::Record::WithCodes(kCrossingLineRecordCodes);
  line.SetText(L::kCombinedLabel,
               core::CombinedLabel{kLineKind, "", line_label}.Format());
  line.SetText(L::kElementType, kCrossingPointLine);
  line.SetText(L::kAnnoLabelRef, core::ReferenceEntry(anno_label));
  line.SetText(L::kAnnoOIDRef, core::ReferenceEntry(anno_id));
  line.Write(cross_point_line);

  AppendLink(document, p.Pipe1OID, anno_label, cross_point_anno.ObjectID());
  AppendLink(document, p.Pipe2OID, anno_label, cross_point_anno.ObjectID());
}

host::SelectionSet& Crossing::GetExistingCrossingPointsSet(
    host::Document& document, std::string_view net_name) {
  host::SelectionSet& set =
      General::InitializeSelectionSet(document, "SetCrossPointAnno");
  set.Select(host::SelectMode::kAll, {}, {},
             core::BlockInsertsFilter({core::kCrossingAnnoBlockS1,
                                       core::kCrossingAnnoBlockS2,
                                       core::kCrossingAnnoBlockS3}));
  if (net_name.empty() || set.Count() == 0) return set;
  std::vector<host::Entity*> kept;
  for (host::Entity* annotation : set.Entities()) {
    core::Record record = core::ReadRecordWithFields(
        *annotation, kCrossingAnnoRecordLength, "crossing annotation");
    if (record.Text(CrossingAnnoField::kPipe1Net) == net_name ||
        record.Text(CrossingAnnoField::kPipe2Net) == net_name)
      kept.push_back(annotation);
  }
  // One rebuild rather than removing members one by one.
  set.Clear();
  set.AddItems(kept);
  return set;
}

}  // namespace kestrana::crossing
