#include <gtest/gtest.h>

#include "dxf/tags.h"
#include "dxf_test_util.h"

namespace kestrana::dxf {
namespace {

using testing::MinimalDxf;

std::string ErrorOf(const std::string& text) {
  try {
    testing::Read(text);
  } catch (const DxfError& e) {
    return e.what();
  }
  return "no error";
}

TEST(ReaderErrors, FilesThatAreNotAsciiDxf) {
  EXPECT_EQ(ErrorOf(""), "line 1: the file is empty; expected a DXF drawing");
  EXPECT_EQ(
      ErrorOf(std::string("AutoCAD Binary DXF\r\n\x1a\0", 22) + "\x01\x02"),
      "binary DXF, byte 22: the file ends inside a text; it is truncated");
  EXPECT_EQ(
      ErrorOf("PK\x03\x04 zipped\nstuff\n"),
      "line 1: expected a group code (a whole number), found 'PK?? zipped'; "
      "this is not a DXF drawing");
  EXPECT_EQ(ErrorOf("999\ncomment\n1\nhello\n"),
            "line 3: expected 0 SECTION or 0 EOF, found 1 \"hello\"");
  EXPECT_EQ(ErrorOf("1\nhello\n"),
            "line 1: expected 0 SECTION at the start of a DXF file, found 1 "
            "\"hello\"; "
            "this is not a DXF drawing");
}

TEST(ReaderErrors, TruncatedFilesSayWhereTheyEnd) {
  std::string whole =
      MinimalDxf("0\nLINE\n5\n2A\n8\n0\n10\n0\n20\n0\n11\n1\n21\n1\n");
  // Cut inside the ENTITIES section, after a complete value line.
  std::string cut = whole.substr(0, whole.find("11\n1\n"));
  EXPECT_EQ(ErrorOf(cut),
            "line 36: the file ends inside the ENTITIES section (started at "
            "line 23); "
            "expected 0 ENDSEC");
  // Cut between group code and value.
  EXPECT_EQ(
      ErrorOf(whole.substr(0, whole.find("11\n1\n") + 3)),
      "line 37: the file ends after group code 11; the value line that belongs "
      "to it is missing");
  std::string no_eof = whole.substr(0, whole.rfind("0\nEOF"));
  EXPECT_EQ(ErrorOf(no_eof),
            "line 42: the file ends without 0 EOF; it is truncated");
  EXPECT_EQ(
      ErrorOf(whole.substr(0, whole.find("2\nTABLES") + 2)),
      "line 13: the file ends after group code 2; the value line that belongs "
      "to it is missing");
}

TEST(ReaderErrors, WrongOrMissingSectionMarkers) {
  std::string text = MinimalDxf("");
  std::string misspelt = text;
  misspelt.replace(misspelt.find("SECTION\n2\nTABLES"), 7, "SECTON");
  EXPECT_EQ(ErrorOf(misspelt),
            "line 11: expected 0 SECTION or 0 EOF, found 0 \"SECTON\"");

  std::string unclosed = text;
  unclosed.erase(unclosed.find("0\nENDSEC\n0\nSECTION\n2\nBLOCKS"), 9);
  EXPECT_EQ(ErrorOf(unclosed),
            "line 15: expected 0 TABLE or 0 ENDSEC in the TABLES "
            "section, found 0 \"SECTION\"");

  std::string unnamed = text;
  unnamed.replace(unnamed.find("2\nBLOCKS"), 8, "3\nBLOCKS");
  EXPECT_EQ(ErrorOf(unnamed),
            "line 19: expected 2 and the name of the section after 0 "
            "SECTION, found 3 \"BLOCKS\"");

  std::string no_entities = text;
  no_entities.erase(no_entities.find("0\nSECTION\n2\nENTITIES"), 30);
  EXPECT_EQ(
      ErrorOf(no_entities),
      "line 23: the file ends (0 EOF) without the ENTITIES section; it is not "
      "a complete DXF drawing");

  std::string entity_section_unclosed =
      MinimalDxf("0\nLINE\n5\n2A\n")
          .replace(text.find("0\nENDSEC\n0\nEOF") + 12, 9, "");
  EXPECT_NE(ErrorOf(entity_section_unclosed).find("ENTITIES"),
            std::string::npos);

  std::string block_unclosed = text;
  block_unclosed.insert(
      block_unclosed.find("0\nENDSEC\n0\nSECTION\n2\nENTITIES"),
      "0\nBLOCK\n5\n20\n2\nB1\n0\nLINE\n5\n21\n");
  EXPECT_EQ(ErrorOf(block_unclosed),
            "line 31: expected 0 ENDBLK to close the block \"B1\" (started at "
            "line 21), "
            "found 0 \"ENDSEC\"");
}

TEST(ReaderErrors, VersionsBeforeR12AndFilesWithoutOne) {
  EXPECT_EQ(ErrorOf(MinimalDxf("", "AC1006")),
            "line 8: the drawing is DXF version AC1006, from before R12; "
            "kestrana reads R12 (AC1009) and later");
  std::string no_version = MinimalDxf("");
  no_version.replace(no_version.find("9\n$ACADVER\n1\nAC1015\n"), 20,
                     "9\n$INSUNITS\n70\n6\n");
  EXPECT_EQ(
      ErrorOf(no_version),
      "line 1: the HEADER section does not name the DXF version ($ACADVER)");
}

TEST(ReaderErrors, BadValuesNameTheirLine) {
  EXPECT_EQ(ErrorOf(MinimalDxf("0\nLINE\n5\n2A\n8\n0\n10\nabc\n")),
            "line 34: group code 10 expects a real number, found 'abc'");
  EXPECT_EQ(ErrorOf(MinimalDxf("0\nLWPOLYLINE\n5\n2A\n90\nmany\n")),
            "line 32: group code 90 expects a whole number, found 'many'");
  EXPECT_EQ(ErrorOf(MinimalDxf("0\nPOINT\n5\nZZ\n")),
            "line 30: group code 5 expects a handle (hexadecimal), found 'ZZ'");
  EXPECT_EQ(
      ErrorOf(MinimalDxf("0\nPOINT\n5\n2A\n1001\nKestrana\n1070\n70000\n")),
      "line 34: group code 1070 expects a 16-bit whole number, found 70000");
  EXPECT_EQ(
      ErrorOf(MinimalDxf("0\nPOINT\n5\n2A\n1000\norphan\n")),
      "line 31: extended data must start with group code 1001 (the application "
      "name), found group code 1000");
  EXPECT_EQ(ErrorOf(MinimalDxf("0\nINSERT\n5\n2A\n10\n0\n")),
            "line 27: the INSERT has no block name (group code 2)");
  EXPECT_EQ(
      ErrorOf(MinimalDxf("0\nPOINT\n5\n2A\n102\n{ACAD_REACTORS\n330\n1\n")),
      "line 31: the application group \"{ACAD_REACTORS\" is not closed "
      "(expected 102 \"}\")");
  // A hatch boundary read by its counts.
  EXPECT_EQ(ErrorOf(MinimalDxf(
                "0\nHATCH\n5\n2A\n100\nAcDbEntity\n8\n0\n100\nAcDbHatch\n"
                "91\n1\n92\n1\n93\n1\n72\n9\n")),
            "line 44: a HATCH edge type is 1 to 4, not 9");
}

TEST(ReaderErrors, DuplicateHandlesNameBothLines) {
  EXPECT_EQ(ErrorOf(MinimalDxf("0\nPOINT\n5\n2A\n0\nLINE\n5\n2a\n")),
            "line 31: handle 2A is already used by the object at line 27");
  std::string text = MinimalDxf("0\nPOINT\n5\n1F\n");
  text.insert(text.find("0\nENDSEC\n0\nEOF") + 9,
              "0\nSECTION\n2\nOBJECTS\n0\nDICTIONARY\n5\n1F\n0\nENDSEC\n");
  EXPECT_EQ(ErrorOf(text),
            "line 37: handle 1F is already used by the object at line 27");
  // Two layers of one name are one layer defined twice.
  std::string layers = MinimalDxf("");
  layers.insert(layers.find("0\nENDSEC\n0\nSECTION\n2\nBLOCKS"),
                "0\nTABLE\n2\nLAYER\n5\n2\n0\nLAYER\n5\n10\n2\nPipes\n0\nLAYER"
                "\n5\n11\n2\n"
                "PIPES\n0\nENDTAB\n");
  EXPECT_EQ(ErrorOf(layers),
            "line 27: the LAYER entry \"PIPES\" is defined twice");
  // Before R13 a block takes its BLOCK entity's handle: an entity that uses
  // it again is refused, not written out beside it with the same handle.
  const std::string r12 =
      "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1009\n9\n$HANDLING\n70\n1\n"
      "0\nENDSEC\n0\nSECTION\n2\nBLOCKS\n0\nBLOCK\n5\n36\n8\n0\n2\nB\n70\n0\n"
      "10\n0\n20\n0\n30\n0\n0\nENDBLK\n5\n37\n8\n0\n0\nENDSEC\n0\nSECTION\n2\n"
      "ENTITIES\n0\nPOINT\n5\n36\n8\n0\n10\n1\n20\n2\n30\n0\n0\nENDSEC\n0\nEOF\n";
  EXPECT_EQ(ErrorOf(r12),
            "line 47: handle 36 is already used by the object at line 19");
}

}  // namespace
}  // namespace kestrana::dxf
