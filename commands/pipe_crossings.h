// Crossings after a pipe is cut or joined: one annotation per pair of
// crossing pipes, as the crossing search draws them. A split hands each old
// crossing to the part it lies on, but a pair that crossed twice is two
// pairs afterwards; a merge gathers the crossings of every old pipe, so a
// pipe crossed by two of them is annotated twice with one label, which the
// next session's renewal could not tell apart.
#pragma once

#include <vector>

namespace kestrana::host {
class Document;
class Entity;
}  // namespace kestrana::host

namespace kestrana::commands {

// Draws the crossings of the pipes that have none yet with a crossed pipe.
void CrossNewPipes(host::Document& document,
                   const std::vector<host::Entity*>& pipes);
// Erases every annotation of the pipe after the first of each crossed pipe,
// with its leader line and its entries in both pipes.
void DropRepeatedCrossings(host::Document& document, host::Entity& pipe);

}  // namespace kestrana::commands
