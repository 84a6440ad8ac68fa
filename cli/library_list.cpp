// kestrana library materials|sizes: the project's libraries with the
// number of pipes using each entry.
#include <algorithm>
#include <sstream>

#include "cli/command.h"
#include "cli/json.h"
#include "cli/session.h"
#include "commands/library.h"
#include "core/text.h"

namespace kestrana::cli {

namespace {

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

// The shape word of a section in JSON, as `kestrana list` writes it.
std::string ShapeKey(const std::string& shape) {
  return shape == "Box" ? "box" : "circular";
}

std::string MaterialsListing(const std::vector<commands::MaterialUse>& uses,
                             bool json) {
  if (json) {
    JsonWriter out;
    out.BeginArray();
    for (const commands::MaterialUse& use : uses) {
      out.BeginObject();
      out.Key("name").String(use.name);
      out.Key("pipes").Int(use.pipes);
      out.EndObject();
    }
    out.EndArray();
    return out.Text();
  }
  std::vector<std::vector<std::string>> rows = {{"MATERIAL", "PIPES"}};
  for (const commands::MaterialUse& use : uses)
    rows.push_back({use.name, std::to_string(use.pipes)});
  return Table(rows);
}

std::string SizesListing(const std::vector<commands::SizeUse>& uses,
                         bool json) {
  if (json) {
    JsonWriter out;
    out.BeginArray();
    for (const commands::SizeUse& use : uses) {
      out.BeginObject();
      out.Key("shape").String(ShapeKey(use.shape));
      out.Key("span").Real(use.span);
      out.Key("rise").Real(use.rise);
      out.Key("pipes").Int(use.pipes);
      out.Key("area").Real(use.area);
      out.EndObject();
    }
    out.EndArray();
    return out.Text();
  }
  std::vector<std::vector<std::string>> rows = {
      {"SHAPE", "SIZE", "PIPES", "AREA"}};
  for (const commands::SizeUse& use : uses)
    rows.push_back({use.shape, use.size, std::to_string(use.pipes),
                    core::GeneralText(use.area)});
  return Table(rows);
}

int Run(const std::vector<std::string>& args, Io& io, bool sizes) {
  Args a(args, {"json"}, {"shape"});
  a.ExpectPositionals(1);
  auto document = OpenProjectDrawing(a.Drawing());
  if (!sizes) {
    if (a.Option("shape"))
      throw UsageError("--shape belongs to `kestrana library sizes`");
    io.out << MaterialsListing(commands::ListMaterials(*document), a.Json());
    return 0;
  }
  io.out << SizesListing(commands::ListSizes(*document, {a.Option("shape")}),
                         a.Json());
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
