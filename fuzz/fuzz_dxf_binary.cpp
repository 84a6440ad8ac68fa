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
#include "fuzz/dxf_round_trip.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using kestrana::memhost::MemDocument;
  namespace dxf = kestrana::dxf;
  std::string bytes(dxf::kBinarySentinel);
  bytes.append(reinterpret_cast<const char*>(data), size);
  MemDocument doc;
  if (!kestrana::fuzz::Reads(doc, bytes)) return 0;
  const std::optional<std::string> written = kestrana::fuzz::Written(doc);
  if (!written) return 0;
  const std::string& first = *written;
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
  const std::optional<std::string> moved_text = kestrana::fuzz::Written(doc);
  if (!moved_text) return 0;
  MemDocument moved;
  dxf::ReadDxf(moved, *moved_text);
  return 0;
}
