#include "events/element_kind.h"

#include <optional>
#include <string>

#include "core/names.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "crossing/crossing_record.h"
#include "host/host.h"
#include "lowhigh/lowhigh_record.h"
#include "profile/profile_record.h"
#include "viewstyle/annotation_record.h"

namespace kestrana::events {

ElementKind KindOf(const host::Entity& entity) {
  using core::PipeField;
  const std::optional<core::Record> record = core::Record::Read(entity);
  if (!record || !record->Has(PipeField::kElementType) ||
      !record->Value(PipeField::kElementType).IsText())
    return ElementKind::kOther;
  const std::string type = record->Text(PipeField::kElementType);
  if (type == core::kGravityPipe || type == core::kPressurePipe)
    return ElementKind::kPipe;
  if (type == core::kGravityNode || type == core::kPressureNode)
    return ElementKind::kNode;
  if (type == crossing::kCrossingPointAnnotation)
    return ElementKind::kCrossingAnno;
  if (type == crossing::kCrossingPointLine) return ElementKind::kCrossingLine;
  if (type == viewstyle::kAnnotation) return ElementKind::kAnnotation;
  if (type == viewstyle::kArrow) return ElementKind::kArrow;
  if (type == profile::kProfileKind) return ElementKind::kProfile;
  if (type == lowhigh::kLowHighPoint) return ElementKind::kLowHighPoint;
  return ElementKind::kOther;
}

}  // namespace kestrana::events
