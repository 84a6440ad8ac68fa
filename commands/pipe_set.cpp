#include <stdexcept>

#include "commands/command.h"
#include "commands/element_data.h"
#include "commands/relabel.h"
#include "commands/elements.h"
#include "core/general.h"
#include "core/guards.h"
#include "core/lists.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "core/text.h"
#include "core/user_names.h"
#include "editing/editing.h"
#include "host/host.h"
#include "host/limits.h"
#include "library/library.h"

namespace kestrana::commands {

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
  const std::optional<double> value = core::ParseNumberInRange(text);
  if (!value || *value <= 0)
    throw OptionError(
        "--size takes a diameter such as 300 or a box such as 1200x800 (up "
        "to " +
        core::GeneralText(host::kLargestNumber) + "), not '" + size + "'");
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

PipeState SetPipe(host::Document& document, const PipeSetOptions& typed) {
  const PipeSetOptions options = WithStoredNetwork(document, typed);
  const std::optional<std::string> section =
      options.size ? std::optional(SectionFormText(*options.size))
                   : std::nullopt;
  if (options.cells && (*options.cells < 1 || *options.cells > kMaxCells))
    throw OptionError("--cells takes a whole number from 1 to " +
                      std::to_string(kMaxCells));
  if (options.material)
    core::CheckUserName("The material name", *options.material,
                        core::NameRule::kSemicolonOnly);
  host::Entity& pipe =
      FindElement(document, options.network, ElementKind::kPipe, options.label);
  if (options.new_label && *options.new_label != options.label)
    CheckNewLabel(document, options.network, ElementKind::kPipe,
                  *options.new_label, pipe);
  const core::Record record = core::Record::ReadRequired(pipe);

  core::UnlockedLayers unlocked(document);
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
  if (options.new_label && *options.new_label != options.label)
    RelabelDependents(document, pipe);
  AnalyseLowHighAfterEdit(document, options.network, touched);
  return StateOf(options.network, pipe);
}

}  // namespace kestrana::commands
