// The file a drawing that was never read is written over: every section,
// table and object a complete drawing has, holding the document's own
// defaults (layer "0", style "Standard", model and paper space).
#pragma once

#include <string>

#include "memhost/document.h"

namespace kestrana::dxf {

// DXF text in kNewDrawingVersion for `doc`; gives out the handles it uses.
std::string NewDrawingTemplate(memhost::MemDocument& doc);

}  // namespace kestrana::dxf
