#include <string>
#include <vector>

#include "core/filters.h"
#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "core/references.h"
#include "editing/editing.h"
#include "host/host.h"
#include "profile/profile.h"
#include "viewstyle/view_style.h"

namespace kestrana::editing {

namespace {

using core::General;
using core::NodeField;
using core::PipeField;

host::SelectionSet& AskOnScreen(host::Document& document,
                                std::string_view set_name, const char* prompt,
                                const host::Filter& filter) {
  host::SelectionSet& set = General::InitializeSelectionSet(document, set_name);
  document.SendCommand(core::kEscape);
  document.GetUtility().Prompt(prompt);
  set.SelectOnScreen(filter);
  return set;
}

// The reference field of a value; empty for no value.
std::string Entry(const std::string& value) {
  return value.empty() ? std::string() : core::ReferenceEntry(value);
}

}  // namespace

host::SelectionSet& Editing::GetPipesToReverse(host::Document& document) {
  return AskOnScreen(document, "SetPipesToReverse", kReversePrompt,
                     core::ElementsOfKindFilter(true));
}

host::SelectionSet& Editing::GetSelectionForGroupEditing(
    host::Document& document) {
  return AskOnScreen(document, "GrEd_SetElementsGroup", kGroupEditingPrompt,
                     core::ElementsFilter());
}

void Editing::ReversePipeReferenceInNode(host::Document& document,
                                         std::string_view pipe_label,
                                         std::string_view pipe_oid,
                                         std::string_view node_oid,
                                         int indicator) {
  host::Entity& node = core::EntityFromIdText(document, node_oid);
  core::Record record = core::Record::ReadRequired(node);
  const bool from_start = indicator == 0;
  const core::LinkFields at_start{NodeField::kPipesAtStartLabels,
                                  NodeField::kPipesAtStartOID};
  const core::LinkFields at_end{NodeField::kPipesAtEndLabels,
                                NodeField::kPipesAtEndOID};
  core::DeleteLink(record, from_start ? at_start : at_end, pipe_label,
                   pipe_oid);
  core::AddLink(record, from_start ? at_end : at_start, pipe_label, pipe_oid);
  record.Write(node);
}

void Editing::ReverseSelectedPipes(host::Document& document,
                                   host::SelectionSet& set_pipes_to_reverse) {
  for (host::Entity* entity : set_pipes_to_reverse.Entities()) {
    auto& pipe = host::As<host::LwPolyline>(*entity);
    core::Record record =
        core::ReadRecordWithFields(pipe, core::kPipeRecordLength, "pipe");
    const std::string label = General::EntityLabelFromCombined(
        record.Text(PipeField::kCombinedLabel));
    const std::string pipe_oid = core::IdText(pipe.ObjectID());
    const std::string start_label =
        core::SingleReference(record, PipeField::kStartNodeLabel);
    const std::string end_label =
        core::SingleReference(record, PipeField::kEndNodeLabel);
    const std::string start_oid =
        core::SingleReference(record, PipeField::kStartNodeOID);
    const std::string end_oid =
        core::SingleReference(record, PipeField::kEndNodeOID);
    const double start_invert = record.Number(PipeField::kStartInvert);
    const double end_invert = record.Number(PipeField::kEndInvert);

    pipe.SetCoordinates(ReversePolylineCoordinates(pipe.Coordinates()));
    if (!start_oid.empty())
      ReversePipeReferenceInNode(document, label, pipe_oid, start_oid, 0);
    if (!end_oid.empty())
      ReversePipeReferenceInNode(document, label, pipe_oid, end_oid, 1);

    record.SetText(PipeField::kStartNodeLabel, Entry(end_label));
    record.SetText(PipeField::kEndNodeLabel, Entry(start_label));
    record.SetText(PipeField::kStartNodeOID, Entry(end_oid));
    record.SetText(PipeField::kEndNodeOID, Entry(start_oid));
    record.SetReal(PipeField::kStartInvert, end_invert);
    record.SetReal(PipeField::kEndInvert, start_invert);
    record.Write(pipe);

    for (const std::string& profile_oid :
         core::ReferenceValues(record.Text(PipeField::kProfileOIDRefs)))
      profile::Profile::ReversePipeDirectionInProfile(document, pipe_oid,
                                                      profile_oid);
    viewstyle::ViewStyle::UpdateAnnotationsAfterEditing(document,
                                                        pipe_oid + ";", true);
  }
}

}  // namespace kestrana::editing
