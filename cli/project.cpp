#include "cli/project.h"

#include <filesystem>
#include <sstream>

#include "cli/command.h"
#include "cli/info.h"
#include "cli/session.h"
#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/project_record.h"
#include "core/text.h"
#include "dxf/io.h"
#include "host/host.h"
#include "library/library.h"
#include "oids/update_oids.h"
#include "viewstyle/view_style.h"

namespace kestrana::cli {

using core::General;

void RequireProject(host::Document& document) {
  std::optional<core::Record> record = core::FindProjectRecord(document);
  if (!record) throw CommandError(core::kNoProjectMessage);
  std::string version = record->Text(core::ProjectField::kProjectVersion);
  if (!General::VerfiyVersionKestranaCompatibility(document))
    throw CommandError(core::NewerProjectMessage(version));
}

namespace {
// A drawing saved in a CAD session stores that session's IDs; they are
// renewed before anything follows a link.
void RequireCurrentProject(host::Document& document) {
  RequireProject(document);
  if (oids::UpdateOIDs::StoredIdsAreStale(document))
    oids::UpdateOIDs::UpdateObjectIDs(document);
}
}  // namespace

std::unique_ptr<memhost::MemDocument> OpenProjectDrawing(
    const std::string& path) {
  std::unique_ptr<memhost::MemDocument> document =
      dxf::LoadDrawing(path, CommandLoadOptions());
  RequireCurrentProject(*document);
  return document;
}

void EditProjectDrawing(
    const std::string& input, const std::optional<std::string>& output,
    const std::function<void(memhost::MemDocument&)>& change) {
  dxf::EditDrawing(
      input, output,
      [&](memhost::MemDocument& document) {
        RequireCurrentProject(document);
        change(document);
      },
      CommandLoadOptions());
}

core::ProjectMarkers NewProject(host::Document& document,
                                const std::string& units) {
  if (units != core::kMetric && units != core::kUS)
    throw UsageError("--units must be Metric or US, not '" + units + "'");
  if (core::FindProjectRecord(document))
    throw CommandError(core::kProjectExistsMessage);
  // Markers go on layer "0", which may be locked.
  std::vector<std::string> locked = General::UnlockAllLayers(document);
  core::ProjectMarkers markers = core::CreateProjectRecord(document, units);
  library::LibraryMarkers libraries =
      library::Library::CreateLibraries(document);
  markers.materials = libraries.materials;
  markers.sizes = libraries.sizes;
  markers.view_style = viewstyle::ViewStyle::CreateViewStyle(
      document, viewstyle::StandardViewStyle(units == core::kMetric));
  General::RestoreLockedLayers(document, locked);
  return markers;
}

void AddNetwork(host::Document& document, const std::string& name,
                const std::string& type) {
  if (type != core::kGravity && type != core::kPressure)
    throw UsageError("--type must be Gravity or Pressure, not '" + type + "'");
  if (name.empty()) throw UsageError("the network name is empty");
  if (General::CheckTextForBannedCharacters(name, 1))
    throw CommandError("The network name \"" + name +
                       "\" contains a character that names cannot hold "
                       "(: ; \" / \\ > < * | ? , =)");
  if (General::CheckNetworkExists(document, name))
    throw CommandError("A network named \"" + name + "\" already exists");
  General::CreateNetworkDefintion(document, name, type);
}

std::vector<NetworkInfo> ListNetworks(host::Document& document) {
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

NewResult New(const NewOptions& options) {
  NewResult result;
  result.written = options.output.value_or(options.drawing);
  std::error_code error;
  if (std::filesystem::exists(options.drawing, error)) {
    dxf::EditDrawing(options.drawing, options.output,
                     [&](memhost::MemDocument& document) {
                       result.markers = NewProject(document, options.units);
                     });
    return result;
  }
  memhost::MemDocument document;
  result.markers = NewProject(document, options.units);
  dxf::SaveDrawing(document, result.written);
  result.new_drawing = true;
  return result;
}

std::string NetworkAdd(const NetworkAddOptions& options) {
  EditProjectDrawing(options.drawing, options.output,
                     [&](memhost::MemDocument& document) {
                       AddNetwork(document, options.name, options.type);
                     });
  return options.output.value_or(options.drawing);
}

std::string NetworkDelete(const NetworkDeleteOptions& options) {
  EditProjectDrawing(options.drawing, options.output,
                     [&](memhost::MemDocument& document) {
                       if (!General::CheckNetworkExists(document, options.name))
                         throw CommandError("There is no network named \"" +
                                            options.name + "\"");
                       General::DeleteNetwork(document, options.name);
                     });
  return options.output.value_or(options.drawing);
}

std::vector<NetworkInfo> NetworkList(const NetworkListOptions& options) {
  return ListNetworks(*OpenProjectDrawing(options.drawing));
}

namespace {

int RunNew(const std::vector<std::string>& args, Io& io) {
  Args a(args, {}, {"units", "output"});
  a.ExpectPositionals(1);
  NewOptions options{a.Positional(0, "the drawing (DRAWING.dxf)"),
                     a.Option("output"), a.Option("units").value_or("Metric")};
  NewResult result = New(options);
  io.out << (result.new_drawing ? "created " : "started a project in ")
         << result.written << " (" << options.units << ")\n";
  return 0;
}

int RunNetworkAdd(const std::vector<std::string>& args, Io& io) {
  Args a(args, {}, {"type", "output"});
  a.ExpectPositionals(2);
  NetworkAddOptions options{
      a.Positional(0, "the drawing (DRAWING.dxf)"), a.Option("output"),
      a.Positional(1, "the network name"), a.Required("type")};
  std::string written = NetworkAdd(options);
  io.out << "added " << options.type << " network \"" << options.name
         << "\" to " << written << "\n";
  return 0;
}

int RunNetworkList(const std::vector<std::string>& args, Io& io) {
  Args a(args, {"json"}, {});
  a.ExpectPositionals(1);
  std::vector<NetworkInfo> networks =
      NetworkList({a.Positional(0, "the drawing (DRAWING.dxf)")});
  io.out << (a.Flag("json") ? NetworksJson(networks) : NetworksTable(networks));
  return 0;
}

Registrar new_command(
    {"new", "start a Kestrana project in a drawing",
     "Usage: kestrana new DRAWING [--units Metric|US] [-o OUT]\n\n"
     "Adds a Kestrana project to DRAWING, or makes a new drawing holding\n"
     "one when DRAWING does not exist: the project record, the materials\n"
     "and section-sizes libraries and the \"Standard\" view and profile\n"
     "styles (see docs/project-defaults.md). A drawing that already holds\n"
     "a project is refused and left as it was.\n\n"
     "  --units Metric|US   levels in metres and sizes in millimetres\n"
     "                      (Metric, the default) or feet and inches (US)\n"
     "  -o, --output OUT    write to OUT instead of DRAWING\n",
     RunNew});

Registrar network_add_command(
    {"network add", "add a gravity or pressure network to a project",
     "Usage: kestrana network add DRAWING NAME --type Gravity|Pressure "
     "[-o OUT]\n\n"
     "Adds the network NAME to the project of DRAWING with its layers\n"
     "\"NAME - Network\", \"NAME - Annotation\" and \"NAME - Arrow\", shows "
     "it\n"
     "in the active view style and enables its crossings with every\n"
     "network before it. Names are unique and cannot hold : ; \" / \\ > < *\n"
     "| ? , =\n\n"
     "  --type Gravity|Pressure   sewers and storm drains, or water mains\n"
     "  -o, --output OUT          write to OUT instead of DRAWING\n",
     RunNetworkAdd});

int RunNetworkDelete(const std::vector<std::string>& args, Io& io) {
  Args a(args, {}, {"output"});
  a.ExpectPositionals(2);
  NetworkDeleteOptions options{a.Positional(0, "the drawing (DRAWING.dxf)"),
                               a.Option("output"),
                               a.Positional(1, "the network name")};
  std::string written = NetworkDelete(options);
  io.out << "deleted network \"" << options.name << "\" from " << written
         << "\n";
  return 0;
}

Registrar network_delete_command(
    {"network delete", "remove a network with everything that belongs to it",
     "Usage: kestrana network delete DRAWING NAME [-o OUT]\n\n"
     "Removes the network NAME from the project of DRAWING: its crossings\n"
     "with other networks (their pipes forget them), its low and high\n"
     "points, its profiles (their styles and pipes forget them), its pipes\n"
     "and nodes with their annotations and arrows, their counts in the\n"
     "materials and sizes libraries, its definition and its layers (a\n"
     "layer that is current stays). Other networks are left as they are.\n\n"
     "  -o, --output OUT   write to OUT instead of DRAWING\n",
     RunNetworkDelete});

Registrar network_list_command(
    {"network list", "the networks of a project",
     "Usage: kestrana network list DRAWING [--json]\n\n"
     "Lists the networks of the project in DRAWING in the order they were\n"
     "made, with their type and the number of pipes and nodes in each.\n\n"
     "  --json   print a JSON array instead of a table\n",
     RunNetworkList});

// `kestrana info` shows the project too.
InfoSectionRegistrar project_info([](memhost::MemDocument& document)
                                      -> std::optional<InfoSection> {
  std::optional<core::Record> record = core::FindProjectRecord(document);
  if (!record) return std::nullopt;
  InfoSection section{"kestrana project", {}};
  auto text = [&](core::ProjectField field) {
    return record->Has(field) ? record->Text(field) : "";
  };
  section.fields.push_back(
      {"version", text(core::ProjectField::kProjectVersion)});
  section.fields.push_back({"units", text(core::ProjectField::kModelUnits)});
  std::vector<std::string> names =
      core::ListEntries(text(core::ProjectField::kNetworkNames));
  std::vector<std::string> types =
      core::ListEntries(text(core::ProjectField::kNetworkTypes));
  std::string listed;
  for (size_t i = 0; i < names.size(); ++i)
    listed += (i ? ", " : "") + names[i] + " (" +
              (i < types.size() ? types[i] : "?") + ")";
  section.fields.push_back({"networks", std::to_string(names.size()), true});
  if (!names.empty()) section.fields.push_back({"network list", listed});
  return section;
});

}  // namespace

}  // namespace kestrana::cli
