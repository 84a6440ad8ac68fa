#include "cli/project.h"

#include <sstream>

#include "cli/command.h"
#include "core/general.h"
#include "core/names.h"
#include "core/project_record.h"
#include "core/text.h"
#include "host/host.h"

namespace kestrana::cli {

using core::General;

void RequireProject(host::Document& document) {
  std::optional<core::Record> record = core::FindProjectRecord(document);
  if (!record) throw CommandError(core::kNoProjectMessage);
  std::string version = record->Text(core::ProjectField::kProjectVersion);
  if (!General::VerfiyVersionKestranaCompatibility(document))
    throw CommandError(core::NewerProjectMessage(version));
}

core::ProjectMarkers NewProject(host::Document& document,
                                const NewProjectOptions& options) {
  if (options.units != core::kMetric && options.units != core::kUS)
    throw UsageError("--units must be Metric or US, not '" + options.units +
                     "'");
  if (core::FindProjectRecord(document))
    throw CommandError(core::kProjectExistsMessage);
  return core::CreateProject(document, options.units);
}

void AddNetwork(host::Document& document, const AddNetworkOptions& options) {
  if (options.type != core::kGravity && options.type != core::kPressure)
    throw UsageError("--type must be Gravity or Pressure, not '" +
                     options.type + "'");
  if (options.name.empty()) throw UsageError("the network name is empty");
  if (General::CheckTextForBannedCharacters(options.name, 1))
    throw CommandError("The network name \"" + options.name +
                       "\" contains a character that names cannot hold "
                       "(: ; \" / \\ > < * | ? , =)");
  RequireProject(document);
  if (General::CheckNetworkExists(document, options.name))
    throw CommandError("A network named \"" + options.name +
                       "\" already exists");
  General::CreateNetworkDefintion(document, options.name, options.type);
}

std::vector<NetworkInfo> ListNetworks(host::Document& document) {
  RequireProject(document);
  core::TextTable table = General::GetNetworkDefinitions(document);
  std::vector<NetworkInfo> networks;
  for (int row = 0; row < table.Rows(); ++row) {
    if (table(row, 0).empty()) continue;
    NetworkInfo info{table(row, 0), table(row, 1)};
    info.pipes = General::GetNetworkSet(document, info.name, 1).Count();
    info.nodes = General::GetNetworkSet(document, info.name, 2).Count();
    networks.push_back(info);
  }
  return networks;
}

std::string NetworksJson(const std::vector<NetworkInfo>& networks) {
  std::ostringstream out;
  out << "[";
  for (size_t i = 0; i < networks.size(); ++i) {
    const NetworkInfo& n = networks[i];
    out << (i ? ",\n " : "") << "{\"name\": " << JsonString(n.name)
        << ", \"type\": " << JsonString(n.type) << ", \"pipes\": " << n.pipes
        << ", \"nodes\": " << n.nodes << "}";
  }
  out << "]\n";
  return out.str();
}

std::string NetworksTable(const std::vector<NetworkInfo>& networks) {
  if (networks.empty()) return "The project has no networks.\n";
  size_t width = 4;
  for (const NetworkInfo& n : networks) width = std::max(width, n.name.size());
  std::ostringstream out;
  auto pad = [](const std::string& text, size_t to) {
    return text + std::string(to > text.size() ? to - text.size() : 0, ' ');
  };
  out << pad("NAME", width) << "  " << pad("TYPE", 8) << "  PIPES  NODES\n";
  for (const NetworkInfo& n : networks)
    out << pad(n.name, width) << "  " << pad(n.type, 8) << "  "
        << pad(std::to_string(n.pipes), 5) << "  " << n.nodes << "\n";
  return out.str();
}

}  // namespace kestrana::cli
