#include "commands/command.h"
#include "commands/elements.h"
#include "commands/styles.h"
#include "core/guards.h"
#include "host/host.h"
#include "viewstyle/project_styles.h"
#include "viewstyle/style_text.h"
#include "viewstyle/view_style.h"

namespace kestrana::commands {

void CreateStyle(host::Document& document, const StyleCreateOptions& options) {
  const std::string& name = options.name;
  if (name.empty()) throw OptionError("the view style name is empty");
  CheckName("The view style name", name);
  if (viewstyle::FindViewStyle(viewstyle::ReadViewStyles(document), name))
    throw RefusedError("A view style named \"" + name + "\" already exists");
  viewstyle::ViewStyleSettings style;
  try {
    style = viewstyle::ReadStyleText(options.style_text, name);
  } catch (const viewstyle::StyleTextError& e) {
    throw InvalidInputError(std::string("style file: ") + e.what());
  }
  const std::string& text_style =
      style[static_cast<int>(viewstyle::ViewStyleField::kTextStyle)];
  if (!document.GetTextStyles().Find(text_style))
    throw NotFoundError("The drawing has no text style named \"" + text_style +
                        "\", which the style file names");
  core::UnlockedLayers unlocked(document);
  viewstyle::ViewStyle::CreateViewStyle(document, style);
}

void ActivateStyle(host::Document& document, const StyleOptions& options) {
  FindStyle(document, options.name);
  viewstyle::ViewStyle::UpdateMoSpaceXdataForViewStyle(
      document, options.name, viewstyle::ReadStyleField(document).visibility);
}

}  // namespace kestrana::commands
