#include "memhost/wildcard.h"

#include <gtest/gtest.h>

namespace kestrana::memhost {
namespace {

bool M(const char* text, const char* pattern, bool ignore_case = true) {
  return WildcardMatch(text, pattern, ignore_case);
}

TEST(Wildcard, SingleCharacterClasses) {
  EXPECT_TRUE(M("N-3", "N-#"));
  EXPECT_FALSE(M("N-A", "N-#"));
  EXPECT_TRUE(M("N-A", "N-@"));
  EXPECT_FALSE(M("N-3", "N-@"));
  EXPECT_TRUE(M("N-3", "N.3"));  // '-' is neither letter nor digit
  EXPECT_FALSE(M("NA3", "N.3"));
  EXPECT_TRUE(M("abc", "a?c"));
  EXPECT_FALSE(M("ac", "a?c"));
  EXPECT_TRUE(
      M("\xC3\x98"
        "1",
        "?1"));  // a two-byte character is one
}

TEST(Wildcard, StarMatchesAnyRunIncludingEmpty) {
  EXPECT_TRUE(M("Pipe;Sewer A;P-12", "Pipe;Sewer A;*"));
  EXPECT_TRUE(M("Pipe;Sewer A;", "Pipe;Sewer A;*"));
  EXPECT_FALSE(M("Pipe;Sewer AB;P-1", "Pipe;Sewer A;*"));
  EXPECT_TRUE(M("abcabc", "*b*c"));
  EXPECT_FALSE(M("abcabd", "*b*c"));
  EXPECT_TRUE(M("", "*"));
  EXPECT_FALSE(M("", "?"));
}

TEST(Wildcard, BracketsRangesAndNegation) {
  EXPECT_TRUE(M("P-5", "P-[0-9]"));
  EXPECT_FALSE(M("P-x", "P-[0-9]"));
  EXPECT_TRUE(M("b", "[abc]"));
  EXPECT_FALSE(M("d", "[abc]"));
  EXPECT_TRUE(M("d", "[~abc]"));
  EXPECT_FALSE(M("a", "[~abc]"));
  EXPECT_TRUE(M("B", "[a-c]"));  // case ignored in ranges too
  EXPECT_FALSE(M("B", "[a-c]", false));
  EXPECT_TRUE(M("[x", "[x"));  // an unclosed bracket is literal
}

TEST(Wildcard, AlternativesAndNegation) {
  EXPECT_TRUE(M("LINE", "LWPOLYLINE,LINE"));
  EXPECT_TRUE(M("lwpolyline", "LWPOLYLINE,LINE"));
  EXPECT_FALSE(M("CIRCLE", "LWPOLYLINE,LINE"));
  EXPECT_FALSE(M("N-1", "~N-*"));
  EXPECT_TRUE(M("P-1", "~N-*"));
  EXPECT_TRUE(M("P-1", "~N-*,M-*"));  // negates the whole rest
  EXPECT_FALSE(M("M-1", "~N-*,M-*"));
  EXPECT_TRUE(M("a,b", "a[,]b"));  // comma inside brackets is literal
}

TEST(Wildcard, EscapeTakesNextCharacterLiterally) {
  EXPECT_TRUE(M("a*b", "a`*b"));
  EXPECT_FALSE(M("axb", "a`*b"));
  EXPECT_TRUE(M("a,b", "a`,b"));
  EXPECT_TRUE(M("#1", "`##"));
}

TEST(Wildcard, LetterCase) {
  EXPECT_TRUE(M("Kestrana", "KESTRANA"));
  EXPECT_FALSE(M("Kestrana", "KESTRANA", false));
  EXPECT_TRUE(M("\xC3\x84rger", "\xC3\xA4rger"));  // Latin-1 letters fold
}

}  // namespace
}  // namespace kestrana::memhost
