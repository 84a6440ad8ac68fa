// How texts look and how wide they are, the same everywhere: bounding boxes,
// the renderer and every measurement made by the logic.
//
// Widths come from a fixed table of character advances (a proportional sans
// serif) in units of the text height (the capital height); characters not
// in the table count 0.78. The style's width factor multiplies the result.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kestrana::memhost {

// A stretch of displayed text with the same underline/overline state.
struct DisplayRun {
  std::string text;  // UTF-8
  bool underline = false;
  bool overline = false;
};

// Applies the host's control codes: %%c (diameter sign Ø), %%d (°), %%p (±),
// %%% (%), %%nnn (character nnn), %%u and %%o (toggle under/overline).
std::vector<DisplayRun> DisplayRuns(std::string_view raw);
std::string DisplayText(std::string_view raw);

// Advance of one code point in units of the text height.
double CharAdvance(char32_t code_point);

// Width of the displayed text.
double TextWidth(std::string_view raw, double height,
                 double width_factor = 1.0);

}  // namespace kestrana::memhost
