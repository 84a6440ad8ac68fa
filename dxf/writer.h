// Writes a memhost document as ASCII DXF.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "memhost/document.h"

namespace kestrana::dxf {

// The version of drawings that were never read from a file (R2010: texts
// in UTF-8, opened by ezdxf and LibreCAD alike).
inline constexpr std::string_view kNewDrawingVersion = "AC1024";

// The drawing as DXF text. A drawing read from a file is written in the
// file's version with every object the logic left alone as it was read;
// changed objects are written from their state over the tags they were
// read from, new ones from their state alone, erased ones not at all.
// A drawing never read is written complete in kNewDrawingVersion. Gives
// out handles to what needs one (new block markers, SEQENDs, APPIDs).
std::string WriteDxf(memhost::MemDocument& doc);

// Takes the output piece by piece, in order.
using ByteSink = std::function<void(std::string_view)>;

// About how many bytes each piece handed to a sink holds: the output is
// never held whole, except for drawings older than R2000 (which may have
// to be written twice, upgraded).
inline constexpr size_t kWriteChunkBytes = size_t{1} << 20;

// The same bytes as WriteDxf, handed to `sink` in pieces as they are made.
// Whatever `sink` throws ends the write.
void WriteDxf(memhost::MemDocument& doc, const ByteSink& sink);

}  // namespace kestrana::dxf
