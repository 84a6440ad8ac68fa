#include "commands/command.h"
#include "commands/elements.h"
#include "commands/styles.h"
#include "core/guards.h"
#include "core/user_names.h"
#include "host/host.h"
#include "viewstyle/project_styles.h"
#include "viewstyle/style_text.h"
#include "viewstyle/view_style.h"

namespace kestrana::commands {

void CreateStyle(host::Document& document, const StyleCreateOptions& options) {
  const std::string& name = options.name;
  core::CheckUserName("The view style name", name);
  const std::vector<viewstyle::ViewStyleSettings> styles =
      viewstyle::ReadViewStyles(document);
  if (std::optional<size_t> at = viewstyle::FindViewStyle(styles, name))
    throw RefusedError(
        "A view style named \"" + viewstyle::StyleNameOf(styles[*at]) +
        "\" already exists" +
        core::CaseNote(name, viewstyle::StyleNameOf(styles[*at])));
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

std::string ActivateStyle(host::Document& document,
                          const StyleOptions& options) {
  const std::string name =
      viewstyle::StyleNameOf(FindStyle(document, options.name));
  viewstyle::ViewStyle::UpdateMoSpaceXdataForViewStyle(
      document, name, viewstyle::StyleField::Read(document).visibility);
  return name;
}

}  // namespace kestrana::commands
