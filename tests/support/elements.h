// Reading network elements back in tests: by label, their annotation texts.
#pragma once

#include <string>
#include <vector>

namespace kestrana::host {
class Document;
class Entity;
}  // namespace kestrana::host

namespace kestrana::test {

// The pipe ("Pipe") or node ("Node") of the network with that label;
// std::runtime_error when there is none.
host::Entity& ElementLabelled(host::Document& document,
                              const std::string& network,
                              const std::string& kind,
                              const std::string& label);
// The texts of the element's annotation, in line order; empty without one.
std::vector<std::string> AnnotationTexts(host::Document& document,
                                         const host::Entity& element);

// The materials library's use count of a material, "" when it lists none.
std::string MaterialUses(host::Document& document, const std::string& material);

// "<record> field <n> names <id>, which is gone" for every object ID a
// record of model space stores that names no live object.
std::vector<std::string> DanglingLinks(host::Document& document);

// "<pipe> starts off its node N-1 by 3.2" for every pipe of model space whose
// first or last vertex lies farther than 0.00001 from its node's point.
std::vector<std::string> PipeEndsOffNodes(host::Document& document);

}  // namespace kestrana::test
