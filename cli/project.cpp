#include "cli/project.h"

#include <filesystem>
#include <sstream>

#include "cli/command.h"
#include "cli/info.h"
#include "cli/json.h"
#include "cli/session.h"
#include "commands/networks.h"
#include "commands/project.h"
#include "dxf/io.h"
#include "memhost/document.h"

namespace kestrana::cli {

using commands::NetworkInfo;

std::string NetworksJson(const std::vector<NetworkInfo>& networks) {
  JsonWriter json;
  json.BeginArray();
  for (const NetworkInfo& n : networks) {
    json.BeginObject();
    json.Key("name").String(n.name);
    json.Key("type").String(n.type);
    json.Key("pipes").Int(n.pipes);
    json.Key("nodes").Int(n.nodes);
    json.EndObject();
  }
  json.EndArray();
  return json.Text();
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

namespace {

int RunNew(const std::vector<std::string>& args, Io& io) {
  Args a(args, {}, {"units", "output"});
  a.ExpectPositionals(1);
  const std::string& drawing = a.Drawing();
  const commands::NewProjectOptions options{
      a.Option("units").value_or("Metric")};
  std::error_code error;
  const bool exists = std::filesystem::exists(drawing, error);
  if (exists) {
    EditDrawingFile(drawing, a.Output(), [&](memhost::MemDocument& document) {
      commands::NewProject(document, options);
    });
  } else {
    memhost::MemDocument document;
    commands::NewProject(document, options);
    SaveDrawingFile(document, a.Written());
  }
  io.out << (exists ? "started a project in " : "created ") << a.Written()
         << " (" << options.units << ")\n";
  return 0;
}

int RunNetworkAdd(const std::vector<std::string>& args, Io& io) {
  Args a(args, {}, {"type", "output"});
  a.ExpectPositionals(2);
  a.Drawing();
  const commands::AddNetworkOptions options{a.Positional(1, "the network name"),
                                            a.Required("type")};
  EditProject(a, commands::AddNetwork, options);
  io.out << "added " << options.type << " network \"" << options.name
         << "\" to " << a.Written() << "\n";
  return 0;
}

int RunNetworkList(const std::vector<std::string>& args, Io& io) {
  Args a(args, {"json"}, {});
  a.ExpectPositionals(1);
  std::vector<NetworkInfo> networks =
      commands::ListNetworks(*OpenProjectDrawing(a.Drawing()));
  io.out << (a.Json() ? NetworksJson(networks) : NetworksTable(networks));
  return 0;
}

int RunNetworkDelete(const std::vector<std::string>& args, Io& io) {
  Args a(args, {}, {"output"});
  a.ExpectPositionals(2);
  a.Drawing();
  const commands::DeleteNetworkOptions options{
      a.Positional(1, "the network name")};
  const std::string deleted = EditProject(a, commands::DeleteNetwork, options);
  io.out << "deleted network \"" << deleted << "\" from " << a.Written()
         << "\n";
  return 0;
}

int RunRenewIds(const std::vector<std::string>& args, Io& io) {
  Args a(args, {}, {"output"});
  a.ExpectPositionals(1);
  commands::RenewIdsResult r;
  EditDrawingFile(
      a.Drawing(), a.Output(),
      [&](memhost::MemDocument& document) { r = commands::RenewIds(document); },
      CommandLoadOptions());
  if (r.records == 0)
    io.out << "every stored object ID was current\n";
  else
    io.out << "renewed the object IDs of " << r.records
           << (r.records == 1 ? " record" : " records") << "\n";
  io.out << "wrote " << a.Written() << "\n";
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
     "network before it. Names are unique regardless of letter case (as\n"
     "layer names are: \"sewer\" is the network \"Sewer\"), at most 100\n"
     "characters long, without blanks at either end or control characters,\n"
     "and cannot hold : ; \" / \\ > < * | ? , =\n\n"
     "  --type Gravity|Pressure   sewers and storm drains, or water mains\n"
     "  -o, --output OUT          write to OUT instead of DRAWING\n",
     RunNetworkAdd});

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

Registrar renew_ids_command(
    {"renew-ids", "rebuild stored object IDs from their labels",
     "Usage: kestrana renew-ids DRAWING [-o OUT]\n\n"
     "Records link objects by object IDs, which a CAD session hands out\n"
     "afresh each time it opens a drawing; every ID list has a partner\n"
     "list of labels. This rebuilds every stored ID of the project from\n"
     "those labels and the objects' current IDs, drops references whose\n"
     "labels name nothing, and puts the current marker IDs into the\n"
     "project record. Every command does this by itself when it finds the\n"
     "stored IDs are another session's; this command does it always.\n\n"
     "  -o, --output OUT   write to OUT instead of DRAWING\n",
     RunRenewIds});

// `kestrana info` shows the project too.
InfoSectionRegistrar project_info(
    [](memhost::MemDocument& document) -> std::optional<InfoSection> {
      std::optional<commands::ProjectSummary> project =
          commands::DescribeProject(document);
      if (!project) return std::nullopt;
      InfoSection section{"kestrana project", {}};
      section.fields.push_back({"version", project->version});
      section.fields.push_back({"units", project->units});
      std::string listed;
      for (const auto& [name, type] : project->networks)
        listed += (listed.empty() ? "" : ", ") + name + " (" + type + ")";
      section.fields.push_back(
          {"networks", std::to_string(project->networks.size()), true});
      if (!project->networks.empty())
        section.fields.push_back({"network list", listed});
      return section;
    });

}  // namespace

}  // namespace kestrana::cli
