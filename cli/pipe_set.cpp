// kestrana pipe set: a pipe's label, section, material and inverts.
#include <ostream>
#include <stdexcept>

#include "cli/command.h"
#include "cli/editing.h"
#include "cli/editing_support.h"
#include "cli/project.h"
#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "core/text.h"
#include "editing/editing.h"
#include "host/host.h"
#include "library/library.h"
#include "memhost/document.h"
#include "memhost/text_metrics.h"

namespace kestrana::cli {

using core::General;
using core::PipeField;
using editing::Editing;

namespace {

// The pipe form's texts: the diameter after "Circular - ", the box after
// "Box - ".
constexpr char kCircularForm[] = "Circular - ";
constexpr char kBoxForm[] = "Box - ";
constexpr int kMaxCells = 32767;

double PositiveSize(const std::string& text, const std::string& size) {
  std::optional<double> value;
  try {
    value = core::ParseNumber(text);
  } catch (const std::overflow_error&) {
  }
  if (!value || *value <= 0)
    throw UsageError(
        "--size takes a diameter such as 300 or a box such as 1200x800, not '" +
        size + "'");
  return *value;
}

std::string CurrentFormText(const core::Record& pipe) {
  const library::PipeSize size = library::PipeSizeOf(pipe);
  return (size.shape == library::kBox ? kBoxForm : kCircularForm) + size.key;
}

PipeState StateOf(const std::string& network, host::Entity& entity) {
  core::Record record = core::Record::ReadRequired(entity);
  return {
      network,
      General::EntityLabelFromCombined(record.Text(PipeField::kCombinedLabel)),
      General::BuildSectionSizeString(record),
      record.Text(PipeField::kMaterial),
      record.Number(PipeField::kStartInvert),
      record.Number(PipeField::kEndInvert),
      host::As<host::LwPolyline>(entity).Length()};
}

}  // namespace

std::string SectionFormText(const std::string& size) {
  const size_t x = size.find_first_of("xX");
  if (x == std::string::npos)
    return kCircularForm + core::GeneralText(PositiveSize(size, size));
  return kBoxForm + core::GeneralText(PositiveSize(size.substr(0, x), size)) +
         "x" + core::GeneralText(PositiveSize(size.substr(x + 1), size));
}

PipeState SetPipeInDocument(memhost::MemDocument& document,
                            const PipeSetOptions& options) {
  const std::optional<std::string> section =
      options.size ? std::optional(SectionFormText(*options.size))
                   : std::nullopt;
  if (options.cells && (*options.cells < 1 || *options.cells > kMaxCells))
    throw UsageError("--cells takes a whole number from 1 to " +
                     std::to_string(kMaxCells));
  if (options.material &&
      (options.material->empty() ||
       General::CheckTextForBannedCharacters(*options.material, 0)))
    throw UsageError("--material takes a name without \";\"");
  host::Entity& pipe =
      FindElement(document, options.network, ElementKind::kPipe, options.label);
  if (options.new_label && *options.new_label != options.label)
    CheckNewLabel(document, options.network, ElementKind::kPipe,
                  *options.new_label, pipe);
  const core::Record record = core::Record::ReadRequired(pipe);

  const std::vector<std::string> locked = General::UnlockAllLayers(document);
  host::SelectionSet& touched =
      General::InitializeSelectionSet(document, "SetNodesForLowHigh");
  Editing::UpdatePipeData(
      document, core::IdText(pipe.ObjectID()),
      options.new_label.value_or(options.label),
      options.start_invert.value_or(record.Number(PipeField::kStartInvert)),
      options.end_invert.value_or(record.Number(PipeField::kEndInvert)),
      options.material.value_or(record.Text(PipeField::kMaterial)),
      section.value_or(CurrentFormText(record)),
      static_cast<int16_t>(
          options.cells.value_or(record.Int16(PipeField::kNumCells))),
      library::Library::GetSizesArray(document, library::kCircular),
      library::Library::GetSizesArray(document, library::kBox),
      library::Library::GetMaterialsArray(document), touched);
  AnalyseLowHighAfterEdit(document, options.network, touched);
  General::RestoreLockedLayers(document, locked);
  return StateOf(options.network, pipe);
}

PipeSetResult SetPipe(const PipeSetOptions& options) {
  PipeSetResult result;
  EditProjectDrawing(options.drawing, options.output,
                     [&](memhost::MemDocument& document) {
                       result.pipe = SetPipeInDocument(document, options);
                     });
  result.written = options.output.value_or(options.drawing);
  return result;
}

namespace {

int Run(const std::vector<std::string>& args, Io& io) {
  Args a(args, {},
         {"network", "label", "new-label", "size", "cells", "material",
          "start-invert", "end-invert", "output"});
  a.ExpectPositionals(1);
  PipeSetOptions options;
  options.drawing = a.Positional(0, "the drawing (DRAWING.dxf)");
  options.output = a.Option("output");
  options.network = a.Required("network");
  options.label = a.Required("label");
  options.new_label = a.Option("new-label");
  options.size = a.Option("size");
  if (auto v = a.Option("cells")) options.cells = ParseInt(*v, "--cells");
  options.material = a.Option("material");
  if (auto v = a.Option("start-invert"))
    options.start_invert = ParseReal(*v, "--start-invert");
  if (auto v = a.Option("end-invert"))
    options.end_invert = ParseReal(*v, "--end-invert");
  PipeSetResult r = SetPipe(options);
  const PipeState& p = r.pipe;
  io.out << "pipe " << p.label << " of " << p.network << ": "
         << memhost::DisplayText(p.size) << " " << p.material << ", inverts "
         << core::GeneralText(p.start_invert) << " to "
         << core::GeneralText(p.end_invert) << "\nwrote " << r.written << "\n";
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
