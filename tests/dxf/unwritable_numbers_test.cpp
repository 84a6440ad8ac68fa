// The writer is the last line of defence: a number the reader would refuse
// never reaches a file, and the file on disk stays as it was.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>

#include "dxf/io.h"
#include "memhost/document.h"
#include "support/project.h"

namespace kestrana::dxf {
namespace {

std::string Slurp(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

TEST(UnwritableNumbers, ANonFiniteNumberStopsTheSaveAndKeepsTheFile) {
  const std::filesystem::path dir =
      std::filesystem::temp_directory_path() /
      ("kestrana_unwritable_" + std::to_string(::getpid()));
  std::filesystem::create_directories(dir);
  const std::string path = (dir / "sample.dxf").string();
  SaveDrawing(*test::SampleDrawing(), path);
  const std::string before = Slurp(path);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();

  // Records take any real, as the host's do; the file must not.
  for (double bad : {nan, inf, -inf}) {
    auto doc = LoadDrawing(path);
    doc->SetActiveLayer(doc->GetLayers().Item("0"));
    doc->ModelSpace().AddPoint({1, 2, 0}).SetXData(
        {{1001, "Kestrana"}, {1000, "x"}, {1040, bad}});
    EXPECT_THROW(SaveDrawing(*doc, path), InvalidInputError) << bad;
    EXPECT_EQ(Slurp(path), before);
  }
  // Nothing else is left in the folder either.
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir), {}), 1);
  std::filesystem::remove_all(dir);
}

}  // namespace
}  // namespace kestrana::dxf
