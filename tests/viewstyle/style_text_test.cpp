// The readable style file form: round trips and the errors it reports.
#include "viewstyle/style_text.h"

#include <gtest/gtest.h>

#include "viewstyle/view_style_record.h"

namespace kestrana::viewstyle {
namespace {

// The error of reading a text, or "" when it reads.
std::string ErrorOf(const std::string& text) {
  try {
    ReadStyleText(text, "T");
  } catch (const StyleTextError& e) {
    return e.what();
  }
  return "";
}

// The Standard style's text with one line replaced (or removed when
// `with` is empty).
std::string Edited(const std::string& line_start, const std::string& with) {
  std::string text = WriteStyleText(StandardViewStyle(true));
  size_t at = text.find(line_start);
  EXPECT_NE(at, std::string::npos) << line_start;
  size_t end = text.find('\n', at);
  return text.substr(0, at) + with + text.substr(end + (with.empty() ? 1 : 0));
}

TEST(StyleText, WritesEveryItemAndReadsItBack) {
  ViewStyleSettings style = StandardViewStyle(false, "Print");
  style[3] = "Romans \"bold\"";
  style[4] = "2.25";
  style[5] = "1;P: ; \\ ";  // blanks, a backslash
  style[8] = "1;i=;;3;1;2";
  style[22] = "0;;;0;0;0";
  style[24] = "1;St=;\"ft\";15;0";
  style[32] = "1";
  style[42] = "1;3;1";
  const std::string text = WriteStyleText(style);
  EXPECT_EQ(ReadStyleText(text, "Print"), style);
  EXPECT_NE(text.find("text style = \"Romans \\\"bold\\\"\"\n"),
            std::string::npos);
  EXPECT_NE(text.find("\n[gravity pipe]\nlabel = show prefix \"P: \" suffix "
                      "\" \\\\ \"\n"),
            std::string::npos)
      << text;
  EXPECT_NE(text.find("slope = show prefix \"i=\" precision 3 decimals 1 "
                      "notation ratio\n"),
            std::string::npos);
  EXPECT_NE(text.find("upstream invert = hide prefix \"US IL=\" precision 2 "
                      "decimals 0\n"),
            std::string::npos);
  EXPECT_NE(text.find("[pressure pipe]"), std::string::npos);
  EXPECT_NE(text.find("start invert = show prefix \"St=\" suffix "
                      "\"\\\"ft\\\"\" precision 15 decimals 0\n"),
            std::string::npos);
  EXPECT_NE(text.find("\n[pressure node]\n"), std::string::npos);
  EXPECT_NE(text.find("coordinates = show precision 3 decimals 1\n"),
            std::string::npos);
  for (bool metric : {true, false}) {
    ViewStyleSettings standard = StandardViewStyle(metric);
    EXPECT_EQ(ReadStyleText(WriteStyleText(standard), "Standard"), standard);
  }
}

TEST(StyleText, HandWrittenFilesMayCommentAndQuoteAsTheyLike) {
  std::string items = WriteStyleText(StandardViewStyle(true));
  items = items.substr(items.find("\n[gravity pipe]"));
  // An unquoted text style keeps its inner blanks; lines may end in CR.
  const std::string text =
      "# my style\n\n  text style = Romans Simplex  \r\ntext height = 3.5\n" +
      items;
  ViewStyleSettings style = ReadStyleText(text, "Mine");
  EXPECT_EQ(style[1], "VSMine");
  EXPECT_EQ(style[2], "ViewStylePoint");
  EXPECT_EQ(style[3], "Romans Simplex");
  EXPECT_EQ(style[4], "3.5");
  EXPECT_EQ(style[5], "1;;");  // no prefix or suffix written: empty ones
}

TEST(StyleText, ErrorsNameTheLineAndTheItem) {
  const std::string good = WriteStyleText(StandardViewStyle(true));
  ASSERT_EQ(ErrorOf(good), "");
  for (const char* height : {"nan", "inf", "1e10", "1e999", "-2"})
    EXPECT_EQ(ErrorOf(Edited("text height = ",
                             std::string("text height = ") + height)),
              std::string("line 2: the text height is a positive number up "
                          "to 1000000000, not \"") +
                  height + "\"");
  // "text height" is line 2; the gravity pipe section starts on line 4.
  EXPECT_EQ(ErrorOf(Edited("size = ", "colour = show")),
            "line 7: unknown item \"colour\" in [gravity pipe]");
  EXPECT_EQ(ErrorOf(Edited("[pressure pipe]", "[water pipe]")),
            "line 20: unknown section [water pipe]; sections are [gravity "
            "pipe], [pressure pipe], [gravity node] and [pressure node]");
  EXPECT_EQ(ErrorOf(Edited("material = ", "")),
            "the style file lacks the gravity pipe material item "
            "(\"material = ...\" under [gravity pipe])");
  EXPECT_EQ(ErrorOf(Edited("text height", "")),
            "the style file lacks its text height");
  EXPECT_EQ(ErrorOf(Edited("label = ", "label = show\nlabel = hide")),
            "line 6: \"label\" was given on line 5");
  EXPECT_EQ(ErrorOf(Edited("slope = ",
                           "slope = show precision 2 decimals 0 "
                           "notation permille")),
            "line 8: the notation of the gravity pipe slope item is decimal, "
            "percent or ratio, not \"permille\"");
  EXPECT_EQ(ErrorOf(Edited("slope = ", "slope = show precision 2 decimals 0")),
            "line 8: the gravity pipe slope item needs its notation");
  EXPECT_EQ(
      ErrorOf(Edited("length = ", "length = hide precision 16 decimals 0")),
      "line 6: the precision of the gravity pipe length item is a whole "
      "number from 0 to 15, not \"16\"");
  EXPECT_EQ(
      ErrorOf(Edited("length = ", "length = hide precision two decimals 0")),
      "line 6: the precision of the gravity pipe length item is a whole "
      "number from 0 to 15, not \"two\"");
  EXPECT_EQ(
      ErrorOf(Edited("label = ", "label = show prefix \"a;b\"")),
      "line 5: the prefix of the gravity pipe label item cannot hold \";\"");
  EXPECT_EQ(ErrorOf(Edited("label = ", "label = show prefix \"open")),
            "line 5: a quoted text is not closed");
  EXPECT_EQ(
      ErrorOf(Edited("label = ", "label = show prefix L=")),
      "line 5: the prefix of the gravity pipe label item is a quoted text");
  EXPECT_EQ(ErrorOf(Edited("label = ", "label = show precision 2")),
            "line 5: the gravity pipe label item has no precision");
  EXPECT_EQ(ErrorOf(Edited("label = ", "label = visible")),
            "line 5: the gravity pipe label item starts with show or hide");
  EXPECT_EQ(
      ErrorOf(Edited("label = ", "label = show colour 3")),
      "line 5: unknown setting \"colour\" in the gravity pipe label item");
  EXPECT_EQ(ErrorOf(Edited("label = ", "label = show suffix")),
            "line 5: suffix has no value in the gravity pipe label item");
  EXPECT_EQ(ErrorOf(Edited("arrow = ", "arrow = show prefix \"x\"")),
            "line 18: the gravity pipe arrow item has no prefix");
  EXPECT_EQ(ErrorOf(Edited("label = ", "label show")),
            "line 5: expected \"item = settings\", not \"label show\"");
  EXPECT_EQ(ErrorOf(Edited("text height", "text height = 0")),
            "line 2: the text height is a positive number up to 1000000000, "
            "not \"0\"");
  // Beyond the range of a number is no height either.
  EXPECT_EQ(ErrorOf(Edited("text height", "text height = 3e999")),
            "line 2: the text height is a positive number up to 1000000000, "
            "not \"3e999\"");
  EXPECT_EQ(ErrorOf("label = show\n" + good),
            "line 1: unknown item \"label\"; before the first section come "
            "only text style and text height");
  EXPECT_EQ(ErrorOf(Edited("[gravity node]", "[gravity node")),
            "line 36: a section line ends with \"]\"");
}

TEST(StyleText, RecordsOutsideTheFormAreRefusedByName) {
  ViewStyleSettings style = StandardViewStyle(true);
  style[9] = "1;;;";
  try {
    WriteStyleText(style);
    FAIL() << "an item with four pieces was written";
  } catch (const StyleTextError& e) {
    EXPECT_EQ(std::string(e.what()),
              "the gravity pipe material item holds \"1;;;\", which is not a "
              "3-piece item of its kind");
    EXPECT_EQ(e.line(), 0);
  }
  style = StandardViewStyle(true);
  style[18] = "2";
  EXPECT_THROW(WriteStyleText(style), StyleTextError);
  style = StandardViewStyle(true);
  style[41] = "0;x;0";
  EXPECT_THROW(WriteStyleText(style), StyleTextError);
  style = StandardViewStyle(true);
  style[22] = "0;S=;;2;0;3";
  EXPECT_THROW(WriteStyleText(style), StyleTextError);
  style = StandardViewStyle(true);
  style[4] = "";
  EXPECT_THROW(WriteStyleText(style), StyleTextError);
}

}  // namespace
}  // namespace kestrana::viewstyle
