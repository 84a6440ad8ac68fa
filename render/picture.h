// Pictures: SVG as drawn, PNG through rsvg-convert.
#pragma once

#include <string>

namespace kestrana::render {

enum class PictureFormat { kSvg, kPng };

// The format a file name asks for (".svg" or ".png", any letter case);
// std::invalid_argument for anything else.
PictureFormat FormatOf(const std::string& path);

// The bytes of the picture in `format`: the SVG as it is, or a PNG made by
// the rsvg-convert program (`converter`, looked up on PATH) through
// scratch files that are gone afterwards; std::runtime_error when it is
// missing or fails. Saving them is the caller's: the command line saves
// every file the same way.
std::string PictureBytes(const std::string& svg, PictureFormat format,
                         const std::string& converter = "rsvg-convert");

}  // namespace kestrana::render
