// kestrana style apply: redraw annotations with the active view style.
#include <sstream>

#include "cli/command.h"
#include "cli/project.h"
#include "cli/styles.h"
#include "core/general.h"
#include "core/record.h"
#include "host/host.h"
#include "viewstyle/annotation_record.h"
#include "viewstyle/project_styles.h"
#include "viewstyle/view_style.h"

namespace kestrana::cli {

namespace {

using core::General;
using viewstyle::ViewStyle;

// The annotations and arrows now linked to the network's elements.
AppliedNetwork CountLinked(host::Document& document,
                           const std::string& network) {
  AppliedNetwork applied{network};
  for (host::Entity* entity :
       General::GetNetworkSet(document, network, 0).Entities()) {
    std::string type = General::GetElementType(*entity);
    if (type == viewstyle::kAnnotation) ++applied.annotations;
    if (type == viewstyle::kArrow) ++applied.arrows;
  }
  return applied;
}

}  // namespace

std::vector<AppliedNetwork> ApplyStyle(
    host::Document& document, const std::optional<std::string>& network) {
  const std::string active = viewstyle::StyleField::Read(document).active;
  viewstyle::ViewStyleSettings settings =
      ViewStyle::GetActiveViewStyleSettingsArray(document);
  if (viewstyle::StyleNameOf(settings) != active || active.empty())
    throw CommandError("The active view style \"" + active +
                       "\" is not stored in the drawing (see style list)");
  const std::string& text_style =
      settings[static_cast<int>(viewstyle::ViewStyleField::kTextStyle)];
  if (!document.GetTextStyles().Find(text_style))
    throw CommandError("The view style \"" + active +
                       "\" uses the text style \"" + text_style +
                       "\", which the drawing lacks");
  std::vector<std::string> networks;
  if (network) {
    if (!General::CheckNetworkExists(document, *network))
      throw CommandError("There is no network named \"" + *network + "\"");
    networks.push_back(*network);
  } else {
    for (const std::string& name : General::GetNetworkNames(document))
      if (!name.empty()) networks.push_back(name);
  }

  // The library edits elements and annotation layers; the user's locks
  // come back afterwards.
  std::vector<std::string> locked = General::UnlockAllLayers(document);
  core::TextTable format = ViewStyle::GetAnnotationFormatArray(settings);
  ViewStyle::DefineAttributeBlocks(document, format);
  const double correction = General::GetCorrectionAngleForCS(document);
  std::vector<AppliedNetwork> applied;
  for (const std::string& name : networks) {
    ViewStyle::ApplyAnnotationsToNetwork(document, name, format, correction);
    // New annotations of a hidden network stay hidden with it.
    if (!viewstyle::NetworkVisible(document, name))
      ViewStyle::ChangeNetworkVisibility(document, name, viewstyle::kHide);
    applied.push_back(CountLinked(document, name));
  }
  General::RestoreLockedLayers(document, locked);
  return applied;
}

StyleApplyResult StyleApply(const StyleApplyOptions& options) {
  StyleApplyResult result;
  result.written = options.output.value_or(options.drawing);
  EditProjectDrawing(
      options.drawing, options.output, [&](memhost::MemDocument& document) {
        result.networks = ApplyStyle(document, options.network);
        result.style = viewstyle::StyleField::Read(document).active;
      });
  return result;
}

namespace {

int RunStyleApply(const std::vector<std::string>& args, Io& io) {
  Args a(args, {}, {"network", "output"});
  a.ExpectPositionals(1);
  StyleApplyResult result =
      StyleApply({a.Positional(0, "the drawing (DRAWING.dxf)"),
                  a.Option("output"), a.Option("network")});
  if (result.networks.empty()) io.out << "The project has no networks.\n";
  for (const AppliedNetwork& n : result.networks)
    io.out << "applied view style \"" << result.style << "\" to \"" << n.network
           << "\": " << n.annotations << " annotations, " << n.arrows
           << " arrows\n";
  io.out << "wrote " << result.written << "\n";
  return 0;
}

Registrar style_apply_command(
    {"style apply", "redraw annotations with the active view style",
     "Usage: kestrana style apply DRAWING [--network NAME] [-o OUT]\n\n"
     "Rebuilds the annotation blocks for the active view style and draws\n"
     "the annotations and direction arrows of every network (or of NAME\n"
     "only) anew: the old ones are removed, so each pipe and node keeps\n"
     "exactly one annotation. Hidden networks stay hidden; locked layers\n"
     "stay locked.\n\n"
     "  --network NAME     redraw only this network\n"
     "  -o, --output OUT   write to OUT instead of DRAWING\n",
     RunStyleApply});

}  // namespace

}  // namespace kestrana::cli
