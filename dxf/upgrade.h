// Drawings older than R2000 that the logic changed are written in R2000
// form: their own versions cannot hold what the system adds (lightweight
// polylines, extended data on block records).
#pragma once

#include "dxf/image.h"
#include "memhost/document.h"

namespace kestrana::dxf {

// Makes `img` describe an R2000 file: the version named anew, blocks with
// records of their own, BLOCK and ENDBLK written in R2000 form, and flat
// classic 2D polylines turned into lightweight polylines (as CAD programs
// do on opening an old drawing). Tells the user once, through the host's
// messages.
void UpgradeToR2000(memhost::MemDocument& doc, FileImage& img);

}  // namespace kestrana::dxf
