// The size of a pipe's section as numbers, and the size text annotations
// and crossing records write ("%%c300", "1200X800", "2 %%c300",
// "2 (1200X800)"), which General::BuildSectionSizeString makes from a pipe
// record.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kestrana::core {

class Record;

struct SectionSize {
  bool box = false;
  double span = 0;  // the diameter of a circular section
  double rise = 0;  // of a box; the record's rise of a circular section
  int cells = 1;

  // The size of a pipe record.
  static SectionSize Of(const Record& pipe);
  // The numbers of a size text; none for a text of no size. A circular
  // text holds no rise, which is then the span.
  static std::optional<SectionSize> Parse(std::string_view text);

  friend bool operator==(const SectionSize&, const SectionSize&) = default;
};

}  // namespace kestrana::core
