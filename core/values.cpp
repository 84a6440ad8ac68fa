#include "core/values.h"

#include <algorithm>
#include <stdexcept>

#include "core/text.h"

namespace kestrana::core {

namespace {
constexpr char kSeparator[] = ";";

std::string Piece(std::string_view text, size_t index) {
  std::vector<std::string> pieces = Split(text);
  if (pieces.size() <= index)
    throw std::out_of_range("'" + std::string(text) +
                            "' is not a combined label");
  return pieces[index];
}
}  // namespace

std::optional<CombinedLabel> CombinedLabel::Parse(std::string_view text) {
  std::vector<std::string> pieces = Split(text);
  if (pieces.size() < 3) return std::nullopt;
  return CombinedLabel{pieces[0], pieces[1], pieces[2]};
}

CombinedLabel CombinedLabel::ParsePadded(std::string_view text) {
  std::vector<std::string> pieces = Split(text);
  pieces.resize(std::max<size_t>(pieces.size(), 3));
  return {pieces[0], pieces[1], pieces[2]};
}

std::string CombinedLabel::NetworkOf(std::string_view text) {
  return Piece(text, 1);
}

std::string CombinedLabel::LabelOf(std::string_view text) {
  return Piece(text, 2);
}

std::string CombinedLabel::Format() const {
  return kind + kSeparator + network + kSeparator + label;
}

ViewStylesField ViewStylesField::Parse(std::string_view text) {
  std::vector<std::string> pieces = Split(text);
  ViewStylesField parsed;
  parsed.active = pieces[0];
  if (pieces.size() > 1) parsed.visibility = pieces[1];
  for (size_t k = 2; k + 1 < pieces.size(); ++k)
    parsed.markers.push_back(pieces[k]);
  return parsed;
}

std::string ViewStylesField::Format() const {
  std::string text = active + kSeparator + visibility + kSeparator;
  for (const std::string& marker : markers) text += marker + kSeparator;
  return text;
}

CrossingPoint CrossingPoint::Parse(std::string_view text) {
  std::vector<std::string> pieces = Split(text);
  pieces.resize(std::max<size_t>(pieces.size(), 2));
  return {NumericValue(pieces[0]), NumericValue(pieces[1])};
}

std::string CrossingPoint::Format() const {
  return GeneralText(easting) + kSeparator + GeneralText(northing);
}

CrossingSettingsField CrossingSettingsField::Parse(std::string_view text) {
  std::vector<std::string> pieces = Split(text);
  CrossingSettingsField parsed;
  parsed.threshold = pieces[0];
  for (size_t i = 1; i + 1 < pieces.size(); i += 2)
    parsed.pairs.emplace_back(pieces[i], pieces[i + 1]);
  return parsed;
}

std::string CrossingSettingsField::Format() const {
  std::string text = threshold;
  for (const auto& [first, second] : pairs)
    text += kSeparator + first + kSeparator + second;
  return text;
}

}  // namespace kestrana::core
