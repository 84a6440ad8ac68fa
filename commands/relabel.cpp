#include "commands/relabel.h"

#include <optional>

#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "host/host.h"
#include "lowhigh/lowhigh_record.h"
#include "profile/profile_record.h"
#include "viewstyle/annotation_record.h"

namespace kestrana::commands {

namespace {

using core::Field;
using core::Record;

// The object a single reference names, or null when it names none.
host::Object* Linked(host::Document& document, const Record& record,
                     Field id_field) {
  std::vector<std::string> ids =
      core::ReferenceValues(record.Text(id_field));
  if (ids.size() != 1) return nullptr;
  std::optional<host::ObjectId> id = core::ParseObjectId(ids[0]);
  if (!id) return nullptr;
  try {
    return &document.ObjectIdToObject(*id);
  } catch (const host::HostError&) {
    return nullptr;  // a broken link is the audit's to report
  }
}

// The linked object's own label becomes `label` & `suffix` and its
// reference back names `label`; the element's label field follows.
void Relabel(host::Document& document, Record& element, Field label_field,
             Field id_field, const std::string& kind, const std::string& network,
             const std::string& label, const std::string& suffix,
             Field own_label, Field back_label) {
  host::Object* linked = Linked(document, element, id_field);
  if (!linked) return;
  std::optional<Record> record = Record::Read(*linked);
  if (!record || !record->Has(back_label)) return;
  record->SetText(own_label, kind + ";" + network + ";" + label + suffix);
  record->SetText(back_label, core::ReferenceEntry(label));
  record->Write(*linked);
  element.SetText(label_field, core::ReferenceEntry(label + suffix));
}

}  // namespace

void RelabelDependents(host::Document& document, host::Entity& element) {
  using core::NodeField;
  using core::PipeField;
  using viewstyle::AnnotationField;
  Record record = Record::ReadRequired(element);
  const std::string combined = record.Text(PipeField::kCombinedLabel);
  const std::string network = core::General::EntityNetworkFromCombined(combined);
  const std::string label = core::General::EntityLabelFromCombined(combined);
  const std::string type = record.Text(PipeField::kElementType);
  // Annotation and arrow labels have no kind before the network.
  if (type == core::kGravityPipe || type == core::kPressurePipe) {
    Relabel(document, record, PipeField::kAnnotationLabelRef,
            PipeField::kAnnotationOIDRef, "", network, label,
            viewstyle::kAnnotation, AnnotationField::kCombinedLabel,
            AnnotationField::kElementLabelRef);
    Relabel(document, record, PipeField::kArrowLabelRef,
            PipeField::kArrowOIDRef, "", network, label, viewstyle::kArrow,
            AnnotationField::kCombinedLabel, AnnotationField::kElementLabelRef);
    // The pipe's entry in each profile that shows it.
    const std::string id = core::IdText(element.ObjectID());
    for (const std::string& profile_id :
         core::ReferenceValues(record.Text(PipeField::kProfileOIDRefs))) {
      std::optional<host::ObjectId> pid = core::ParseObjectId(profile_id);
      if (!pid) continue;
      host::Object* profile_block = nullptr;
      try {
        profile_block = &document.ObjectIdToObject(*pid);
      } catch (const host::HostError&) {
        continue;
      }
      std::optional<Record> profile = Record::Read(*profile_block);
      if (!profile || !profile->Has(profile::ProfileField::kUpdateFlag)) continue;
      profile::PipeChain chain = profile::ReadPipeChain(*profile);
      for (size_t i = 0; i < chain.ids.size(); ++i)
        if (chain.ids[i] == id) chain.labels[i] = label;
      profile::WritePipeChain(*profile, chain);
      profile->Write(*profile_block);
    }
  } else {
    Relabel(document, record, NodeField::kAnnotationLabelRef,
            NodeField::kAnnotationOIDRef, "", network, label,
            viewstyle::kAnnotation, AnnotationField::kCombinedLabel,
            AnnotationField::kElementLabelRef);
    Relabel(document, record, NodeField::kLowHighLabelRef,
            NodeField::kLowHighOIDRef, lowhigh::kLowHighKind, network, label,
            lowhigh::kMarkerSuffix, lowhigh::LowHighField::kCombinedLabel,
            lowhigh::LowHighField::kNodeLabelRef);
  }
  record.Write(element);
}

}  // namespace kestrana::commands
