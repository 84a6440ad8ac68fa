// Choosing the pipes of a profile: the on-screen selection, the test that
// they form one run, their order from a start point, and where a run's
// lowest or highest invert lies.
#include <cmath>

#include "core/filters.h"
#include "core/general.h"
#include "core/geometry.h"
#include "core/lists.h"
#include "core/messages.h"
#include "core/names.h"
#include "core/pipe_record.h"
#include "core/references.h"
#include "core/text.h"
#include "host/errors.h"
#include "host/host.h"
#include "profile/pipe_chain.h"
#include "profile/profile.h"

namespace kestrana::profile {

namespace {

constexpr char kSelectPrompt[] = "Select profile pipes:";
constexpr char kStartPrompt[] = "Pick profile start point:";
constexpr char kNotOneLine[] =
    "The selected pipes don't represent a single continuous line!";

// The first or last vertex of a pipe.
host::Point3 EndVertex(const host::LwPolyline& pipe, bool first) {
  const std::vector<double> xy = pipe.Coordinates();
  const size_t n = xy.size();
  if (n < 2)
    throw host::HostError(
        host::ErrorCode::kBadArgument,
        "pipe " + std::to_string(pipe.ObjectID()) + " has no vertices");
  return first ? host::Point3{xy[0], xy[1], 0}
               : host::Point3{xy[n - 2], xy[n - 1], 0};
}

double Distance(const host::Point3& a, const host::Point3& b) {
  return core::PlanDistance(a.x, a.y, b.x, b.y);
}

}  // namespace

std::optional<SortedPipes> Profile::SelectPipesForProfile(
    host::Document& document, std::string_view network_name) {
  host::SelectionSet& set =
      core::General::InitializeSelectionSet(document, "SetPipesBySelection");
  document.SendCommand(core::kEscape);
  document.GetUtility().Prompt(kSelectPrompt);
  set.SelectOnScreen(core::PipesOfNetworkFilter(network_name));
  if (set.Count() == 0) return std::nullopt;
  if (set.Count() > 1 && !CheckProfilePipesConnectivity(set)) {
    core::ShowMessage(document, kNotOneLine, host::msgbox::kCritical);
    set.Clear();
    return std::nullopt;
  }
  const host::Point3 start =
      document.GetUtility().GetPoint(std::nullopt, kStartPrompt);
  return GetSortedPipesArray(document, set, start);
}

bool Profile::CheckProfilePipesConnectivity(host::SelectionSet& set_pipes) {
  return PipeChainIndex(set_pipes.Entities()).IsOneRun();
}

SortedPipes Profile::GetSortedPipesArray(host::Document& document,
                                         host::SelectionSet& set_pipes,
                                         const host::Point3& user_point) {
  const PipeChainIndex chain(set_pipes.Entities());
  const std::vector<ChainPipe>& pipes = chain.Pipes();
  if (!chain.IsOneRun()) throw RefusedError(kNotOneLine);

  // Each end of the run: its pipe, whether the free node is the pipe's start
  // node, and where that node lies.
  struct End {
    int pipe;
    bool at_start;
    host::Point3 place;
  };
  std::vector<End> ends;
  if (pipes.size() == 1) {
    ends = {{0, true, EndVertex(*pipes[0].entity, true)},
            {0, false, EndVertex(*pipes[0].entity, false)}};
  } else {
    for (int i : chain.EndPipes()) {
      const bool at_start = pipes[i].at_start == 0;
      ends.push_back({i, at_start, EndVertex(*pipes[i].entity, at_start)});
    }
  }
  const End& start =
      Distance(user_point, ends[0].place) < Distance(user_point, ends[1].place)
          ? ends[0]
          : ends[1];

  SortedPipes sorted;
  for (const PipeChainIndex::Step& step :
       chain.Walk(start.pipe, start.at_start)) {
    const ChainPipe& pipe = pipes[step.pipe];
    sorted.labels += core::ReferenceEntry(pipe.label);
    sorted.oids += core::ReferenceEntry(core::IdText(pipe.entity->ObjectID()));
    sorted.directions += ";" + std::to_string(step.direction);
  }
  return sorted;
}

host::Point3 Profile::GetProfileStartFromDirection(
    host::Document& document, std::string_view pipes_oid_string,
    int direction_index) {
  struct Place {
    double invert;
    host::Point3 point;
  };
  std::optional<Place> lowest, highest;
  auto track = [&](double invert, const host::Point3& point) {
    if (!lowest || invert < lowest->invert) lowest = Place{invert, point};
    if (!highest || invert > highest->invert) highest = Place{invert, point};
  };
  for (const std::string& id : core::Split(pipes_oid_string)) {
    if (id.empty()) continue;
    host::Entity& entity = core::EntityFromIdText(document, id);
    const core::Record record =
        core::ReadRecordWithFields(entity, core::kPipeRecordLength, "pipe");
    const auto& pipe = host::As<host::LwPolyline>(entity);
    track(record.Number(core::PipeField::kStartInvert), EndVertex(pipe, true));
    track(record.Number(core::PipeField::kEndInvert), EndVertex(pipe, false));
  }
  if (!lowest) throw InvalidInputError("a profile needs at least one pipe");
  return direction_index == 0 ? lowest->point : highest->point;
}

}  // namespace kestrana::profile
