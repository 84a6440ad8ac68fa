// Loading the same drawing of 20 000 polylines from ASCII and from binary
// DXF: processor time of each (median of several runs) and their ratio.
// The binary file holds the same tags, values in fixed binary form; its
// load converts them to the ASCII text the reader takes, so the ratio
// shows what that conversion costs against the ASCII bytes it saves.
#include <algorithm>
#include <cstdio>
#include <ctime>
#include <string>
#include <vector>

#include "dxf/binary.h"
#include "dxf/reader.h"
#include "dxf/writer.h"
#include "memhost/document.h"

namespace {

using kestrana::memhost::MemDocument;

std::string Drawing(int polylines) {
  MemDocument doc;
  unsigned seed = 12345;
  auto next = [&] {
    seed = seed * 1103515245u + 12345u;
    return static_cast<double>((seed >> 8) % 1000000) / 7.0;
  };
  for (int i = 0; i < polylines; ++i) {
    double x = next(), y = next();
    auto& pl = doc.ModelSpace().AddLightWeightPolyline(
        {x, y, x + 12.5, y + 3.25, x + 25.75, y + 1.5, x + 40.125, y + 6.0});
    pl.SetXData({{1001, "Survey"},
                 {1000, "kerb " + std::to_string(i)},
                 {1040, next()},
                 {1070, int16_t{3}}});
  }
  return kestrana::dxf::WriteDxf(doc);
}

double LoadSeconds(const std::string& bytes) {
  std::clock_t start = std::clock();
  MemDocument doc;
  kestrana::dxf::ReadDxf(doc, bytes);
  return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

double Median(std::vector<double> v) {
  std::sort(v.begin(), v.end());
  return v[v.size() / 2];
}

}  // namespace

int main(int argc, char** argv) {
  int polylines = argc > 1 ? std::atoi(argv[1]) : 20000;
  int runs = argc > 2 ? std::atoi(argv[2]) : 5;
  std::string ascii = Drawing(polylines);
  kestrana::dxf::BinaryForm form;
  std::string binary = kestrana::dxf::TextToBinary(ascii, form);
  std::vector<double> a, b;
  for (int i = 0; i < runs; ++i) {
    a.push_back(LoadSeconds(ascii));
    b.push_back(LoadSeconds(binary));
  }
  double ta = Median(a), tb = Median(b);
  std::printf("%d polylines, median of %d loads (processor time)\n", polylines,
              runs);
  std::printf("  ASCII   %9zu bytes  %8.3f s\n", ascii.size(), ta);
  std::printf("  binary  %9zu bytes  %8.3f s\n", binary.size(), tb);
  std::printf("  binary / ASCII: size %.2f, load time %.2f\n",
              static_cast<double>(binary.size()) / ascii.size(), tb / ta);
  return 0;
}
