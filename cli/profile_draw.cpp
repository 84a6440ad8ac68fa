// kestrana profile draw|list|update|delete: drawn longitudinal profiles.
#include "commands/profile_draw.h"

#include <sstream>

#include "cli/command.h"
#include "cli/profile_options.h"
#include "cli/session.h"
#include "core/text.h"
#include "memhost/landxml.h"

namespace kestrana::cli {

namespace {

using commands::ProfileSummary;

std::string PointText(const host::Point3& p) {
  return core::GeneralText(p.x) + "," + core::GeneralText(p.y);
}

std::string PipesText(const std::vector<std::string>& pipes) {
  std::string text;
  for (const std::string& pipe : pipes) text += (text.empty() ? "" : ",") + pipe;
  return text;
}

std::string Json(const ProfileSummary& p) {
  std::string pipes = "[";
  for (const std::string& pipe : p.pipes)
    pipes += (pipes.size() > 1 ? ", " : "") + JsonString(pipe);
  pipes += "]";
  return "{\"name\": " + JsonString(p.name) +
         ", \"network\": " + JsonString(p.network) +
         ", \"style\": " + JsonString(p.style) +
         ", \"block\": " + JsonString(p.block) +
         ", \"pipes\": " + pipes + ", \"at\": [" + core::GeneralText(p.at.x) +
         ", " + core::GeneralText(p.at.y) + "]" +
         ", \"plan_annotation\": " + (p.plan_annotation ? "true" : "false") +
         ", \"needs_update\": " + (p.needs_update ? "true" : "false") + "}";
}

std::string Line(const ProfileSummary& p) {
  return "\"" + p.name + "\" of \"" + p.network + "\" (" +
         std::to_string(p.pipes.size()) +
         (p.pipes.size() == 1 ? " pipe" : " pipes") + ") at " +
         PointText(p.at) + ", block \"" + p.block + "\"";
}

host::Point3 ParseAt(const Args& a) {
  const auto [x, y] = a.RequiredPoint("at", "X,Y");
  return {x, y, 0};
}

int RunDraw(const std::vector<std::string>& args, Io& io) {
  Args a(args, {"plan-name", "plan-stations", "json"},
         {"network", "name", "pipes", "line", "start", "style", "surface",
          "surface-name", "at", "datum", "output"});
  a.ExpectPositionals(1);
  commands::ProfileDrawOptions options;
  options.name = a.Required("name");
  options.run = ProfileRunOptions(a);
  options.at = ParseAt(a);
  const std::string datum = a.Option("datum").value_or("auto");
  if (datum != "auto") options.datum = ParseReal(datum, "--datum");
  options.name_on_plan = a.Flag("plan-name");
  options.stations_on_plan = a.Flag("plan-stations");
  const commands::ProfileDrawResult result =
      EditProject(a, commands::ProfileDraw, options);
  if (a.Json()) {
    io.out << Json(result.profile) << "\n";
    return 0;
  }
  io.out << "Drew the profile " << Line(result.profile) << " in "
         << result.parts << (result.parts == 1 ? " part" : " parts")
         << (result.profile.plan_annotation ? ", annotated in plan" : "")
         << "; wrote " << a.Written() << "\n";
  return 0;
}

int RunList(const std::vector<std::string>& args, Io& io) {
  Args a(args, {"json"}, {});
  a.ExpectPositionals(1);
  const commands::ProfileListResult result =
      commands::ProfileList(*OpenProjectDrawing(a.Drawing()), {});
  if (a.Json()) {
    io.out << "[";
    for (size_t i = 0; i < result.profiles.size(); ++i)
      io.out << (i ? ",\n " : "") << Json(result.profiles[i]);
    io.out << "]\n";
    return 0;
  }
  if (result.profiles.empty()) {
    io.out << "The drawing holds no profiles.\n";
    return 0;
  }
  std::vector<std::vector<std::string>> rows{
      {"NAME", "NETWORK", "STYLE", "PIPES", "AT", "UPDATE"}};
  for (const ProfileSummary& p : result.profiles)
    rows.push_back({p.name, p.network, p.style,
                    std::to_string(p.pipes.size()) + " (" +
                        PipesText(p.pipes) + ")",
                    PointText(p.at), p.needs_update ? "needed" : "-"});
  std::vector<size_t> widths(rows.front().size(), 0);
  for (const auto& row : rows)
    for (size_t c = 0; c < row.size(); ++c)
      widths[c] = std::max(widths[c], row[c].size());
  for (const auto& row : rows) {
    std::string line;
    for (size_t c = 0; c < row.size(); ++c)
      line += row[c] + (c + 1 < row.size()
                            ? std::string(widths[c] - row[c].size() + 2, ' ')
                            : "");
    io.out << line << "\n";
  }
  return 0;
}

int RunUpdate(const std::vector<std::string>& args, Io& io) {
  Args a(args, {"all-flagged"}, {"network", "name", "surface", "output"});
  a.ExpectPositionals(1);
  commands::ProfileUpdateOptions options;
  if (std::optional<std::string> surface = a.Option("surface")) {
    options.surfaces = memhost::ReadLandXmlSurfaces(*surface);
    options.surface_source = *surface;
  }
  options.all_flagged = a.Flag("all-flagged");
  options.network = a.Option("network");
  options.name = a.Option("name");
  if (options.all_flagged == (options.network || options.name))
    throw UsageError("give --network N --name NAME, or --all-flagged");
  if (!options.all_flagged && !(options.network && options.name))
    throw UsageError("a profile is named by --network N and --name NAME");
  const commands::ProfileUpdateResult result =
      EditProject(a, commands::ProfileUpdate, std::move(options));
  if (result.updated.empty()) {
    io.out << "No profile needs an update; " << a.Drawing()
           << " is unchanged.\n";
    return 0;
  }
  for (const ProfileSummary& p : result.updated)
    io.out << "Redrew the profile " << Line(p) << "\n";
  io.out << "Wrote " << a.Written() << "\n";
  return 0;
}

int RunDelete(const std::vector<std::string>& args, Io& io) {
  Args a(args, {}, {"network", "name", "output"});
  a.ExpectPositionals(1);
  commands::ProfileDeleteOptions options;
  options.network = a.Network();
  options.name = a.Required("name");
  const commands::ProfileDeleteResult result =
      EditProject(a, commands::ProfileDelete, options);
  io.out << "Deleted the profile " << Line(result.deleted) << "; wrote "
         << a.Written() << "\n";
  return 0;
}

Registrar draw_command(
    {"profile draw", "draw the longitudinal profile of a run of pipes",
     "Usage: kestrana profile draw DRAWING --network N --name NAME\n"
     "         (--pipes P-1,P-2,... | --line LINE) [--start X,Y] --at X,Y\n"
     "         [--style S] [--surface FILE.xml [--surface-name S]]\n"
     "         [--datum auto|VALUE] [--plan-name] [--plan-stations]\n"
     "         [--json] [-o OUT]\n\n"
     "Draws the profile of a run of pipes of the network N as the block\n"
     "\"Kestrana_Profile_<N>_<NAME>\" inserted at X,Y: per part (as the\n"
     "style splits the run) a frame with grid, ground line, pipes, manholes,\n"
     "connected and crossing pipes and the data table under it; parts\n"
     "stand side by side. The pipes must form one unbranched run.\n\n"
     "  --name NAME          the profile's name, new in the network (letter\n"
     "                       case is not told apart)\n"
     "  --network N          the network of the pipes\n"
     "  --pipes P-1,P-2,...  the pipes by label, in any order\n"
     "  --line LINE          a line as `kestrana profile lines` names it\n"
     "  --start X,Y          the free end the profile starts at; it must lie\n"
     "                       near one of the run's two free ends (within a\n"
     "                       tenth of the run's length). Default: the end\n"
     "                       with the lowest invert\n"
     "  --at X,Y             where the profile is inserted: its first\n"
     "                       manhole at the datum level\n"
     "  --style S            the profile style (default \"Standard\")\n"
     "  --surface FILE.xml   the ground from a LandXML TIN surface, else from\n"
     "                       the manholes' ground levels\n"
     "  --surface-name S     the surface to use when the file holds several\n"
     "  --datum auto|VALUE   the level at the foot of the frame; auto: the\n"
     "                       lowest sump less 2 m (6 ft), rounded down. A\n"
     "                       value above the lowest invert or sump is refused\n"
     "  --plan-name          write the profile's name along its pipes in plan\n"
     "  --plan-stations      write its stations along its pipes in plan\n"
     "  --json               the profile as `profile list --json` shows it\n"
     "  -o OUT               write the result to OUT instead of DRAWING\n",
     RunDraw});

Registrar list_command(
    {"profile list", "the drawn profiles and whether they need an update",
     "Usage: kestrana profile list DRAWING [--json]\n\n"
     "Lists the drawing's profiles: name, network, style, pipes in profile\n"
     "order, insertion point and whether an edit of their network flagged\n"
     "them for an update (`kestrana profile update`).\n\n"
     "  --json   [{\"name\", \"network\", \"style\", \"block\", \"pipes\", "
     "\"at\",\n"
     "            \"plan_annotation\", \"needs_update\"}]\n",
     RunList});

Registrar update_command(
    {"profile update", "draw profiles again from their stored definitions",
     "Usage: kestrana profile update DRAWING (--network N --name NAME |\n"
     "         --all-flagged) [--surface FILE.xml] [-o OUT]\n\n"
     "Draws a profile again with the current data of its pipes, where its\n"
     "block now stands; its plan annotation and \"NeedsUpdate\" stamp go\n"
     "with the old drawing. A profile whose pipes were erased or no longer\n"
     "form one run is refused (delete it and draw it again).\n\n"
     "  --network N --name NAME   the profile (name in any letter case)\n"
     "  --all-flagged             every profile that needs an update\n"
     "  --surface FILE.xml        the LandXML file of the ground surface of\n"
     "                            profiles drawn with --surface\n"
     "  -o OUT                    write the result to OUT instead of DRAWING\n",
     RunUpdate});

Registrar delete_command(
    {"profile delete", "delete a profile with its plan annotation",
     "Usage: kestrana profile delete DRAWING --network N --name NAME "
     "[-o OUT]\n\n"
     "Deletes the profile, its plan annotation and stamp; its style and\n"
     "pipes forget it.\n\n"
     "  --network N   the profile's network\n"
     "  --name NAME   the profile's name (any letter case)\n"
     "  -o OUT        write the result to OUT instead of DRAWING\n",
     RunDelete});

}  // namespace

}  // namespace kestrana::cli
