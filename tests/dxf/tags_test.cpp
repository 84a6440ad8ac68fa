#include "dxf/tags.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "dxf/text_codec.h"

namespace kestrana::dxf {
namespace {

std::vector<Tag> Tokens(std::string_view text) {
  Tokenizer tok(text);
  std::vector<Tag> out;
  Tag t;
  while (tok.Next(t)) out.push_back(t);
  return out;
}

std::string ErrorOf(std::string_view text) {
  try {
    Tokens(text);
  } catch (const DxfError& e) {
    return e.what();
  }
  return "no error";
}

TEST(Tokenizer, SplitsTagsWithLineNumbersOffsetsAndBothLineEndings) {
  std::string text =
      "  0\r\nSECTION\r\n  2\r\nHEADER\r\n999\r\n  spaced value \r\n";
  auto tags = Tokens(text);
  ASSERT_EQ(tags.size(), 3u);
  EXPECT_EQ(tags[0].code, 0);
  EXPECT_EQ(tags[0].value, "SECTION");
  EXPECT_EQ(tags[1].line, 3u);
  EXPECT_EQ(tags[1].offset, text.find("  2"));
  // Values keep their blanks; only the line ending goes.
  EXPECT_EQ(tags[2].value, "  spaced value ");
  EXPECT_EQ(tags[2].line, 5u);

  auto lf = Tokens("0\nEOF");  // the last line may lack its ending
  ASSERT_EQ(lf.size(), 1u);
  EXPECT_EQ(lf[0].value, "EOF");
}

TEST(Tokenizer, NamesTheLineOfEveryMalformedTag) {
  EXPECT_EQ(ErrorOf("0\nSECTION\nabc\nx\n"),
            "line 3: expected a group code (a whole number), found 'abc'");
  EXPECT_EQ(ErrorOf("0\nSECTION\n\nx\n"),
            "line 3: expected a group code (a whole number), found ''");
  EXPECT_EQ(ErrorOf("0\nSECTION\n2\n"),
            "line 3: the file ends after group code 2; the value line that "
            "belongs to it is missing");
  std::string huge =
      "0\nSECTION\n1\n" + std::string(kMaxLineLength + 1, 'x') + "\n";
  std::string error = ErrorOf(huge);
  EXPECT_EQ(error.rfind("line 4: the line is 1048577 bytes long", 0), 0u)
      << error;
}

TEST(Values, ParseStrictlyAndNameTheValueLine) {
  Tag t;
  t.code = 10;
  t.line = 7;
  t.value = " 1.5e3 ";
  EXPECT_EQ(RealValue(t), 1500.0);
  t.value = "+.25";
  EXPECT_EQ(RealValue(t), 0.25);
  t.value = "1,5";
  try {
    RealValue(t);
    FAIL() << "1,5 was accepted";
  } catch (const DxfError& e) {
    EXPECT_STREQ(e.what(),
                 "line 8: group code 10 expects a real number, found '1,5'");
    EXPECT_EQ(e.line(), 8u);
  }
  t.value = "nan";
  EXPECT_THROW(RealValue(t), DxfError);
  t.code = 70;
  t.value = "3.0";
  EXPECT_THROW(IntValue(t), DxfError);
  t.value = "-12";
  EXPECT_EQ(IntValue(t), -12);
  t.code = 5;
  t.value = "1fA";
  EXPECT_EQ(HandleValue(t), 0x1FAu);
  t.value = "G1";
  EXPECT_THROW(HandleValue(t), DxfError);
  t.value = "1234567890ABCDEF";  // beyond what new handles can follow
  EXPECT_THROW(HandleValue(t), DxfError);
}

TEST(Values, RealsWriteInTheirShortestExactForm) {
  for (double v :
       {0.1, 1.0 / 3.0, 1e-300, 123456789.125, -2.5, 1e20, 6.283185307179586}) {
    double back = 0;
    ASSERT_TRUE(ParseReal(FormatReal(v), back)) << FormatReal(v);
    EXPECT_EQ(back, v);
  }
  EXPECT_EQ(FormatReal(3), "3.0");
  EXPECT_EQ(FormatReal(-0.0), "0.0");
  EXPECT_EQ(FormatReal(0.1), "0.1");
  EXPECT_EQ(FormatHandle(0xAB12), "AB12");
  // What the reader refuses is never written.
  for (double v : {std::nan(""), HUGE_VAL, -HUGE_VAL}) {
    EXPECT_THROW(FormatReal(v), InvalidInputError) << v;
    double back = 0;
    EXPECT_FALSE(ParseReal(std::to_string(v), back)) << std::to_string(v);
  }
}

TEST(Values, DecimalsReadExactlyAsTheCLibraryReadsThem) {
  // Plain decimals take a shortcut of their own; every one must come out
  // as strtod makes it, to the last bit, whatever the digits.
  std::mt19937_64 random(7);
  auto digits = [&](int n) {
    std::string s;
    for (int i = 0; i < n; ++i) s += static_cast<char>('0' + random() % 10);
    return s;
  };
  for (int i = 0; i < 20000; ++i) {
    int whole = static_cast<int>(random() % 12);
    int fraction = static_cast<int>(random() % 12);
    std::string text = (random() % 3 == 0 ? "-" : "") + digits(whole);
    if (random() % 4 != 0) text += "." + digits(fraction);
    double expected = 0;
    char* end = nullptr;
    expected = std::strtod(text.c_str(), &end);
    bool valid = end == text.c_str() + text.size() && text != "-" &&
                 text != "." && text != "-." && !text.empty();
    double got = 0;
    ASSERT_EQ(ParseReal(text, got), valid) << text;
    if (valid) {
      ASSERT_EQ(got, expected) << text;
    }
  }
  double v = 0;
  ASSERT_TRUE(ParseReal("0.1000000000000000055511151231257827", v));
  EXPECT_EQ(v, 0.1);
  ASSERT_TRUE(ParseReal("-0", v));
  EXPECT_TRUE(std::signbit(v));
  EXPECT_FALSE(ParseReal("1.2.3", v));
  EXPECT_FALSE(ParseReal("--1", v));
}

TEST(Tokenizer, AgreesWithAPlainSplitForEveryLineLength) {
  // Values of every length around the eight bytes read at a time, with
  // both line endings, codes with and without blanks, and a last line
  // without its ending.
  std::mt19937 random(11);
  for (const char* eol : {"\n", "\r\n"}) {
    std::string text;
    std::vector<std::pair<int, std::string>> expected;
    for (int length = 0; length < 40; ++length) {
      int code = static_cast<int>(random() % 1100);
      std::string value;
      for (int i = 0; i < length; ++i)
        value += static_cast<char>(' ' + random() % 90);
      std::string code_text = std::to_string(code);
      if (random() % 2)
        code_text.insert(0, 3 - std::min<size_t>(3, code_text.size()), ' ');
      text += code_text + eol + value + eol;
      expected.push_back({code, value});
    }
    text += "0";
    text += eol;
    text += "EOF";
    expected.push_back({0, "EOF"});
    auto tags = Tokens(text);
    ASSERT_EQ(tags.size(), expected.size());
    for (size_t i = 0; i < tags.size(); ++i) {
      EXPECT_EQ(tags[i].code, expected[i].first) << i;
      EXPECT_EQ(tags[i].value, expected[i].second) << i;
      EXPECT_EQ(tags[i].line, 2 * i + 1);
    }
  }
  // Codes beyond the usual form still read.
  auto odd = Tokens("\t 1071 \n5\n+8\nx\n 1000000\ny\n");
  ASSERT_EQ(odd.size(), 3u);
  EXPECT_EQ(odd[0].code, 1071);
  EXPECT_EQ(odd[1].code, 8);
  EXPECT_EQ(odd[2].code, 1000000);
}

TEST(TagWriter, AlignsGroupCodesLikeTheFilesItReads) {
  std::string out;
  TagWriter w(out, "\r\n");
  w.Text(0, "LINE");
  w.Int(370, -3);
  w.Handle(1005, 0x2F);
  w.Point(10, 1, 2, 0);
  EXPECT_EQ(out,
            "  0\r\nLINE\r\n370\r\n-3\r\n1005\r\n2F\r\n 10\r\n1.0\r\n "
            "20\r\n2.0\r\n 30\r\n0.0\r\n");
}

TEST(TextCodec, OlderFilesUseTheCodePageAndEscapesNewerOnesUtf8) {
  TextCodec old = TextCodec::For("AC1015", "ANSI_1252");
  EXPECT_FALSE(old.Utf8());
  // ß and € exist in Windows-1252, Ж and 水 need escapes.
  std::string text = "Straße €5 Ж水";
  std::string encoded = old.Encode(text);
  EXPECT_EQ(encoded,
            "Stra\xDF"
            "e \x80"
            "5 \\U+0416\\U+6C34");
  EXPECT_EQ(old.Decode(encoded), text);
  EXPECT_EQ(old.Decode("a\\u+00e9b"),
            "a\xC3\xA9"
            "b");                             // é, lower-case escape
  EXPECT_EQ(old.Decode("\\U+12"), "\\U+12");  // too short: kept

  TextCodec modern = TextCodec::For("AC1024", "ANSI_1252");
  EXPECT_TRUE(modern.Utf8());
  EXPECT_EQ(modern.Encode(text), text);
  EXPECT_EQ(modern.Decode("\\U+0416"), "\\U+0416");
  EXPECT_TRUE(IsUtf8Version("AC1021"));
  EXPECT_FALSE(IsUtf8Version("AC1018"));
}

TEST(TextCodec, OtherCodePagesOfOlderFiles) {
  // Cyrillic: one byte a character, both ways; a byte the page leaves
  // undefined goes back as it came.
  TextCodec cyrillic = TextCodec::For("AC1015", "ANSI_1251");
  const std::string kanal = "\xCA\xE0\xED\xE0\xEB";
  EXPECT_EQ(cyrillic.Decode(kanal), "Канал");
  EXPECT_EQ(cyrillic.Encode("Канал €"), kanal + " \x88");
  EXPECT_EQ(cyrillic.Encode("Straße 水"), "Stra\\U+00DFe \\U+6C34");
  EXPECT_EQ(cyrillic.Encode(cyrillic.Decode("a\x98z")), "a\x98z");
  EXPECT_EQ(cyrillic.Decode("\\U+00DF" + kanal), "ßКанал");

  // Japanese: two bytes for most characters, and escapes between them.
  TextCodec japanese = TextCodec::For("AC1018", "ansi_932");
  EXPECT_EQ(japanese.Decode("\x90\x85\\U+00E9\x84\x47"), "水éЖ");
  EXPECT_EQ(japanese.Encode("水éЖ"), "\x90\x85\\U+00E9\x84\x47");
  // Bytes that are not text of the page are read one by one as 1252.
  EXPECT_EQ(japanese.Decode("\x90"), "\xC2\x90");

  // A page nobody knows: read as 1252, written with escapes only.
  TextCodec unknown = TextCodec::For("AC1015", "ANSI_99999");
  EXPECT_EQ(unknown.Decode("\xDF"), "ß");
  EXPECT_EQ(unknown.Encode("ß"), "\\U+00DF");
  // Newer files are UTF-8 whatever page they name.
  EXPECT_EQ(TextCodec::For("AC1024", "ANSI_1251").Encode("Канал"), "Канал");
}

}  // namespace
}  // namespace kestrana::dxf
