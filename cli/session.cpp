#include "cli/session.h"

#include <ostream>

#include "cli/files.h"
#include "commands/project.h"
#include "dxf/writer.h"

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

std::unique_ptr<memhost::MemDocument> LoadDrawingFile(
    const std::string& path, const dxf::LoadOptions& options) {
  return dxf::ParseDrawing(path, ReadInput(path, InputKind::kDrawing), options);
}

void SaveDrawingFile(memhost::MemDocument& document, const std::string& path) {
  WriteOutput(path, [&](const dxf::ByteSink& sink) {
    dxf::WriteDxf(document, sink);
  });
}

void EditDrawingFile(const std::string& input,
                     const std::optional<std::string>& output,
                     const std::function<void(memhost::MemDocument&)>& change,
                     const dxf::LoadOptions& options) {
  std::unique_ptr<memhost::MemDocument> document =
      LoadDrawingFile(input, options);
  change(*document);
  SaveDrawingFile(*document, output.value_or(input));
  KeepUntilExit(std::move(document));
}

std::unique_ptr<memhost::MemDocument> OpenProjectDrawing(
    const std::string& path) {
  std::unique_ptr<memhost::MemDocument> document =
      LoadDrawingFile(path, CommandLoadOptions());
  commands::OpenProject(*document);
  return document;
}

void KeepUntilExit(std::unique_ptr<memhost::MemDocument> document) {
  static std::unique_ptr<memhost::MemDocument> kept;
  kept = std::move(document);
}

void EditProjectDrawing(
    const std::string& input, const std::optional<std::string>& output,
    const std::function<void(memhost::MemDocument&)>& change) {
  EditDrawingFile(
      input, output,
      [&](memhost::MemDocument& document) {
        commands::OpenProject(document);
        change(document);
      },
      CommandLoadOptions());
}

}  // namespace kestrana::cli
