// One text per unordered pair of (network, text) couples, so that a pair
// met from either side is found in a hash set. The pieces are
// length-prefixed: no text, however damaged, can pose as another.
#pragma once

#include <string>
#include <string_view>

namespace kestrana::crossing {

inline std::string PairKey(std::string_view net1, std::string_view text1,
                           std::string_view net2, std::string_view text2) {
  auto couple = [](std::string_view net, std::string_view text) {
    return std::to_string(net.size()) + ":" + std::string(net) +
           std::to_string(text.size()) + ":" + std::string(text);
  };
  std::string a = couple(net1, text1), b = couple(net2, text2);
  return a < b ? a + b : b + a;
}

}  // namespace kestrana::crossing
