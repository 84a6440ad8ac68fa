#include "memhost/landxml.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <pugixml.hpp>
#include <sstream>
#include <unordered_map>

#include "host/limits.h"

namespace kestrana::memhost {

namespace {

// Element names without a namespace prefix ("lx:Surface" -> "Surface").
const char* LocalName(const pugi::xml_node& node) {
  const char* name = node.name();
  const char* colon = std::strrchr(name, ':');
  return colon ? colon + 1 : name;
}

pugi::xml_node Child(const pugi::xml_node& node, const char* local) {
  for (pugi::xml_node c : node.children())
    if (std::strcmp(LocalName(c), local) == 0) return c;
  return {};
}

// Line of a node, counted in the original text.
size_t LineOf(const std::string& text, const pugi::xml_node& node) {
  ptrdiff_t offset = node.offset_debug();
  if (offset < 0) return 0;
  size_t line = 1;
  for (ptrdiff_t i = 0; i < offset && static_cast<size_t>(i) < text.size(); ++i)
    if (text[i] == '\n') ++line;
  return line;
}

std::vector<double> Numbers(const char* text) {
  std::vector<double> out;
  const char* p = text;
  const char* end = text + std::strlen(text);
  while (p < end) {
    while (p < end && (*p == ' ' || *p == '\t' || *p == '\n' || *p == '\r'))
      ++p;
    if (p >= end) break;
    double v = 0;
    auto [next, ec] = std::from_chars(p, end, v);
    // No "nan", "inf" or magnitudes no drawing holds.
    if (ec != std::errc() || !std::isfinite(v) ||
        std::fabs(v) > host::kLargestNumber)
      return {};
    out.push_back(v);
    p = next;
  }
  return out;
}

}  // namespace

std::vector<std::unique_ptr<MemSurface>> ParseLandXmlSurfaces(
    const std::string& text, const std::string& source) {
  pugi::xml_document xml;
  pugi::xml_parse_result parsed = xml.load_buffer(text.data(), text.size());
  if (!parsed) {
    std::string upto = text.substr(0, static_cast<size_t>(parsed.offset));
    size_t line =
        1 + static_cast<size_t>(std::count(upto.begin(), upto.end(), '\n'));
    throw LandXmlError(source + ": line " + std::to_string(line) +
                       ": not well-formed XML (" + parsed.description() + ")");
  }
  pugi::xml_node root = xml.document_element();
  if (std::strcmp(LocalName(root), "LandXML") != 0)
    throw LandXmlError(source + ": not a LandXML file (the root element is <" +
                       std::string(root.name()) + ">)");
  std::vector<std::unique_ptr<MemSurface>> surfaces;
  for (pugi::xml_node group : root.children()) {
    if (std::strcmp(LocalName(group), "Surfaces") != 0) continue;
    for (pugi::xml_node surface : group.children()) {
      if (std::strcmp(LocalName(surface), "Surface") != 0) continue;
      std::string name = surface.attribute("name").as_string();
      pugi::xml_node def = Child(surface, "Definition");
      std::string type = def.attribute("surfType").as_string();
      if (!def || (!type.empty() && type != "TIN")) continue;
      auto where = [&](const pugi::xml_node& n) {
        return source + ": line " + std::to_string(LineOf(text, n)) + ": ";
      };
      std::vector<Point3> points;
      std::unordered_map<std::string, int> index_of;
      for (pugi::xml_node p : Child(def, "Pnts").children()) {
        if (std::strcmp(LocalName(p), "P") != 0) continue;
        std::vector<double> v = Numbers(p.child_value());
        if (v.size() != 3)
          throw LandXmlError(where(p) +
                             "a point needs northing, easting and "
                             "elevation, each a number from -1000000000 to "
                             "1000000000, not \"" +
                             std::string(p.child_value()) + "\"");
        std::string id = p.attribute("id").as_string();
        if (id.empty()) id = std::to_string(points.size() + 1);
        if (!index_of.emplace(id, static_cast<int>(points.size())).second)
          throw LandXmlError(where(p) + "point id " + id + " is used twice");
        points.push_back(Point3{v[1], v[0], v[2]});  // easting is X
      }
      std::vector<std::array<int, 3>> triangles;
      for (pugi::xml_node f : Child(def, "Faces").children()) {
        if (std::strcmp(LocalName(f), "F") != 0) continue;
        // Faces marked invisible ("i" = 1) are holes in the surface.
        if (f.attribute("i").as_int(0) == 1) continue;
        std::istringstream ids(f.child_value());
        std::array<int, 3> tri{};
        for (int k = 0; k < 3; ++k) {
          std::string id;
          if (!(ids >> id))
            throw LandXmlError(where(f) + "a face needs three point ids");
          auto it = index_of.find(id);
          if (it == index_of.end())
            throw LandXmlError(where(f) + "a face names point " + id +
                               ", which is not defined");
          tri[k] = it->second;
        }
        triangles.push_back(tri);
      }
      if (triangles.empty())
        throw LandXmlError(source + ": surface \"" + name +
                           "\" has no triangles");
      surfaces.push_back(std::make_unique<MemSurface>(name, std::move(points),
                                                      std::move(triangles)));
    }
  }
  if (surfaces.empty()) throw LandXmlError(source + ": holds no TIN surface");
  return surfaces;
}

std::vector<std::unique_ptr<MemSurface>> ReadLandXmlSurfaces(
    const std::string& path) {
  // A folder opens as a stream that reads nothing: say what it is.
  std::error_code error;
  if (std::filesystem::is_directory(path, error))
    throw LandXmlError("'" + path + "' is a folder, not a LandXML file");
  std::ifstream in(path, std::ios::binary);
  if (!in) throw LandXmlError("cannot open '" + path + "'");
  std::ostringstream buffer;
  buffer << in.rdbuf();
  return ParseLandXmlSurfaces(buffer.str(), path);
}

}  // namespace kestrana::memhost
