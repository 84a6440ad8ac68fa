// kestrana library materials|sizes: the project's libraries with the
// number of pipes using each entry.
#include <algorithm>
#include <sstream>

#include "cli/command.h"
#include "cli/project.h"
#include "cli/styles.h"
#include "library/library.h"

namespace kestrana::cli {

namespace {

using library::Library;
namespace materials_column = library::materials_column;
namespace sizes_column = library::sizes_column;

// Columns padded to their widest cell; the header is the first row.
std::string Table(const std::vector<std::vector<std::string>>& rows) {
  std::vector<size_t> widths;
  for (const auto& row : rows)
    for (size_t c = 0; c < row.size(); ++c) {
      if (widths.size() <= c) widths.push_back(0);
      widths[c] = std::max(widths[c], row[c].size());
    }
  std::ostringstream out;
  for (const auto& row : rows) {
    for (size_t c = 0; c < row.size(); ++c) {
      out << row[c];
      if (c + 1 < row.size())
        out << std::string(widths[c] - row[c].size() + 2, ' ');
    }
    out << "\n";
  }
  return out.str();
}

}  // namespace

std::string MaterialsListing(host::Document& document, bool json) {
  core::TextTable materials = Library::GetMaterialsArray(document);
  std::ostringstream out;
  if (json) {
    out << "[";
    for (int r = 0; r < materials.Rows(); ++r)
      out << (r ? ",\n " : "")
          << "{\"name\": " << JsonString(materials(r, materials_column::kName))
          << ", \"count\": "
          << JsonString(materials(r, materials_column::kCount)) << "}";
    out << "]\n";
    return out.str();
  }
  std::vector<std::vector<std::string>> rows = {{"MATERIAL", "PIPES"}};
  for (int r = 0; r < materials.Rows(); ++r)
    rows.push_back({materials(r, materials_column::kName),
                    materials(r, materials_column::kCount)});
  return Table(rows);
}

std::string SizesListing(host::Document& document,
                         const std::optional<std::string>& shape, bool json) {
  if (shape && *shape != library::kCircular && *shape != library::kBox)
    throw UsageError("--shape must be Circular or Box, not '" + *shape + "'");
  std::vector<std::string> shapes;
  if (shape)
    shapes.push_back(*shape);
  else
    shapes = {library::kCircular, library::kBox};
  std::vector<std::vector<std::string>> rows = {
      {"SHAPE", "SIZE", "PIPES", "AREA"}};
  std::ostringstream out;
  out << "[";
  bool first = true;
  for (const std::string& s : shapes) {
    core::TextTable sizes = Library::GetSizesArray(document, s);
    for (int r = 0; r < sizes.Rows(); ++r) {
      const std::string& size = sizes(r, sizes_column::kSize);
      const std::string& count = sizes(r, sizes_column::kCount);
      const std::string& area = sizes(r, sizes_column::kArea);
      rows.push_back({s, size, count, area});
      out << (first ? "" : ",\n ") << "{\"shape\": " << JsonString(s)
          << ", \"size\": " << JsonString(size)
          << ", \"count\": " << JsonString(count)
          << ", \"area\": " << JsonString(area) << "}";
      first = false;
    }
  }
  out << "]\n";
  return json ? out.str() : Table(rows);
}

std::string LibraryList(const LibraryListOptions& options) {
  auto document = OpenProjectDrawing(options.drawing);
  if (!options.sizes) {
    if (options.shape)
      throw UsageError("--shape belongs to `kestrana library sizes`");
    return MaterialsListing(*document, options.json);
  }
  return SizesListing(*document, options.shape, options.json);
}

namespace {

int Run(const std::vector<std::string>& args, Io& io, bool sizes) {
  Args a(args, {"json"}, {"shape"});
  a.ExpectPositionals(1);
  io.out << LibraryList({a.Positional(0, "the drawing (DRAWING.dxf)"), sizes,
                         a.Option("shape"), a.Flag("json")});
  return 0;
}

Registrar library_materials_command(
    {"library materials", "the materials library with usage counts",
     "Usage: kestrana library materials DRAWING [--json]\n\n"
     "Lists the pipe materials of the project in DRAWING with the number\n"
     "of pipes that use each.\n\n"
     "  --json   print a JSON array instead of a table\n",
     [](const std::vector<std::string>& args, Io& io) {
       return Run(args, io, false);
     }});

Registrar library_sizes_command(
    {"library sizes", "the section-sizes library with usage counts",
     "Usage: kestrana library sizes DRAWING [--shape Circular|Box] [--json]\n\n"
     "Lists the pipe sizes of the project's units (millimetres in a\n"
     "metric project; inches for circular and feet for box sections\n"
     "otherwise) with the number of pipes that use each and the\n"
     "cross-section area, smallest first.\n\n"
     "  --shape Circular|Box   only this shape (both by default)\n"
     "  --json                 print a JSON array instead of a table\n",
     [](const std::vector<std::string>& args, Io& io) {
       return Run(args, io, true);
     }});

}  // namespace

}  // namespace kestrana::cli
