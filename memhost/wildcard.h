// The host's wild-card matching of selection filters.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kestrana::memhost {

// A pattern of the host's wild-card matching, compiled once:
//   *  any sequence (also empty)      ?  any one character
//   #  one digit                     @  one letter
//   .  one character that is neither letter nor digit
//   [abc] [a-z] one of the listed characters; [~abc] one not listed
//   `  the next character literally  ,  separates alternatives
//   ~  first in the pattern: matches what the rest does not match;
//      first in a later alternative: negates that alternative.
// Characters are UTF-8 code points; letter case is ignored when asked
// (ASCII and Latin-1 letters). Plain names and names followed by "*", the
// patterns selection filters mostly hold, are compared in place; matching
// never allocates.
class WildcardPattern {
 public:
  WildcardPattern(std::string_view pattern, bool ignore_case);

  bool Matches(std::string_view text) const;

  // When every alternative is a plain name (escapes resolved), the names,
  // case-folded like FoldCase when case is ignored; empty otherwise.
  const std::vector<std::string>& ExactNames() const { return exact_; }
  // When the pattern is one plain name followed by "*", that name
  // (escapes resolved, folded like FoldCase when case is ignored).
  const std::string* Prefix() const { return is_prefix_ ? &prefix_ : nullptr; }

 private:
  struct Simple {
    std::string text;  // folded when case is ignored
    bool prefix = false;
  };
  bool MatchGeneral(std::string_view text) const;
  bool MatchAlternative(std::string_view text, size_t t, size_t p,
                        size_t e) const;
  bool Bracket(size_t p, char32_t c, size_t& end, bool& ok) const;
  bool Eq(char32_t a, char32_t b) const;

  bool ignore_case_;
  bool negate_all_ = false;
  std::u32string pat_;
  std::vector<std::pair<size_t, size_t>> alts_;
  // Set when every alternative is a name or a name and "*".
  bool simple_ = false;
  std::vector<Simple> simple_alts_;
  std::vector<std::string> exact_;
  bool is_prefix_ = false;
  std::string prefix_;
};

// `text` with letters folded the way matching ignores case, so that two
// names that match each other ignoring case fold to the same key.
std::string FoldCase(std::string_view text);

// One-off matching; compile a WildcardPattern to match many texts.
bool WildcardMatch(std::string_view text, std::string_view pattern,
                   bool ignore_case);

}  // namespace kestrana::memhost
