#include "commands/elements.h"
#include "commands/styles.h"
#include "core/general.h"
#include "core/guards.h"
#include "host/host.h"
#include "viewstyle/annotation_record.h"
#include "viewstyle/project_styles.h"
#include "viewstyle/view_style.h"

namespace kestrana::commands {

namespace {

using core::General;
using viewstyle::ViewStyle;

// The annotations and arrows now linked to the network's elements.
AppliedNetwork CountLinked(host::Document& document,
                           const std::string& network) {
  AppliedNetwork applied{network};
  for (host::Entity* entity :
       General::GetNetworkSet(document, network, kElementsAndBlocks)
           .Entities()) {
    std::string type = General::GetElementType(*entity);
    if (type == viewstyle::kAnnotation) ++applied.annotations;
    if (type == viewstyle::kArrow) ++applied.arrows;
  }
  return applied;
}

}  // namespace

StyleApplyResult ApplyStyle(host::Document& document,
                            const StyleApplyOptions& options) {
  StyleApplyResult result{viewstyle::StyleField::Read(document).active, {}};
  const std::string& active = result.style;
  viewstyle::ViewStyleSettings settings =
      ViewStyle::GetActiveViewStyleSettingsArray(document);
  if (viewstyle::StyleNameOf(settings) != active || active.empty())
    throw NotFoundError("The active view style \"" + active +
                        "\" is not stored in the drawing (see style list)");
  const std::string& text_style =
      settings[static_cast<int>(viewstyle::ViewStyleField::kTextStyle)];
  if (!document.GetTextStyles().Find(text_style))
    throw NotFoundError("The view style \"" + active +
                        "\" uses the text style \"" + text_style +
                        "\", which the drawing lacks");
  std::vector<std::string> networks;
  if (options.network) {
    networks.push_back(RequireNetwork(document, *options.network));
  } else {
    for (const std::string& name : General::GetNetworkNames(document))
      if (!name.empty()) networks.push_back(name);
  }

  // The library edits elements and annotation layers; the user's locks
  // come back afterwards.
  core::UnlockedLayers unlocked(document);
  core::TextTable format = ViewStyle::GetAnnotationFormatArray(settings);
  ViewStyle::DefineAttributeBlocks(document, format);
  const double correction = General::GetCorrectionAngleForCS(document);
  for (const std::string& name : networks) {
    ViewStyle::ApplyAnnotationsToNetwork(document, name, format, correction);
    // New annotations of a hidden network stay hidden with it.
    if (!viewstyle::NetworkVisible(document, name))
      ViewStyle::ChangeNetworkVisibility(document, name, viewstyle::kHide);
    result.networks.push_back(CountLinked(document, name));
  }
  return result;
}

}  // namespace kestrana::commands
