// A fixture for running `kestrana` commands in-process on files of a fresh
// folder of their own, one per test.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "cli/command.h"
#include "commands/networks.h"
#include "core/names.h"
#include "dxf/io.h"
#include "support/drawn_lines.h"
#include "support/network_elements.h"

namespace kestrana::test {

class CommandTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    dir_ = std::filesystem::temp_directory_path() /
           ("kestrana_" + std::string(info->test_suite_name()) + "_" +
            info->name());
    std::filesystem::remove_all(dir_);
    std::filesystem::create_directories(dir_);
  }
  void TearDown() override { std::filesystem::remove_all(dir_); }

  std::string Path(const std::string& name) const {
    return (dir_ / name).string();
  }
  // Runs the command line `args` (without "kestrana"); its output is in
  // out_ and err_ until the next run.
  int Run(const std::vector<std::string>& args) {
    out_.str("");
    err_.str("");
    cli::Io io{out_, err_};
    return cli::Main(args, io);
  }
  // "site.dxf": a project whose gravity network "Sewer" these lines
  // became.
  std::string SewerSite(const std::vector<std::vector<double>>& lines) {
    const std::string site = Path("site.dxf");
    auto doc = NewFullProjectDocument("Metric");
    commands::AddNetwork(*doc, {"Sewer", core::kGravity});
    ConvertDrawn(*doc, lines, "Sewer", core::kGravity);
    dxf::SaveDrawing(*doc, site);
    return site;
  }
  static std::string Bytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
  }

  std::filesystem::path dir_;
  std::ostringstream out_, err_;
};

}  // namespace kestrana::test
