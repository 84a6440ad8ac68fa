// What an entity is to the reactions, by the element type its record names.
#pragma once

namespace kestrana::host {
class Entity;
}

namespace kestrana::events {

enum class ElementKind {
  kPipe,
  kNode,
  kCrossingAnno,
  kCrossingLine,
  kAnnotation,
  kArrow,
  kProfile,
  kLowHighPoint,
  kOther,  // no record, or one of no kind the reactions know
};

ElementKind KindOf(const host::Entity& entity);

}  // namespace kestrana::events
