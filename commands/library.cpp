#include "commands/library.h"

#include "commands/command.h"
#include "core/text.h"
#include "library/library.h"

namespace kestrana::commands {

using library::Library;

std::vector<MaterialUse> ListMaterials(host::Document& document) {
  namespace column = library::materials_column;
  core::TextTable materials = Library::GetMaterialsArray(document);
  std::vector<MaterialUse> uses;
  for (int r = 0; r < materials.Rows(); ++r)
    uses.push_back(
        {materials(r, column::kName),
         core::ToInt32(core::NumericValue(materials(r, column::kCount)))});
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
    for (int r = 0; r < sizes.Rows(); ++r) {
      SizeUse use{s, sizes(r, column::kSize)};
      // "1200 x 800", or a diameter alone.
      const std::vector<std::string> sides = core::Split(use.size, 'x');
      use.span = core::NumericValue(sides.front());
      use.rise = sides.size() > 1 ? core::NumericValue(sides[1]) : use.span;
      use.pipes = core::ToInt32(core::NumericValue(sizes(r, column::kCount)));
      use.area = core::NumericValue(sizes(r, column::kArea));
      uses.push_back(std::move(use));
    }
  }
  return uses;
}

}  // namespace kestrana::commands
