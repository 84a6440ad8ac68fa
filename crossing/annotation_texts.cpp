#include "crossing/annotation_texts.h"

#include <stdexcept>

#include "core/names.h"
#include "core/text.h"
#include "host/host.h"

namespace kestrana::crossing {

namespace {

// Characters, not bytes: a network name may hold any letter.
size_t CharacterCount(std::string_view text) {
  size_t count = 0;
  for (unsigned char c : text) count += (c & 0xC0) != 0x80;
  return count;
}

constexpr size_t kMediumBlockFrom = 11;
constexpr size_t kWideBlockFrom = 20;

std::string LevelText(std::string_view caption, double value) {
  return std::string(caption) +
         core::FormatNumber(core::RoundHalfEven(value, 3), "0.000");
}

}  // namespace

std::string CrossingLabel(std::string_view net1, std::string_view label1,
                          std::string_view net2, std::string_view label2,
                          std::string_view suffix) {
  std::string label(net1);
  label.append(label1).append(net2).append(label2).append(suffix);
  return label;
}

std::string AnnotationBlockName(std::string_view size_text1,
                                std::string_view size_text2) {
  const size_t longer =
      std::max(CharacterCount(size_text1), CharacterCount(size_text2));
  if (longer < kMediumBlockFrom) return core::kCrossingAnnoBlockS1;
  if (longer < kWideBlockFrom) return core::kCrossingAnnoBlockS2;
  return core::kCrossingAnnoBlockS3;
}

AttributeTexts MakeAttributeTexts(const ShownPipe& pipe1,
                                  const ShownPipe& pipe2, double clearance) {
  AttributeTexts texts;
  auto at = [&](CrossingAttribute a) -> std::string& {
    return texts[static_cast<size_t>(a)];
  };
  at(CrossingAttribute::kPipe2Size) = pipe2.SizeText();
  at(CrossingAttribute::kPipe2Invert) = LevelText("I.L.= ", pipe2.invert);
  at(CrossingAttribute::kPipe1Size) = pipe1.SizeText();
  at(CrossingAttribute::kPipe1Invert) = LevelText("I.L.= ", pipe1.invert);
  at(CrossingAttribute::kClearance) = LevelText("Clearance= ", clearance);
  return texts;
}

void WriteAttributeTexts(host::BlockReference& annotation,
                         const AttributeTexts& texts) {
  std::vector<host::AttributeReference*> attributes =
      annotation.GetAttributes();
  if (attributes.size() < texts.size())
    throw std::runtime_error(
        "the crossing annotation " + std::to_string(annotation.ObjectID()) +
        " (block " + annotation.Name() + ") has " +
        std::to_string(attributes.size()) + " attributes, not " +
        std::to_string(texts.size()));
  for (size_t i = 0; i < texts.size(); ++i)
    attributes[i]->SetTextString(texts[i]);
}

}  // namespace kestrana::crossing
