// Element records: combined labels, reference and object-ID lists, size and
// slope texts.
#include <cmath>
#include <optional>
#include <stdexcept>

#include "core/general.h"
#include "core/names.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "core/text.h"
#include "core/values.h"
#include "host/host.h"

namespace kestrana::core {

namespace {
constexpr char kNothing[] = "Nothing";

// Field 2 or the network of field 1 of an element's record. Anything that
// is not an element answers "Nothing"; a damaged record answers "".
std::string ElementPart(const host::Object& entity, bool network) {
  std::optional<Record> record = Record::Read(entity);
  if (!record || record->Size() == 1) return kNothing;
  try {
    if (network)
      return CombinedLabel::NetworkOf(record->Text(PipeField::kCombinedLabel));
    return record->Text(PipeField::kElementType);
  } catch (const std::out_of_range&) {
    // Too few fields, or a combined label of too few pieces.
    return "";
  }
}
}  // namespace

std::string General::EntityLabelFromCombined(std::string_view combined_label) {
  return CombinedLabel::LabelOf(combined_label);
}

std::string General::EntityNetworkFromCombined(
    std::string_view combined_label) {
  return CombinedLabel::NetworkOf(combined_label);
}

std::string General::GetElementType(const host::Object& my_entity) {
  return ElementPart(my_entity, false);
}

std::string General::GetElementNetwork(const host::Object& my_entity) {
  return ElementPart(my_entity, true);
}

std::string General::GetNodeTypeFromPipeType(std::string_view pipe_type) {
  return pipe_type == kGravityPipe ? kGravityNode : kPressureNode;
}

bool General::Check_ID_Exists(std::string_view object_id,
                              std::string_view text) {
  if (text.empty()) return false;
  for (const std::string& piece : Split(text))
    if (piece == object_id) return true;
  return false;
}

std::string General::ExcludeID(std::string_view object_id,
                               std::string_view text) {
  if (text.empty()) return "";
  double excluded = NumericValue(object_id);
  std::vector<std::string> pieces = Split(text);
  std::string result;
  for (size_t i = 0; i + 1 < pieces.size(); ++i)
    if (NumericValue(pieces[i]) != excluded) result += pieces[i] + ";";
  return result;
}

std::string General::DeleteReferenceInReferenceString(
    std::string_view reference_string, std::string_view reference_to_be_deleted,
    int format_index) {
  if (format_index != reference_form::kReferenceList &&
      format_index != reference_form::kIdList)
    return "";
  std::vector<std::string> pieces = Split(reference_string);
  auto removed = [&](const std::string& piece) {
    return piece.size() >= reference_to_be_deleted.size() &&
           std::string_view(piece).substr(piece.size() -
                                          reference_to_be_deleted.size()) ==
               reference_to_be_deleted;
  };
  std::string result;
  if (format_index == reference_form::kReferenceList) {
    for (size_t i = 1; i < pieces.size(); ++i)
      if (!removed(pieces[i])) result += ";" + pieces[i];
  } else {
    for (size_t i = 0; i + 1 < pieces.size(); ++i)
      if (!removed(pieces[i])) result += pieces[i] + ";";
  }
  return result;
}

std::string General::ReplaceReferenceInReferenceString(
    std::string_view reference_string, std::string_view old_reference,
    std::string_view new_reference) {
  std::vector<std::string> pieces = Split(reference_string);
  std::string result;
  for (size_t i = 1; i < pieces.size(); ++i) {
    result += ";";
    result +=
        pieces[i] == old_reference ? std::string(new_reference) : pieces[i];
  }
  return result;
}

std::string General::BuildSectionSizeString(const Record& x_data) {
  bool circular =
      x_data.Text(PipeField::kSectionShape) == kSectionShapeCircular;
  std::string span = GeneralText(x_data.Number(PipeField::kSpan));
  std::string rise = GeneralText(x_data.Number(PipeField::kRise));
  int16_t cells = x_data.Int16(PipeField::kNumCells);
  std::string size = circular ? "%%c" + span : span + "X" + rise;
  if (cells == 1) return size;
  std::string count = std::to_string(cells);
  return circular ? count + " " + size : count + " (" + size + ")";
}

std::optional<std::string> General::BuildSlopeString(
    double slope_value, std::string_view precision_index,
    std::string_view decimals_index, std::string_view format_index) {
  double format = NumericValue(format_index);
  if (format == 0 || format == 1) {
    int places = ToInt16(NumericValue(precision_index));
    if (format == 0)
      return FormatNumber(RoundHalfEven(slope_value, places),
                          DecimalsPattern(precision_index, decimals_index));
    return FormatNumber(RoundHalfEven(slope_value, places + 2),
                        PercentPattern(precision_index, decimals_index));
  }
  if (format == 2) {
    if (std::abs(slope_value) <= 1e-6) return "0";
    int32_t ratio = ToInt32(1 / slope_value);
    double step = NumericValue(precision_index);
    if (step == 0)
      ratio = ToInt32(ratio / 10.0) * 10;
    else if (step == 1)
      ratio = ToInt32(ratio / 5.0) * 5;
    return "1/" + std::to_string(ratio);
  }
  return std::nullopt;
}

}  // namespace kestrana::core
