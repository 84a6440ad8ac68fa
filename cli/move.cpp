// kestrana move and kestrana stretch: network elements moved or reshaped as
// with the drawing program's own commands, and everything that hangs on
// them brought back in line, as the add-on does after such edits.
#include "commands/move.h"

#include <ostream>

#include "cli/command.h"
#include "cli/session.h"
#include "memhost/document.h"

namespace kestrana::cli {

namespace {

void PrintOutcome(const commands::MoveResult& r, const Args& a, Io& io) {
  io.out << "moved " << r.moved << (r.moved == 1 ? " entity" : " entities")
         << "\nreshaped pipes:";
  if (r.reshaped_pipes.empty()) io.out << " none";
  for (size_t i = 0; i < r.reshaped_pipes.size(); ++i)
    io.out << (i == 0 ? " " : ", ") << r.reshaped_pipes[i];
  io.out << "\ntheir crossings now: " << r.crossings << "\nprofiles to update:";
  if (r.profiles_to_update.empty()) io.out << " none";
  for (size_t i = 0; i < r.profiles_to_update.size(); ++i)
    io.out << (i == 0 ? " " : ", ") << r.profiles_to_update[i];
  io.out << "\nwrote " << a.Written() << "\n";
}

int RunMove(const std::vector<std::string>& args, Io& io) {
  Args a(args, {}, {"network", "pipes", "nodes", "handles", "by", "output"});
  a.ExpectPositionals(1);
  a.Drawing();
  commands::MoveOptions options{a.Option("network"), a.Names("nodes"),
                                a.Names("pipes"), a.Names("handles")};
  std::tie(options.dx, options.dy) = a.RequiredPoint("by", "DX,DY");
  PrintOutcome(EditProject(a, commands::Move, options), a, io);
  return 0;
}

int RunStretch(const std::vector<std::string>& args, Io& io) {
  Args a(args, {}, {"network", "pipe", "vertex", "to", "output"});
  a.ExpectPositionals(1);
  a.Drawing();
  commands::StretchOptions options{a.Network(), a.Required("pipe"),
                                   ParseInt(a.Required("vertex"), "--vertex")};
  if (options.vertex < 0)
    throw UsageError("--vertex counts from 0 at the pipe's first vertex");
  std::tie(options.x, options.y) = a.RequiredPoint("to", "X,Y");
  PrintOutcome(EditProject(a, commands::Stretch, options), a, io);
  return 0;
}

const char kFollows[] =
    "Afterwards every pipe whose course changed has its crossings with all\n"
    "other networks found anew, the profiles along it flagged\n"
    "\"NeedsUpdate\" and its annotation and arrow placed along its new\n"
    "course (slopes follow the new length); moved nodes take their\n"
    "annotations along, and in a pressure network the low and high points\n"
    "around the nodes concerned are analysed again.\n\n";

Registrar move_command(
    {"move", "move elements; pipes, markers and crossing lines follow",
     "Usage: kestrana move DRAWING [--network N --nodes L,L,...]\n"
     "         [--network N --pipes L,L,...] [--handles H,H,...]\n"
     "         --by DX,DY [-o OUT]\n\n"
     "Moves the named nodes, pipes or other entities by the offset, as the\n"
     "editor's move command does, and then keeps the networks in line as\n"
     "the add-on does. Nodes are authoritative: a moved node takes the ends\n"
     "of its pipes and its low or high point marker along; a pipe moved on\n"
     "its own has its ends put back onto its nodes (its inner vertices stay\n"
     "moved); a moved marker returns to its node; a moved crossing\n"
     "annotation keeps its leader line from the crossing point to the\n"
     "nearest corner of its table. An entity that belongs to no network\n"
     "just moves.\n\n" +
         std::string(kFollows) +
         "  --network N         the network of the labels\n"
         "  --nodes L,L,...     nodes by label\n"
         "  --pipes L,L,...     pipes by label\n"
         "  --handles H,H,...   any entities of the drawing, by DXF handle\n"
         "  --by DX,DY          the offset\n"
         "  -o, --output OUT    write to OUT instead of DRAWING\n\n"
         "Refused, with the drawing left as it was: a label or handle that\n"
         "names nothing, an entity on a locked layer.\n",
     RunMove});

Registrar stretch_command(
    {"stretch", "move one vertex of a pipe; crossings and profiles follow",
     "Usage: kestrana stretch DRAWING --network N --pipe L --vertex K\n"
     "         --to X,Y [-o OUT]\n\n"
     "Moves vertex K of the pipe (0 is its first vertex) to the point, as\n"
     "the editor's grip stretch does. An inner vertex changes the pipe's\n"
     "course; an end vertex goes back onto its node, since nodes are\n"
     "authoritative (move the node instead).\n\n" +
         std::string(kFollows) +
         "  --network N         the pipe's network\n"
         "  --pipe L            the pipe, by label\n"
         "  --vertex K          the vertex, counted from 0\n"
         "  --to X,Y            where it goes\n"
         "  -o, --output OUT    write to OUT instead of DRAWING\n\n"
         "Refused, with the drawing left as it was: a label that names\n"
         "nothing, a vertex the pipe does not have, a pipe on a locked\n"
         "layer.\n",
     RunStretch});

}  // namespace
}  // namespace kestrana::cli
