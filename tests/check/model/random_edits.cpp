// Long random sequences of what users do to networks, through the command
// functions, with the whole drawing audited after every step. A step the
// system refuses (a rule, a bad choice) is fine; a step that fails
// otherwise, or leaves a finding, ends the run with the seed, the step and
// what went wrong.
//
//   check_model [--steps N] [--seed S] [--verbose]
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "check/audit.h"
#include "commands/convert.h"
#include "commands/copy_erase.h"
#include "commands/crossings.h"
#include "commands/element_data.h"
#include "commands/networks.h"
#include "commands/pipes.h"
#include "commands/profile_draw.h"
#include "commands/project.h"
#include "commands/styles.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/project_record.h"
#include "core/text.h"
#include "dxf/reader.h"
#include "dxf/writer.h"
#include "host/host.h"
#include "library/library.h"
#include "memhost/document.h"

namespace kestrana::test {
namespace {

struct Settings {
  int steps = 300;
  uint32_t seed = 1;
  bool verbose = false;
};

class Model {
 public:
  explicit Model(uint32_t seed) : rng_(seed), seed_(seed) {
    doc_ = std::make_unique<memhost::MemDocument>();
    units_ = Chance(0.5) ? core::kMetric : core::kUS;
    commands::NewProject(*doc_, {units_});
    // Two or three networks over one area, so that they cross.
    AddNetwork("Sewer", core::kGravity, 0, 0);
    AddNetwork("Water", core::kPressure, 13, 7);
    if (Chance(0.5)) AddNetwork("Storm", core::kGravity, 29, 21);
  }

  memhost::MemDocument& document() { return *doc_; }

  // One random user operation; answers what it did.
  std::string Step(int step) {
    step_ = step;
    using Op = std::pair<int, std::function<std::string()>>;
    const std::vector<Op> ops = {
        {8, [&] { return Convert(); }},
        {12, [&] { return NodeSet(); }},
        {12, [&] { return PipeSet(); }},
        {8, [&] { return Split(); }},
        {6, [&] { return Merge(); }},
        {6, [&] { return Reverse(); }},
        {5, [&] { return CopyElements(); }},
        {8, [&] { return EraseElement(); }},
        {4, [&] { return ShowHide(); }},
        {1, [&] { return DeleteNetwork(); }},
        {3, [&] { return StyleApply(); }},
        {4, [&] { return CrossingSettings(); }},
        {4, [&] { return SaveAndReload(); }},
        {4, [&] { return ProfileDraw(); }},
        {2, [&] { return ProfileUpdate(); }},
        {1, [&] { return ProfileDelete(); }},
    };
    // Past a few hundred pipes the drawing stops growing: what would add
    // elements erases one instead, so long runs stay quick to audit.
    if (PipeCount() > kMostPipes) {
      std::string what = EraseElement();
      return what + " (drawing at its size limit)";
    }
    int total = 0;
    for (const Op& op : ops) total += op.first;
    int pick = Int(0, total - 1);
    for (const Op& op : ops) {
      if (pick < op.first) return op.second();
      pick -= op.first;
    }
    return "";
  }

 private:
  bool Chance(double p) { return std::uniform_real_distribution<>(0, 1)(rng_) < p; }
  int Int(int lo, int hi) { return std::uniform_int_distribution<>(lo, hi)(rng_); }
  double Real(double lo, double hi) {
    return std::uniform_real_distribution<>(lo, hi)(rng_);
  }
  // Levels to two decimals, as users type them.
  double Level(double lo, double hi) {
    return core::RoundHalfEven(Real(lo, hi), 2);
  }
  template <class T>
  const T& Any(const std::vector<T>& items) {
    return items[Int(0, static_cast<int>(items.size()) - 1)];
  }

  static constexpr int kMostPipes = 250;

  // Read straight from the drawing: listing every network through the
  // commands' selections would cost more than the step itself.
  int PipeCount() {
    int pipes = 0;
    for (host::Entity* e : doc_->ModelSpace().Entities())
      if (e->Kind() == host::EntityKind::kLwPolyline &&
          e->GetXData(core::kAppName))
        ++pipes;
    return pipes;
  }

 public:
  std::string Size() {
    int pipes = 0, nodes = 0;
    for (const commands::NetworkInfo& n : commands::ListNetworks(*doc_))
      pipes += n.pipes, nodes += n.nodes;
    return std::to_string(pipes) + " pipes, " + std::to_string(nodes) +
           " nodes";
  }

 private:
  std::vector<std::string> Networks() {
    return core::ListEntries(
        core::ReadProjectRecord(*doc_).Text(core::ProjectField::kNetworkNames));
  }
  commands::NetworkElements Elements(const std::string& network) {
    return commands::ListElements(*doc_, {network});
  }

  // A street grid of drawn lines with a few diagonals, converted.
  void AddNetwork(const std::string& name, const std::string& type, double dx,
                  double dy) {
    commands::AddNetwork(*doc_, {name, type});
    std::string layer = "Drawn " + name + " " + std::to_string(layer_count_++);
    const double s = 40;
    int n = Int(2, 4);
    for (int i = 0; i <= n; ++i)
      for (int j = 0; j < n; ++j) {
        Draw(layer, {dx + i * s, dy + j * s, dx + i * s, dy + (j + 1) * s});
        Draw(layer, {dx + j * s, dy + i * s, dx + (j + 1) * s, dy + i * s});
      }
    Draw(layer, {dx, dy, dx + s / 2, dy + s / 3, dx + s, dy + s});
    commands::Convert(*doc_, {.network = name, .selection = {.layer = layer}});
  }

  void Draw(const std::string& layer, const std::vector<double>& xy) {
    host::LwPolyline& line = doc_->ModelSpace().AddLightWeightPolyline(xy);
    if (!doc_->GetLayers().Find(layer)) doc_->GetLayers().Add(layer);
    line.SetLayer(layer);
  }

  std::string Convert() {
    std::vector<std::string> nets = Networks();
    std::string network;
    std::optional<std::string> type;
    if (nets.size() < 2 || Chance(0.05)) {
      network = "Net" + std::to_string(step_);
      type = Chance(0.5) ? core::kGravity : core::kPressure;
    } else {
      network = Any(nets);
    }
    std::string layer = "Drawn " + std::to_string(layer_count_++);
    int lines = Int(1, 3);
    std::ostringstream what;
    what << "convert " << lines << " lines into " << network;
    // From an existing node (so the new line connects) or a grid point.
    commands::NetworkElements elements =
        type ? commands::NetworkElements{} : Elements(network);
    for (int k = 0; k < lines; ++k) {
      double x0 = Int(-2, 8) * 20.0, y0 = Int(-2, 8) * 20.0;
      if (!elements.nodes.empty() && Chance(0.6)) {
        const std::string& label = Any(elements.nodes).label;
        host::Point3 p = NodePoint(network, label);
        x0 = p.x, y0 = p.y;
      }
      std::vector<double> xy = {x0, y0};
      int vertices = Int(1, 3);
      for (int v = 0; v < vertices; ++v)
        xy.insert(xy.end(), {xy[xy.size() - 2] + Int(-3, 3) * 10.0 + 5,
                             xy[xy.size() - 1] + Int(-3, 3) * 10.0 + 3});
      Draw(layer, xy);
      what << " (";
      for (double c : xy) what << core::GeneralText(c) << " ";
      what << ")";
    }
    commands::Convert(*doc_,
                      {.network = network, .type = type, .selection = {.layer = layer}});
    return what.str();
  }

  host::Point3 NodePoint(const std::string& network, const std::string& label) {
    for (host::Entity* e : doc_->ModelSpace().Entities()) {
      auto* ref = dynamic_cast<host::BlockReference*>(e);
      if (!ref || ref->Name() != core::kNodeBlock) continue;
      auto x = e->GetXData(core::kAppName);
      if (x && x->size() > 1 &&
          core::TextOf((*x)[1].value) == "Node;" + network + ";" + label)
        return ref->InsertionPoint();
    }
    return {0, 0, 0};
  }

  // A network that has pipes, and one of them; false when none has.
  bool PickPipe(std::string& network, commands::PipeListing& pipe) {
    std::vector<std::string> nets = Networks();
    for (int tries = 0; tries < 5 && !nets.empty(); ++tries) {
      network = Any(nets);
      commands::NetworkElements e = Elements(network);
      if (e.pipes.empty()) continue;
      pipe = Any(e.pipes);
      return true;
    }
    return false;
  }
  bool PickNode(std::string& network, commands::NodeListing& node) {
    std::vector<std::string> nets = Networks();
    for (int tries = 0; tries < 5 && !nets.empty(); ++tries) {
      network = Any(nets);
      commands::NetworkElements e = Elements(network);
      if (e.nodes.empty()) continue;
      node = Any(e.nodes);
      return true;
    }
    return false;
  }

  std::string NewLabel(const std::string& prefix) {
    return prefix + "-" + std::to_string(1000 + step_);
  }

  std::string NodeSet() {
    std::string network;
    commands::NodeListing node;
    if (!PickNode(network, node)) return "node set: no node";
    commands::NodeSetOptions o{.network = network, .label = node.label};
    double base = units_ == core::kMetric ? 100 : 330;
    if (Chance(0.6)) o.sump = Level(base - 4, base);
    if (Chance(0.5)) o.ground = Level(base, base + 3);
    if (Chance(0.3))
      o.matching = Any(std::vector<std::string>{"No Matching", "Match Centerlines",
                                                "Match Soffits", "Match Inverts"});
    if (Chance(0.1)) o.new_label = NewLabel("N");
    commands::SetNode(*doc_, o);
    return "node set " + network + " " + node.label +
           (o.sump ? " sump " + core::GeneralText(*o.sump) : "") +
           (o.ground ? " ground " + core::GeneralText(*o.ground) : "") +
           (o.matching ? " " + *o.matching : "") +
           (o.new_label ? " label " + *o.new_label : "");
  }

  std::string PipeSet() {
    std::string network;
    commands::PipeListing pipe;
    if (!PickPipe(network, pipe)) return "pipe set: no pipe";
    commands::PipeSetOptions o{.network = network, .label = pipe.label};
    double base = units_ == core::kMetric ? 100 : 330;
    bool metric = units_ == core::kMetric;
    if (Chance(0.4))
      o.size = Any(metric ? std::vector<std::string>{"150", "200", "300", "450",
                                                     "1200x800"}
                          : std::vector<std::string>{"6", "8", "12", "18", "4x3"});
    if (Chance(0.3))
      o.material = Any(std::vector<std::string>{"PVC", "PE", "Concrete", "Steel"});
    if (Chance(0.1)) o.cells = Int(1, 2);
    if (Chance(0.5)) o.start_invert = Level(base - 5, base - 1);
    if (Chance(0.5)) o.end_invert = Level(base - 5, base - 1);
    if (Chance(0.1)) o.new_label = NewLabel("P");
    commands::SetPipe(*doc_, o);
    return "pipe set " + network + " " + pipe.label +
           (o.size ? " size " + *o.size : "") +
           (o.material ? " material " + *o.material : "") +
           (o.cells ? " cells " + std::to_string(*o.cells) : "") +
           (o.start_invert ? " start " + core::GeneralText(*o.start_invert) : "") +
           (o.end_invert ? " end " + core::GeneralText(*o.end_invert) : "") +
           (o.new_label ? " label " + *o.new_label : "");
  }

  host::LwPolyline* PipeEntity(const std::string& network,
                               const std::string& label) {
    for (host::Entity* e : doc_->ModelSpace().Entities()) {
      auto* line = dynamic_cast<host::LwPolyline*>(e);
      if (!line) continue;
      auto x = e->GetXData(core::kAppName);
      if (x && x->size() > 1 &&
          core::TextOf((*x)[1].value) == "Pipe;" + network + ";" + label)
        return line;
    }
    return nullptr;
  }

  std::string Split() {
    std::string network;
    commands::PipeListing pipe;
    if (!PickPipe(network, pipe)) return "split: no pipe";
    host::LwPolyline* line = PipeEntity(network, pipe.label);
    std::vector<double> xy = line->Coordinates();
    int segment = Int(0, static_cast<int>(xy.size()) / 2 - 2);
    double t = Real(0.1, 0.9);
    double x = xy[2 * segment] + t * (xy[2 * segment + 2] - xy[2 * segment]);
    double y = xy[2 * segment + 1] + t * (xy[2 * segment + 3] - xy[2 * segment + 1]);
    x = core::RoundHalfEven(x, 3), y = core::RoundHalfEven(y, 3);
    commands::SplitPipe(*doc_, {network, pipe.label, x, y});
    return "split " + network + " " + pipe.label + " at " + core::GeneralText(x) +
           ", " + core::GeneralText(y);
  }

  std::string Merge() {
    std::string network;
    commands::PipeListing pipe;
    if (!PickPipe(network, pipe)) return "merge: no pipe";
    // The pipe and the pipes it meets end to end through its end node.
    std::vector<std::string> labels = {pipe.label};
    for (const commands::PipeListing& p : Elements(network).pipes)
      if (p.label != pipe.label && (p.from == pipe.to || p.to == pipe.from) &&
          labels.size() < 3)
        labels.push_back(p.label);
    commands::MergePipes(*doc_, {network, labels});
    return "merge " + network + Join(labels);
  }

  static std::string Join(const std::vector<std::string>& labels) {
    std::string text;
    for (const std::string& l : labels) text += " " + l;
    return text;
  }

  std::string Reverse() {
    std::string network;
    commands::PipeListing pipe;
    if (!PickPipe(network, pipe)) return "reverse: no pipe";
    std::vector<std::string> labels = {pipe.label};
    commands::NetworkElements e = Elements(network);
    if (Chance(0.4)) labels.push_back(Any(e.pipes).label);
    if (labels.size() == 2 && labels[0] == labels[1]) labels.pop_back();
    commands::ReversePipes(*doc_, {network, labels});
    return "reverse " + network + Join(labels);
  }

  std::string CopyElements() {
    std::string network;
    commands::PipeListing pipe;
    if (!PickPipe(network, pipe)) return "copy: no pipe";
    commands::CopyOptions o{.network = network, .pipes = {}, .nodes = {}};
    o.pipes.push_back(pipe.label);
    if (Chance(0.5)) {
      o.nodes.push_back(pipe.from);
      o.nodes.push_back(pipe.to);
    }
    o.dx = Int(-4, 4) * 15.0 + 7;
    o.dy = Int(-4, 4) * 15.0 + 3;
    commands::Copy(*doc_, o);
    return "copy " + network + Join(o.pipes) + " nodes" + Join(o.nodes) + " by " +
           core::GeneralText(o.dx) + ", " + core::GeneralText(o.dy);
  }

  std::string EraseElement() {
    std::string network;
    if (Chance(0.6)) {
      commands::PipeListing pipe;
      if (!PickPipe(network, pipe)) return "erase: no pipe";
      commands::Erase(*doc_, {.network = network, .pipes = {pipe.label},
                              .nodes = {}, .handles = {}});
      return "erase pipe " + network + " " + pipe.label;
    }
    commands::NodeListing node;
    if (!PickNode(network, node)) return "erase: no node";
    commands::Erase(*doc_, {.network = network, .pipes = {},
                            .nodes = {node.label}, .handles = {}});
    return "erase node " + network + " " + node.label;
  }

  std::string ShowHide() {
    std::vector<std::string> nets = Networks();
    if (nets.empty()) return "show/hide: no network";
    std::string network = Any(nets);
    bool shown = Chance(0.6);
    commands::SetNetworkShown(*doc_, {network, shown});
    return std::string(shown ? "show " : "hide ") + network;
  }

  std::string DeleteNetwork() {
    std::vector<std::string> nets = Networks();
    if (nets.size() < 3) return "delete network: kept the last two";
    std::string network = Any(nets);
    commands::DeleteNetwork(*doc_, {network});
    return "delete network " + network;
  }

  std::string StyleApply() {
    commands::StyleApplyOptions o;
    std::vector<std::string> nets = Networks();
    if (!nets.empty() && Chance(0.5)) o.network = Any(nets);
    commands::ApplyStyle(*doc_, o);
    return "style apply " + o.network.value_or("(all)");
  }

  std::string CrossingSettings() {
    std::vector<std::string> nets = Networks();
    commands::CrossingsOptions o;
    if (Chance(0.5))
      o.threshold = Any(std::vector<std::string>{"-1", "0", "0.5", "1.5"});
    if (nets.size() >= 2) {
      std::string a = Any(nets), b = Any(nets);
      if (a != b) (Chance(0.5) ? o.enable : o.disable).push_back(a + ":" + b);
    }
    if (Chance(0.3)) o.reset_locations = true;
    if (!o.Changes()) o.apply = true;
    commands::Crossings(*doc_, o);
    return "crossings" + (o.threshold ? " threshold " + *o.threshold : "") +
           Join(o.enable) + Join(o.disable) +
           (o.reset_locations ? " reset" : "");
  }

  // A profile of a pipe and the pipes it meets end to end, drawn well
  // away from the plan.
  std::string ProfileDraw() {
    std::string network;
    commands::PipeListing pipe;
    if (!PickPipe(network, pipe)) return "profile draw: no pipe";
    std::vector<std::string> labels = {pipe.label};
    if (Chance(0.6))
      for (const commands::PipeListing& p : Elements(network).pipes)
        if (p.label != pipe.label && (p.from == pipe.to || p.to == pipe.from) &&
            labels.size() < 3)
          labels.push_back(p.label);
    commands::ProfileDrawOptions o;
    o.name = "Pr" + std::to_string(step_);
    o.run.network = network;
    o.run.pipes = labels;
    o.at = {2000.0 + 300.0 * (step_ % 7), -1000.0 - 200.0 * (step_ % 11), 0};
    o.name_on_plan = Chance(0.5);
    o.stations_on_plan = Chance(0.3);
    commands::ProfileDraw(*doc_, o);
    return "profile draw " + o.name + " " + network + Join(labels);
  }

  std::string ProfileUpdate() {
    commands::ProfileUpdateOptions o;
    o.all_flagged = true;
    commands::ProfileUpdate(*doc_, std::move(o));
    return "profile update (all flagged)";
  }

  std::string ProfileDelete() {
    std::vector<commands::ProfileSummary> profiles =
        commands::ProfileList(*doc_, {}).profiles;
    if (profiles.empty()) return "profile delete: no profile";
    const commands::ProfileSummary& p = Any(profiles);
    commands::ProfileDelete(*doc_, {p.network, p.name});
    return "profile delete " + p.network + " " + p.name;
  }

  // The next session: the file written and read with new object IDs, which
  // every command renews from the labels on opening.
  std::string SaveAndReload() {
    std::string text = dxf::WriteDxf(*doc_);
    auto next = std::make_unique<memhost::MemDocument>(
        nullptr, memhost::Options{memhost::IdPolicy::kFresh,
                                  seed_ * 7919u + static_cast<uint32_t>(step_)});
    dxf::ReadDxf(*next, text);
    doc_ = std::move(next);
    bool renewed = commands::OpenProject(*doc_);
    return std::string("save and reload") + (renewed ? ", IDs renewed" : "");
  }

  std::mt19937 rng_;
  uint32_t seed_;
  std::unique_ptr<memhost::MemDocument> doc_;
  std::string units_;
  int layer_count_ = 0;
  int step_ = 0;
};

bool IsRefusal(const std::exception& e) {
  // What a user is told no: a rule of the system, a value the command does
  // not take, a name that is not there. A host error is a fault.
  return dynamic_cast<const RefusedError*>(&e) ||
         dynamic_cast<const InvalidInputError*>(&e) ||
         (dynamic_cast<const NotFoundError*>(&e) &&
          !dynamic_cast<const host::HostError*>(&e));
}

int Run(const Settings& settings) {
  std::unique_ptr<Model> model;
  try {
    model = std::make_unique<Model>(settings.seed);
  } catch (const std::exception& e) {
    std::cerr << "seed " << settings.seed << ": the start drawing failed: "
              << e.what() << "\n";
    return 1;
  }
  int refused = 0;
  for (int step = 1; step <= settings.steps; ++step) {
    std::string what = "?";
    try {
      what = model->Step(step);
    } catch (const std::exception& e) {
      if (!IsRefusal(e)) {
        std::cerr << "seed " << settings.seed << " step " << step
                  << ": the step failed: " << e.what() << "\n";
        return 1;
      }
      ++refused;
      what += " (refused: " + std::string(e.what()) + ")";
    }
    if (settings.verbose) std::cout << step << ": " << what << "\n";
    std::vector<check::Finding> findings;
    try {
      findings = check::Audit(model->document());
    } catch (const std::exception& e) {
      std::cerr << "seed " << settings.seed << " step " << step
                << ": the audit failed: " << e.what() << "\n";
      return 1;
    }
    if (step % 500 == 0)
      std::cout << "seed " << settings.seed << " step " << step << ": "
                << model->Size() << std::endl;
    if (check::CountErrors(findings) == 0) continue;
    std::cerr << "seed " << settings.seed << " step " << step << " (" << what
              << ") left findings:\n";
    int shown = 0;
    for (const check::Finding& f : findings)
      if (f.severity == check::Severity::kError && shown++ < 8)
        std::cerr << "  " << f.code << ": " << f.sentence << "\n";
    return 1;
  }
  std::cout << "seed " << settings.seed << ": " << settings.steps
            << " steps audited clean (" << refused << " refused)\n";
  return 0;
}

}  // namespace
}  // namespace kestrana::test

int main(int argc, char** argv) {
  kestrana::test::Settings settings;
  for (int i = 1; i < argc; ++i) {
    std::string arg = argv[i];
    if (arg == "--steps" && i + 1 < argc) {
      settings.steps = std::atoi(argv[++i]);
    } else if (arg == "--seed" && i + 1 < argc) {
      settings.seed = static_cast<uint32_t>(std::strtoul(argv[++i], nullptr, 10));
    } else if (arg == "--verbose") {
      settings.verbose = true;
    } else {
      std::cerr << "usage: check_model [--steps N] [--seed S] [--verbose]\n";
      return 2;
    }
  }
  return kestrana::test::Run(settings);
}
