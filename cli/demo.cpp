// kestrana demo: the bundled town example from drawn lines to a designed
// network. Every step is one the commands offer, done on one open drawing.
#include "cli/demo.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <ostream>
#include <sstream>

#include "cli/command.h"
#include "cli/files.h"
#include "cli/list.h"
#include "cli/session.h"
#include "commands/convert.h"
#include "commands/crossings.h"
#include "commands/design.h"
#include "commands/ground.h"
#include "commands/lowhigh.h"
#include "commands/networks.h"
#include "commands/profile_draw.h"
#include "commands/project.h"
#include "core/names.h"
#include "core/text.h"
#include "dxf/io.h"
#include "editing/flow_direction.h"
#include "memhost/document.h"
#include "memhost/landxml.h"
#include "memhost/text_metrics.h"
#include "render/picture.h"
#include "render/svg.h"
#include "sizing/design.h"
#include "viewstyle/declutter.h"

namespace kestrana::cli {

namespace fs = std::filesystem;

namespace {

constexpr char kExampleDrawing[] = "town.dxf";
constexpr char kExampleSurface[] = "town-surface.xml";
constexpr char kSewer[] = "Sewer";
constexpr char kWater[] = "Water";
constexpr char kSewerLayer[] = "Sewer lines";
constexpr char kWaterLayer[] = "Water lines";
constexpr char kDrawingOut[] = "town-network.dxf";
constexpr char kPictureOut[] = "town-network.png";
constexpr char kReportOut[] = "report.txt";
constexpr char kProfilePictureOut[] = "sewer-profile.png";
// The main sewer line from its head N-8 to the outlet N-4, and the water
// main N-1 - N-2 - N-3, as the conversion of the example labels them.
constexpr char kSewerProfile[] = "Main Sewer";
constexpr char kWaterProfile[] = "Water Main";
const std::vector<std::string> kSewerProfilePipes = {"P-2", "P-3", "P-4",
                                                     "P-5", "P-6", "P-7"};
const std::vector<std::string> kWaterProfilePipes = {"P-1", "P-2"};
// The profiles stand under the town.
constexpr host::Point3 kSewerProfileAt{0, -260, 0};
constexpr host::Point3 kWaterProfileAt{0, -640, 0};

// The plan area of everything in model space, a little larger.
render::Window PlanWindow(memhost::MemDocument& document) {
  host::Box2 box;
  for (host::Entity* e : document.ModelSpace().Entities()) {
    const host::BoundingBox b = e->GetBoundingBox();
    box.Add(b.min.x, b.min.y);
    box.Add(b.max.x, b.max.y);
  }
  const double margin = 0.03 * std::max(box.max_x - box.min_x,
                                        box.max_y - box.min_y);
  return {box.min_x - margin, box.min_y - margin, box.max_x + margin,
          box.max_y + margin};
}

// Profiles of the main sewer line (ground from the surface, name and
// stations in plan) and of a water main.
std::vector<commands::ProfileDrawResult> DrawProfiles(
    memhost::MemDocument& document, const fs::path& surface_file) {
  const std::string surface_xml =
      ReadInput(surface_file.string(), InputKind::kSurface);
  std::vector<commands::ProfileDrawResult> drawn;
  commands::ProfileDrawOptions sewer;
  sewer.name = kSewerProfile;
  sewer.run = {.network = kSewer,
               .pipes = kSewerProfilePipes,
               .surface_xml = surface_xml,
               .surface_file = surface_file.string()};
  sewer.at = kSewerProfileAt;
  sewer.name_on_plan = true;
  sewer.stations_on_plan = true;
  drawn.push_back(commands::ProfileDraw(document, sewer));
  commands::ProfileDrawOptions water;
  water.name = kWaterProfile;
  water.run = {.network = kWater, .pipes = kWaterProfilePipes};
  water.at = kWaterProfileAt;
  water.name_on_plan = true;
  drawn.push_back(commands::ProfileDraw(document, water));
  return drawn;
}

std::string Fixed(double value, int places = 2) {
  return core::FormatNumber(core::RoundHalfEven(value, places),
                            places == 2 ? "0.00" : "0.000");
}

// The tables `kestrana list` prints.
void ReportNetwork(host::Document& document, const std::string& network,
                   std::ostream& out) {
  out << "\n"
      << ElementsTables(network, commands::ListElements(document, {network}));
}

std::string Report(memhost::MemDocument& document, const std::string& surface,
                   const std::vector<commands::ProfileDrawResult>& profiles) {
  std::ostringstream out;
  out << "kestrana demo: the example town with a sewer and a water network\n"
      << "ground levels from the surface \"" << surface << "\"; sewer tops at "
      << "least " << Fixed(sizing::kSewerCover) << " m below ground falling "
      << "at least " << Fixed(sizing::kSewerMinSlope * 100)
      << " % to the outlet, water mains " << Fixed(sizing::kWaterCover)
      << " m below ground\n\nNetworks\n";
  for (const commands::NetworkInfo& n : commands::ListNetworks(document))
    out << "  " << n.name << "  " << n.type << "  " << n.pipes << " pipes  "
        << n.nodes << " nodes\n";
  ReportNetwork(document, kSewer, out);
  ReportNetwork(document, kWater, out);
  out << "\nCrossings (invert levels at the crossing)\n";
  for (const commands::CrossingListing& c : commands::ListCrossings(document))
    out << "  " << c.network1 << " " << c.label1 << " "
        << memhost::DisplayText(c.size1) << " I.L. "
        << (c.invert1 ? Fixed(*c.invert1, 3) : "?") << "  x  " << c.network2
        << " " << c.label2 << " " << memhost::DisplayText(c.size2) << " I.L. "
        << (c.invert2 ? Fixed(*c.invert2, 3) : "?") << "  clearance "
        << Fixed(c.clearance, 3) << " m  at (" << core::GeneralText(c.easting)
        << ", " << core::GeneralText(c.northing) << ")\n";
  out << "\nLow and high points\n";
  for (const commands::LowHighListing& p :
       commands::ListLowHighPoints(document))
    out << "  " << p.kind << "  " << p.network << " " << p.node << "  at ("
        << core::GeneralText(p.x) << ", " << core::GeneralText(p.y) << ")\n";
  out << "\nProfiles\n";
  for (const commands::ProfileDrawResult& p : profiles) {
    out << "  " << p.profile.name << "  " << p.profile.network << "  "
        << p.parts << (p.parts == 1 ? " part" : " parts") << "  pipes";
    for (const std::string& pipe : p.profile.pipes) out << " " << pipe;
    out << "  block \"" << p.profile.block << "\"\n";
  }
  return out.str();
}

std::string ProgramDir() {
  std::error_code error;
  fs::path exe = fs::read_symlink("/proc/self/exe", error);
  return error ? "" : exe.parent_path().string();
}

}  // namespace

std::string FindExampleDir() {
  std::vector<fs::path> candidates;
  if (std::string dir = ProgramDir(); !dir.empty()) {
    candidates.push_back(fs::path(dir) / "examples");
    candidates.push_back(fs::path(dir) / ".." / "examples");
  }
  candidates.push_back(fs::path(KESTRANA_SOURCE_DIR) / "examples");
  for (const fs::path& dir : candidates)
    if (fs::exists(dir / kExampleDrawing) && fs::exists(dir / kExampleSurface))
      return fs::weakly_canonical(dir).string();
  throw NotFoundError(
      "the bundled example (examples/town.dxf and examples/town-surface.xml) "
      "is neither beside the program nor in " KESTRANA_SOURCE_DIR);
}

namespace {

// The demo's steps, writing into the folder `out`, which exists.
DemoResult Demo(const DemoOptions& options, const fs::path& examples,
                const fs::path& out) {
  DemoResult result{(out / kDrawingOut).string(), (out / kPictureOut).string(),
                    (out / kReportOut).string(), "",
                    (out / kProfilePictureOut).string()};

  const std::string surface_file = (examples / kExampleSurface).string();
  commands::GroundOptions ground{
      .surfaces = memhost::ParseLandXmlSurfaces(
          ReadInput(surface_file, InputKind::kSurface), surface_file),
      .networks = {kSewer, kWater}};
  const std::string surface = ground.surfaces.front()->Name();
  std::unique_ptr<memhost::MemDocument> document = LoadDrawingFile(
      (examples / kExampleDrawing).string(), CommandLoadOptions());
  commands::NewProject(*document, {core::kMetric});
  // Sewers are drawn in the direction of flow.
  editing::OrientTowardsOutlet(*document, *ground.surfaces.front(),
                               kSewerLayer);
  commands::Convert(*document, {.network = kSewer,
                                .type = core::kGravity,
                                .selection = {.layer = kSewerLayer}});
  commands::Convert(*document, {.network = kWater,
                                .type = core::kPressure,
                                .selection = {.layer = kWaterLayer}});
  commands::Ground(*document, std::move(ground));
  commands::DesignNetwork(*document, {kSewer, commands::DesignRules::kSewer});
  commands::DesignNetwork(*document,
                          {kWater, commands::DesignRules::kWaterMains});
  viewstyle::MoveAnnotationsClear(*document, {kSewer, kWater});
  // The plan picture shows the town, not the profiles under it.
  const render::Window plan = PlanWindow(*document);
  const std::vector<commands::ProfileDrawResult> profiles =
      DrawProfiles(*document, examples / kExampleSurface);

  SaveDrawingFile(*document, result.drawing);
  render::Options picture;
  picture.size_px = options.picture_px;
  picture.window = plan;
  WriteOutput(result.picture,
              render::PictureBytes(render::RenderSvg(*document, picture).svg,
                                   render::PictureFormat::kPng));
  render::Options profile_picture;
  profile_picture.size_px = options.picture_px;
  profile_picture.block = profiles.front().profile.block;
  WriteOutput(result.profile_picture,
              render::PictureBytes(
                  render::RenderSvg(*document, profile_picture).svg,
                  render::PictureFormat::kPng));
  result.report = Report(*document, surface, profiles);
  WriteOutput(result.report_file, result.report);
  return result;
}

// A folder the demo can write into; `made` receives the outermost folder
// made for it, which a failed demo removes again.
void MakeOutputFolder(const fs::path& out, fs::path& made) {
  std::error_code error;
  for (fs::path p = out;
       !p.empty() && !fs::exists(p, error) && p != p.parent_path();
       p = p.parent_path())
    made = p;
  fs::create_directories(out, error);
  if (error)
    throw RefusedError("cannot make the folder '" + out.string() +
                       "': " + error.message());
  if (!fs::is_directory(out, error))
    throw RefusedError("'" + out.string() + "' is not a folder");
  if (access(out.c_str(), W_OK) != 0) {
    const std::string why = std::strerror(errno);
    if (!made.empty()) fs::remove_all(made, error);
    throw RefusedError("cannot write into the folder '" + out.string() +
                       "': " + why);
  }
}

}  // namespace

DemoResult RunDemo(const DemoOptions& options) {
  const fs::path examples = options.example_dir.value_or(FindExampleDir());
  const fs::path out = options.out_dir;
  fs::path made;
  MakeOutputFolder(out, made);
  try {
    return Demo(options, examples, out);
  } catch (...) {
    // Nothing half-made stays behind; the failure goes on as it was.
    std::error_code error;
    if (!made.empty()) fs::remove_all(made, error);
    throw;
  }
}

namespace {

int Run(const std::vector<std::string>& args, Io& io) {
  Args a(args, {}, {"examples", "size"});
  a.ExpectPositionals(1);
  DemoOptions options;
  if (!a.Positionals().empty()) options.out_dir = a.Positionals().front();
  options.example_dir = a.Option("examples");
  if (auto size = a.Option("size")) {
    options.picture_px = ParseInt(*size, "--size");
    if (options.picture_px < 16 || options.picture_px > 20000)
      throw UsageError("--size: a picture is 16 to 20000 pixels across");
  }
  DemoResult r = RunDemo(options);
  io.out << r.report << "\nwrote " << r.drawing << ", " << r.picture << ", "
         << r.profile_picture << " and " << r.report_file << "\n";
  return 0;
}

Registrar demo_command(
    {"demo", "the bundled example from drawn lines to a designed network",
     "Usage: kestrana demo [OUTDIR] [--size PX] [--examples DIR]\n\n"
     "Takes the bundled example town (examples/town.dxf: sewer lines and\n"
     "water mains drawn as plain lines over the LandXML surface\n"
     "examples/town-surface.xml), starts a metric project in it, turns the\n"
     "sewer lines towards their outlet and converts them into the gravity\n"
     "network \"Sewer\" and the mains into the pressure network \"Water\",\n"
     "takes the ground levels from the surface, sizes the pipes and sets\n"
     "their levels (sewers falling at least 1 in 200 to the outlet), and\n"
     "writes OUTDIR/town-network.dxf, a picture OUTDIR/town-network.png and\n"
     "OUTDIR/report.txt (networks, pipes, nodes, crossings with their\n"
     "clearances, low and high points, profiles). It draws the profile\n"
     "of the main sewer line (ground from the surface, its name and\n"
     "stations in plan) and of a water main under the town, and writes the\n"
     "sewer profile's picture as OUTDIR/sewer-profile.png. The example is\n"
     "only read.\n\n"
     "  OUTDIR          where to write (default ./demo-out)\n"
     "  --size PX       the picture's longer side in pixels (default 3200)\n"
     "  --examples DIR  the folder holding town.dxf and town-surface.xml\n",
     Run});

}  // namespace

}  // namespace kestrana::cli
