#include "commands/profile_draw.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "commands/profile_support.h"
#include "core/general.h"
#include "core/guards.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/record.h"
#include "core/references.h"
#include "core/text.h"
#include "events/events.h"
#include "host/errors.h"
#include "host/host.h"
#include "memhost/document.h"
#include "memhost/session.h"
#include "profile/profile.h"
#include "profile/profile_record.h"
#include "profile/profile_sheet.h"
#include "profile/profile_style_record.h"

namespace kestrana::commands {

namespace {

using core::General;
using profile::Profile;
using profile::ProfileField;

constexpr int kAllBannedCharacters = 1;
// A start point must lie within this share of the run's length of one of
// its free ends.
constexpr double kStartTolerance = 0.1;
constexpr char kPointPattern[] = "0.00";

std::string PointText(double x, double y) {
  return "(" + core::FormatNumber(x, kPointPattern) + ", " +
         core::FormatNumber(y, kPointPattern) + ")";
}

// ";<ID>" per pipe, as the data series list them.
std::string IdSeries(const profile::SortedPipes& pipes) {
  std::string series;
  for (const std::string& id : core::ReferenceValues(pipes.oids))
    series += ";" + id;
  return series;
}

void CheckStart(host::Document& document, const ProfileRun& run,
                const std::vector<std::string>& labels) {
  const std::vector<double> xy = Profile::GetTotalPipeCoordinates(
      document, IdSeries(run.sorted), run.sorted.directions);
  if (xy.size() < 4) return;
  double length = 0;
  for (size_t i = 0; i + 3 < xy.size(); i += 2)
    length += std::hypot(xy[i + 2] - xy[i], xy[i + 3] - xy[i + 1]);
  const double first = std::hypot(run.start.x - xy[0], run.start.y - xy[1]);
  const double last = std::hypot(run.start.x - xy[xy.size() - 2],
                                 run.start.y - xy.back());
  if (std::min(first, last) <= kStartTolerance * length) return;
  throw InvalidInputError(
      "the start point " + PointText(run.start.x, run.start.y) +
      " is far from both free ends of the run: " + PointText(xy[0], xy[1]) +
      " at " + labels.front() + " and " +
      PointText(xy[xy.size() - 2], xy.back()) + " at " + labels.back() +
      "; give a point at one of them");
}

// The lowest invert or sump the profile shows, with where it is.
void CheckDatum(memhost::MemDocument& document,
                const ProfileDrawOptions& options, const ProfileRun& run) {
  host::Application& application = document.GetApplication();
  host::CivilDocument& civil =
      application.GetInterfaceObject(General::GetAeccAppString(application))
          .ActiveDocument();
  const profile::PartsData parts = Profile::GetProfilePartsDataArrays(
      document, civil, options.run.network, run.style.record, run.sorted,
      !run.surface.empty(), run.surface);
  double lowest = std::numeric_limits<double>::infinity();
  std::string where;
  for (const profile::PartData& part : parts) {
    const std::vector<std::string> labels =
        SeriesValues(part[profile::Series::kNodeLabels]);
    const std::vector<std::string> inverts =
        SeriesValues(part[profile::Series::kInverts]);
    for (size_t i = 0; i < inverts.size(); ++i) {
      const double level = core::NumericValue(inverts[i]);
      const size_t node = (i + 1) / 2;
      if (level < lowest && node < labels.size()) {
        lowest = level;
        where = "an invert at " + labels[node];
      }
    }
    if (run.network_type != core::kGravity) continue;
    const std::vector<std::string> sumps =
        SeriesValues(part[profile::Series::kSumps]);
    for (size_t j = 0; j < sumps.size() && j < labels.size(); ++j) {
      const double level = core::NumericValue(sumps[j]);
      if (level < lowest) {
        lowest = level;
        where = "the sump of " + labels[j];
      }
    }
  }
  if (*options.datum <= lowest) return;
  throw InvalidInputError(
      "the datum " + core::GeneralText(*options.datum) +
      " lies above the lowest level the profile shows (" +
      core::FormatNumber(lowest, "0.00#") + ", " + where +
      "), which would be drawn under the profile's frame; give a datum at or "
      "below it, or leave the datum automatic");
}

ProfileSummary Summarize(host::BlockReference& block) {
  const core::Record record = core::ReadRecordWithFields(
      block, profile::kProfileRecordLength, "profile");
  const profile::ProfileInputs inputs = Profile::ReadProfileInputs(block);
  ProfileSummary summary;
  summary.name = inputs.profile_name;
  summary.network = inputs.network_name;
  summary.style = inputs.style_name;
  summary.block = block.Name();
  summary.block_id = core::IdText(block.ObjectID());
  summary.pipes = core::ReferenceValues(inputs.pipes.labels);
  summary.at = inputs.insertion_point;
  summary.needs_update =
      record.Int16(ProfileField::kUpdateFlag) == profile::kNeedsUpdate;
  summary.plan_annotation = !record.Text(ProfileField::kPlanAnnoOIDRef).empty();
  return summary;
}

host::BlockReference& AsBlock(host::Document& document, const std::string& id) {
  return host::As<host::BlockReference>(core::EntityFromIdText(document, id));
}

// The profile of that network and name: the exact name first, else the
// name in any letter case.
host::BlockReference& FindProfile(host::Document& document,
                                  const std::string& network,
                                  const std::string& name) {
  RequireProfileNetwork(document, network);
  std::vector<host::Entity*> blocks =
      Profile::GetExistingProfileSet(document, network).Entities();
  std::vector<std::string> names;
  host::BlockReference* loose = nullptr;
  for (host::Entity* entity : blocks) {
    auto& block = host::As<host::BlockReference>(*entity);
    const std::string found = Profile::ReadProfileInputs(block).profile_name;
    if (found == name) return block;
    if (core::SameIgnoringCase(found, name)) loose = &block;
    names.push_back("\"" + found + "\"");
  }
  if (loose != nullptr) return *loose;
  std::string listed;
  for (const std::string& n : names) listed += (listed.empty() ? "" : ", ") + n;
  throw NotFoundError("the network \"" + network +
                      "\" has no profile named \"" + name + "\" (its profiles: " +
                      (listed.empty() ? "none" : listed) + ")");
}

// Whether the ID names an object of the drawing that is not erased.
bool Exists(host::Document& document, const std::string& id_text) {
  const std::optional<host::ObjectId> id = core::ParseObjectId(id_text);
  if (!id) return false;
  try {
    return !document.ObjectIdToObject(*id).Erased();
  } catch (const host::HostError&) {
    return false;  // no such object, or erased
  }
}

// The object-ID list ("<ID>;...") of the profile's pipes that are gone.
std::string MissingPipes(host::Document& document,
                         host::BlockReference& block) {
  std::string missing;
  for (const std::string& id : core::ReferenceValues(
           Profile::ReadProfileInputs(block).pipes.oids))
    if (!Exists(document, id)) missing += id + ";";
  return missing;
}

// Refuses a profile whose pipes are gone or no longer form one run.
void CheckChain(host::Document& document, host::BlockReference& block) {
  const profile::ProfileInputs inputs = Profile::ReadProfileInputs(block);
  const std::vector<std::string> ids = core::ReferenceValues(inputs.pipes.oids);
  const std::vector<std::string> labels =
      core::ReferenceValues(inputs.pipes.labels);
  const std::string about = "the profile \"" + inputs.profile_name +
                            "\" of the network \"" + inputs.network_name + "\"";
  if (ids.empty())
    throw RefusedError(about + " has no pipes left; delete it");
  std::string list;
  for (size_t i = 0; i < ids.size(); ++i) {
    if (!Exists(document, ids[i]))
      throw RefusedError(about + " shows the pipe " +
                         (i < labels.size() ? labels[i] : ids[i]) +
                         ", which is no longer in the drawing; delete the "
                         "profile and draw it again");
    list += ids[i] + ";";
  }
  host::SelectionSet& set =
      General::ConvertOIDStringToSelectionSet(document, list);
  const bool one_run = Profile::CheckProfilePipesConnectivity(set);
  if (!one_run)
    throw RefusedError(about +
                       ": its pipes no longer form one unbranched run; delete "
                       "the profile and draw it again");
}

// The definition goes with its last insert; a copy of the profile the user
// inserted elsewhere keeps it.
void DeleteDefinition(host::Document& document, const std::string& name) {
  host::Block* definition = document.GetBlocks().Find(name);
  if (definition == nullptr) return;
  try {
    definition->Delete();
  } catch (const host::HostError& e) {
    if (e.code() != host::ErrorCode::kInUse) throw;
  }
}

}  // namespace

ProfileDrawResult ProfileDraw(memhost::MemDocument& document,
                              const ProfileDrawOptions& options) {
  if (options.name.empty())
    throw InvalidInputError("a profile needs a name");
  if (General::CheckTextForBannedCharacters(options.name,
                                            kAllBannedCharacters))
    throw InvalidInputError("The profile name \"" + options.name +
                            "\" contains a character that names cannot hold "
                            "(: ; \" / \\ > < * | ? , =)");
  RequireProfileNetwork(document, options.run.network);
  if (Profile::CheckProfileNameExists(
          Profile::GetProfileDefinitionsArray(document), options.name,
          options.run.network))
    throw RefusedError("the network \"" + options.run.network +
                       "\" already has a profile named \"" + options.name +
                       "\" (names are compared without letter case)");
  const ProfileRun run = SelectProfileRun(document, options.run);
  const std::vector<std::string> labels =
      core::ReferenceValues(run.sorted.labels);
  if (options.run.start) CheckStart(document, run, labels);
  if (options.datum) CheckDatum(document, options, run);

  profile::ProfileInputs inputs;
  inputs.profile_name = options.name;
  inputs.network_name = options.run.network;
  inputs.network_type = run.network_type;
  inputs.style_name = run.style.name;
  inputs.pipes = run.sorted;
  inputs.insertion_point = options.at;
  inputs.ground_from_surface = !run.surface.empty();
  inputs.ground_surface_name = run.surface;
  inputs.datum_auto = !options.datum;
  inputs.custom_datum_value = options.datum.value_or(0.0);
  inputs.name_on_plan = options.name_on_plan;
  inputs.stations_on_plan = options.stations_on_plan;

  core::UnlockedLayers unlocked(document);
  std::string id;
  {
    profile::TextMeasure measure(document);
    id = Profile::DrawProfile(document, inputs, measure);
  }
  unlocked.Restore();
  ProfileDrawResult result;
  result.profile = Summarize(AsBlock(document, id));
  result.parts = static_cast<int>(
      Profile::GetSplitPipesOIDArray(
          document,
          run.style.record.Text(profile::ProfileStyleItem::kPartSplitting),
          run.sorted.oids)
          .size());
  return result;
}

ProfileListResult ProfileList(host::Document& document,
                              const ProfileListOptions&) {
  ProfileListResult result;
  for (host::Entity* block :
       Profile::GetExistingProfileSet(document, "").Entities())
    result.profiles.push_back(
        Summarize(host::As<host::BlockReference>(*block)));
  std::stable_sort(result.profiles.begin(), result.profiles.end(),
                   [](const ProfileSummary& a, const ProfileSummary& b) {
                     return std::tie(a.network, a.name) <
                            std::tie(b.network, b.name);
                   });
  return result;
}

ProfileUpdateResult ProfileUpdate(memhost::MemDocument& document,
                                  ProfileUpdateOptions options) {
  if (options.all_flagged == (options.network || options.name))
    throw InvalidInputError(
        "name one profile (its network and name) or ask for every profile "
        "that needs an update, not both");
  std::vector<host::BlockReference*> blocks;
  if (options.all_flagged) {
    for (const ProfileSummary& summary : ProfileList(document, {}).profiles)
      if (summary.needs_update)
        blocks.push_back(&AsBlock(document, summary.block_id));
  } else {
    if (!options.network || !options.name)
      throw InvalidInputError("a profile is named by its network and name");
    blocks.push_back(&FindProfile(document, *options.network, *options.name));
  }
  const bool surfaces_given = !options.surfaces.empty();
  std::vector<std::string> surfaces;
  memhost::MemSurfaces& civil = document.App().Civil().Document().Surfaces();
  civil.Clear();
  for (auto& surface : options.surfaces) {
    surfaces.push_back(surface->Name());
    civil.Add(std::move(surface));
  }
  // Every profile is checked before any is redrawn.
  for (host::BlockReference* block : blocks) {
    CheckChain(document, *block);
    const profile::ProfileInputs inputs = Profile::ReadProfileInputs(*block);
    if (inputs.ground_from_surface &&
        std::find(surfaces.begin(), surfaces.end(),
                  inputs.ground_surface_name) == surfaces.end())
      throw InvalidInputError(
          "the profile \"" + inputs.profile_name + "\" of the network \"" +
          inputs.network_name + "\" takes its ground from the surface \"" +
          inputs.ground_surface_name + "\"; give the surface file that holds it" +
          (surfaces_given ? " (" + options.surface_source + " does not)"
                          : ""));
  }
  ProfileUpdateResult result;
  core::UnlockedLayers unlocked(document);
  {
    // Profiles of one style measure the same texts.
    profile::TextMeasure measure(document);
    for (host::BlockReference* block : blocks) {
      const std::string id = Profile::UpdateProfile(
          document, core::IdText(block->ObjectID()), measure);
      result.updated.push_back(Summarize(AsBlock(document, id)));
    }
  }
  unlocked.Restore();
  return result;
}

ProfileDeleteResult ProfileDelete(host::Document& document,
                                  const ProfileDeleteOptions& options) {
  host::BlockReference& block =
      FindProfile(document, options.network, options.name);
  ProfileDeleteResult result;
  result.deleted = Summarize(block);
  core::UnlockedLayers unlocked(document);
  // Pipes erased behind the system's back have no lists to clean.
  events::Events::ProfileWillBeErased(document, block,
                                      MissingPipes(document, block), "");
  block.Delete();
  DeleteDefinition(document, result.deleted.block);
  DeleteDefinition(document, std::string(profile::kPlanAnnoBlockPrefix) +
                                 result.deleted.network + "_" +
                                 result.deleted.name);
  unlocked.Restore();
  return result;
}

}  // namespace kestrana::commands
