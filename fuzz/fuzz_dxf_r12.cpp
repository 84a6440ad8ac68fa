// Any bytes after an R12 header: the reader either refuses them with a
// DxfError or reads a drawing that writes back, reads and writes again to
// the same text; changed, it is written in R2000 form, which reads again.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "dxf/reader.h"
#include "dxf/tags.h"
#include "dxf/writer.h"
#include "memhost/document.h"
#include "fuzz/dxf_round_trip.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using kestrana::memhost::MemDocument;
  namespace dxf = kestrana::dxf;
  std::string text =
      "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1009\n9\n$HANDLING\n70\n1\n"
      "0\nENDSEC\n";
  text.append(reinterpret_cast<const char*>(data), size);
  MemDocument doc;
  if (!kestrana::fuzz::Reads(doc, text)) return 0;
  const std::optional<std::string> written = kestrana::fuzz::Written(doc);
  if (!written) return 0;
  const std::string& first = *written;
  MemDocument again;
  dxf::ReadDxf(again, first);
  if (dxf::WriteDxf(again) != first) std::abort();

  // A change makes it R2000: that text reads, and reads as R2000.
  doc.ModelSpace().AddLine({0, 0, 0}, {1, 1, 0});
  for (auto* e : doc.ModelSpaceBlock().MemEntities()) {
    (void)e->XData();
    try {
      e->AsHostEntity().Move({0, 0, 0}, {1.5, -2, 0});
    } catch (const kestrana::host::HostError&) {
    }
  }
  const std::optional<std::string> upgraded = kestrana::fuzz::Written(doc);
  if (!upgraded) return 0;
  MemDocument r2000;
  dxf::ReadDxf(r2000, *upgraded);
  if (dxf::WriteDxf(r2000) != *upgraded) std::abort();
  return 0;
}
