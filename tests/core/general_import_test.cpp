#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "core/general.h"
#include "core/lists.h"
#include "core/node_record.h"
#include "core/record.h"
#include "memhost/document.h"
#include "types/shp_pipe.h"

namespace kestrana::core {
namespace {

using V = std::vector<std::string>;

class TextFile : public ::testing::Test {
 protected:
  std::string Write(const std::string& content) {
    std::ofstream(path_, std::ios::binary) << content;
    return path_.string();
  }
  void TearDown() override { std::filesystem::remove(path_); }
  std::filesystem::path path_ =
      std::filesystem::temp_directory_path() /
      ("kestrana_import_" +
       std::string(
           ::testing::UnitTest::GetInstance()->current_test_info()->name()) +
       ".txt");
};

TEST_F(TextFile, DataRunsFromTheStartLineToTheFirstEmptyLine) {
  std::string file = Write("[Nodes]\n; comment\nN-1 10.0\n\nN-2\n");
  EXPECT_EQ(General::ReadTextDataFromString(file, "[Nodes]"),
            (V{"N-1 10.0", ""}));
}

TEST_F(TextFile, LinesAreCleanedAndCommentsSkipped) {
  std::string file = Write(
      "header\r\n[Pipes] list\r\n  P-1   N-1  N-2 \r\n;P-0 x\r\nP-2\tN-2\r\n");
  EXPECT_EQ(General::ReadTextDataFromString(file, "[Pipes]"),
            (V{"P-1 N-1 N-2", "P-2\tN-2", ""}));
  // The start text compares case-sensitively over its own length.
  EXPECT_EQ(General::ReadTextDataFromString(file, "[pipes]"), V{""});
  EXPECT_EQ(General::ReadTextDataFromString(file, "[Pipes] list and more"),
            V{""});
}

TEST_F(TextFile, EmptyStartTextStartsAfterTheFirstLine) {
  std::string file = Write("title\na\nb");
  EXPECT_EQ(General::ReadTextDataFromString(file, ""), (V{"a", "b", ""}));
}

TEST(TextImport, MissingFileGivesNothing) {
  EXPECT_EQ(General::ReadTextDataFromString("/nonexistent/k.txt", "[x]"), V{});
  EXPECT_EQ(General::ReadTextDataFromString(
                std::filesystem::temp_directory_path().string(), ""),
            V{});
}

TEST(TextImport, Delimiters) {
  EXPECT_EQ(General::GetDelimiter("a;b,c"), "comma");
  EXPECT_EQ(General::GetDelimiter("a;b\tc"), "tab");
  EXPECT_EQ(General::GetDelimiter("a;b"), "semicolon");
  EXPECT_EQ(General::GetDelimiter("abc"), "space");
  EXPECT_EQ(General::SplitTextByDelimiterName("\"P-1\",\"PVC\"", "comma"),
            (V{"P-1", "PVC"}));
  EXPECT_EQ(General::SplitTextByDelimiterName("\"P-1\"", "comma"),
            V{"\"P-1\""});
  EXPECT_EQ(General::SplitTextByDelimiterName("a  b", "space"),
            (V{"a", "", "b"}));
  EXPECT_EQ(General::SplitTextByDelimiterName("a\t\"b", "tab"), (V{"a", "b"}));
  EXPECT_EQ(General::SplitTextByDelimiterName("a;b", "semicolon"),
            (V{"a", "b"}));
  EXPECT_EQ(General::SplitTextByDelimiterName("a;b", "pipe"), V{"a;b"});
}

TEST(TextImport, Cleaning) {
  EXPECT_EQ(General::CleanExtraSpaces("  a   b  "), "a b");
  EXPECT_EQ(General::CleanExtraSpaces("a\tb "), "a\tb");
  EXPECT_EQ(General::CleanExtraSpaces("   "), "");
  EXPECT_EQ(General::CleanCote("\"x\""), "x");
  EXPECT_EQ(General::CleanCote("\"\""), "");
  EXPECT_EQ(General::CleanCote("\""), "");
  EXPECT_EQ(General::CleanCote("\"\"x\"\""), "\"x\"");
  EXPECT_EQ(General::CleanCote("x\""), "x");
  EXPECT_EQ(General::CleanNumericString("1,234.5"), 1234.5);
  EXPECT_EQ(General::CleanNumericString("1,,2"), 1);
  EXPECT_EQ(General::CleanNumericString("\"12.5\""), 12.5);
  EXPECT_EQ(General::CleanNumericString("1,234,567"), 1234567);
  EXPECT_EQ(General::CleanNumericString("abc"), 0);
}

TEST(StringRules, BannedCharacters) {
  EXPECT_FALSE(General::CheckTextForBannedCharacters("Net A", 1));
  EXPECT_TRUE(General::CheckTextForBannedCharacters("A=B", 1));
  EXPECT_FALSE(General::CheckTextForBannedCharacters("A=B", 0));
  EXPECT_TRUE(General::CheckTextForBannedCharacters("A;B", 0));
  for (char c : std::string(":;\"/\\><*|?,="))
    EXPECT_TRUE(
        General::CheckTextForBannedCharacters(std::string("x") + c + "y", 2))
        << c;
  for (char c : std::string("-_.#@()[]+&' "))
    EXPECT_FALSE(
        General::CheckTextForBannedCharacters(std::string("x") + c + "y", 1))
        << c;
  EXPECT_FALSE(General::CheckTextForBannedCharacters("", 1));
}

TEST(StringRules, SortComparesBytes) {
  EXPECT_EQ(General::BubbleSort({"b", "B", "a", "A10", "A2", ""}),
            (V{"", "A10", "A2", "B", "a", "b"}));
  EXPECT_EQ(General::BubbleSort({}), V{});
  // Bytes above 127 sort after ASCII.
  EXPECT_EQ(General::BubbleSort({"\xC3\xA9", "z"}), (V{"z", "\xC3\xA9"}));
}

TEST(Grid, CellsByRowAndColumn) {
  memhost::MemDataGrid grid({{"P-1", "200"}, {"P-2", "300"}, {"P-3", ""}}, 2);
  TextTable table = General::GetDataFromGrid(grid);
  ASSERT_EQ(table.Rows(), 3);
  ASSERT_EQ(table.Columns(), 2);
  EXPECT_EQ(table(1, 1), "300");
  EXPECT_EQ(table(2, 0), "P-3");
  EXPECT_EQ(table(2, 1), "");
}

std::vector<types::ShpPipe> Pipes() {
  std::vector<types::ShpPipe> pipes(3);
  pipes[0].StartInvert = 12.3;
  pipes[0].EndInvert = 12.0;
  pipes[0].Rise = 0.3;
  pipes[1].StartInvert = 11.5;
  pipes[1].EndInvert = 11.9;
  pipes[1].Rise = 0.6;
  pipes[2].StartInvert = 13;
  pipes[2].EndInvert = 12.8;
  pipes[2].Rise = -1;
  return pipes;
}

TEST(PipeArrays, LeastInvert) {
  std::vector<types::ShpPipe> pipes = Pipes();
  EXPECT_EQ(General::GetLeastInvert("", "", pipes), 0);
  EXPECT_EQ(General::GetLeastInvert("0;", "1;", pipes), 11.9);
  EXPECT_EQ(General::GetLeastInvert("0;1;", "", pipes), 11.5);
  EXPECT_EQ(General::GetLeastInvert("", "2;", pipes), 12.8);
  EXPECT_EQ(General::GetLeastInvert(";", "", pipes), 1000000);
  EXPECT_THROW(General::GetLeastInvert("3;", "", pipes), std::out_of_range);
}

TEST(PipeArrays, MaxRise) {
  std::vector<types::ShpPipe> pipes = Pipes();
  EXPECT_EQ(General::GetMaxRise("", pipes), 0);
  EXPECT_EQ(General::GetMaxRise("0;1;2;", pipes), 0.6);
  EXPECT_EQ(General::GetMaxRise("2;", pipes), 0);
}

class Surfaces : public ::testing::Test {
 protected:
  void AddSurface(const std::string& name) {
    doc_.App().Civil().Document().Surfaces().Add(
        std::make_unique<memhost::MemSurface>(
            name,
            std::vector<host::Point3>{{0, 0, 10}, {10, 0, 10}, {0, 10, 12}},
            std::vector<std::array<int, 3>>{{0, 1, 2}}));
  }
  std::vector<memhost::LogEntry> Log() { return doc_.GetSession().Log(); }
  memhost::MemDocument doc_;
};

TEST_F(Surfaces, NamesInOrder) {
  AddSurface("Existing Ground");
  AddSurface("Design");
  EXPECT_EQ(General::GetSurfaceNames(doc_, 1),
            (V{"Existing Ground", "Design"}));
  EXPECT_TRUE(Log().empty());
}

TEST_F(Surfaces, NoSurfacesIsToldOnlyWhenAsked) {
  EXPECT_EQ(General::GetSurfaceNames(doc_, 0), V{});
  EXPECT_TRUE(Log().empty());
  EXPECT_EQ(General::GetSurfaceNames(doc_, 1), V{});
  ASSERT_EQ(Log().size(), 1u);
  EXPECT_EQ(Log()[0].text, "No surfaces are defined!");
  EXPECT_EQ(Log()[0].icon, 16);
}

TEST_F(Surfaces, MissingExtensionIsToldOnlyWhenAsked) {
  AddSurface("EG");
  doc_.App().SetVersion("18.0s");
  EXPECT_EQ(General::GetSurfaceNames(doc_, 2), V{});
  EXPECT_TRUE(Log().empty());
  EXPECT_EQ(General::GetSurfaceNames(doc_, 1), V{});
  doc_.App().SetVersion("17.2");
  doc_.App().SetCivilInstalled(false);
  EXPECT_EQ(General::GetSurfaceNames(doc_, 1), V{});
  ASSERT_EQ(Log().size(), 2u);
  EXPECT_EQ(Log()[0].text, "Error loading AutoCAD Civil 3D application!");
  EXPECT_EQ(Log()[1].text, Log()[0].text);
  EXPECT_EQ(Log()[1].title, "Kestrana");
}

TEST(GroundLevel, ReadsNodeField9) {
  memhost::MemDocument doc;
  host::Entity& node = doc.ModelSpace().AddCircle({}, 1);
  Record record = Record::WithCodes(kNodeRecordCodes);
  record.SetReal(NodeField::kGroundLevel, 101.25);
  record.Write(node);
  EXPECT_EQ(General::GetGroundLevelAtNode(doc, node.ObjectID()), 101.25);
  host::Entity& bare = doc.ModelSpace().AddCircle({}, 2);
  EXPECT_THROW(General::GetGroundLevelAtNode(doc, bare.ObjectID()),
               MissingRecordError);
  host::ObjectId erased = node.ObjectID();
  node.Delete();
  EXPECT_THROW(General::GetGroundLevelAtNode(doc, erased), host::HostError);
}

}  // namespace
}  // namespace kestrana::core
