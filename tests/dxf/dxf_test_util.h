// Small DXF texts and helpers shared by the dxf tests.
#pragma once

#include <memory>
#include <string>

#include "dxf/reader.h"
#include "dxf/writer.h"
#include "memhost/document.h"

namespace kestrana::dxf::testing {

// A complete R2000 drawing, as short as the reader accepts, with
// `entities` (tag lines) in its ENTITIES section, which starts at line 27.
inline std::string MinimalDxf(const std::string& entities,
                              const std::string& version = "AC1015") {
  return "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\n" + version +
         "\n0\nENDSEC\n0\nSECTION\n2\nTABLES\n0\nENDSEC\n0\nSECTION\n2\nBLOCKS"
         "\n0\nENDSEC\n"
         "0\nSECTION\n2\nENTITIES\n" +
         entities + "0\nENDSEC\n0\nEOF\n";
}

inline std::unique_ptr<memhost::MemDocument> Read(const std::string& text) {
  auto doc = std::make_unique<memhost::MemDocument>();
  ReadDxf(*doc, text);
  return doc;
}

// Writes `doc` and reads the text into a new document.
inline std::unique_ptr<memhost::MemDocument> RoundTrip(
    memhost::MemDocument& doc) {
  return Read(WriteDxf(doc));
}

}  // namespace kestrana::dxf::testing
