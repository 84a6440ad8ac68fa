// Modal message boxes titled "Kestrana", the way refusals reach the user.
#pragma once

#include <string>

namespace kestrana::host {
class Document;
}

namespace kestrana::core {

// Shows `text` with an icon code (host::msgbox::kCritical, kExclamation,
// kInformation) and buttons (kOk by default); answers the host's answer code.
int ShowMessage(host::Document& document, const std::string& text, int icon,
                int buttons = 0);

}  // namespace kestrana::core
