#include "check/audit.h"

#include <algorithm>
#include <map>
#include <set>

#include "check/reporter.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/project_record.h"
#include "core/text.h"
#include "host/host.h"
#include "library/library_record.h"
#include "profile/profile_style_record.h"
#include "viewstyle/view_style_record.h"

namespace kestrana::check {

Finding& Reporter::Add(std::string code, std::vector<ObjectRef> objects,
                       std::string sentence, Severity severity) {
  findings_->push_back(
      {std::move(code), severity, std::move(objects), std::move(sentence), {}});
  return findings_->back();
}

ObjectRef RefOf(const Item& item) {
  return {item.network, item.label, item.entity->Handle()};
}

bool IsPipe(const Item& item) {
  return item.type == core::kGravityPipe || item.type == core::kPressurePipe;
}
bool IsNode(const Item& item) {
  return item.type == core::kGravityNode || item.type == core::kPressureNode;
}

std::string Describe(const Item& item) {
  std::string who;
  if (IsPipe(item)) who = "pipe";
  else if (IsNode(item)) who = "node";
  else if (item.type.empty()) who = "object";
  else who = item.type;
  if (!item.label.empty()) who += " " + item.label;
  if (!item.network.empty()) who += " of " + item.network;
  return who + " (handle " + item.entity->Handle() + ")";
}

std::optional<std::vector<std::string>> ReferenceList(std::string_view text) {
  std::vector<std::string> values;
  if (text.empty()) return values;
  std::vector<std::string> pieces = core::Split(text);
  if (!pieces[0].empty()) return std::nullopt;
  const std::string prefix = core::kRelatedTo;
  for (size_t i = 1; i < pieces.size(); ++i) {
    if (pieces[i].compare(0, prefix.size(), prefix) != 0) return std::nullopt;
    values.push_back(pieces[i].substr(prefix.size()));
  }
  return values;
}

namespace {

using core::ProjectField;

std::string ProjectText(const DrawingIndex& index, ProjectField field) {
  return FieldText(*index.project(), static_cast<int>(field));
}

// A trailing list ("A;B;") that may be empty; false for text without the
// final ";".
bool IsTrailingList(const std::string& text) {
  return text.empty() || text.back() == ';';
}

void CheckMarker(const DrawingIndex& index, Reporter& report,
                 const std::string& id, std::string_view type,
                 const std::string& what) {
  const Item* marker = index.Find(id);
  if (marker && marker->type == type) return;
  report
      .Add("project-marker", {},
           "The project names " + what + " '" + id +
               "', but no such marker is in the drawing.")
      .values = {{"id", id}, {"expected type", std::string(type)}};
}

}  // namespace

void CheckProject(const DrawingIndex& index, Reporter& report) {
  const core::Record& project = *index.project();
  if (project.Size() < core::kProjectRecordLength)
    report
        .Add("project-record-short", {},
             "The project record is cut short: it holds " +
                 std::to_string(project.Size()) + " fields instead of " +
                 std::to_string(core::kProjectRecordLength) + ".")
        .values = {{"fields", std::to_string(project.Size())},
                   {"expected", std::to_string(core::kProjectRecordLength)}};
  const std::string& units = index.units();
  if (units != core::kMetric && units != core::kUS)
    report
        .Add("project-units", {},
             "The project's units are '" + units +
                 "' instead of \"Metric\" or \"US\".")
        .values = {{"units", units}};

  std::string names = ProjectText(index, ProjectField::kNetworkNames);
  std::string types = ProjectText(index, ProjectField::kNetworkTypes);
  if (!IsTrailingList(names) || !IsTrailingList(types))
    report.Add("network-list", {},
               "The project's list of networks or of their types does not "
               "end with \";\", so its last entry is lost.")
        .values = {{"names", names}, {"types", types}};
  std::vector<std::string> name_list = core::ListEntries(names);
  std::vector<std::string> type_list = core::ListEntries(types);
  if (name_list.size() != type_list.size())
    report.Add("network-list", {},
               "The project lists " + std::to_string(name_list.size()) +
                   " networks but " + std::to_string(type_list.size()) +
                   " network types.")
        .values = {{"names", names}, {"types", types}};
  std::set<std::string> seen;
  for (const Network& n : index.networks()) {
    if (n.name.empty() || !seen.insert(n.name).second)
      report.Add("network-list", {{n.name, "", ""}},
                 n.name.empty() ? "The project lists a network without a name."
                                : "The project lists network '" + n.name +
                                      "' twice.");
    if (n.type != core::kGravity && n.type != core::kPressure)
      report.Add("network-list", {{n.name, "", ""}},
                 "Network '" + n.name + "' has the type '" + n.type +
                     "' instead of \"Gravity\" or \"Pressure\".");
  }

  // "<active style>;<visibility>;<marker ID>;...;"
  std::string styles = ProjectText(index, ProjectField::kViewStyles);
  std::vector<std::string> style_pieces = core::Split(styles);
  std::string visibility = style_pieces.size() > 1 ? style_pieces[1] : "";
  bool visibility_ok =
      visibility.size() == index.networks().size() &&
      visibility.find_first_not_of("01") == std::string::npos;
  if (!visibility_ok)
    report.Add("network-visibility", {},
               "The project's visibility text '" + visibility + "' should hold "
               "one \"1\" or \"0\" per network (" +
                   std::to_string(index.networks().size()) + ").")
        .values = {{"visibility", visibility}};
  if (!IsTrailingList(styles))
    report.Add("project-marker", {},
               "The project's list of view styles does not end with \";\".");
  for (size_t i = 2; i + 1 < style_pieces.size(); ++i)
    CheckMarker(index, report, style_pieces[i], viewstyle::kViewStylePoint,
                "the view style marker");

  // "<threshold>;<net>;<net>..." pairs of defined networks.
  std::vector<std::string> crossing =
      core::Split(ProjectText(index, ProjectField::kCrossingSettings));
  if (!SafeNumber(crossing[0]))
    report.Add("crossing-settings", {},
               "The crossing clearance threshold '" + crossing[0] +
                   "' is not a number.");
  if (crossing.size() % 2 == 0)
    report.Add("crossing-settings", {},
               "The crossing settings hold a network without its partner.");
  for (size_t i = 1; i + 1 < crossing.size(); i += 2) {
    const std::string& a = crossing[i];
    const std::string& b = crossing[i + 1];
    if (!index.FindNetwork(a) || !index.FindNetwork(b) || a == b)
      report.Add("crossing-settings", {{a, "", ""}, {b, "", ""}},
                 "The crossing settings enable the pair '" + a + "' and '" + b +
                     "', which are not two networks of the project.");
  }

  std::string low_high = ProjectText(index, ProjectField::kLowHighNetworks);
  if (!IsTrailingList(low_high))
    report.Add("lowhigh-settings", {},
               "The list of networks whose low and high points are shown "
               "does not end with \";\".");
  for (const std::string& name : core::ListEntries(low_high)) {
    const Network* n = index.FindNetwork(name);
    if (!n || n->type != core::kPressure)
      report.Add("lowhigh-settings", {{name, "", ""}},
                 "Low and high points are switched on for '" + name +
                     "', which is not a pressure network of the project.");
  }

  CheckMarker(index, report, ProjectText(index, ProjectField::kMaterialsLibrary),
              library::kMaterialLibraryPoint, "the materials library");
  CheckMarker(index, report, ProjectText(index, ProjectField::kSizesLibrary),
              library::kSectionSizeLibraryPoint, "the section-sizes library");
  std::string profile_styles = ProjectText(index, ProjectField::kProfileStyles);
  if (!IsTrailingList(profile_styles))
    report.Add("project-marker", {},
               "The project's list of profile styles does not end with \";\".");
  for (const std::string& id : core::ListEntries(profile_styles))
    CheckMarker(index, report, id, profile::kProfileStylePoint,
                "the profile style marker");
}

void CheckRecords(const DrawingIndex& index, Reporter& report) {
  std::map<std::string, std::vector<const Item*>> labels;
  for (const auto& [id, item] : index.items()) {
    int length = DrawingIndex::RecordLength(item.type);
    if (length == 0) {
      // Cut before its type: the combined label may still tell what it was.
      if (item.record.Size() < 3 && !FieldText(item.record, 1).empty())
        report.Add("record-short", {RefOf(item)},
                   "The record of " + Describe(item) + " is cut short after '" +
                       FieldText(item.record, 1) + "'; it is not checked "
                       "further.");
      continue;
    }
    if (!item.not_a_number.empty()) {
      const std::string field = item.not_a_number;
      report
          .Add("not-a-number", {RefOf(item)},
               "Field " + field + " of " + Describe(item) +
                   " should hold a number but holds '" +
                   FieldText(item.record, std::stoi(field)) +
                   "'; it is not checked further.")
          .values = {{"field", field},
                     {"text", FieldText(item.record, std::stoi(field))}};
      continue;
    }
    if (!item.whole) {
      report
          .Add("record-short", {RefOf(item)},
               "The record of " + Describe(item) + " holds " +
                   std::to_string(item.record.Size()) + " fields instead of " +
                   std::to_string(length) + "; it is not checked further.")
          .values = {{"fields", std::to_string(item.record.Size())},
                     {"expected", std::to_string(length)}};
      continue;
    }
    bool pipe = IsPipe(item), node = IsNode(item);
    if (!pipe && !node) continue;
    std::vector<std::string> pieces = core::Split(FieldText(item.record, 1));
    const char* kind = pipe ? core::kPipeKind : core::kNodeKind;
    if (pieces.size() != 3 || pieces[0] != kind || pieces[2].empty())
      report.Add("label-form", {RefOf(item)},
                 "The combined label '" + FieldText(item.record, 1) + "' of " +
                     Describe(item) + " is not \"" + kind +
                     ";<network>;<label>\".");
    const Network* network = index.FindNetwork(item.network);
    if (!network) {
      report.Add("unknown-network", {RefOf(item)},
                 Describe(item) + " belongs to network '" + item.network +
                     "', which the project does not list.");
    } else if (item.type != network->type + (pipe ? "Pipe" : "Node")) {
      report.Add("element-type", {RefOf(item)},
                 Describe(item) + " is a " + item.type + " in a " +
                     network->type + " network.");
    }
    bool right_entity =
        pipe ? item.entity->Kind() == host::EntityKind::kLwPolyline
             : item.entity->Kind() == host::EntityKind::kBlockReference &&
                   host::As<host::BlockReference>(*item.entity).Name() ==
                       core::kNodeBlock;
    if (!right_entity)
      report.Add("entity-kind", {RefOf(item)},
                 Describe(item) + " is a " + item.entity->EntityName() +
                     (pipe ? " instead of a polyline."
                           : " instead of a \"Kestrana_Node\" block."));
    // Node labels are compared ignoring case, as a new label is checked.
    std::string key = item.label;
    if (node)
      std::transform(key.begin(), key.end(), key.begin(),
                     [](unsigned char c) { return std::tolower(c); });
    labels[std::string(kind) + ";" + item.network + ";" + key].push_back(&item);
  }
  for (const auto& [key, items] : labels) {
    if (items.size() < 2) continue;
    std::vector<ObjectRef> refs;
    for (const Item* i : items) refs.push_back(RefOf(*i));
    report.Add("duplicate-label", refs,
               std::to_string(items.size()) + " " +
                   (IsPipe(*items[0]) ? "pipes" : "nodes") + " of " +
                   items[0]->network + " share the label '" + items[0]->label +
                   "'.");
  }
}

std::vector<Finding> Audit(host::Document& document,
                           const AuditOptions& options) {
  std::vector<Finding> findings;
  Reporter report(findings);
  DrawingIndex index(document);
  if (!index.HasProject()) {
    report.Add("no-project", {}, core::kNoProjectMessage);
    return findings;
  }
  CheckProject(index, report);
  CheckRecords(index, report);
  CheckConnections(index, report);
  CheckOwnedObjects(index, report);
  CheckLibraryCounts(index, report);
  CheckCrossings(index, report, options.design);
  CheckLowHigh(index, report);
  if (options.design) CheckDesign(index, report, options.settings);
  return findings;
}

int CountErrors(const std::vector<Finding>& findings) {
  return static_cast<int>(
      std::count_if(findings.begin(), findings.end(), [](const Finding& f) {
        return f.severity == Severity::kError;
      }));
}

}  // namespace kestrana::check
