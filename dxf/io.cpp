#include "dxf/io.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
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
  std::string text = ReadWholeFile(path);
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

void WriteFileAtomically(const std::string& path, const std::string& bytes) {
  std::string dir = Directory(path);
  std::string tmp = dir + "/." + BaseName(path) + ".XXXXXX";
  int fd = ::mkstemp(tmp.data());
  if (fd < 0)
    throw FileError("cannot write '" + path +
                    "': cannot create a temporary file in '" + dir +
                    "': " + std::strerror(errno));
  auto fail = [&](const char* what) {
    int err = errno;
    ::close(fd);
    ::unlink(tmp.c_str());
    throw FileError("cannot write '" + path + "': " + what + ": " +
                    std::strerror(err));
  };
  struct stat st {};
  mode_t mode = 0666 & ~[] {
    mode_t m = ::umask(0);
    ::umask(m);
    return m;
  }();
  if (::stat(path.c_str(), &st) == 0) mode = st.st_mode & 07777;
  if (::fchmod(fd, mode) != 0) fail("setting permissions");
  size_t done = 0;
  while (done < bytes.size()) {
    ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
    if (n < 0) {
      if (errno == EINTR) continue;
      fail("writing");
    }
    done += static_cast<size_t>(n);
  }
  if (::fsync(fd) != 0) fail("flushing to disk");
  if (::close(fd) != 0) {
    int err = errno;
    ::unlink(tmp.c_str());
    throw FileError("cannot write '" + path + "': " + std::strerror(err));
  }
  if (::rename(tmp.c_str(), path.c_str()) != 0) {
    int err = errno;
    ::unlink(tmp.c_str());
    throw FileError("cannot write '" + path + "': " + std::strerror(err));
  }
  // The rename itself reaches the disk with the folder.
  int dir_fd = ::open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (dir_fd >= 0) {
    ::fsync(dir_fd);
    ::close(dir_fd);
  }
}

void SaveDrawing(memhost::MemDocument& doc, const std::string& path) {
  WriteFileAtomically(path, WriteDxf(doc));
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
