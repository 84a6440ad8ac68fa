// Saving pictures: SVG as drawn, PNG through rsvg-convert.
#pragma once

#include <string>

namespace kestrana::render {

enum class PictureFormat { kSvg, kPng };

// The format a file name asks for (".svg" or ".png", any letter case);
// std::invalid_argument for anything else.
PictureFormat FormatOf(const std::string& path);

// Writes `svg` to `path` in the format its name asks for. The file appears
// whole or not at all: it is written under a temporary name and renamed.
// PNG needs the rsvg-convert program (`converter`, looked up on PATH);
// std::runtime_error when it is missing or fails.
void SavePicture(const std::string& svg, const std::string& path,
                 const std::string& converter = "rsvg-convert");

}  // namespace kestrana::render
