// Label numbering shared by single conversions and whole batches: the
// numbers in use within one network and element type, and the smallest free
// one.
#pragma once

#include <bitset>
#include <string>
#include <string_view>
#include <vector>

namespace kestrana::editing {

// Numbers 1 to 9999 can be taken; 10000 is answered once they all are, and
// never counts as taken, as the numbering has always done.
inline constexpr int kHighestLabelNumber = 9999;

class LabelNumbers {
 public:
  // The labels in use ("P-4", "N-12", "MH12": the text after the first two
  // characters is read as a number and rounded).
  explicit LabelNumbers(const std::vector<std::string>& labels);
  // The smallest free number, which is then taken.
  int Take();

 private:
  void Mark(int number);
  std::bitset<kHighestLabelNumber + 1> taken_;
  int smallest_free_ = 1;
};

// "P-" for pipe types, "N-" for anything else.
std::string LabelPrefix(std::string_view element_type);
// The prefix and the number: "P-3".
std::string MakeLabel(std::string_view element_type, int number);

}  // namespace kestrana::editing
