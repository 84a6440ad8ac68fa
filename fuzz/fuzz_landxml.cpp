// Any bytes as a LandXML file: refused with a LandXmlError, or surfaces
// whose elevations are found or refused as outside, at any point asked.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "host/types.h"
#include "memhost/landxml.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using kestrana::host::ErrorCode;
  using kestrana::host::HostError;
  // The last 16 bytes, when there are enough, pick a point to ask for.
  double at[2] = {0, 0};
  if (size > 16) {
    std::memcpy(at, data + size - 16, 16);
    size -= 16;
  }
  std::string text(reinterpret_cast<const char*>(data), size);
  try {
    auto surfaces = kestrana::memhost::ParseLandXmlSurfaces(text, "fuzz.xml");
    for (const auto& surface : surfaces) {
      for (double x : {at[0], 0.0, -40.0, 40.0})
        for (double y : {at[1], 0.0, 80.0}) {
          try {
            double z = surface->FindElevationAtXY(x, y);
            (void)z;
          } catch (const HostError& e) {
            if (e.code() != ErrorCode::kOutsideSurface) std::abort();
          }
        }
    }
  } catch (const kestrana::memhost::LandXmlError&) {
  } catch (const HostError&) {
    // A triangle naming no point is the host's refusal.
  }
  return 0;
}
