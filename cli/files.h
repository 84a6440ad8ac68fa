// The files a command reads and writes. Everything read is a regular file
// of a known kind and bounded size, checked before it is read, so a device,
// a pipe or a file of another kind is refused at once instead of being read
// without end. Everything written goes through the atomic save, except
// "-", which is standard output.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>

#include "dxf/io.h"

namespace kestrana::cli {

enum class InputKind { kDrawing, kSurface, kViewStyle, kProfileStyle };

// The largest file of each kind that is read.
size_t MaxInputBytes(InputKind kind);

// Whether `head`, the first bytes of a file, begin a file of that kind: a
// DXF drawing (ASCII, or binary with its sentinel), a LandXML document, a
// view style file or a profile style file.
bool LooksLike(InputKind kind, std::string_view head);

// The whole file. NotFoundError when it cannot be opened; InvalidInputError
// when it is not a regular file, is larger than MaxInputBytes or does not
// begin as a file of that kind.
std::string ReadInput(const std::string& path, InputKind kind);

// The output "-" names standard output.
inline constexpr char kStandardOutput[] = "-";

// Where "-" writes: the command's standard output while a command runs.
void SetStandardOutput(std::ostream* out);

// `bytes` to `path`: standard output for "-", else the atomic save of
// dxf::WriteFileAtomically.
void WriteOutput(const std::string& path, const std::string& bytes);

// What `produce` hands its sink, the same way, piece by piece.
void WriteOutput(const std::string& path, const dxf::Producer& produce);

}  // namespace kestrana::cli
