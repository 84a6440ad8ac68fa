#include "commands/ground.h"

#include "commands/command.h"
#include "commands/elements.h"
#include "core/general.h"
#include "core/node_record.h"
#include "core/record.h"
#include "editing/ground_levels.h"
#include "host/host.h"
#include "memhost/document.h"

namespace kestrana::commands {

namespace {

using Surfaces = std::vector<std::unique_ptr<memhost::MemSurface>>;

std::string Names(const Surfaces& surfaces) {
  std::string names;
  for (const auto& s : surfaces)
    names += (names.empty() ? "\"" : ", \"") + s->Name() + "\"";
  return names;
}

// The surface the options name, or the only one there is.
std::string ChooseSurface(const GroundOptions& options) {
  const Surfaces& surfaces = options.surfaces;
  if (options.surface_name) {
    for (const auto& s : surfaces)
      if (s->Name() == *options.surface_name) return s->Name();
    throw NotFoundError(options.source + " has no surface named \"" +
                        *options.surface_name + "\" (it has " +
                        Names(surfaces) + ")");
  }
  if (surfaces.size() > 1)
    throw OptionError(options.source + " holds " +
                      std::to_string(surfaces.size()) + " surfaces (" +
                      Names(surfaces) + "); choose one with --surface-name");
  if (surfaces.empty())
    throw NotFoundError(options.source + " holds no surface");
  return surfaces.front()->Name();
}

}  // namespace

GroundResult Ground(memhost::MemDocument& document, GroundOptions options) {
  core::ProgressScope progress(options.progress);
  if (options.networks.empty())
    throw OptionError("--networks names no network");
  for (std::string& network : options.networks)
    network = RequireNetwork(document, network);
  GroundResult result;
  result.surface = ChooseSurface(options);
  // The civil document holds the surfaces this command brings, no others.
  memhost::MemSurfaces& civil = document.App().Civil().Document().Surfaces();
  civil.Clear();
  for (auto& surface : options.surfaces) civil.Add(std::move(surface));

  editing::GroundLevelUpdate update = editing::GroundLevelsFromSurface(
      document, options.networks, result.surface);
  for (host::Entity* node : update.outside)
    result.outside.push_back(core::General::GetElementNetwork(*node) + " " +
                             ElementLabel(*node));
  if (update.updated.empty())
    throw RefusedError(update.outside.empty()
                           ? "the networks hold no nodes"
                           : "no node lies on the surface \"" + result.surface +
                                 "\"; nothing was changed");
  result.updated = static_cast<int>(update.updated.size());
  for (host::Entity* node : update.updated)
    result.levels.push_back({core::General::GetElementNetwork(*node),
                             ElementLabel(*node),
                             core::Record::ReadRequired(*node).Number(
                                 core::NodeField::kGroundLevel)});
  return result;
}

}  // namespace kestrana::commands
