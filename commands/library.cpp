#include "commands/library.h"

#include "commands/command.h"
#include "library/library.h"

namespace kestrana::commands {

using library::Library;

std::vector<MaterialUse> ListMaterials(host::Document& document) {
  namespace column = library::materials_column;
  core::TextTable materials = Library::GetMaterialsArray(document);
  std::vector<MaterialUse> uses;
  for (int r = 0; r < materials.Rows(); ++r)
    uses.push_back({materials(r, column::kName), materials(r, column::kCount)});
  return uses;
}

std::vector<SizeUse> ListSizes(host::Document& document,
                               const SizesOptions& options) {
  namespace column = library::sizes_column;
  const std::optional<std::string>& shape = options.shape;
  if (shape && *shape != library::kCircular && *shape != library::kBox)
    throw OptionError("--shape must be Circular or Box, not '" + *shape + "'");
  std::vector<std::string> shapes;
  if (shape)
    shapes.push_back(*shape);
  else
    shapes = {library::kCircular, library::kBox};
  std::vector<SizeUse> uses;
  for (const std::string& s : shapes) {
    core::TextTable sizes = Library::GetSizesArray(document, s);
    for (int r = 0; r < sizes.Rows(); ++r)
      uses.push_back({s, sizes(r, column::kSize), sizes(r, column::kCount),
                      sizes(r, column::kArea)});
  }
  return uses;
}

}  // namespace kestrana::commands
