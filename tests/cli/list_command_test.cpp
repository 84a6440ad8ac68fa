// kestrana list: the tables a user reads, CSV a spreadsheet opens, and the
// command line it refuses.
#include <gtest/gtest.h>

#include <charconv>
#include <sstream>
#include <string>
#include <vector>

#include "cli/command.h"
#include "cli/command_fixture.h"

namespace kestrana::cli {
namespace {

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    lines.push_back(line);
  }
  return lines;
}

bool IsNumber(const std::string& text) {
  double value = 0;
  auto [end, ec] =
      std::from_chars(text.data(), text.data() + text.size(), value);
  return ec == std::errc() && end == text.data() + text.size();
}

class ListCommand : public test::CommandTest {
 protected:
  void SetUp() override {
    CommandTest::SetUp();
    // Two pipes, one with a bend: 3 nodes.
    site_ = SewerSite({{0, 0, 40, 0, 40, 30}, {40, 30, 90, 30}});
  }
  std::string site_;
};

TEST_F(ListCommand, CsvHasAHeaderAndOneLineOfPlainValuesPerElement) {
  const std::string before = Bytes(site_);
  ASSERT_EQ(Run({"list", site_, "--pipes", "--csv"}), 0) << err_.str();
  std::vector<std::string> pipes = Lines(out_.str());
  ASSERT_EQ(pipes.size(), 3u) << out_.str();
  EXPECT_EQ(pipes[0],
            "network,label,handle,start_node,end_node,shape,span,rise,cells,"
            "material,length,start_invert,end_invert,slope_percent,vertices");
  const std::vector<size_t> numeric = {6, 7, 8, 10, 11, 12, 13, 14};
  for (size_t row = 1; row < pipes.size(); ++row) {
    const std::vector<std::string> cells = SplitAtCommas(pipes[row]);
    ASSERT_EQ(cells.size(), 15u) << pipes[row];
    EXPECT_EQ(cells[0], "Sewer");
    for (size_t column : numeric)
      EXPECT_TRUE(IsNumber(cells[column])) << column << ": " << pipes[row];
  }
  // The pipe with the bend: three vertices and 70 long.
  bool bend = false;
  for (size_t row = 1; row < pipes.size(); ++row) {
    const std::vector<std::string> cells = SplitAtCommas(pipes[row]);
    if (cells[14] == "3") {
      bend = true;
      EXPECT_EQ(cells[10], "70.00");
    }
  }
  EXPECT_TRUE(bend) << out_.str();

  ASSERT_EQ(Run({"list", site_, "--nodes", "--csv", "--network", "Sewer"}), 0)
      << err_.str();
  std::vector<std::string> nodes = Lines(out_.str());
  ASSERT_EQ(nodes.size(), 4u) << out_.str();
  EXPECT_EQ(nodes[0],
            "network,label,handle,x,y,ground,sump,depth,matching,low_high");
  for (size_t row = 1; row < nodes.size(); ++row) {
    const std::vector<std::string> cells = SplitAtCommas(nodes[row]);
    ASSERT_EQ(cells.size(), 10u) << nodes[row];
    for (size_t column : {3, 4, 5, 6, 7})
      EXPECT_TRUE(IsNumber(cells[column])) << nodes[row];
  }
  EXPECT_EQ(Bytes(site_), before);
}

TEST_F(ListCommand, TablesNameTheNetworkAndShowSizesAsAnnotated) {
  ASSERT_EQ(Run({"list", site_}), 0) << err_.str();
  const std::string text = out_.str();
  EXPECT_NE(text.find("Sewer pipes (2)\n  LABEL  HANDLE  FROM"),
            std::string::npos)
      << text;
  EXPECT_NE(text.find("Sewer nodes (3)\n"), std::string::npos) << text;
  EXPECT_NE(text.find("Ø200"), std::string::npos) << text;
  ASSERT_EQ(Run({"list", site_, "--nodes"}), 0);
  EXPECT_EQ(out_.str().find("pipes"), std::string::npos) << out_.str();
}

TEST_F(ListCommand, RefusesWhatItCannotShow) {
  EXPECT_EQ(Run({"list", site_, "--pipes", "--nodes"}), 2);
  EXPECT_EQ(Run({"list", site_, "--json", "--csv"}), 2);
  EXPECT_EQ(Run({"list", site_, "--csv"}), 2);
  EXPECT_NE(err_.str().find("--csv needs --pipes or --nodes"),
            std::string::npos)
      << err_.str();
  EXPECT_EQ(Run({"list", site_, "--network", "Storm"}), 1);
  EXPECT_NE(err_.str().find("no network named \"Storm\""), std::string::npos)
      << err_.str();
}

}  // namespace
}  // namespace kestrana::cli
