#include "memhost/wildcard.h"

#include <string>
#include <vector>

#include "memhost/utf8.h"

namespace kestrana::memhost {

namespace {

char32_t Fold(char32_t c) {
  if (c >= 'A' && c <= 'Z') return c + 32;
  if (c >= 0xC0 && c <= 0xDE && c != 0xD7) return c + 32;
  return c;
}

bool IsDigit(char32_t c) { return c >= '0' && c <= '9'; }
bool IsLetter(char32_t c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
         (c >= 0xC0 && c <= 0x24F && c != 0xD7 && c != 0xF7);
}

struct Matcher {
  const std::u32string& pat;
  bool ignore_case;

  bool Eq(char32_t a, char32_t b) const {
    return ignore_case ? Fold(a) == Fold(b) : a == b;
  }

  // Parses the bracket class starting at pat[p] == '['; returns whether `c`
  // is accepted and sets `end` past the closing ']'. An unclosed bracket is
  // taken literally.
  bool Bracket(size_t p, char32_t c, size_t& end, bool& ok) const {
    size_t q = p + 1;
    bool negate = q < pat.size() && pat[q] == '~';
    if (negate) ++q;
    bool hit = false;
    bool first = true;
    while (q < pat.size() && (pat[q] != ']' || first)) {
      char32_t lo = pat[q];
      if (lo == '`' && q + 1 < pat.size()) lo = pat[++q];
      if (q + 2 < pat.size() && pat[q + 1] == '-' && pat[q + 2] != ']') {
        char32_t hi = pat[q + 2];
        char32_t fc = ignore_case ? Fold(c) : c;
        if ((c >= lo && c <= hi) ||
            (ignore_case && fc >= Fold(lo) && fc <= Fold(hi)))
          hit = true;
        q += 3;
      } else {
        if (Eq(lo, c)) hit = true;
        ++q;
      }
      first = false;
    }
    if (q >= pat.size()) {
      ok = false;
      return false;
    }
    ok = true;
    end = q + 1;
    return negate ? !hit : hit;
  }

  // Matches text[t..] against pat[p..e).
  bool Match(const std::u32string& text, size_t t, size_t p, size_t e) const {
    while (p < e) {
      char32_t pc = pat[p];
      if (pc == '*') {
        while (p < e && pat[p] == '*') ++p;
        if (p == e) return true;
        for (size_t k = t; k <= text.size(); ++k)
          if (Match(text, k, p, e)) return true;
        return false;
      }
      if (t >= text.size()) return false;
      char32_t c = text[t];
      switch (pc) {
        case '?':
          break;
        case '#':
          if (!IsDigit(c)) return false;
          break;
        case '@':
          if (!IsLetter(c)) return false;
          break;
        case '.':
          if (IsDigit(c) || IsLetter(c)) return false;
          break;
        case '[': {
          size_t end = 0;
          bool ok = false;
          bool hit = Bracket(p, c, end, ok);
          if (ok) {
            if (!hit) return false;
            p = end;
            ++t;
            continue;
          }
          if (!Eq('[', c)) return false;
          break;
        }
        case '`':
          if (p + 1 < e) ++p;
          if (!Eq(pat[p], c)) return false;
          break;
        default:
          if (!Eq(pc, c)) return false;
      }
      ++p;
      ++t;
    }
    return t == text.size();
  }
};

}  // namespace

bool WildcardMatch(std::string_view text, std::string_view pattern,
                   bool ignore_case) {
  std::u32string pat = DecodeUtf8(pattern);
  std::u32string txt = DecodeUtf8(text);
  Matcher m{pat, ignore_case};
  size_t start = 0;
  bool negate_all = !pat.empty() && pat[0] == '~';
  if (negate_all) start = 1;
  // Split into alternatives at commas outside brackets and escapes.
  std::vector<std::pair<size_t, size_t>> alts;
  size_t begin = start;
  bool in_bracket = false;
  for (size_t i = start; i < pat.size(); ++i) {
    if (pat[i] == '`') {
      ++i;
      continue;
    }
    if (pat[i] == '[')
      in_bracket = true;
    else if (pat[i] == ']')
      in_bracket = false;
    else if (pat[i] == ',' && !in_bracket) {
      alts.push_back({begin, i});
      begin = i + 1;
    }
  }
  alts.push_back({begin, pat.size()});
  bool any = false;
  for (size_t k = 0; k < alts.size() && !any; ++k) {
    auto [b, e] = alts[k];
    bool negate = k > 0 && b < e && pat[b] == '~';
    bool hit = m.Match(txt, 0, negate ? b + 1 : b, e);
    any = negate ? !hit : hit;
  }
  return negate_all ? !any : any;
}

}  // namespace kestrana::memhost
