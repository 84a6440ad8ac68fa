#include "crossing/crossing_search.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <optional>
#include <stdexcept>
#include <string>
#include <unordered_set>

#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/pipe_record.h"
#include "core/progress.h"
#include "core/project_record.h"
#include "core/references.h"
#include "core/text.h"
#include "crossing/crossing.h"
#include "crossing/pair_key.h"
#include "crossing/plan_index.h"
#include "host/host.h"

namespace kestrana::crossing {

using core::General;
using core::PipeField;

namespace {

// The host meets two pieces within a billionth of a unit, and collinear
// pieces a little further along long pieces; the margin keeps every such
// pair among the candidates, and a larger margin only adds candidates.
host::Box2 SearchBox(const host::Entity& entity) {
  host::BoundingBox extents;
  try {
    extents = entity.GetBoundingBox();
  } catch (const host::HostError& error) {
    // An entity without extents meets nothing.
    if (error.code() == host::ErrorCode::kNotSupported) return {};
    throw;
  }
  const double size =
      std::max({std::fabs(extents.min.x), std::fabs(extents.min.y),
                std::fabs(extents.max.x), std::fabs(extents.max.y)}) +
      (extents.max.x - extents.min.x) + (extents.max.y - extents.min.y);
  const double margin = 1e-6 + 1e-9 * size;
  host::Box2 box;
  box.Add(extents.min.x - margin, extents.min.y - margin);
  box.Add(extents.max.x + margin, extents.max.y + margin);
  return box;
}

// "pipe P-3 of network Water", or the ID when the label is damaged.
std::string DescribePipe(const host::Object& pipe, const core::Record& record) {
  std::vector<std::string> pieces =
      core::Split(record.Text(PipeField::kCombinedLabel));
  if (pieces.size() < 3) return "pipe " + core::IdText(pipe.ObjectID());
  return "pipe " + pieces[2] + " of network " + pieces[1];
}

class Search {
 public:
  Search(host::Document& document,
         const std::vector<host::SelectionSet*>& network_sets)
      : units_(General::GetModelUnits(document)), sets_(network_sets) {
    for (host::SelectionSet* set : sets_)
      networks_.push_back({set->Entities(), std::nullopt});
  }

  // One index per network, so that a pipe never meets the candidates of its
  // own network.
  void UseIndex() {
    for (Network& network : networks_) {
      std::vector<host::Box2> boxes;
      boxes.reserve(network.pipes.size());
      for (host::Entity* pipe : network.pipes)
        boxes.push_back(SearchBox(*pipe));
      network.index.emplace(boxes);
    }
    indexed_ = true;
  }

  void Run(host::SelectionSet& pipes) {
    std::vector<uint32_t> candidates;
    const std::vector<host::Entity*> searched = pipes.Entities();
    size_t done = 0;
    for (host::Entity* pipe : searched) {
      core::ReportProgress(core::kCrossingsStage, ++done, searched.size());
      core::Record record = ReadPipeRecord(*pipe);
      const std::string network = General::EntityNetworkFromCombined(
          record.Text(PipeField::kCombinedLabel));
      const host::Box2 box = indexed_ ? SearchBox(*pipe) : host::Box2{};
      for (size_t n = 0; n < sets_.size(); ++n) {
        if (sets_[n]->Name() == network) continue;
        Network& other = networks_[n];
        candidates.clear();
        if (other.index) {
          other.index->Query(box, candidates);
          // The plain order: the network's pipes in set order.
          std::sort(candidates.begin(), candidates.end());
        } else {
          candidates.resize(other.pipes.size());
          std::iota(candidates.begin(), candidates.end(), 0u);
        }
        for (uint32_t candidate : candidates)
          TryPair(*pipe, record, *other.pipes[candidate]);
      }
    }
  }

  std::vector<types::CrossPoint> Result() {
    if (result_.empty()) result_.emplace_back();
    return std::move(result_);
  }

 private:
  struct Network {
    std::vector<host::Entity*> pipes;
    std::optional<PlanIndex> index;
  };

  void TryPair(host::Entity& pipe, const core::Record& record,
               host::Entity& other) {
    std::vector<double> points =
        pipe.IntersectWith(other, host::ExtendOption::kNone);
    if (points.size() < 3) return;
    // The first point only: pipes that meet twice get one crossing.
    const host::Point3 point{points[0], points[1], points[2]};
    if (!Crossing::CheckIntersectionPoint(point, pipe, other)) return;
    core::Record other_record = ReadPipeRecord(other);
    const double ratio1 =
        StationRatio(host::As<host::LwPolyline>(pipe), record, point);
    const double ratio2 =
        StationRatio(host::As<host::LwPolyline>(other), other_record, point);
    types::CrossPoint crossing = Crossing::GetSingleCrossPointData(
        record, other_record, ratio1, ratio2, units_);
    if (!pairs_
             .insert(PairKey(crossing.Pipe1Net, crossing.Pipe1Label,
                             crossing.Pipe2Net, crossing.Pipe2Label))
             .second)
      return;
    crossing.Easting = point.x;
    crossing.Northing = point.y;
    crossing.Pipe1OID = core::IdText(pipe.ObjectID());
    crossing.Pipe2OID = core::IdText(other.ObjectID());
    result_.push_back(std::move(crossing));
  }

  const std::string units_;
  const std::vector<host::SelectionSet*>& sets_;
  std::vector<Network> networks_;
  bool indexed_ = false;
  std::unordered_set<std::string> pairs_;
  std::vector<types::CrossPoint> result_;
};

}  // namespace

std::vector<types::CrossPoint> SearchCrossPoints(
    host::Document& document,
    const std::vector<host::SelectionSet*>& network_sets,
    host::SelectionSet& pipes, CandidateSearch search) {
  Search run(document, network_sets);
  if (search == CandidateSearch::kPlanIndex) run.UseIndex();
  run.Run(pipes);
  return run.Result();
}

core::Record ReadPipeRecord(const host::Object& pipe) {
  return core::ReadRecordWithFields(pipe, core::kPipeRecordLength, "pipe");
}

double RiseInLevelUnits(const core::Record& pipe,
                        std::string_view model_units) {
  const double rise = pipe.Number(PipeField::kRise);
  if (model_units == core::kMetric) return rise / 1000;
  if (pipe.Text(PipeField::kSectionShape) == core::kSectionShapeCircular)
    return rise / 12;
  return rise;
}

double StationRatio(const host::LwPolyline& pipe, const core::Record& record,
                    const host::Point3& point) {
  const double length = pipe.Length();
  if (length == 0)
    throw std::domain_error(
        DescribePipe(pipe, record) +
        " has zero length, so its invert where it meets another pipe "
        "cannot be interpolated");
  return General::GetStation(pipe, point.x, point.y) / length;
}

double InvertAt(const core::Record& pipe, double ratio) {
  const double start = pipe.Number(PipeField::kStartInvert);
  const double end = pipe.Number(PipeField::kEndInvert);
  return start + (end - start) * ratio;
}

double Clearance(double invert1, double rise1, double invert2, double rise2) {
  const double clearance = invert1 > invert2 ? (invert1 - invert2) - rise2
                                             : (invert2 - invert1) - rise1;
  return std::max(clearance, 0.0);
}

}  // namespace kestrana::crossing
