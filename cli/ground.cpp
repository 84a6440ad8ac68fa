// kestrana ground: ground levels of whole networks from a LandXML surface.
#include <ostream>
#include <sstream>

#include "cli/command.h"
#include "cli/editing.h"
#include "cli/editing_support.h"
#include "cli/project.h"
#include "core/general.h"
#include "editing/ground_levels.h"
#include "host/host.h"
#include "memhost/document.h"
#include "memhost/landxml.h"

namespace kestrana::cli {

namespace {

std::string Names(
    const std::vector<std::unique_ptr<memhost::MemSurface>>& surfaces) {
  std::string names;
  for (const auto& s : surfaces)
    names += (names.empty() ? "\"" : ", \"") + s->Name() + "\"";
  return names;
}

// The surface the options name, or the only one of the file.
std::string ChooseSurface(
    const std::vector<std::unique_ptr<memhost::MemSurface>>& surfaces,
    const GroundOptions& options) {
  if (options.surface_name) {
    for (const auto& s : surfaces)
      if (s->Name() == *options.surface_name) return s->Name();
    throw CommandError(options.surface_file + " has no surface named \"" +
                       *options.surface_name + "\" (it has " + Names(surfaces) +
                       ")");
  }
  if (surfaces.size() > 1)
    throw UsageError(options.surface_file + " holds " +
                     std::to_string(surfaces.size()) + " surfaces (" +
                     Names(surfaces) + "); choose one with --surface-name");
  return surfaces.front()->Name();
}

}  // namespace

std::vector<std::unique_ptr<memhost::MemSurface>> ReadSurfaceFile(
    const std::string& path) {
  try {
    return memhost::ReadLandXmlSurfaces(path);
  } catch (const memhost::LandXmlError& e) {
    throw CommandError(e.what());
  }
}

GroundResult GroundInDocument(
    memhost::MemDocument& document,
    std::vector<std::unique_ptr<memhost::MemSurface>> surfaces,
    const GroundOptions& options) {
  if (options.networks.empty()) throw UsageError("--networks names no network");
  for (const std::string& network : options.networks)
    RequireNetwork(document, network);
  GroundResult result;
  result.surface = ChooseSurface(surfaces, options);
  // The civil document holds the surfaces this command brings, no others.
  memhost::MemSurfaces& civil = document.App().Civil().Document().Surfaces();
  civil.Clear();
  for (auto& surface : surfaces) civil.Add(std::move(surface));

  editing::GroundLevelUpdate update = editing::GroundLevelsFromSurface(
      document, options.networks, result.surface);
  for (host::Entity* node : update.outside)
    result.outside.push_back(core::General::GetElementNetwork(*node) + " " +
                             ElementLabel(*node));
  if (update.updated.empty())
    throw CommandError(update.outside.empty()
                           ? "the networks hold no nodes"
                           : "no node lies on the surface \"" + result.surface +
                                 "\"; nothing was changed");
  result.updated = static_cast<int>(update.updated.size());
  return result;
}

GroundResult Ground(const GroundOptions& options) {
  std::vector<std::unique_ptr<memhost::MemSurface>> surfaces =
      ReadSurfaceFile(options.surface_file);
  GroundResult result;
  EditProjectDrawing(
      options.drawing, options.output, [&](memhost::MemDocument& document) {
        result = GroundInDocument(document, std::move(surfaces), options);
      });
  result.written = options.output.value_or(options.drawing);
  return result;
}

namespace {

int Run(const std::vector<std::string>& args, Io& io) {
  Args a(args, {}, {"surface", "surface-name", "networks", "output"});
  a.ExpectPositionals(1);
  GroundOptions options;
  options.drawing = a.Positional(0, "the drawing (DRAWING.dxf)");
  options.output = a.Option("output");
  options.surface_file = a.Required("surface");
  options.surface_name = a.Option("surface-name");
  std::stringstream networks(a.Required("networks"));
  for (std::string name; std::getline(networks, name, ',');) {
    if (name.empty()) throw UsageError("--networks: an empty network name");
    options.networks.push_back(name);
  }
  GroundResult r = Ground(options);
  io.out << "ground levels of " << r.updated << " node"
         << (r.updated == 1 ? "" : "s") << " from the surface \"" << r.surface
         << "\"\nwrote " << r.written << "\n";
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
