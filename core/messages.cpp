#include "core/messages.h"

#include "core/names.h"
#include "host/host.h"

namespace kestrana::core {

int ShowMessage(host::Document& document, const std::string& text, int icon,
                int buttons) {
  return document.GetApplication().MessageBox(text, buttons, icon, kAppName);
}

}  // namespace kestrana::core
