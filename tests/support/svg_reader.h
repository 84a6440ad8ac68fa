// A small XML reader for the SVG pictures the tests look at: elements,
// attributes, character data and comments; enough to check structure.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace kestrana::testsupport {

struct SvgNode {
  std::string name;
  std::map<std::string, std::string> attrs;
  std::string text;  // character data directly inside, entities decoded
  std::vector<SvgNode> children;

  bool Has(const std::string& attr) const { return attrs.count(attr) > 0; }
  // The attribute's value; throws when absent.
  const std::string& Attr(const std::string& attr) const;
  // The attribute read as a number; throws when absent or not a number.
  double Num(const std::string& attr) const;
  // Descendants named `name` in document order (all when empty).
  std::vector<const SvgNode*> All(const std::string& name = "") const;
  // Descendants carrying data-handle `handle`.
  std::vector<const SvgNode*> WithHandle(const std::string& handle) const;
};

struct SvgDocument {
  SvgNode root;
  std::vector<std::string> comments;
};

// Throws std::runtime_error on input that is not well-formed.
SvgDocument ParseSvg(const std::string& text);

// Every number in a text such as path data or a transform, in order.
std::vector<double> Numbers(const std::string& text);

}  // namespace kestrana::testsupport
