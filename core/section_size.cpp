#include "core/section_size.h"

#include "core/names.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "core/text.h"

namespace kestrana::core {

namespace {

constexpr std::string_view kDiameterSign = "%%c";

// The whole text as a positive number, or none.
std::optional<double> Positive(std::string_view text) {
  std::optional<double> value = ParseNumber(text);
  if (!value || *value <= 0) return std::nullopt;
  return value;
}

}  // namespace

SectionSize SectionSize::Of(const Record& pipe) {
  return {pipe.Text(PipeField::kSectionShape) == kSectionShapeBox,
          pipe.Number(PipeField::kSpan), pipe.Number(PipeField::kRise),
          pipe.Int16(PipeField::kNumCells)};
}

std::optional<SectionSize> SectionSize::Parse(std::string_view text) {
  SectionSize size;
  // Several cells: "<n> %%c<d>" or "<n> (<s>X<r>)".
  if (size_t space = text.find(' '); space != std::string_view::npos) {
    std::optional<double> cells = Positive(text.substr(0, space));
    if (!cells || *cells != static_cast<int>(*cells)) return std::nullopt;
    size.cells = static_cast<int>(*cells);
    text.remove_prefix(space + 1);
    if (text.size() > 2 && text.front() == '(' && text.back() == ')')
      text = text.substr(1, text.size() - 2);
    else if (text.substr(0, kDiameterSign.size()) != kDiameterSign)
      return std::nullopt;
  }
  if (text.substr(0, kDiameterSign.size()) == kDiameterSign) {
    std::optional<double> diameter =
        Positive(text.substr(kDiameterSign.size()));
    if (!diameter) return std::nullopt;
    size.span = size.rise = *diameter;
    return size;
  }
  const size_t x = text.find_first_of("Xx");
  if (x == std::string_view::npos) return std::nullopt;
  std::optional<double> span = Positive(text.substr(0, x));
  std::optional<double> rise = Positive(text.substr(x + 1));
  if (!span || !rise) return std::nullopt;
  size.box = true;
  size.span = *span;
  size.rise = *rise;
  return size;
}

}  // namespace kestrana::core
