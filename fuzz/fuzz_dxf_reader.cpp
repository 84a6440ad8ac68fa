// Any bytes: the reader either refuses them with a DxfError or reads a
// drawing that writes, reads back and writes again to the same text.
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
  return 0;
}
