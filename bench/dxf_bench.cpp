// Loading and saving drawings of many pipes, next to the floor of reading
// the file's bytes alone. The drawings are generated once into
// $KESTRANA_BENCH_DIR (default /tmp/kestrana_bench) as pipes_<N>.dxf, where
// bench/ezdxf_bench.py times ezdxf on the same files.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "dxf/io.h"
#include "dxf/reader.h"
#include "dxf/writer.h"
#include "memhost/document.h"

namespace {

namespace fs = std::filesystem;
using kestrana::memhost::MemDocument;

std::string BenchDir() {
  const char* dir = std::getenv("KESTRANA_BENCH_DIR");
  return dir ? dir : "/tmp/kestrana_bench";
}

// N pipes on a network layer, each with a record of the pipe's 24 fields.
std::string DrawingPath(int pipes) {
  std::string path = BenchDir() + "/pipes_" + std::to_string(pipes) + ".dxf";
  if (fs::exists(path)) return path;
  fs::create_directories(BenchDir());
  MemDocument doc;
  auto& layer = doc.GetLayers().Add("Sewer - Network");
  doc.SetActiveLayer(layer);
  doc.ModelSpace().SetXData(
      {{1001, "Kestrana"}, {1000, "2.00"}, {1000, "Metric"}});
  unsigned seed = 12345;
  auto next = [&] {
    seed = seed * 1103515245u + 12345u;
    return (seed >> 8) % 100000 / 1.0;
  };
  for (int i = 0; i < pipes; ++i) {
    double x = next(), y = next();
    auto& pipe = doc.ModelSpace().AddLightWeightPolyline(
        {x, y, x + 12.5, y + 3.25, x + 25.75, y + 1.5, x + 40.125, y + 6.0});
    kestrana::host::XRecord record{{1001, "Kestrana"},
                                   {1000, "Pipe;Sewer;P-" + std::to_string(i)},
                                   {1000, "GravityPipe"},
                                   {1000, "SectionShape_Circular"},
                                   {1040, 200.0},
                                   {1040, 200.0},
                                   {1040, 0.0},
                                   {1040, 0.0},
                                   {1070, int16_t{1}},
                                   {1040, 10.5 + i * 0.001},
                                   {1040, 10.2 + i * 0.001},
                                   {1000, "PVC"}};
    for (int k = 0; k < 12; ++k)
      record.push_back({1000, ";RelatedTo" + std::to_string(k)});
    pipe.SetXData(record);
  }
  kestrana::dxf::SaveDrawing(doc, path);
  return path;
}

std::string ReadBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::string data(fs::file_size(path), '\0');
  in.read(data.data(), static_cast<std::streamsize>(data.size()));
  return data;
}

void BM_ReadBytes(benchmark::State& state) {
  std::string path = DrawingPath(static_cast<int>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(ReadBytes(path));
  state.SetBytesProcessed(state.iterations() *
                          static_cast<int64_t>(fs::file_size(path)));
}

// Writing those bytes to a file the way load+save does: the other floor.
void BM_WriteBytes(benchmark::State& state) {
  std::string path = DrawingPath(static_cast<int>(state.range(0)));
  std::string data = ReadBytes(path);
  std::string out = path + ".out";
  for (auto _ : state)
    std::ofstream(out, std::ios::binary)
        .write(data.data(), static_cast<std::streamsize>(data.size()));
  state.SetBytesProcessed(state.iterations() *
                          static_cast<int64_t>(data.size()));
}

void BM_Load(benchmark::State& state) {
  std::string path = DrawingPath(static_cast<int>(state.range(0)));
  for (auto _ : state)
    benchmark::DoNotOptimize(kestrana::dxf::LoadDrawing(path));
}

// Load, write the text, and put it in a file (no flush to disk, as ezdxf).
void BM_LoadSave(benchmark::State& state) {
  std::string path = DrawingPath(static_cast<int>(state.range(0)));
  std::string out = path + ".out";
  for (auto _ : state) {
    auto doc = kestrana::dxf::LoadDrawing(path);
    std::string text = kestrana::dxf::WriteDxf(*doc);
    std::ofstream(out, std::ios::binary)
        .write(text.data(), static_cast<std::streamsize>(text.size()));
  }
}

// A change to every pipe: each is written from its state merged into its tags.
void BM_LoadChangeAllSave(benchmark::State& state) {
  std::string path = DrawingPath(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    auto doc = kestrana::dxf::LoadDrawing(path);
    for (auto* e : doc->ModelSpaceBlock().MemEntities())
      if (auto* pl = dynamic_cast<kestrana::memhost::MemLwPolyline*>(e))
        pl->xy_[0] += 1;
    benchmark::DoNotOptimize(kestrana::dxf::WriteDxf(*doc));
  }
}

BENCHMARK(BM_ReadBytes)->Arg(2000)->Arg(20000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WriteBytes)->Arg(2000)->Arg(20000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Load)->Arg(2000)->Arg(20000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadSave)->Arg(2000)->Arg(20000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadChangeAllSave)
    ->Arg(2000)
    ->Arg(20000)
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
