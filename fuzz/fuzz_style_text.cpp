// Any bytes as a view style file: refused with a StyleTextError naming a
// line, or a style that writes to a text reading back to the same style.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "viewstyle/style_text.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using kestrana::viewstyle::ReadStyleText;
  using kestrana::viewstyle::StyleTextError;
  using kestrana::viewstyle::WriteStyleText;
  std::string_view text(reinterpret_cast<const char*>(data), size);
  std::string written;
  try {
    written = WriteStyleText(ReadStyleText(text, "Fuzz"));
  } catch (const StyleTextError& e) {
    if (e.line() < 0) std::abort();
    return 0;
  }
  if (WriteStyleText(ReadStyleText(written, "Fuzz")) != written) std::abort();
  return 0;
}
