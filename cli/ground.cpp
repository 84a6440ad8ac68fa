// kestrana ground: ground levels of whole networks from a LandXML surface.
#include "commands/ground.h"

#include <ostream>
#include <sstream>

#include "cli/command.h"
#include "cli/session.h"
#include "memhost/document.h"
#include "memhost/landxml.h"

namespace kestrana::cli {

namespace {

int Run(const std::vector<std::string>& args, Io& io) {
  Args a(args, {}, {"surface", "surface-name", "networks", "output"});
  a.ExpectPositionals(1);
  a.Drawing();
  commands::GroundOptions options;
  options.source = a.Required("surface");
  options.surface_name = a.Option("surface-name");
  std::stringstream networks(a.Required("networks"));
  for (std::string name; std::getline(networks, name, ',');) {
    if (name.empty()) throw UsageError("--networks: an empty network name");
    options.networks.push_back(name);
  }
  options.surfaces = memhost::ReadLandXmlSurfaces(options.source);
  const commands::GroundResult r =
      EditProject(a, commands::Ground, std::move(options));
  io.out << "ground levels of " << r.updated << " node"
         << (r.updated == 1 ? "" : "s") << " from the surface \"" << r.surface
         << "\"\nwrote " << a.Written() << "\n";
  if (!r.outside.empty()) {
    io.err << "kestrana ground: warning: " << r.outside.size() << " node"
           << (r.outside.size() == 1 ? " lies" : "s lie")
           << " outside the surface and keep"
           << (r.outside.size() == 1 ? "s its ground level"
                                     : " their ground levels")
           << ":";
    for (const std::string& node : r.outside) io.err << " " << node << ";";
    io.err << "\n";
  }
  return 0;
}

Registrar ground_command(
    {"ground", "ground levels of networks from a LandXML surface",
     "Usage: kestrana ground DRAWING --surface FILE.xml [--surface-name NAME]\n"
     "         --networks A,B,... [-o OUT]\n\n"
     "Takes the ground level of every node of the networks from a TIN\n"
     "surface of a LandXML file, and refreshes the annotations of the nodes\n"
     "and of their pipes (covers and depths follow the ground). A node\n"
     "outside the surface keeps its ground level and is named in a warning;\n"
     "when no node lies on the surface nothing is written.\n\n"
     "  --surface FILE.xml    the LandXML file\n"
     "  --surface-name NAME   the surface to use when the file holds several\n"
     "  --networks A,B,...    the networks whose nodes take the levels\n"
     "  -o, --output OUT      write to OUT instead of DRAWING\n",
     Run});

}  // namespace

}  // namespace kestrana::cli
