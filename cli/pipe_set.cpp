// kestrana pipe set: a pipe's label, section, material and inverts.
#include <ostream>

#include "cli/command.h"
#include "cli/session.h"
#include "commands/element_data.h"
#include "core/text.h"
#include "memhost/document.h"
#include "memhost/text_metrics.h"

namespace kestrana::cli {

namespace {

int Run(const std::vector<std::string>& args, Io& io) {
  Args a(args, {},
         {"network", "label", "new-label", "size", "cells", "material",
          "start-invert", "end-invert", "output"});
  a.ExpectPositionals(1);
  a.Drawing();
  commands::PipeSetOptions options;
  options.network = a.Network();
  options.label = a.Required("label");
  options.new_label = a.Option("new-label");
  options.size = a.Option("size");
  if (auto v = a.Option("cells")) options.cells = ParseInt(*v, "--cells");
  options.material = a.Option("material");
  if (auto v = a.Option("start-invert"))
    options.start_invert = ParseReal(*v, "--start-invert");
  if (auto v = a.Option("end-invert"))
    options.end_invert = ParseReal(*v, "--end-invert");
  const commands::PipeState p = EditProject(a, commands::SetPipe, options);
  io.out << "pipe " << p.label << " of " << p.network << ": "
         << memhost::DisplayText(p.size) << " " << p.material << ", inverts "
         << core::GeneralText(p.start_invert) << " to "
         << core::GeneralText(p.end_invert) << "\nwrote " << a.Written()
         << "\n";
  return 0;
}

Registrar pipe_set_command(
    {"pipe set", "a pipe's label, section, material and inverts",
     "Usage: kestrana pipe set DRAWING --network N --label L [--new-label L2]\n"
     "         [--size 300 | --size 1200x800] [--cells N] [--material M]\n"
     "         [--start-invert Z] [--end-invert Z] [-o OUT]\n\n"
     "Stores the pipe's data, counts the old and new size and material in\n"
     "the project's libraries, and passes the inverts on: each end node\n"
     "moves its sump by its matching rule and the other pipes there follow.\n"
     "Annotations, crossings and profile flags are brought up to date; in a\n"
     "pressure network the low and high points are analysed again. Values\n"
     "not given stay as they are.\n\n"
     "  --network N         the pipe's network\n"
     "  --label L           the pipe's label (unique in the network)\n"
     "  --new-label L2      a new label, not yet used in the network\n"
     "  --size S            a circular diameter (300) or a box span x rise\n"
     "                      (1200x800): millimetres in a metric project;\n"
     "                      inches for circular and feet for box otherwise\n"
     "  --cells N           number of cells (barrels)\n"
     "  --material M        material name (new names join the library)\n"
     "  --start-invert Z    invert level at the pipe's first vertex\n"
     "  --end-invert Z      invert level at its last vertex\n"
     "  -o, --output OUT    write to OUT instead of DRAWING\n",
     Run});

}  // namespace

}  // namespace kestrana::cli
