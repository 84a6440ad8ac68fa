// UTF-8 to code points and back; malformed bytes pass through one by one.
#pragma once

#include <string>
#include <string_view>

namespace kestrana::memhost {

std::u32string DecodeUtf8(std::string_view s);
// The code point at byte `i` of `s` (i < s.size()); moves `i` past it.
char32_t NextCodePoint(std::string_view s, size_t& i);
void AppendUtf8(std::string& out, char32_t code_point);

}  // namespace kestrana::memhost
