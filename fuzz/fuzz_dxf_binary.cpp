// Any bytes after the binary DXF sentinel: the reader either refuses them
// with a DxfError or reads a drawing that writes (in binary again), reads
// back and writes again to the same bytes, and that still writes a drawing
// it reads once its entities changed.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "dxf/binary.h"
#include "dxf/reader.h"
#include "dxf/tags.h"
#include "dxf/writer.h"
#include "memhost/document.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using kestrana::memhost::MemDocument;
  namespace dxf = kestrana::dxf;
  std::string bytes(dxf::kBinarySentinel);
  bytes.append(reinterpret_cast<const char*>(data), size);
  MemDocument doc;
  try {
    dxf::ReadDxf(doc, bytes);
  } catch (const dxf::DxfError&) {
    return 0;
  }
  std::string first;
  try {
    first = dxf::WriteDxf(doc);
  } catch (const dxf::DxfError&) {
    return 0;  // a damaged old drawing that would not read back is refused
  }
  if (!dxf::IsBinaryDxf(first)) std::abort();  // binary stays binary
  MemDocument again;
  dxf::ReadDxf(again, first);
  if (dxf::WriteDxf(again) != first) std::abort();

  for (auto* e : doc.ModelSpaceBlock().MemEntities()) {
    (void)e->XData();
    try {
      e->AsHostEntity().Move({0, 0, 0}, {1.5, -2, 0});
    } catch (const kestrana::host::HostError&) {
    }
  }
  MemDocument moved;
  dxf::ReadDxf(moved, dxf::WriteDxf(doc));
  return 0;
}
