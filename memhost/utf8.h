// UTF-8 to code points and back; malformed bytes pass through one by one.
#pragma once

#include <string>
#include <string_view>

namespace kestrana::memhost {

std::u32string DecodeUtf8(std::string_view s);
void AppendUtf8(std::string& out, char32_t code_point);

}  // namespace kestrana::memhost
