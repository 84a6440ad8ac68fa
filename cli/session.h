// How commands open and save drawings: the application every command's
// drawings share, so that the message boxes the logic shows reach the user
// (the command line prints them on stderr once the command has run), and
// the load-change-save round of a command on a project.
#pragma once

#include <functional>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

#include "cli/command.h"
#include "dxf/io.h"
#include "memhost/session.h"

namespace kestrana::cli {

std::shared_ptr<memhost::MemApplication> CommandApplication();

// Load options that attach a drawing to the command's application.
dxf::LoadOptions CommandLoadOptions();

// Prints the message boxes shown since the last call ("kestrana: warning:
// ..."), leaving out one whose text is `except` (the error about to be
// printed anyway), and forgets them.
void PrintShownMessages(std::ostream& err, const std::string& except = "");

// The drawing at `path`, read as cli/files.h reads every input.
std::unique_ptr<memhost::MemDocument> LoadDrawingFile(
    const std::string& path, const dxf::LoadOptions& options = {});
// `document` to `path` through WriteOutput ("-" is standard output).
void SaveDrawingFile(memhost::MemDocument& document, const std::string& path);
// Loads `input`, runs `change`, then saves to `output` when given, else
// over `input`; nothing is written when anything fails.
void EditDrawingFile(const std::string& input,
                     const std::optional<std::string>& output,
                     const std::function<void(memhost::MemDocument&)>& change,
                     const dxf::LoadOptions& options = {});

// How every command opens a drawing whose project it works on: load, then
// commands::OpenProject (the project checked, stale object IDs renewed).
std::unique_ptr<memhost::MemDocument> OpenProjectDrawing(
    const std::string& path);
// The same for commands that change the drawing: `change` runs on the
// opened project, then the result replaces `input` or goes to `output`;
// nothing is written when anything fails.
void EditProjectDrawing(
    const std::string& input, const std::optional<std::string>& output,
    const std::function<void(memhost::MemDocument&)>& change);

// EditProjectDrawing on the drawing and -o OUT of the arguments; answers
// what `change` answers.
template <class Change>
auto EditProject(const Args& args, Change change) {
  using Result = std::invoke_result_t<Change, memhost::MemDocument&>;
  if constexpr (std::is_void_v<Result>) {
    EditProjectDrawing(args.Drawing(), args.Output(), change);
  } else {
    Result result{};
    EditProjectDrawing(
        args.Drawing(), args.Output(),
        [&](memhost::MemDocument& document) { result = change(document); });
    return result;
  }
}

// `command` (a function of commands/) with `options` on the project of the
// arguments' drawing, as EditProject runs a change.
template <class Command, class Options>
auto EditProject(const Args& args, Command command, Options&& options) {
  return EditProject(args, [&](memhost::MemDocument& document) {
    return command(document, std::forward<Options>(options));
  });
}

// What a command that may only read the drawing answers, with where it
// wrote the drawing when it changed it.
template <class Result>
struct Outcome {
  Result result;
  std::optional<std::string> written;
};

// `command` with `options` on the project of the arguments' drawing: as
// EditProject when it `changes` the drawing, else on the drawing only read.
template <class Command, class Options>
auto ReadOrEditProject(const Args& args, bool changes, Command command,
                       const Options& options) {
  using Result =
      std::invoke_result_t<Command, memhost::MemDocument&, const Options&>;
  if (changes)
    return Outcome<Result>{EditProject(args, command, options), args.Written()};
  return Outcome<Result>{command(*OpenProjectDrawing(args.Drawing()), options),
                         std::nullopt};
}

}  // namespace kestrana::cli
