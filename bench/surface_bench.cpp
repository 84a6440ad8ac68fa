// Ground levels from terrain surfaces of 10 000 to a million triangles:
// building the triangle index, one elevation lookup, and reading the
// surface from LandXML. Lookups on the indexed surface are set beside
// trying every triangle, which is what the index saves.
#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "memhost/landxml.h"
#include "memhost/session.h"

namespace {

using kestrana::host::Point3;
using kestrana::memhost::MemSurface;

// A rolling terrain on a square grid of cells, two triangles each, with the
// grid sheared and jittered so that triangles are not axis-aligned.
struct Terrain {
  int cells = 0;  // per side
  std::vector<Point3> points;
  std::vector<std::array<int, 3>> triangles;
  double size = 0;
};

Terrain MakeTerrain(int triangles) {
  Terrain t;
  t.cells = std::max(1, static_cast<int>(std::sqrt(triangles / 2.0)));
  const int side = t.cells + 1;
  const double step = 5.0;
  t.size = t.cells * step;
  std::mt19937 rng(7);
  std::uniform_real_distribution<double> jitter(-1.0, 1.0);
  for (int j = 0; j < side; ++j)
    for (int i = 0; i < side; ++i) {
      bool edge = i == 0 || j == 0 || i == side - 1 || j == side - 1;
      double x = i * step + (edge ? 0 : jitter(rng));
      double y = j * step + (edge ? 0 : jitter(rng));
      t.points.push_back(
          {x, y, 100 + 5 * std::sin(x / 90) + 3 * std::cos(y / 70)});
    }
  for (int j = 0; j < t.cells; ++j)
    for (int i = 0; i < t.cells; ++i) {
      int a = j * side + i, b = a + 1, c = a + side, d = c + 1;
      t.triangles.push_back({a, b, d});
      t.triangles.push_back({a, d, c});
    }
  return t;
}

std::vector<std::array<double, 2>> Queries(const Terrain& t, int n) {
  std::mt19937 rng(11);
  std::uniform_real_distribution<double> at(0.0, t.size);
  std::vector<std::array<double, 2>> q(n);
  for (auto& p : q) p = {at(rng), at(rng)};
  return q;
}

void BM_BuildIndex(benchmark::State& state) {
  Terrain t = MakeTerrain(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    MemSurface s("ground", t.points, t.triangles);
    benchmark::DoNotOptimize(s.TriangleCount());
  }
  state.counters["triangles"] = static_cast<double>(t.triangles.size());
}

void BM_Lookup(benchmark::State& state) {
  Terrain t = MakeTerrain(static_cast<int>(state.range(0)));
  MemSurface s("ground", t.points, t.triangles);
  auto q = Queries(t, 4096);
  size_t i = 0;
  for (auto _ : state) {
    const auto& p = q[i++ & 4095];
    benchmark::DoNotOptimize(s.FindElevationAtXY(p[0], p[1]));
  }
}

// Every triangle tried in turn until one holds the point.
void BM_LookupEveryTriangle(benchmark::State& state) {
  Terrain t = MakeTerrain(static_cast<int>(state.range(0)));
  auto q = Queries(t, 256);
  size_t i = 0;
  for (auto _ : state) {
    const auto& p = q[i++ & 255];
    double z = NAN;
    for (const auto& tri : t.triangles) {
      const Point3 &a = t.points[tri[0]], &b = t.points[tri[1]],
                   &c = t.points[tri[2]];
      double det = (b.y - c.y) * (a.x - c.x) + (c.x - b.x) * (a.y - c.y);
      double l1 = ((b.y - c.y) * (p[0] - c.x) + (c.x - b.x) * (p[1] - c.y)) /
                  det;
      double l2 = ((c.y - a.y) * (p[0] - c.x) + (a.x - c.x) * (p[1] - c.y)) /
                  det;
      if (l1 >= -1e-9 && l2 >= -1e-9 && 1 - l1 - l2 >= -1e-9) {
        z = l1 * a.z + l2 * b.z + (1 - l1 - l2) * c.z;
        break;
      }
    }
    benchmark::DoNotOptimize(z);
  }
}

std::string LandXml(const Terrain& t) {
  std::ostringstream out;
  out.precision(10);
  out << "<?xml version=\"1.0\"?>\n<LandXML version=\"1.2\"><Surfaces>"
         "<Surface name=\"Existing Ground\"><Definition surfType=\"TIN\">"
         "<Pnts>\n";
  for (size_t i = 0; i < t.points.size(); ++i)  // northing easting elevation
    out << "<P id=\"" << i + 1 << "\">" << t.points[i].y << ' '
        << t.points[i].x << ' ' << t.points[i].z << "</P>\n";
  out << "</Pnts><Faces>\n";
  for (const auto& f : t.triangles)
    out << "<F>" << f[0] + 1 << ' ' << f[1] + 1 << ' ' << f[2] + 1 << "</F>\n";
  out << "</Faces></Definition></Surface></Surfaces></LandXML>\n";
  return out.str();
}

void BM_ReadLandXml(benchmark::State& state) {
  Terrain t = MakeTerrain(static_cast<int>(state.range(0)));
  std::string text = LandXml(t);
  for (auto _ : state) {
    auto surfaces = kestrana::memhost::ParseLandXmlSurfaces(text, "bench.xml");
    benchmark::DoNotOptimize(surfaces.front()->TriangleCount());
  }
  state.SetBytesProcessed(state.iterations() *
                          static_cast<int64_t>(text.size()));
}

BENCHMARK(BM_BuildIndex)
    ->Arg(10000)
    ->Arg(100000)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Lookup)->Arg(10000)->Arg(100000)->Arg(1000000);
BENCHMARK(BM_LookupEveryTriangle)
    ->Arg(10000)
    ->Arg(100000)
    ->Arg(1000000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ReadLandXml)
    ->Arg(10000)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
