// `kestrana library materials|sizes`: the project's libraries with the
// number of pipes using each entry. The shape of a command: command.h.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kestrana::host {
class Document;
}

namespace kestrana::commands {

struct MaterialUse {
  std::string name;
  int pipes = 0;  // pipes of the project made of it
};
std::vector<MaterialUse> ListMaterials(host::Document& document);

struct SizesOptions {
  std::optional<std::string> shape;  // "Circular" or "Box"; both when unset
};
struct SizeUse {
  std::string shape;  // "Circular" or "Box"
  std::string size;   // as the library writes it: "200", "1200 x 800"
  double span = 0;    // the diameter of a circular size
  double rise = 0;    // the rise of a box; the diameter of a circular size
  int pipes = 0;
  double area = 0;  // of the section
};
// Circular sizes before box sizes, each smallest first. OptionError for
// another shape.
std::vector<SizeUse> ListSizes(host::Document& document,
                               const SizesOptions& options);

}  // namespace kestrana::commands
