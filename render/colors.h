// The host's index colours (ACI) as the picture shows them.
//
// Pictures have a white background, so index 7 ("white", the host's
// foreground colour) is drawn black, as on a plot; every other index keeps
// its table colour.
#pragma once

#include <cstdint>
#include <string>

namespace kestrana::render {

inline constexpr uint32_t kBackground = 0xFFFFFF;

// The host's RGB value of index colour 1..255 (0 for anything else).
uint32_t AciRgb(int index);

// The colour an entity of index colour `index` is drawn in; indexes outside
// 1..255 (unresolved ByBlock or ByLayer) draw as 7.
uint32_t DrawRgb(int index);

// "#rrggbb".
std::string HexColor(uint32_t rgb);

}  // namespace kestrana::render
