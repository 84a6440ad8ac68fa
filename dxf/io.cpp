#include "dxf/io.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <fstream>

#include "dxf/reader.h"
#include "dxf/tags.h"
#include "dxf/writer.h"

namespace kestrana::dxf {

namespace {

std::string ReadWholeFile(const std::string& path) {
  int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0)
    throw FileError("cannot open '" + path + "': " + std::strerror(errno));
  struct stat st {};
  if (::fstat(fd, &st) != 0 || S_ISDIR(st.st_mode)) {
    ::close(fd);
    throw FileError("cannot read '" + path + "': it is not a file");
  }
  std::string data;
  data.resize(static_cast<size_t>(st.st_size));
  size_t done = 0;
  char probe[4096];
  while (true) {
    // A full buffer is checked for more with a small read first, so that
    // the usual file, read whole, is never moved to a larger buffer.
    bool full = done == data.size();
    char* into = full ? probe : data.data() + done;
    size_t room = full ? sizeof probe : data.size() - done;
    ssize_t n = ::read(fd, into, room);
    if (n < 0) {
      if (errno == EINTR) continue;
      int err = errno;
      ::close(fd);
      throw FileError("cannot read '" + path + "': " + std::strerror(err));
    }
    if (n == 0) break;
    if (full) data.append(probe, static_cast<size_t>(n));
    done += static_cast<size_t>(n);
  }
  ::close(fd);
  data.resize(done);
  return data;
}

std::string Directory(const std::string& path) {
  size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  if (slash == 0) return "/";
  return path.substr(0, slash);
}

std::string BaseName(const std::string& path) {
  size_t slash = path.rfind('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

}  // namespace

std::unique_ptr<memhost::MemDocument> LoadDrawing(const std::string& path,
                                                  const LoadOptions& options) {
  return ParseDrawing(path, ReadWholeFile(path), options);
}

std::unique_ptr<memhost::MemDocument> ParseDrawing(const std::string& path,
                                                   std::string text,
                                                   const LoadOptions& options) {
  auto doc = std::make_unique<memhost::MemDocument>(options.app, options.host);
  doc->SetName(BaseName(path));
  try {
    ReadDxf(*doc, std::move(text));
  } catch (const DxfError& e) {
    throw e.InFile(path);
  } catch (const host::HostError& e) {
    throw DxfError(0, path + ": " + e.what());
  }
  return doc;
}

namespace {

[[noreturn]] void WriteFailed(const std::string& path, const std::string& why,
                              int err) {
  throw FileError("cannot write '" + path + "': " + why +
                  (err ? std::string(": ") + std::strerror(err) : ""));
}

// The file a path names: symbolic links followed to what they point at,
// which may not exist yet (a link to a drawing still to be written).
std::string FollowLinks(const std::string& path) {
  std::string target = path;
  for (int hops = 0;; ++hops) {
    struct stat st {};
    if (::lstat(target.c_str(), &st) != 0 || !S_ISLNK(st.st_mode))
      return target;
    if (hops == 40) WriteFailed(path, "too many levels of symbolic links", 0);
    std::string link(PATH_MAX, '\0');
    ssize_t n = ::readlink(target.c_str(), link.data(), link.size());
    if (n < 0) WriteFailed(path, "reading the symbolic link", errno);
    link.resize(static_cast<size_t>(n));
    target = link.front() == '/' ? link : Directory(target) + "/" + link;
  }
}

// Throws FileError; the caller closes `fd`.
void WriteAll(int fd, std::string_view bytes, const std::string& path) {
  size_t done = 0;
  while (done < bytes.size()) {
    ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
    if (n < 0) {
      if (errno == EINTR) continue;
      WriteFailed(path, "writing", errno);
    }
    done += static_cast<size_t>(n);
  }
}

// A device or a pipe cannot be replaced by a rename: it is written to,
// once the whole output is made, so that a failure writes nothing there.
void WriteInPlace(const std::string& path, const Producer& produce) {
  std::string bytes;
  produce([&](std::string_view piece) { bytes.append(piece); });
  int fd = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
  if (fd < 0) WriteFailed(path, "opening", errno);
  try {
    WriteAll(fd, bytes, path);
  } catch (...) {
    ::close(fd);
    throw;
  }
  if (::close(fd) != 0) WriteFailed(path, "closing", errno);
}

// Write permission as the file's mode says it. The superuser may write
// anything, so for it a file nobody may write counts as read-only too.
bool ReadOnly(const std::string& path, const struct stat& st) {
  if (::access(path.c_str(), W_OK) != 0)
    return errno == EACCES || errno == EROFS;
  return ::geteuid() == 0 && (st.st_mode & 0222) == 0;
}

}  // namespace

void WriteFileAtomically(const std::string& path, const std::string& bytes) {
  WriteFileAtomically(path, [&](const ByteSink& sink) { sink(bytes); });
}

void WriteFileAtomically(const std::string& path, const Producer& produce) {
  struct stat st {};
  const bool exists = ::stat(path.c_str(), &st) == 0;
  if (exists && S_ISDIR(st.st_mode)) WriteFailed(path, "it is a folder", 0);
  // Opened through its links as it stands: /dev/stdout names a pipe or a
  // terminal by a link that is no path.
  if (exists && !S_ISREG(st.st_mode)) return WriteInPlace(path, produce);
  const std::string target = FollowLinks(path);
  if (exists && ReadOnly(target, st))
    throw FileError("cannot write '" + path +
                    "': the file is read-only; make it writable or write "
                    "elsewhere with -o OUT");

  std::string dir = Directory(target);
  std::string tmp = dir + "/." + BaseName(target) + ".XXXXXX";
  int fd = ::mkstemp(tmp.data());
  if (fd < 0)
    WriteFailed(path, "cannot create a temporary file in '" + dir + "'", errno);
  auto fail = [&](const char* what) {
    int err = errno;
    ::close(fd);
    ::unlink(tmp.c_str());
    WriteFailed(path, what, err);
  };
  mode_t mode = 0666 & ~[] {
    mode_t m = ::umask(0);
    ::umask(m);
    return m;
  }();
  if (exists) {
    mode = st.st_mode & 07777;
    // Only the superuser may give a file away; others keep it as theirs.
    if (::geteuid() == 0 && ::fchown(fd, st.st_uid, st.st_gid) != 0)
      fail("keeping the owner");
  }
  if (::fchmod(fd, mode) != 0) fail("setting permissions");
  try {
    produce([&](std::string_view piece) { WriteAll(fd, piece, path); });
  } catch (...) {
    ::close(fd);
    ::unlink(tmp.c_str());
    throw;
  }
  if (::fsync(fd) != 0) fail("flushing to disk");
  if (::close(fd) != 0) {
    int err = errno;
    ::unlink(tmp.c_str());
    WriteFailed(path, "closing", err);
  }
  if (::rename(tmp.c_str(), target.c_str()) != 0) {
    int err = errno;
    ::unlink(tmp.c_str());
    WriteFailed(path, "replacing it", err);
  }
  // The rename itself reaches the disk with the folder.
  int dir_fd = ::open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (dir_fd >= 0) {
    ::fsync(dir_fd);
    ::close(dir_fd);
  }
}

void SaveDrawing(memhost::MemDocument& doc, const std::string& path) {
  WriteFileAtomically(path,
                      [&](const ByteSink& sink) { WriteDxf(doc, sink); });
}

void EditDrawing(const std::string& input,
                 const std::optional<std::string>& output,
                 const std::function<void(memhost::MemDocument&)>& change,
                 const LoadOptions& options) {
  auto doc = LoadDrawing(input, options);
  change(*doc);
  SaveDrawing(*doc, output.value_or(input));
}

}  // namespace kestrana::dxf
