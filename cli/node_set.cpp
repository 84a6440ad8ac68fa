// kestrana node set: a node's label, levels and matching rule.
#include <ostream>

#include "cli/command.h"
#include "cli/session.h"
#include "commands/element_data.h"
#include "core/text.h"
#include "memhost/document.h"

namespace kestrana::cli {

namespace {

int Run(const std::vector<std::string>& args, Io& io) {
  Args a(args, {},
         {"network", "label", "new-label", "ground", "sump", "matching",
          "output"});
  a.ExpectPositionals(1);
  a.Drawing();
  commands::NodeSetOptions options;
  options.network = a.Network();
  options.label = a.Required("label");
  options.new_label = a.Option("new-label");
  if (auto v = a.Option("ground")) options.ground = ParseReal(*v, "--ground");
  if (auto v = a.Option("sump")) options.sump = ParseReal(*v, "--sump");
  options.matching = a.Option("matching");
  const commands::NodeState n = EditProject(a, commands::SetNode, options);
  io.out << "node " << n.label << " of " << n.network << ": ground "
         << core::GeneralText(n.ground) << ", sump "
         << core::GeneralText(n.sump) << ", " << n.matching << ", " << n.pipes
         << " pipe" << (n.pipes == 1 ? "" : "s") << "\nwrote " << a.Written()
         << "\n";
  return 0;
}

Registrar node_set_command(
    {"node set", "a node's label, ground and sump levels, matching rule",
     "Usage: kestrana node set DRAWING --network N --label L [--new-label L2]\n"
     "         [--ground Z] [--sump Z] [--matching RULE] [-o OUT]\n\n"
     "Stores the node's data and passes it on: every pipe at the node takes\n"
     "its invert at the node by the matching rule, and the annotations,\n"
     "crossings and profile flags of those pipes follow. In a pressure\n"
     "network the low and high points around the node are analysed again.\n"
     "Values not given stay as they are.\n\n"
     "  --network N          the node's network\n"
     "  --label L            the node's label (unique in the network)\n"
     "  --new-label L2       a new label, not yet used in the network\n"
     "  --ground Z           ground (cover) level\n"
     "  --sump Z             sump level; with \"No Matching\" it is lowered "
     "to\n"
     "                       the lowest pipe invert at the node if above it\n"
     "  --matching RULE      \"No Matching\": pipes keep their inverts;\n"
     "                       \"Match Centerlines\", \"Match Soffits\": the\n"
     "                       centre lines or tops line up with those of the\n"
     "                       tallest pipe standing on the sump;\n"
     "                       \"Match Inverts\": every invert at the sump\n"
     "  -o, --output OUT     write to OUT instead of DRAWING\n",
     Run});

}  // namespace

}  // namespace kestrana::cli
