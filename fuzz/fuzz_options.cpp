// Command lines built from any bytes, aimed at the numbers and names the
// commands take. The first byte picks a command, the rest gives its values,
// one a line. Every run ends with exit code 0, 1 or 2; a command that fails
// leaves its drawing byte for byte as it was; a drawing a command writes
// reads back.
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "cli/command.h"
#include "commands/convert.h"
#include "commands/project.h"
#include "dxf/io.h"
#include "memhost/document.h"

namespace {

namespace fs = std::filesystem;

struct Site {
  fs::path dir;
  std::string drawing;  // a project with the networks "Sewer" and "Water"
  std::string pristine;
  std::string style;          // a view style file
  std::string profile_style;  // a profile style file
};

std::string Bytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

int Run(const std::vector<std::string>& args) {
  std::ostringstream out, err;
  kestrana::cli::Io io{out, err};
  return kestrana::cli::Main(args, io);
}

// The folder of the site, kept apart from it: removed at exit, after the
// site itself is gone.
char site_dir[] = "/tmp/kestrana_fuzz_options_XXXXXX";

void RemoveSite() {
  std::error_code error;
  fs::remove_all(site_dir, error);
}

const Site& TheSite() {
  static const Site site = [] {
    Site s;
    if (mkdtemp(site_dir) == nullptr) std::abort();
    std::atexit(RemoveSite);
    s.dir = site_dir;
    s.drawing = (s.dir / "site.dxf").string();
    namespace commands = kestrana::commands;
    kestrana::memhost::MemDocument doc;
    commands::NewProject(doc, {"Metric"});
    doc.GetLayers().Add("S");
    doc.GetLayers().Add("W");
    doc.ModelSpace()
        .AddLightWeightPolyline({0, 0, 50, 0, 100, 10})
        .SetLayer("S");
    doc.ModelSpace().AddLine({100, 10, 0}, {150, 0, 0}).SetLayer("S");
    doc.ModelSpace().AddLightWeightPolyline({25, -30, 25, 30}).SetLayer("W");
    commands::Convert(
        doc,
        {.network = "Sewer", .type = "Gravity", .selection = {.layer = "S"}});
    commands::Convert(
        doc,
        {.network = "Water", .type = "Pressure", .selection = {.layer = "W"}});
    kestrana::dxf::SaveDrawing(doc, s.drawing);
    s.pristine = Bytes(s.drawing);
    s.style = (s.dir / "standard.style").string();
    s.profile_style = (s.dir / "standard.profile").string();
    if (Run({"style", "export", s.drawing, "Standard", "-o", s.style}) != 0 ||
        Run({"profile", "style", "export", s.drawing, "Standard", "-o",
             s.profile_style}) != 0)
      std::abort();
    return s;
  }();
  return site;
}

// The command lines; "$0", "$1", ... stand for the values.
const std::vector<std::vector<std::string>>& Templates() {
  static const std::vector<std::vector<std::string>> templates = {
      {"node", "set", "@", "--network", "$0", "--label", "$1", "--ground", "$2",
       "--sump", "$3"},
      {"node", "set", "@", "--network", "Sewer", "--label", "N-2",
       "--new-label", "$0"},
      {"pipe", "set", "@", "--network", "Sewer", "--label", "P-1",
       "--start-invert", "$0", "--end-invert", "$1"},
      {"pipe", "set", "@", "--network", "Water", "--label", "P-1", "--size",
       "$0", "--cells", "$1", "--material", "$2"},
      {"pipe", "set", "@", "--network", "Sewer", "--label", "$0", "--new-label",
       "$1"},
      {"network", "add", "@", "$0", "--type", "$1"},
      {"network", "delete", "@", "$0"},
      {"network", "hide", "@", "$0"},
      {"copy", "@", "--network", "$0", "--pipes", "$1", "--nodes", "$2", "--by",
       "$3"},
      {"crossings", "@", "--threshold", "$0", "--enable", "$1"},
      {"lowhigh", "@", "--show", "$0"},
      {"convert", "@", "--network", "$0", "--type", "Gravity", "--window",
       "$1"},
      {"erase", "@", "--handles", "$0"},
      {"pipe", "split", "@", "--network", "Sewer", "--label", "$0", "--at",
       "$1"},
      {"pipe", "reverse", "@", "--network", "$0", "--labels", "$1"},
      {"style", "create", "@", "$0", "--from", "#style"},
      {"style", "activate", "@", "$0"},
      {"style", "apply", "@", "--network", "$0"},
      {"profile", "style", "import", "@", "#profile", "--name", "$0"},
      {"profile", "style", "delete", "@", "$0"},
      {"move", "@", "--network", "$0", "--nodes", "$1", "--by", "$2"},
      {"stretch", "@", "--network", "Sewer", "--pipe", "$0", "--vertex", "$1",
       "--to", "$2"},
  };
  return templates;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const Site& site = TheSite();
  const std::vector<std::string>& shape =
      Templates()[data[0] % Templates().size()];
  std::vector<std::string> values;
  std::string value;
  for (size_t i = 1; i < size; ++i) {
    if (data[i] == '\n') {
      values.push_back(value);
      value.clear();
    } else {
      value += static_cast<char>(data[i]);
    }
  }
  values.push_back(value);

  std::vector<std::string> args;
  for (const std::string& word : shape) {
    if (word == "@") {
      args.push_back(site.drawing);
    } else if (word == "#style") {
      args.push_back(site.style);
    } else if (word == "#profile") {
      args.push_back(site.profile_style);
    } else if (word[0] == '$') {
      const size_t k = static_cast<size_t>(word[1] - '0');
      args.push_back(k < values.size() ? values[k] : "");
    } else {
      args.push_back(word);
    }
  }
  {
    std::ofstream out(site.drawing, std::ios::binary | std::ios::trunc);
    out << site.pristine;
  }
  const int code = Run(args);
  if (code != 0 && code != 1 && code != 2) std::abort();
  if (code != 0) {
    if (Bytes(site.drawing) != site.pristine) std::abort();
    return 0;
  }
  try {
    kestrana::dxf::LoadDrawing(site.drawing);
  } catch (const kestrana::Error&) {
    std::abort();  // written, and then not readable
  }
  return 0;
}
