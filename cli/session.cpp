#include "cli/session.h"

#include <ostream>

namespace kestrana::cli {

std::shared_ptr<memhost::MemApplication> CommandApplication() {
  static auto app = std::make_shared<memhost::MemApplication>();
  return app;
}

dxf::LoadOptions CommandLoadOptions() {
  dxf::LoadOptions options;
  options.app = CommandApplication();
  return options;
}

void PrintShownMessages(std::ostream& err, const std::string& except) {
  memhost::Session& session = CommandApplication()->GetSession();
  for (const memhost::LogEntry& entry : session.Log()) {
    if (entry.kind != memhost::LogEntry::Kind::kMessage) continue;
    if (!except.empty() && entry.text == except) continue;
    const char* kind = entry.icon == host::msgbox::kCritical      ? "error: "
                       : entry.icon == host::msgbox::kExclamation ? "warning: "
                                                                  : "";
    err << "kestrana: " << kind << entry.text << '\n';
  }
  session.ClearLog();
}

}  // namespace kestrana::cli
