// Writes a memhost document as ASCII DXF.
#pragma once

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

}  // namespace kestrana::dxf
