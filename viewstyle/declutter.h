// Pipe annotations moved clear of each other, as a user drags them where a
// drawing has grown crowded.
#pragma once

#include <string>
#include <vector>

namespace kestrana::host {
class Document;
}

namespace kestrana::viewstyle {

// A pipe annotation of the networks that a line runs through (another pipe,
// a crossing leader) or that lies over another text (an annotation, a
// crossing table) slides along its pipe, with its arrow, to the place
// nearest its own with the fewest such conflicts, keeping clear of the
// pipe's ends. A second round lets an annotation that gave way to one that
// has moved since come back.
void MoveAnnotationsClear(host::Document& document,
                          const std::vector<std::string>& networks);

}  // namespace kestrana::viewstyle
