// What the DXF fuzz targets share: reading and writing where a refusal is
// an answer, not a failure.
#pragma once

#include <optional>
#include <string>

#include "dxf/reader.h"
#include "dxf/tags.h"
#include "dxf/writer.h"
#include "memhost/document.h"

namespace kestrana::fuzz {

// False when the reader refuses `text` with a DxfError.
inline bool Reads(memhost::MemDocument& doc, const std::string& text) {
  try {
    dxf::ReadDxf(doc, text);
    return true;
  } catch (const dxf::DxfError&) {
    return false;
  }
}

// Nothing when the writer refuses: a damaged old drawing whose R2000
// rewrite would not read again is not written.
inline std::optional<std::string> Written(memhost::MemDocument& doc) {
  try {
    return dxf::WriteDxf(doc);
  } catch (const dxf::DxfError&) {
    return std::nullopt;
  }
}

}  // namespace kestrana::fuzz
