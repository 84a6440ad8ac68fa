#include "cli/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <ostream>

#include "dxf/io.h"
#include "host/errors.h"
#include "profile/profile_style_file.h"

namespace kestrana::cli {

namespace {

constexpr size_t kMegabyte = size_t{1} << 20;
constexpr std::string_view kBinaryDxfSentinel = "AutoCAD Binary DXF";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
// Enough of the start of a file to tell its kind.
constexpr size_t kHeadBytes = 4096;

std::ostream* standard_output = nullptr;

const char* KindName(InputKind kind) {
  switch (kind) {
    case InputKind::kDrawing:
      return "a DXF drawing";
    case InputKind::kSurface:
      return "a LandXML surface file";
    case InputKind::kViewStyle:
      return "a view style file";
    case InputKind::kProfileStyle:
      return "a profile style file";
  }
  return "";
}

// The file as an open failure names it.
const char* FileName(InputKind kind) {
  switch (kind) {
    case InputKind::kDrawing:
      return "the drawing";
    case InputKind::kSurface:
      return "the surface file";
    case InputKind::kViewStyle:
      return "the view style file";
    case InputKind::kProfileStyle:
      return "the profile style file";
  }
  return "";
}

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

// The text after a byte-order mark and blank lines.
std::string_view FirstText(std::string_view head) {
  if (head.substr(0, kByteOrderMark.size()) == kByteOrderMark)
    head.remove_prefix(kByteOrderMark.size());
  while (!head.empty() && IsBlank(head.front())) head.remove_prefix(1);
  return head;
}

// Text files hold no control characters but blanks and line ends.
bool IsText(std::string_view head) {
  for (unsigned char c : head)
    if (c < 0x20 && !IsBlank(static_cast<char>(c)) && c != '\f') return false;
  return !head.empty();
}

// An ASCII DXF begins with a group code alone on its line.
bool BeginsWithGroupCode(std::string_view text) {
  size_t i = 0;
  if (i < text.size() && text[i] == '-') ++i;
  const size_t digits_from = i;
  while (i < text.size() && text[i] >= '0' && text[i] <= '9') ++i;
  if (i == digits_from || i - digits_from > 6) return false;
  while (i < text.size() && (text[i] == ' ' || text[i] == '\t')) ++i;
  return i == text.size() || text[i] == '\r' || text[i] == '\n';
}

bool IsLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

std::string Megabytes(size_t bytes) {
  return std::to_string((bytes + kMegabyte - 1) / kMegabyte) + " MB";
}

}  // namespace

size_t MaxInputBytes(InputKind kind) {
  switch (kind) {
    case InputKind::kDrawing:
      return 1024 * kMegabyte;
    case InputKind::kSurface:
      return 512 * kMegabyte;
    case InputKind::kViewStyle:
      return kMegabyte;
    case InputKind::kProfileStyle:
      return profile::kMaxProfileStyleFileBytes;
  }
  return 0;
}

bool LooksLike(InputKind kind, std::string_view head) {
  if (kind == InputKind::kDrawing &&
      head.substr(0, kBinaryDxfSentinel.size()) == kBinaryDxfSentinel)
    return true;
  if (!IsText(head)) return false;
  const std::string_view text = FirstText(head);
  if (text.empty()) return false;
  switch (kind) {
    case InputKind::kDrawing:
      return BeginsWithGroupCode(text);
    case InputKind::kSurface:
      return text.front() == '<';
    case InputKind::kViewStyle:
      return text.front() == '#' || text.front() == '[' ||
             IsLetter(text.front());
    case InputKind::kProfileStyle:
      return text.front() == '"';
  }
  return false;
}

std::string ReadInput(const std::string& path, InputKind kind) {
  // Not blocking: opening a pipe would otherwise wait for a writer.
  int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (fd < 0)
    throw NotFoundError(std::string("cannot open ") + FileName(kind) + " '" +
                        path + "': " + std::strerror(errno));
  auto refuse = [&](const std::string& why) {
    ::close(fd);
    throw InvalidInputError("'" + path + "' " + why);
  };
  struct stat st {};
  if (::fstat(fd, &st) != 0)
    refuse("cannot be read: " + std::string(std::strerror(errno)));
  if (S_ISDIR(st.st_mode))
    refuse(std::string("is a folder, not ") + KindName(kind));
  if (!S_ISREG(st.st_mode))
    refuse(std::string("is not a regular file (a device, a pipe or a "
                       "socket); kestrana reads ") +
           KindName(kind) + " only from a file");
  const size_t limit = MaxInputBytes(kind);
  auto too_large = [&](size_t size) {
    refuse("is " + Megabytes(size) + ", larger than " + KindName(kind) +
           " kestrana reads (at most " + Megabytes(limit) + ")");
  };
  if (static_cast<unsigned long long>(st.st_size) > limit)
    too_large(static_cast<size_t>(st.st_size));

  std::string data(static_cast<size_t>(st.st_size), '\0');
  size_t done = 0;
  char probe[4096];
  while (true) {
    // The file may have grown since it was measured: read on, but never
    // past the limit.
    const bool full = done == data.size();
    char* into = full ? probe : data.data() + done;
    const size_t room = full ? sizeof probe : data.size() - done;
    ssize_t n = ::read(fd, into, room);
    if (n < 0) {
      if (errno == EINTR) continue;
      refuse("cannot be read: " + std::string(std::strerror(errno)));
    }
    if (n == 0) break;
    if (full) data.append(probe, static_cast<size_t>(n));
    done += static_cast<size_t>(n);
    if (done > limit) too_large(done);
  }
  ::close(fd);
  data.resize(done);
  if (data.empty())
    throw InvalidInputError("'" + path + "' is empty, not " + KindName(kind));
  if (!LooksLike(kind, std::string_view(data).substr(0, kHeadBytes)))
    throw InvalidInputError("'" + path + "' is not " + KindName(kind) +
                            " (it does not begin as one)");
  return data;
}

void SetStandardOutput(std::ostream* out) { standard_output = out; }

void WriteOutput(const std::string& path, const std::string& bytes) {
  if (path == kStandardOutput && standard_output != nullptr) {
    standard_output->write(bytes.data(),
                           static_cast<std::streamsize>(bytes.size()));
    standard_output->flush();
    if (!*standard_output)
      throw dxf::FileError("cannot write to standard output");
    return;
  }
  dxf::WriteFileAtomically(path, bytes);
}

void WriteOutput(const std::string& path, const dxf::Producer& produce) {
  if (path == kStandardOutput && standard_output != nullptr) {
    // Made whole first: a failure prints nothing.
    std::string bytes;
    produce([&](std::string_view piece) { bytes.append(piece); });
    return WriteOutput(path, bytes);
  }
  dxf::WriteFileAtomically(path, produce);
}

}  // namespace kestrana::cli
