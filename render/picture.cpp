#include "render/picture.h"

#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <vector>

extern char** environ;

namespace kestrana::render {

namespace {

namespace fs = std::filesystem;

std::string Lower(std::string s) {
  for (char& c : s)
    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return s;
}

// A new, empty file in the temporary folder for the converter to use.
std::string ScratchFile(const std::string& suffix) {
  std::string pattern =
      (fs::temp_directory_path() / "kestrana-picture.XXXXXX").string();
  std::vector<char> name(pattern.begin(), pattern.end());
  name.push_back('\0');
  int fd = mkstemp(name.data());
  if (fd < 0)
    throw std::runtime_error("cannot make a scratch file in " +
                             fs::temp_directory_path().string() + ": " +
                             std::strerror(errno));
  close(fd);
  std::string made(name.data());
  // rsvg-convert picks its input format from the content, but keep names
  // honest.
  std::string renamed = made + suffix;
  fs::rename(made, renamed);
  return renamed;
}

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::string bytes((std::istreambuf_iterator<char>(in)), {});
  if (!in.good() && !in.eof()) throw std::runtime_error("cannot read " + path);
  return bytes;
}

void WriteFile(const std::string& path, const std::string& content) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << content;
  out.close();
  if (!out) throw std::runtime_error("cannot write " + path);
}

// Removes a temporary file on every way out.
struct Scratch {
  std::string path;
  ~Scratch() {
    std::error_code ignored;
    if (!path.empty()) fs::remove(path, ignored);
  }
};

void Convert(const std::string& converter, const std::string& svg_path,
             const std::string& png_path) {
  std::vector<std::string> args = {converter,  "--format", "png",
                                   "--output", png_path,   svg_path};
  std::vector<char*> argv;
  for (std::string& a : args) argv.push_back(a.data());
  argv.push_back(nullptr);
  pid_t pid = 0;
  int spawned = posix_spawnp(&pid, converter.c_str(), nullptr, nullptr,
                             argv.data(), environ);
  if (spawned == ENOENT)
    throw std::runtime_error(
        converter +
        " is not installed (Debian package librsvg2-bin); it is needed "
        "for PNG pictures, or ask for an .svg file instead");
  if (spawned != 0)
    throw std::runtime_error("cannot run " + converter + ": " +
                             std::strerror(spawned));
  int status = 0;
  while (waitpid(pid, &status, 0) < 0) {
    if (errno != EINTR) throw std::runtime_error("lost track of " + converter);
  }
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
    throw std::runtime_error(
        converter + " could not turn the picture into PNG (" +
        (WIFEXITED(status) ? "exit " + std::to_string(WEXITSTATUS(status))
                           : std::string("killed")) +
        ")");
}

}  // namespace

PictureFormat FormatOf(const std::string& path) {
  std::string ext = Lower(fs::path(path).extension().string());
  if (ext == ".svg") return PictureFormat::kSvg;
  if (ext == ".png") return PictureFormat::kPng;
  throw std::invalid_argument("the picture's name must end in .svg or .png: " +
                              path);
}

std::string PictureBytes(const std::string& svg, PictureFormat format,
                         const std::string& converter) {
  if (format == PictureFormat::kSvg) return svg;
  Scratch source{ScratchFile(".svg")};
  Scratch png{ScratchFile(".png")};
  WriteFile(source.path, svg);
  Convert(converter, source.path, png.path);
  return ReadFile(png.path);
}

}  // namespace kestrana::render
