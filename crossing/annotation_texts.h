// What a crossing annotation shows and where it stands: labels, the block
// chosen by the size texts, the five attribute texts.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "crossing/crossing_record.h"

namespace kestrana::host {
class BlockReference;
}

namespace kestrana::crossing {

// The annotation stands this far right of and above the crossing point (in
// drawing units, before the turn to the user coordinate system).
inline constexpr double kAnnotationOffset = 20.0;

// net1 & label1 & net2 & label2 & suffix ("Annotation" or "Line").
std::string CrossingLabel(std::string_view net1, std::string_view label1,
                          std::string_view net2, std::string_view label2,
                          std::string_view suffix);

// One of the three annotation blocks, wide enough for the longer of the two
// size texts ("<network> <size>").
std::string AnnotationBlockName(std::string_view size_text1,
                                std::string_view size_text2);

// The pipe as the annotation shows it.
struct ShownPipe {
  std::string network;
  std::string size_string;
  double invert = 0.0;
  std::string SizeText() const { return network + " " + size_string; }
};

using AttributeTexts = std::array<std::string, kCrossingAttributeCount>;

// In attribute order: the other network's pipe (pipe 2) first.
AttributeTexts MakeAttributeTexts(const ShownPipe& pipe1,
                                  const ShownPipe& pipe2, double clearance);

// Fills the first five attributes; std::runtime_error when the block has
// fewer.
void WriteAttributeTexts(host::BlockReference& annotation,
                         const AttributeTexts& texts);

}  // namespace kestrana::crossing
