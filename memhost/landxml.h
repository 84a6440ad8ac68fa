// Terrain surfaces from LandXML files: every <Surface> with a TIN
// <Definition> (<Pnts> of "northing easting elevation" and <Faces> of point
// ids) becomes a MemSurface.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/errors.h"
#include "memhost/session.h"

namespace kestrana::memhost {

class LandXmlError : public InvalidInputError {
 public:
  using InvalidInputError::InvalidInputError;
};

// Reads the surfaces of a LandXML document. LandXmlError (naming the file,
// and the line where one is known) when the file cannot be read, is not
// LandXML, holds no TIN surface, or a point or face does not parse.
std::vector<std::unique_ptr<MemSurface>> ReadLandXmlSurfaces(
    const std::string& path);
std::vector<std::unique_ptr<MemSurface>> ParseLandXmlSurfaces(
    const std::string& text, const std::string& source_name);

}  // namespace kestrana::memhost
