// kestrana copy: network elements copied and made elements of their own, as
// the add-on does after the drawing program's copy command.
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "cli/command.h"
#include "cli/editing_support.h"
#include "cli/project.h"
#include "core/general.h"
#include "core/lists.h"
#include "events/events.h"
#include "host/host.h"
#include "memhost/document.h"

namespace kestrana::cli {

namespace {

struct CopyOptions {
  std::string drawing;
  std::optional<std::string> output;
  std::string network;
  std::vector<std::string> pipes, nodes;
  double dx = 0, dy = 0;
};

// The labels the copies took, pipes first.
std::vector<std::string> CopyInDocument(memhost::MemDocument& document,
                                        const CopyOptions& options) {
  RequireNetwork(document, options.network);
  std::vector<host::Entity*> originals;
  for (const std::string& label : options.pipes)
    originals.push_back(
        &FindElement(document, options.network, ElementKind::kPipe, label));
  for (const std::string& label : options.nodes)
    originals.push_back(
        &FindElement(document, options.network, ElementKind::kNode, label));
  if (originals.empty())
    throw UsageError("name what to copy with --pipes and --nodes");
  const std::vector<std::string> locked =
      core::General::UnlockAllLayers(document);
  std::vector<host::Entity*> copies;
  std::string copied;
  for (host::Entity* original : originals) {
    host::Entity& copy = original->Copy();
    copy.Move({0, 0, 0}, {options.dx, options.dy, 0});
    copies.push_back(&copy);
    copied += core::IdText(copy.ObjectID()) + ";";
  }
  events::Events::VerifyCopiedElements(document, "", copied);
  std::vector<std::string> labels;
  for (host::Entity* copy : copies)
    if (!copy->Erased()) labels.push_back(ElementLabel(*copy));
  core::General::RestoreLockedLayers(document, locked);
  return labels;
}

int Run(const std::vector<std::string>& args, Io& io) {
  Args a(args, {}, {"network", "pipes", "nodes", "by", "output"});
  a.ExpectPositionals(1);
  CopyOptions options;
  options.drawing = a.Positional(0, "the drawing (DRAWING.dxf)");
  options.output = a.Option("output");
  options.network = a.Required("network");
  options.pipes = a.Names("pipes");
  options.nodes = a.Names("nodes");
  const std::vector<std::string> by = SplitAtCommas(a.Required("by"));
  if (by.size() != 2) throw UsageError("--by takes DX,DY");
  options.dx = ParseReal(by[0], "--by");
  options.dy = ParseReal(by[1], "--by");
  std::vector<std::string> labels;
  EditProjectDrawing(options.drawing, options.output,
                     [&](memhost::MemDocument& document) {
                       labels = CopyInDocument(document, options);
                     });
  io.out << "copied into";
  for (const std::string& label : labels) io.out << " " << label;
  io.out << "\nwrote " << options.output.value_or(options.drawing) << "\n";
  return 0;
}

Registrar copy_command(
    {"copy", "copy pipes and nodes; the copies become elements of their own",
     "Usage: kestrana copy DRAWING --network N [--pipes L,L,...]\n"
     "         [--nodes L,L,...] --by DX,DY [-o OUT]\n\n"
     "Copies the named pipes and nodes by the offset and makes the copies\n"
     "elements of their own, as the add-on does after a copy: labels that\n"
     "are taken get \"New \" in front, the copies link only to each other (a\n"
     "copied pipe whose two nodes were not copied with it is dropped), and\n"
     "they are annotated, counted in the libraries, crossed with the other\n"
     "networks and, in a pressure network, analysed for low and high\n"
     "points.\n\n"
     "  --network N        the elements' network\n"
     "  --pipes L,L,...    pipes by label\n"
     "  --nodes L,L,...    nodes by label\n"
     "  --by DX,DY         the offset of the copies\n"
     "  -o, --output OUT   write to OUT instead of DRAWING\n",
     Run});

}  // namespace
}  // namespace kestrana::cli
