// Any bytes: the reader either refuses them with a DxfError or reads a
// drawing that writes, reads back and writes again to the same text, and
// that still writes a drawing it reads once its entities changed.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "dxf/reader.h"
#include "dxf/tags.h"
#include "dxf/writer.h"
#include "memhost/document.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using kestrana::memhost::MemDocument;
  std::string text(reinterpret_cast<const char*>(data), size);
  MemDocument doc;
  try {
    kestrana::dxf::ReadDxf(doc, std::move(text));
  } catch (const kestrana::dxf::DxfError&) {
    return 0;
  }
  std::string first = kestrana::dxf::WriteDxf(doc);
  MemDocument again;
  kestrana::dxf::ReadDxf(again, first);  // what kestrana writes it reads
  std::string second = kestrana::dxf::WriteDxf(again);
  if (second != first) std::abort();

  // Changed: every record parsed, every entity moved where it can be, and
  // what is written then still reads.
  for (auto* e : doc.ModelSpaceBlock().MemEntities()) {
    (void)e->XData();
    try {
      e->AsHostEntity().Move({0, 0, 0}, {1.5, -2, 0});
    } catch (const kestrana::host::HostError&) {
    }
  }
  MemDocument moved;
  kestrana::dxf::ReadDxf(moved, kestrana::dxf::WriteDxf(doc));
  return 0;
}
