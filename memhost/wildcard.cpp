#include "memhost/wildcard.h"

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

bool Special(char32_t c) {
  return c == '*' || c == '?' || c == '#' || c == '@' || c == '.' ||
         c == '[' || c == '`';
}

std::string Encode(const std::u32string& s) {
  std::string out;
  out.reserve(s.size());
  for (char32_t c : s) AppendUtf8(out, c);
  return out;
}

}  // namespace

std::string FoldCase(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size();) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (byte < 0x80) {
      out += static_cast<char>(byte >= 'A' && byte <= 'Z' ? byte + 32 : byte);
      ++i;
    } else {
      AppendUtf8(out, Fold(NextCodePoint(text, i)));
    }
  }
  return out;
}

WildcardPattern::WildcardPattern(std::string_view pattern, bool ignore_case)
    : ignore_case_(ignore_case), pat_(DecodeUtf8(pattern)) {
  size_t start = 0;
  negate_all_ = !pat_.empty() && pat_[0] == '~';
  if (negate_all_) start = 1;
  // Split into alternatives at commas outside brackets and escapes.
  size_t begin = start;
  bool in_bracket = false;
  for (size_t i = start; i < pat_.size(); ++i) {
    if (pat_[i] == '`') {
      ++i;
      continue;
    }
    if (pat_[i] == '[')
      in_bracket = true;
    else if (pat_[i] == ']')
      in_bracket = false;
    else if (pat_[i] == ',' && !in_bracket) {
      alts_.push_back({begin, i});
      begin = i + 1;
    }
  }
  alts_.push_back({begin, pat_.size()});

  // Names, with or without a trailing "*", are matched in place.
  simple_ = !negate_all_;
  for (size_t k = 0; k < alts_.size() && simple_; ++k) {
    auto [b, e] = alts_[k];
    if (k > 0 && b < e && pat_[b] == '~') {
      simple_ = false;
      break;
    }
    std::u32string name;
    bool star = false;
    for (size_t p = b; p < e; ++p) {
      char32_t c = pat_[p];
      if (c == '*') {
        while (p < e && pat_[p] == '*') ++p;
        star = true;
        simple_ = p == e;
        break;
      }
      if (c == '`') {
        if (p + 1 < e) c = pat_[++p];
      } else if (Special(c)) {
        simple_ = false;
        break;
      }
      name.push_back(ignore_case_ ? Fold(c) : c);
    }
    if (simple_) simple_alts_.push_back({Encode(name), star});
  }
  if (!simple_) {
    simple_alts_.clear();
    return;
  }
  bool all_exact = true;
  for (const Simple& s : simple_alts_) all_exact = all_exact && !s.prefix;
  if (all_exact)
    for (const Simple& s : simple_alts_) exact_.push_back(s.text);
  if (simple_alts_.size() == 1 && simple_alts_[0].prefix) {
    is_prefix_ = true;
    prefix_ = simple_alts_[0].text;
  }
}

bool WildcardPattern::Eq(char32_t a, char32_t b) const {
  return ignore_case_ ? Fold(a) == Fold(b) : a == b;
}

bool WildcardPattern::Matches(std::string_view text) const {
  if (!simple_) return MatchGeneral(text);
  for (const Simple& alt : simple_alts_) {
    // The name is stored folded and encoded; walk both by code point with
    // the bytes of plain ASCII compared directly.
    const std::string& name = alt.text;
    size_t t = 0, n = 0;
    bool same = true;
    while (n < name.size()) {
      if (t >= text.size()) {
        same = false;
        break;
      }
      const auto tb = static_cast<unsigned char>(text[t]);
      const auto nb = static_cast<unsigned char>(name[n]);
      if (tb < 0x80 && nb < 0x80) {
        const char32_t tc = ignore_case_ ? Fold(tb) : tb;
        if (tc != nb) {
          same = false;
          break;
        }
        ++t;
        ++n;
        continue;
      }
      char32_t tc = NextCodePoint(text, t);
      if (ignore_case_) tc = Fold(tc);
      if (tc != NextCodePoint(name, n)) {
        same = false;
        break;
      }
    }
    if (same && (alt.prefix || t == text.size())) return true;
  }
  return false;
}

bool WildcardPattern::Bracket(size_t p, char32_t c, size_t& end,
                              bool& ok) const {
  // Parses the bracket class starting at pat_[p] == '['; returns whether `c`
  // is accepted and sets `end` past the closing ']'. An unclosed bracket is
  // taken literally.
  const std::u32string& pat = pat_;
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
      char32_t fc = ignore_case_ ? Fold(c) : c;
      if ((c >= lo && c <= hi) ||
          (ignore_case_ && fc >= Fold(lo) && fc <= Fold(hi)))
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

// Matches text[t..] (a byte offset) against pat_[p..e).
bool WildcardPattern::MatchAlternative(std::string_view text, size_t t,
                                       size_t p, size_t e) const {
  while (p < e) {
    char32_t pc = pat_[p];
    if (pc == '*') {
      while (p < e && pat_[p] == '*') ++p;
      if (p == e) return true;
      for (size_t k = t;;) {
        if (MatchAlternative(text, k, p, e)) return true;
        if (k >= text.size()) return false;
        NextCodePoint(text, k);
      }
    }
    if (t >= text.size()) return false;
    char32_t c = NextCodePoint(text, t);
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
          continue;
        }
        if (!Eq('[', c)) return false;
        break;
      }
      case '`':
        if (p + 1 < e) ++p;
        if (!Eq(pat_[p], c)) return false;
        break;
      default:
        if (!Eq(pc, c)) return false;
    }
    ++p;
  }
  return t == text.size();
}

bool WildcardPattern::MatchGeneral(std::string_view text) const {
  bool any = false;
  for (size_t k = 0; k < alts_.size() && !any; ++k) {
    auto [b, e] = alts_[k];
    bool negate = k > 0 && b < e && pat_[b] == '~';
    bool hit = MatchAlternative(text, 0, negate ? b + 1 : b, e);
    any = negate ? !hit : hit;
  }
  return negate_all_ ? !any : any;
}

bool WildcardMatch(std::string_view text, std::string_view pattern,
                   bool ignore_case) {
  return WildcardPattern(pattern, ignore_case).Matches(text);
}

}  // namespace kestrana::memhost
