// The host's wild-card matching of selection filters.
#pragma once

#include <string_view>

namespace kestrana::memhost {

// Matches `text` against `pattern`:
//   *  any sequence (also empty)      ?  any one character
//   #  one digit                     @  one letter
//   .  one character that is neither letter nor digit
//   [abc] [a-z] one of the listed characters; [~abc] one not listed
//   `  the next character literally  ,  separates alternatives
//   ~  first in the pattern: matches what the rest does not match;
//      first in a later alternative: negates that alternative.
// Characters are UTF-8 code points; letter case is ignored when asked
// (ASCII and Latin-1 letters).
bool WildcardMatch(std::string_view text, std::string_view pattern,
                   bool ignore_case);

}  // namespace kestrana::memhost
