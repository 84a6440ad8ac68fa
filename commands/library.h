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

// Counts and areas as the library records hold them.
struct MaterialUse {
  std::string name, count;
};
std::vector<MaterialUse> ListMaterials(host::Document& document);

struct SizesOptions {
  std::optional<std::string> shape;  // "Circular" or "Box"; both when unset
};
struct SizeUse {
  std::string shape, size, count, area;
};
// Circular sizes before box sizes, each smallest first. OptionError for
// another shape.
std::vector<SizeUse> ListSizes(host::Document& document,
                               const SizesOptions& options);

}  // namespace kestrana::commands
