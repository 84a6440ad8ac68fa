// Any bytes as a profile style file: refused with a ProfileStyleFileError
// naming a line of the file, or 21 record values that write to a file
// reading back to the same values. Checking the values never crashes.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "profile/profile_style_file.h"
#include "profile/profile_style_record.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using kestrana::InvalidInputError;
  using kestrana::profile::ProfileStyleFileError;
  using kestrana::profile::ReadProfileStyleText;
  using kestrana::profile::WriteProfileStyleText;
  std::string_view text(reinterpret_cast<const char*>(data), size);
  std::vector<std::string> items;
  try {
    items = ReadProfileStyleText(text);
  } catch (const ProfileStyleFileError& e) {
    if (e.line() < 1 || e.line() > kestrana::profile::kProfileStyleRecordLength)
      std::abort();
    return 0;
  }
  if (items.size() !=
      static_cast<size_t>(kestrana::profile::kProfileStyleRecordLength))
    std::abort();
  if (ReadProfileStyleText(WriteProfileStyleText(items)) != items) std::abort();
  try {
    kestrana::profile::CheckProfileStyleValues(items);
  } catch (const InvalidInputError&) {
  }
  return 0;
}
