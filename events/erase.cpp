#include <string>
#include <vector>

#include "core/general.h"
#include "core/lists.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "core/references.h"
#include "core/text.h"
#include "events/element_kind.h"
#include "events/events.h"
#include "host/host.h"

namespace kestrana::events {

namespace {

// Runs the reaction of the entity's kind; kinds without one need nothing.
void React(host::Document& document, host::Entity& entity,
           const std::string& erased, std::string& to_be_erased,
           std::string& nodes) {
  switch (KindOf(entity)) {
    case ElementKind::kPipe:
      Events::PipeWillBeErased(document, entity, erased, to_be_erased, nodes);
      break;
    case ElementKind::kNode:
      Events::NodeWillBeErased(document, entity, erased, to_be_erased, nodes);
      break;
    case ElementKind::kCrossingAnno:
      Events::CrossingAnnoWillBeErased(document, entity, erased, to_be_erased);
      break;
    case ElementKind::kAnnotation:
      Events::AnnotationWillBeErased(document, entity, erased);
      break;
    case ElementKind::kArrow:
      Events::ArrowWillBeErased(document, entity, erased);
      break;
    case ElementKind::kProfile:
      Events::ProfileWillBeErased(document,
                                  host::As<host::BlockReference>(entity),
                                  erased, to_be_erased);
      break;
    default:
      break;
  }
}

}  // namespace

int EraseWithReactions(host::Document& document,
                       const std::vector<host::Entity*>& chosen) {
  std::string erased;
  for (host::Entity* entity : chosen) {
    const std::string id = core::IdText(entity->ObjectID());
    if (!core::General::Check_ID_Exists(id, erased)) erased += id + ";";
  }
  std::string to_be_erased, nodes;
  for (host::Entity* entity : chosen)
    React(document, *entity, erased, to_be_erased, nodes);
  int count = 0;
  for (const std::string& list : {erased, to_be_erased})
    for (const std::string& id : core::Split(list)) {
      if (id.empty()) continue;
      try {
        core::EntityFromIdText(document, id).Delete();
        ++count;
      } catch (const host::HostError&) {
        // Gone already.
      }
    }
  Events::AnalyzeLowHighAfterDeleting(document, nodes);
  return count;
}

}  // namespace kestrana::events
