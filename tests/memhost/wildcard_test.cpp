#include "memhost/wildcard.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

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

TEST(Wildcard, NamesMatchedInPlaceAgreeWithTheGeneralMatcher) {
  // A first character written as a one-letter class takes the general
  // matcher; the same pattern without it is compared in place. Both must
  // answer alike, case folding of Latin-1 letters and escapes included.
  const std::vector<std::string> texts = {
      "",  "Pipe;Sewer;P-12", "PIPE;SEWER;", "pipe;sewer", "Pipe;Sewer A;P-1",
      "Net.1", "NetX1", "\xC3\x84rger", "\xC3\xA4RGER", "\xC3\xA4rg",
      "\x80bc", "\xC3bc", "LWPOLYLINE", "line", "LINEX"};
  const std::vector<std::string> rests = {
      "ipe;Sewer;*", "ipe;Sewer;P-12", "et`.1", "et`.1*", "\xC3\xA4rger",
      "\xC3\xA4rg*", "**", "INE,LWPOLYLINE", "ine*,LINE"};
  for (const std::string& text : texts) {
    for (const std::string& rest : rests) {
      for (const std::string first : {"P", "N", "\xC3\x84", "L", "\x80"}) {
        for (bool fold : {true, false}) {
          const std::string fast = first + rest;
          const std::string general = "[" + first + "]" + rest;
          EXPECT_EQ(WildcardPattern(fast, fold).Matches(text),
                    WildcardPattern(general, fold).Matches(text))
              << "'" << text << "' against '" << fast << "' fold " << fold;
        }
      }
    }
  }
  EXPECT_TRUE(M("\x80"
                "bc",
                "\x80"
                "bc"));  // a stray byte is a character of its own
  EXPECT_TRUE(M("\x80"
                "bc",
                "?bc"));
}

TEST(Wildcard, CompiledPatternsNameWhatAnIndexCanLookUp) {
  EXPECT_EQ(WildcardPattern("LWPOLYLINE,Line", true).ExactNames(),
            (std::vector<std::string>{"lwpolyline", "line"}));
  EXPECT_EQ(WildcardPattern("Net`.1", true).ExactNames(),
            (std::vector<std::string>{"net.1"}));
  EXPECT_EQ(WildcardPattern("\xC3\x84rger", true).ExactNames(),
            (std::vector<std::string>{FoldCase("\xC3\xA4RGER")}));
  EXPECT_EQ(FoldCase("\xC3\x84RGER"), FoldCase("\xC3\xA4rger"));
  EXPECT_NE(FoldCase("\xC3\x97"), FoldCase("\xC3\xB7"));  // not letters
  for (const char* wild : {"N-*", "~N", "a*b", "N-#", "A,~B", "[ab]", "A,B*"})
    EXPECT_TRUE(WildcardPattern(wild, true).ExactNames().empty()) << wild;
  ASSERT_NE(WildcardPattern("Pipe;Net`;1;*", true).Prefix(), nullptr);
  EXPECT_EQ(*WildcardPattern("Pipe;Net`;1;*", true).Prefix(), "pipe;net;1;");
  EXPECT_EQ(WildcardPattern("Pipe;*;x", true).Prefix(), nullptr);
  EXPECT_EQ(WildcardPattern("A*,B*", true).Prefix(), nullptr);
}

}  // namespace
}  // namespace kestrana::memhost
