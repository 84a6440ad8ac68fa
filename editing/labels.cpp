// Element labels: the labels in use in a network and the next free one.
#include "editing/labels.h"

#include <algorithm>
#include <stdexcept>

#include "core/filters.h"
#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "core/text.h"
#include "core/values.h"
#include "editing/editing.h"
#include "host/host.h"

namespace kestrana::editing {

using core::General;
using core::PipeField;

namespace {

// Label prefixes are two characters; what follows is the number.
constexpr size_t kPrefixLength = 2;

bool IsPipeType(std::string_view element_type) {
  return element_type == core::kGravityPipe ||
         element_type == core::kPressurePipe;
}

}  // namespace

LabelNumbers::LabelNumbers(const std::vector<std::string>& labels) {
  for (const std::string& label : labels) {
    if (label.size() <= kPrefixLength) continue;
    double number = 0;
    try {
      number = core::RoundHalfEven(
          core::NumericValue(std::string_view(label).substr(kPrefixLength)), 0);
    } catch (const std::overflow_error&) {
      continue;  // far beyond the numbers that count
    }
    if (number >= 1 && number <= kHighestLabelNumber)
      Mark(static_cast<int>(number));
  }
}

void LabelNumbers::Mark(int number) {
  taken_.set(number);
  while (smallest_free_ <= kHighestLabelNumber && taken_.test(smallest_free_))
    ++smallest_free_;
}

int LabelNumbers::Take() {
  const int number = smallest_free_;
  if (number <= kHighestLabelNumber) Mark(number);
  return number;
}

std::string LabelPrefix(std::string_view element_type) {
  return IsPipeType(element_type) ? kPipeLabelPrefix : kNodeLabelPrefix;
}

std::string MakeLabel(std::string_view element_type, int number) {
  return LabelPrefix(element_type) + std::to_string(number);
}

std::string Editing::GetNextLabel(host::Document& document,
                                  std::string_view network_name,
                                  std::string_view element_type) {
  LabelNumbers numbers(
      GetExistingLabelsArray(document, network_name, element_type, {}));
  return MakeLabel(element_type, numbers.Take());
}

std::vector<std::string> Editing::GetExistingLabelsArray(
    host::Document& document, std::string_view network_name,
    std::string_view element_type,
    const std::vector<std::string>& ar_elements_to_ignore_oids) {
  host::SelectionSet& elements =
      General::InitializeSelectionSet(document, "CheckLabelDuplicatoinSet");
  elements.Select(host::SelectMode::kAll, {}, {},
                  core::ElementsOfKindFilter(IsPipeType(element_type)));
  std::vector<std::string> labels;
  for (host::Entity* entity : elements.Entities()) {
    // Node and pipe records share fields 1 and 2.
    std::optional<core::Record> record = core::Record::Read(*entity);
    if (!record || !record->Has(PipeField::kElementType) ||
        record->Text(PipeField::kElementType) != element_type)
      continue;
    const std::optional<core::CombinedLabel> combined =
        core::CombinedLabel::Parse(record->Text(PipeField::kCombinedLabel));
    if (!combined || combined->network != network_name) continue;
    const std::string id = core::IdText(entity->ObjectID());
    if (std::find(ar_elements_to_ignore_oids.begin(),
                  ar_elements_to_ignore_oids.end(),
                  id) != ar_elements_to_ignore_oids.end())
      continue;
    labels.push_back(combined->label);
  }
  labels.emplace_back();
  return labels;
}

}  // namespace kestrana::editing
