// kestrana profile lines: the continuous lines of a gravity network.
#include "commands/profile_lines.h"

#include <algorithm>

#include "cli/command.h"
#include "cli/json.h"
#include "cli/session.h"

namespace kestrana::cli {

namespace {

int Run(const std::vector<std::string>& args, Io& io) {
  Args a(args, {"json"}, {"network"});
  a.ExpectPositionals(1);
  const commands::ProfileLinesResult result = commands::ProfileLines(
      *OpenProjectDrawing(a.Positional(0, "the drawing (DRAWING.dxf)")),
      {a.Required("network")});
  if (a.Flag("json")) {
    JsonWriter json;
    json.BeginArray();
    for (const commands::ProfileLine& line : result.lines) {
      json.BeginObject().Key("name").String(line.name);
      json.Key("pipes").BeginArray();
      for (const std::string& pipe : line.pipes) json.String(pipe);
      json.EndArray().EndObject();
    }
    json.EndArray();
    io.out << json.Text();
    return 0;
  }
  if (result.lines.empty()) {
    io.out << "The network \"" << result.network
           << "\" has no continuous line.\n";
    return 0;
  }
  size_t width = 4;
  for (const commands::ProfileLine& line : result.lines)
    width = std::max(width, line.name.size());
  io.out << "LINE" << std::string(width - 4 + 2, ' ') << "PIPES\n";
  for (const commands::ProfileLine& line : result.lines) {
    io.out << line.name << std::string(width - line.name.size() + 2, ' ');
    for (size_t k = 0; k < line.pipes.size(); ++k)
      io.out << (k ? ", " : "") << line.pipes[k];
    io.out << "\n";
  }
  return 0;
}

Registrar lines_command(
    {"profile lines", "the continuous lines of a gravity network",
     "Usage: kestrana profile lines DRAWING --network N [--json]\n\n"
     "Groups the pipes of the gravity network N into lines named after\n"
     "their upstream manholes (\"MH-A12\" is on line A, \"B7\" on line B,\n"
     "\"MH-12\" on line Main) and lists the lines whose pipes form one\n"
     "unbranched run, as `kestrana profile data --line` takes them.\n\n"
     "  --network N   the gravity network\n"
     "  --json        one object per line: name, pipes (labels)\n",
     Run});

}  // namespace

}  // namespace kestrana::cli
