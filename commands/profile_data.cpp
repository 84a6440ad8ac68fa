#include "commands/profile_data.h"

#include <algorithm>
#include <map>
#include <set>

#include "commands/profile_support.h"
#include "core/filters.h"
#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/pipe_record.h"
#include "core/project_defaults.h"
#include "core/record.h"
#include "core/text.h"
#include "core/user_names.h"
#include "host/errors.h"
#include "host/host.h"
#include "memhost/document.h"
#include "memhost/landxml.h"
#include "profile/profile.h"
#include "profile/profile_style_record.h"
#include "profile/style_fields.h"

namespace kestrana::commands {

namespace {

using core::General;
using memhost::Input;

constexpr int kPipesOption = 1;
constexpr char kNotOneLine[] =
    "The selected pipes don't represent a single continuous line!";

std::string Quoted(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names)
    text += (text.empty() ? "\"" : ", \"") + name + "\"";
  return text.empty() ? "none" : text;
}

std::string PipeLabel(const host::Entity& pipe) {
  return General::EntityLabelFromCombined(
      core::Record::ReadRequired(pipe).Text(core::PipeField::kCombinedLabel));
}

// The networks other than `network` that have a pipe with the label.
std::vector<std::string> OtherNetworksWithPipe(host::Document& document,
                                               const std::string& network,
                                               const std::string& label) {
  std::vector<std::string> networks;
  host::SelectionSet& all =
      General::InitializeSelectionSet(document, "ProfilePipeSearch");
  all.Select(host::SelectMode::kAll, {}, {}, core::AllPipesFilter());
  for (host::Entity* pipe : all.Entities()) {
    const std::string combined =
        core::Record::ReadRequired(*pipe).Text(core::PipeField::kCombinedLabel);
    const std::string other = General::EntityNetworkFromCombined(combined);
    if (other != network && General::EntityLabelFromCombined(combined) == label)
      networks.push_back(other);
  }
  all.Delete();
  return networks;
}

std::vector<host::ObjectId> PipesByLabel(host::Document& document,
                                         const ProfileDataOptions& options) {
  std::map<std::string, std::vector<host::ObjectId>> by_label;
  for (host::Entity* pipe :
       General::GetNetworkSet(document, options.network, kPipesOption)
           .Entities())
    by_label[PipeLabel(*pipe)].push_back(pipe->ObjectID());
  std::vector<host::ObjectId> ids;
  std::set<std::string> named;
  for (const std::string& label : options.pipes) {
    if (!named.insert(label).second)
      throw InvalidInputError("the pipe \"" + label + "\" is named twice");
    const auto found = by_label.find(label);
    if (found == by_label.end()) {
      const std::vector<std::string> others =
          OtherNetworksWithPipe(document, options.network, label);
      throw NotFoundError(
          "the network \"" + options.network + "\" has no pipe labelled \"" +
          label + "\"" +
          (others.empty() ? ""
                          : " (a profile shows one network; \"" + label +
                                "\" is a pipe of " + Quoted(others) + ")"));
    }
    if (found->second.size() > 1)
      throw InvalidInputError("the label \"" + label + "\" names " +
                              std::to_string(found->second.size()) +
                              " pipes of the network \"" + options.network +
                              "\"; give one of them another label first");
    ids.push_back(found->second.front());
  }
  return ids;
}

std::vector<host::ObjectId> PipesOfLine(host::Document& document,
                                        const ProfileDataOptions& options) {
  std::vector<std::string> names;
  for (const profile::GravityLine& line :
       profile::Profile::GetGravityLineNames(document, options.network)) {
    if (line.name == *options.line) {
      std::vector<host::ObjectId> ids;
      for (const std::string& id : core::ListEntries(line.pipe_oids))
        ids.push_back(core::ParseObjectId(id).value());
      return ids;
    }
    names.push_back(line.name);
  }
  throw NotFoundError("the network \"" + options.network +
                      "\" has no continuous line named \"" + *options.line +
                      "\" (its lines: " + Quoted(names) + ")");
}

// Puts the surfaces of a LandXML text in the civil document, in place of
// any there; answers their names.
std::vector<std::string> PutSurfaces(memhost::MemDocument& document,
                                     const std::string& xml,
                                     const std::string& file) {
  std::vector<std::unique_ptr<memhost::MemSurface>> surfaces;
  try {
    surfaces = memhost::ParseLandXmlSurfaces(xml, file);
  } catch (const memhost::LandXmlError& e) {
    throw InvalidInputError(e.what());
  }
  std::vector<std::string> names;
  // The civil document holds the surfaces this command brings, no others.
  memhost::MemSurfaces& civil = document.App().Civil().Document().Surfaces();
  civil.Clear();
  for (auto& surface : surfaces) {
    names.push_back(surface->Name());
    civil.Add(std::move(surface));
  }
  return names;
}

// Puts the surfaces of the LandXML text in the civil document and answers
// the name of the one to use; "" when the ground comes from the nodes.
std::string UseSurface(memhost::MemDocument& document,
                       const ProfileDataOptions& options) {
  if (!options.surface_xml) {
    if (options.surface_name)
      throw InvalidInputError("a surface name (\"" + *options.surface_name +
                              "\") needs the surface file that holds it");
    return "";
  }
  const std::vector<std::string> names = PutSurfaces(
      document, *options.surface_xml, options.surface_file);
  std::string chosen;
  if (options.surface_name) {
    for (const std::string& name : names)
      if (name == *options.surface_name) chosen = name;
    if (chosen.empty())
      throw NotFoundError(options.surface_file + " has no surface named \"" +
                          *options.surface_name + "\" (it has " +
                          Quoted(names) + ")");
  } else if (names.size() == 1) {
    chosen = names.front();
  } else {
    throw InvalidInputError(options.surface_file + " holds " +
                            std::to_string(names.size()) + " surfaces (" +
                            Quoted(names) + "); choose one by its name");
  }
  return chosen;
}

// Answers the selection and the start point prompt; whatever the prompts
// did not take is taken back, so that no answer is left for a later one.
class ScriptedAnswers {
 public:
  ScriptedAnswers(memhost::Session& session, std::vector<Input> answers)
      : session_(session), before_(session.Remaining()) {
    for (Input& answer : answers) {
      kinds_.push_back(answer.kind);
      session_.Push(std::move(answer));
    }
  }
  ~ScriptedAnswers() {
    const size_t remaining = session_.Remaining();
    const size_t left =
        std::min(remaining > before_ ? remaining - before_ : 0, kinds_.size());
    for (size_t k = kinds_.size() - left; k < kinds_.size(); ++k)
      session_.Next(kinds_[k], "an answer the command gave");
  }
  ScriptedAnswers(const ScriptedAnswers&) = delete;
  ScriptedAnswers& operator=(const ScriptedAnswers&) = delete;

 private:
  memhost::Session& session_;
  size_t before_;
  std::vector<Input::Kind> kinds_;
};

}  // namespace

std::vector<std::string> SeriesValues(const std::string& series) {
  std::vector<std::string> values = core::Split(series);
  values.erase(values.begin());
  return values;
}

ProfileRun SelectProfileRun(memhost::MemDocument& document,
                            const ProfileDataOptions& typed) {
  ProfileDataOptions options = typed;
  // An existing network however it is typed.
  options.network =
      core::FindNetworkName(document, typed.network).value_or(typed.network);
  const std::string type = RequireProfileNetwork(document, options.network);
  if (options.pipes.empty() == !options.line)
    throw InvalidInputError(
        options.line ? "name the pipes of the profile or its line, not both"
                     : "name the pipes of the profile or its line");
  if (options.line && type != core::kGravity)
    throw InvalidInputError("\"" + options.network +
                            "\" is a pressure network; lines are named "
                            "after the manholes of gravity networks");
  profile::StyleMarker style = RequireProfileStyle(
      document, options.style.value_or(core::kStandardStyleName));
  const std::vector<host::ObjectId> ids = options.line
                                              ? PipesOfLine(document, options)
                                              : PipesByLabel(document, options);
  const std::string surface = UseSurface(document, options);
  host::Point3 start;
  if (options.start) {
    start = *options.start;
  } else {
    std::string id_list;
    for (host::ObjectId id : ids) id_list += core::IdListEntry(id);
    start =
        profile::Profile::GetProfileStartFromDirection(document, id_list, 0);
  }
  std::optional<profile::SortedPipes> sorted;
  {
    std::vector<Input> answers;
    answers.push_back(Input::Objects(ids));
    answers.push_back(Input::PointAt(start.x, start.y));
    ScriptedAnswers scripted(document.GetSession(), std::move(answers));
    sorted = profile::Profile::SelectPipesForProfile(document, options.network);
  }
  if (!sorted) throw RefusedError(kNotOneLine);
  return ProfileRun{type, std::move(style), surface, start, *sorted};
}

ProfileDataResult ProfileData(memhost::MemDocument& document,
                              const ProfileDataOptions& options) {
  const ProfileRun run = SelectProfileRun(document, options);
  ProfileDataResult result;
  result.network =
      core::FindNetworkName(document, options.network).value_or(options.network);
  result.style = run.style.name;
  result.surface = run.surface;
  result.units = General::GetModelUnits(document);
  {
    using F = profile::StationBandSetting;
    const profile::ItemFields stations(
        run.style.record.Text(profile::ProfileStyleItem::kStationBand));
    result.station_pattern = core::StationPattern(stations.Text(F::kPrecision),
                                                  stations.Text(F::kDecimals),
                                                  stations.Text(F::kFormat));
  }
  result.start = run.start;
  result.labels = core::ReferenceValues(run.sorted.labels);
  result.oids = core::ReferenceValues(run.sorted.oids);
  result.directions = SeriesValues(run.sorted.directions);

  host::Application& application = document.GetApplication();
  host::CivilDocument& civil =
      application.GetInterfaceObject(General::GetAeccAppString(application))
          .ActiveDocument();
  result.parts = profile::Profile::GetProfilePartsDataArrays(
      document, civil, options.network, run.style.record, run.sorted,
      !result.surface.empty(), result.surface);
  return result;
}

}  // namespace kestrana::commands
