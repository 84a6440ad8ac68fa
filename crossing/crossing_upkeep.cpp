// Keeping crossing annotations current: after a pipe is edited, and when a
// network is deleted.
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

core::Record ReadAnnotationRecord(const host::Object& annotation) {
  return core::ReadRecordWithFields(annotation, kCrossingAnnoRecordLength,
                                    "crossing annotation");
}

// The two pipes of an annotation, as a crossing whose profiles are flagged.
types::CrossPoint PipesOf(const core::Record& annotation) {
  auto first = [](const std::string& list) {
    std::vector<std::string> values = core::ReferenceValues(list);
    return values.empty() ? std::string() : values.front();
  };
  types::CrossPoint pipes;
  pipes.Pipe1Net = annotation.Text(CrossingAnnoField::kPipe1Net);
  pipes.Pipe2Net = annotation.Text(CrossingAnnoField::kPipe2Net);
  pipes.Pipe1Label = first(annotation.Text(CrossingAnnoField::kPipe1LabelRef));
  pipes.Pipe2Label = first(annotation.Text(CrossingAnnoField::kPipe2LabelRef));
  pipes.Pipe1OID = first(annotation.Text(CrossingAnnoField::kPipe1OIDRef));
  pipes.Pipe2OID = first(annotation.Text(CrossingAnnoField::kPipe2OIDRef));
  return pipes;
}

host::Point3 CrossingPointOf(const core::Record& annotation) {
  return core::CrossingPoint::Parse(annotation.Text(CrossingAnnoField::kPoint))
      .ToPoint();
}

}  // namespace

void Crossing::DeleteNetworkCrossings(host::Document& document,
                                      std::string_view net_name) {
  std::vector<types::CrossPoint> touched;
  for (host::Entity* annotation :
       GetExistingCrossingPointsSet(document, net_name).Entities()) {
    core::Record record = ReadAnnotationRecord(*annotation);
    const std::string label = General::EntityLabelFromCombined(
        record.Text(CrossingAnnoField::kCombinedLabel));
    core::EntityFromReference(document,
                              record.Text(CrossingAnnoField::kLineOIDRef))
        .Delete();
    const bool first_is_deleted =
        record.Text(CrossingAnnoField::kPipe1Net) == net_name;
    host::Entity& survivor = core::EntityFromReference(
        document,
        record.Text(first_is_deleted ? CrossingAnnoField::kPipe2OIDRef
                                     : CrossingAnnoField::kPipe1OIDRef));
    core::Record pipe = ReadPipeRecord(survivor);
    core::DeleteLink(pipe, core::kCrossingLinks, label,
                     core::IdText(annotation->ObjectID()));
    pipe.Write(survivor);
    touched.push_back(PipesOf(record));
  }
  profile::Profile::FlagProfilesRelatedToCrossingPoints(document, touched);
}

void Crossing::UpdateCrossingsAfterEditing(host::Document& document,
                                           std::string_view edited_pipe_oid) {
  host::Entity& pipe = core::EntityFromIdText(document, edited_pipe_oid);
  const std::vector<std::string> annotation_ids = core::ReferenceValues(
      ReadPipeRecord(pipe).Text(PipeField::kCrossingOIDRefs));
  host::SelectionSet& updated =
      General::InitializeSelectionSet(document, "SetCrossingAnno");
  std::vector<types::CrossPoint> related;
  for (const std::string& id : annotation_ids) {
    host::Entity& annotation = core::EntityFromIdText(document, id);
    UpdateCrossingData(document, annotation);
    updated.AddItems({&annotation});
    related.push_back(PipesOf(ReadAnnotationRecord(annotation)));
  }
  ApplyCrossingSettings(document, updated, false);
  profile::Profile::FlagProfilesRelatedToCrossingPoints(document, related);
}

void Crossing::UpdateCrossingData(host::Document& document,
                                  host::Entity& my_crossing_anno) {
  using F = CrossingAnnoField;
  core::Record record = ReadAnnotationRecord(my_crossing_anno);
  host::Entity& pipe1 =
      core::EntityFromReference(document, record.Text(F::kPipe1OIDRef));
  host::Entity& pipe2 =
      core::EntityFromReference(document, record.Text(F::kPipe2OIDRef));
  const std::string net1 = record.Text(F::kPipe1Net);
  const std::string net2 = record.Text(F::kPipe2Net);
  const host::Point3 point = CrossingPointOf(record);
  const PipeCrossingData data1 = GetCrossingDataOfPipe(document, pipe1, point);
  const PipeCrossingData data2 = GetCrossingDataOfPipe(document, pipe2, point);

  const std::string old_label =
      General::EntityLabelFromCombined(record.Text(F::kCombinedLabel));
  const std::string anno_label =
      CrossingLabel(net1, data1.label, net2, data2.label, kAnnoLabelSuffix);
  const std::string line_label =
      CrossingLabel(net1, data1.label, net2, data2.label, kLineLabelSuffix);
  for (host::Entity* pipe : {&pipe1, &pipe2}) {
    core::Record pipe_record = ReadPipeRecord(*pipe);
    pipe_record.SetText(
        PipeField::kCrossingRefs,
        General::ReplaceReferenceInReferenceString(
            pipe_record.Text(PipeField::kCrossingRefs),
            core::RelatedTo(old_label), core::RelatedTo(anno_label)));
    pipe_record.Write(*pipe);
  }

  const double clearance =
      Clearance(data1.invert, data1.rise, data2.invert, data2.rise);
  record.SetText(F::kCombinedLabel,
                 core::CombinedLabel{kAnnoKind, "", anno_label}.Format());
  record.SetText(F::kPipe1LabelRef, core::ReferenceEntry(data1.label));
  record.SetText(F::kPipe2LabelRef, core::ReferenceEntry(data2.label));
  record.SetReal(F::kPipe1Rise, data1.rise);
  record.SetReal(F::kPipe2Rise, data2.rise);
  record.SetText(F::kPipe1SizeString, data1.size_string);
  record.SetText(F::kPipe2SizeString, data2.size_string);
  record.SetReal(F::kClearance, clearance);
  record.SetText(F::kLineLabelRef, core::ReferenceEntry(line_label));
  record.Write(my_crossing_anno);

  host::Entity& line =
      core::EntityFromReference(document, record.Text(F::kLineOIDRef));
  core::Record line_record = core::ReadRecordWithFields(
      line, kCrossingLineRecordLength, "crossing line");
  line_record.SetText(CrossingLineField::kCombinedLabel,
                      core::CombinedLabel{kLineKind, "", line_label}.Format());
  line_record.SetText(CrossingLineField::kAnnoLabelRef,
                      core::ReferenceEntry(anno_label));
  line_record.Write(line);

  WriteAttributeTexts(
      host::As<host::BlockReference>(my_crossing_anno),
      MakeAttributeTexts({net1, data1.size_string, data1.invert},
                         {net2, data2.size_string, data2.invert}, clearance));
}

PipeCrossingData Crossing::GetCrossingDataOfPipe(host::Document& document,
                                                 host::Entity& my_pipe,
                                                 const host::Point3& int_pnt) {
  core::Record record = ReadPipeRecord(my_pipe);
  const double ratio =
      StationRatio(host::As<host::LwPolyline>(my_pipe), record, int_pnt);
  return {
      General::BuildSectionSizeString(record), InvertAt(record, ratio),
      RiseInLevelUnits(record, General::GetModelUnits(document)),
      General::EntityLabelFromCombined(record.Text(PipeField::kCombinedLabel))};
}

}  // namespace kestrana::crossing
