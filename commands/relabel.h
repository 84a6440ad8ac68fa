// What hangs on an element by its label follows a new label: the labels of
// its annotation, arrow and low/high marker, their references back to it,
// and the pipe's entry in the profiles that show it. Object IDs are renewed
// from these labels in the next session, so a label left behind would lose
// the link there, and a free label given to a new element would meet it.
#pragma once

#include <string>

namespace kestrana::host {
class Document;
class Entity;
}  // namespace kestrana::host

namespace kestrana::commands {

// After the element's own record took its new label.
void RelabelDependents(host::Document& document, host::Entity& element);

}  // namespace kestrana::commands
