// Reads an ASCII DXF file (R2000 and later) into a memhost document.
#pragma once

#include <string>

#include "memhost/document.h"

namespace kestrana::dxf {

// Reads `text` into `doc`, which is either a new document or one that was
// never read (its objects are kept and matched by name). Raises DxfError
// naming the line for anything that is not a well-formed DXF drawing.
void ReadDxf(memhost::MemDocument& doc, std::string text);

}  // namespace kestrana::dxf
