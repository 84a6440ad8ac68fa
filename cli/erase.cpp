// kestrana erase: erasing network elements and what hangs on them, with the
// records of everything that stays repaired, as the add-on's reactions do
// when a user erases in the editor.
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "cli/command.h"
#include "cli/editing_support.h"
#include "cli/project.h"
#include "core/general.h"
#include "events/events.h"
#include "host/host.h"
#include "memhost/document.h"

namespace kestrana::cli {

namespace {

using core::General;

struct EraseOptions {
  std::string drawing;
  std::optional<std::string> output;
  std::optional<std::string> network;
  std::vector<std::string> pipes, nodes, handles;
};

struct EraseResult {
  std::string written;
  int chosen = 0;  // what the user named
  int erased = 0;  // with what went along
};

std::vector<host::Entity*> Chosen(memhost::MemDocument& document,
                                  const EraseOptions& options) {
  std::vector<host::Entity*> chosen;
  if (!options.pipes.empty() || !options.nodes.empty()) {
    if (!options.network)
      throw UsageError("--pipes and --nodes need the --network they are in");
    RequireNetwork(document, *options.network);
    for (const std::string& label : options.pipes)
      chosen.push_back(
          &FindElement(document, *options.network, ElementKind::kPipe, label));
    for (const std::string& label : options.nodes)
      chosen.push_back(
          &FindElement(document, *options.network, ElementKind::kNode, label));
  }
  for (const std::string& handle : options.handles) {
    host::Entity* entity = nullptr;
    try {
      entity = dynamic_cast<host::Entity*>(&document.HandleToObject(handle));
    } catch (const host::HostError&) {
    }
    if (entity == nullptr)
      throw CommandError("no entity of the drawing has the handle \"" + handle +
                         "\"");
    chosen.push_back(entity);
  }
  if (chosen.empty())
    throw UsageError("name what to erase with --pipes, --nodes or --handles");
  return chosen;
}

EraseResult EraseInDocument(memhost::MemDocument& document,
                            const EraseOptions& options) {
  std::vector<host::Entity*> chosen = Chosen(document, options);
  const std::vector<std::string> locked = General::UnlockAllLayers(document);
  EraseResult result;
  result.chosen = static_cast<int>(
      std::set<host::Entity*>(chosen.begin(), chosen.end()).size());
  result.erased = events::EraseWithReactions(document, chosen);
  General::RestoreLockedLayers(document, locked);
  return result;
}

int Run(const std::vector<std::string>& args, Io& io) {
  Args a(args, {}, {"network", "pipes", "nodes", "handles", "output"});
  a.ExpectPositionals(1);
  EraseOptions options;
  options.drawing = a.Positional(0, "the drawing (DRAWING.dxf)");
  options.output = a.Option("output");
  options.network = a.Option("network");
  options.pipes = a.Names("pipes");
  options.nodes = a.Names("nodes");
  options.handles = a.Names("handles");
  EraseResult result;
  EditProjectDrawing(options.drawing, options.output,
                     [&](memhost::MemDocument& document) {
                       result = EraseInDocument(document, options);
                     });
  io.out << "erased " << result.chosen << " chosen and "
         << result.erased - result.chosen << " dependent objects\nwrote "
         << options.output.value_or(options.drawing) << "\n";
  return 0;
}

Registrar erase_command(
    {"erase", "erase elements and what hangs on them, repairing the rest",
     "Usage: kestrana erase DRAWING [--network N --pipes L,L,...]\n"
     "         [--network N --nodes L,L,...] [--handles H,H,...] [-o OUT]\n\n"
     "Erases the named pipes, nodes or other objects the way the add-on\n"
     "reacts when a user erases them in the editor: a pipe leaves its nodes\n"
     "(their sumps follow the pipes that remain), takes its annotation,\n"
     "arrow and crossings with it, cuts its profiles and is counted no\n"
     "more in the libraries; a node takes its pipes, annotation and low or\n"
     "high marker with it; an annotation, arrow, crossing or profile is\n"
     "forgotten by what pointed at it. The low and high points around the\n"
     "nodes touched are analysed again.\n\n"
     "  --network N         the network of the labels\n"
     "  --pipes L,L,...     pipes by label\n"
     "  --nodes L,L,...     nodes by label\n"
     "  --handles H,H,...   any entities, by their DXF handles\n"
     "  -o, --output OUT    write to OUT instead of DRAWING\n",
     Run});

}  // namespace
}  // namespace kestrana::cli
