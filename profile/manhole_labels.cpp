#include <string>

#include "profile/profile.h"

namespace kestrana::profile {

std::string Profile::GetManholeLabelDelimiter(std::string_view manhole_label) {
  for (const char* delimiter : {".", "-", "/", "_"})
    if (manhole_label.find(delimiter) != std::string_view::npos)
      return delimiter;
  return "";
}

}  // namespace kestrana::profile
