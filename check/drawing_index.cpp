#include "check/drawing_index.h"

#include <cmath>
#include <span>
#include <stdexcept>

#include "core/lists.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/project_record.h"
#include "core/text.h"
#include "crossing/crossing_record.h"
#include "host/host.h"
#include "library/library_record.h"
#include "lowhigh/lowhigh_record.h"
#include "profile/profile_record.h"
#include "viewstyle/annotation_record.h"

namespace kestrana::check {

std::string FieldText(const core::Record& record, int field) {
  const core::Field at = core::Field::At(field);
  return record.Has(at) ? record.Text(at) : std::string();
}

std::optional<double> SafeNumber(std::string_view text) {
  try {
    return core::ParseNumber(text);
  } catch (const std::overflow_error&) {
    return std::nullopt;
  }
}

namespace {

// The group codes of fields 1 on of the kinds whose numbers the audit reads.
std::span<const int16_t> CodesOf(std::string_view type) {
  if (type == core::kGravityPipe || type == core::kPressurePipe)
    return core::kPipeRecordCodes;
  if (type == core::kGravityNode || type == core::kPressureNode)
    return core::kNodeRecordCodes;
  if (type == crossing::kCrossingPointAnnotation)
    return crossing::kCrossingAnnoRecordCodes;
  return {};
}

// The first field meant to hold a number that holds none, or "".
std::string NotANumber(const core::Record& record, std::string_view type) {
  std::span<const int16_t> codes = CodesOf(type);
  for (size_t i = 0; i < codes.size(); ++i) {
    if (codes[i] == core::code::kText) continue;
    const host::XValue& value = record.Value(core::Field::At(static_cast<int>(i) + 1));
    bool number = value.IsText() ? SafeNumber(value.Text()).has_value()
                                 : !value.IsReal() || std::isfinite(value.Real());
    if (!number) return std::to_string(i + 1);
  }
  return "";
}

}  // namespace

int DrawingIndex::RecordLength(std::string_view type) {
  if (type == core::kGravityPipe || type == core::kPressurePipe)
    return core::kPipeRecordLength;
  if (type == core::kGravityNode || type == core::kPressureNode)
    return core::kNodeRecordLength;
  if (type == viewstyle::kAnnotation || type == viewstyle::kArrow)
    return viewstyle::kAnnotationRecordLength;
  if (type == crossing::kCrossingPointAnnotation)
    return crossing::kCrossingAnnoRecordLength;
  if (type == crossing::kCrossingPointLine)
    return crossing::kCrossingLineRecordLength;
  if (type == lowhigh::kLowHighPoint) return lowhigh::kLowHighRecordLength;
  if (type == profile::kProfileKind) return profile::kProfileRecordLength;
  if (type == profile::kPlanAnnoKind) return profile::kPlanAnnoRecordLength;
  if (type == library::kMaterialLibraryPoint)
    return library::kMaterialLibraryRecordLength;
  if (type == library::kSectionSizeLibraryPoint)
    return library::kSizeLibraryRecordLength;
  return 0;
}

DrawingIndex::DrawingIndex(host::Document& document) : document_(&document) {
  project_ = core::FindProjectRecord(document);
  if (project_) {
    units_ = FieldText(*project_, static_cast<int>(core::ProjectField::kModelUnits));
    std::string names =
        FieldText(*project_, static_cast<int>(core::ProjectField::kNetworkNames));
    std::string types =
        FieldText(*project_, static_cast<int>(core::ProjectField::kNetworkTypes));
    std::vector<std::string> name_list = core::ListEntries(names);
    std::vector<std::string> type_list = core::ListEntries(types);
    for (size_t i = 0; i < name_list.size(); ++i)
      networks_.push_back(
          {name_list[i], i < type_list.size() ? type_list[i] : std::string()});
  }
  for (host::Entity* entity : document.ModelSpace().Entities()) {
    std::optional<core::Record> record = core::Record::Read(*entity);
    if (!record) continue;
    Item item{entity, *record, FieldText(*record, 2), "", "", false, ""};
    std::vector<std::string> pieces = core::Split(FieldText(*record, 1));
    if (pieces.size() > 1) item.network = pieces[1];
    if (pieces.size() > 2) item.label = pieces[2];
    int length = RecordLength(item.type);
    item.whole = length > 0 && record->Size() >= length;
    if (item.whole) {
      item.not_a_number = NotANumber(*record, item.type);
      item.whole = item.not_a_number.empty();
    }
    by_type_[item.type].push_back(entity->ObjectID());
    items_.emplace(entity->ObjectID(), std::move(item));
  }
}

const Network* DrawingIndex::FindNetwork(std::string_view name) const {
  for (const Network& n : networks_)
    if (n.name == name) return &n;
  return nullptr;
}

const Item* DrawingIndex::Find(host::ObjectId id) const {
  auto it = items_.find(id);
  return it == items_.end() ? nullptr : &it->second;
}

const Item* DrawingIndex::Find(std::string_view id_text) const {
  std::optional<host::ObjectId> id = core::ParseObjectId(id_text);
  return id ? Find(*id) : nullptr;
}

const std::vector<host::ObjectId>& DrawingIndex::OfType(
    std::string_view type) const {
  static const std::vector<host::ObjectId> kNone;
  auto it = by_type_.find(type);
  return it == by_type_.end() ? kNone : it->second;
}

}  // namespace kestrana::check
