// Opening and saving drawings: what every command uses.
//
//   auto doc = dxf::LoadDrawing("site.dxf");        // DxfError, FileError
//   ... change *doc through the host interface ...
//   dxf::SaveDrawing(*doc, "site.dxf");              // atomic replace
//
// Commands that change a drawing follow one rule: they take -o OUT and
// otherwise replace the input; a command that fails leaves the input byte
// for byte as it was. EditDrawing implements it:
//
//   dxf::EditDrawing(input, args.Option("output"), [&](MemDocument& doc) {
//     ... may throw: then nothing is written ...
//   });
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include "host/errors.h"
#include "dxf/writer.h"
#include "memhost/document.h"

namespace kestrana::dxf {

// A file that cannot be read or written (missing, no permission, disk full).
class FileError : public NotFoundError {
 public:
  using NotFoundError::NotFoundError;
};

struct LoadOptions {
  memhost::Options host;                         // object-ID policy
  std::shared_ptr<memhost::MemApplication> app;  // null: a new one
};

// Reads the drawing at `path`. FileError when the file cannot be read;
// DxfError ("PATH: line N: ...") when it is not a drawing kestrana reads.
std::unique_ptr<memhost::MemDocument> LoadDrawing(
    const std::string& path, const LoadOptions& options = {});

// The drawing in `text`, the bytes of the file at `path` (which names it
// in errors and gives the document its name); errors as LoadDrawing.
std::unique_ptr<memhost::MemDocument> ParseDrawing(
    const std::string& path, std::string text, const LoadOptions& options = {});

// Writes `doc` to `path` atomically: a temporary file in the same folder,
// flushed to disk, then renamed over `path`. A symbolic link is followed
// to the file it points at; the file keeps its permissions (and owner,
// when the superuser writes). FileError for a read-only file or a folder;
// a device or a pipe is written to directly, as it cannot be replaced.
void SaveDrawing(memhost::MemDocument& doc, const std::string& path);

// Writes `bytes` to `path` the same way.
void WriteFileAtomically(const std::string& path, const std::string& bytes);

// Writes what `produce` hands its sink to `path` the same way, piece by
// piece into the temporary file (a device or a pipe gets it whole, once
// made). When `produce` throws, nothing is written to `path`.
using Producer = std::function<void(const ByteSink&)>;
void WriteFileAtomically(const std::string& path, const Producer& produce);

// Loads `input`, runs `change`, then saves to `output` when given, else
// over `input`. When loading, `change` or writing fails nothing is written
// and the error propagates.
void EditDrawing(const std::string& input,
                 const std::optional<std::string>& output,
                 const std::function<void(memhost::MemDocument&)>& change,
                 const LoadOptions& options = {});

}  // namespace kestrana::dxf
