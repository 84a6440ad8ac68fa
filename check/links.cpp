// The links between records: pipe and nodes, element and annotation and
// arrow, pipe and crossing annotation and leader line, node and low/high
// marker, pipe and profile. Each link is checked from both ends.
#include <algorithm>
#include <string>

#include "check/reporter.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/text.h"
#include "crossing/crossing_record.h"
#include "host/host.h"
#include "lowhigh/lowhigh_record.h"
#include "profile/profile_record.h"
#include "profile/profile_style_record.h"
#include "viewstyle/annotation_record.h"

namespace kestrana::check {

namespace {

using core::NodeField;
using core::PipeField;

template <class E>
int F(E field) {
  return static_cast<int>(field);
}

struct Entry {
  std::string label;
  std::string id;
};

// A reference field, reported when it is not a reference list.
std::optional<std::vector<std::string>> ReadList(const Item& item, int field,
                                                 Reporter& report) {
  std::string text = FieldText(item.record, field);
  std::optional<std::vector<std::string>> values = ReferenceList(text);
  if (!values)
    report
        .Add("reference-form", {RefOf(item)},
             "Field " + std::to_string(field) + " of " + Describe(item) +
                 " is not a list of \";RelatedTo\" entries: '" + text + "'.")
        .values = {{"field", std::to_string(field)}, {"text", text}};
  return values;
}

// A label list and its object-ID partner, entry by entry; nullopt (and a
// finding) when either is malformed or they are not in step.
std::optional<std::vector<Entry>> ReadPair(const Item& item, int label_field,
                                           int id_field, Reporter& report) {
  auto labels = ReadList(item, label_field, report);
  auto ids = ReadList(item, id_field, report);
  if (!labels || !ids) return std::nullopt;
  if (labels->size() != ids->size()) {
    report
        .Add("lists-out-of-step", {RefOf(item)},
             "Fields " + std::to_string(label_field) + " and " +
                 std::to_string(id_field) + " of " + Describe(item) +
                 " should name the same objects, but hold " +
                 std::to_string(labels->size()) + " labels and " +
                 std::to_string(ids->size()) + " object IDs.")
        .values = {{"labels", std::to_string(labels->size())},
                   {"ids", std::to_string(ids->size())}};
    return std::nullopt;
  }
  std::vector<Entry> entries;
  for (size_t i = 0; i < ids->size(); ++i)
    entries.push_back({(*labels)[i], (*ids)[i]});
  return entries;
}

void Dangling(Reporter& report, const Item& item, const std::string& id,
              const std::string& what) {
  report
      .Add("dangling-reference", {RefOf(item)},
           Describe(item) + " names " + what + " '" + id +
               "', but the drawing holds no such object with a whole record.")
      .values = {{"id", id}, {"expected", what}};
}

void OneWay(Reporter& report, const Item& from, const Item& to,
            const std::string& how) {
  report.Add("one-way-reference", {RefOf(from), RefOf(to)},
             Describe(from) + " names " + Describe(to) + ", but " + how + ".");
}

void LabelMismatch(Reporter& report, const Item& from, const Item& to,
                   const std::string& stored, const std::string& expected) {
  report
      .Add("label-mismatch", {RefOf(from), RefOf(to)},
           Describe(from) + " names " + Describe(to) + " as '" + stored +
               "' instead of '" + expected + "'.")
      .values = {{"stored", stored}, {"expected", expected}};
}

bool Lists(const std::vector<std::string>& values, const std::string& id) {
  return std::find(values.begin(), values.end(), id) != values.end();
}

std::string IdOf(const Item& item) {
  return std::to_string(item.entity->ObjectID());
}

// The values of a reference field of a whole record, empty when malformed
// (the malformed field is reported where it is read as the owner's).
std::vector<std::string> ValuesOf(const Item& item, int field) {
  return ReferenceList(FieldText(item.record, field))
      .value_or(std::vector<std::string>());
}

bool SamePoint(double x1, double y1, double x2, double y2) {
  return core::RoundHalfEven(x1, 5) == core::RoundHalfEven(x2, 5) &&
         core::RoundHalfEven(y1, 5) == core::RoundHalfEven(y2, 5);
}

void CheckPipeEnd(const DrawingIndex& index, Reporter& report,
                  const Item& pipe, bool start) {
  const std::string side = start ? "start" : "end";
  auto entries = ReadPair(pipe, F(start ? PipeField::kStartNodeLabel
                                        : PipeField::kEndNodeLabel),
                          F(start ? PipeField::kStartNodeOID
                                  : PipeField::kEndNodeOID),
                          report);
  if (!entries) return;
  if (entries->size() != 1) {
    report.Add("pipe-node-count", {RefOf(pipe)},
               Describe(pipe) + " names " + std::to_string(entries->size()) +
                   " " + side + " nodes instead of one.");
    return;
  }
  const Entry& e = entries->front();
  const Item* node = index.Find(e.id);
  if (!node || !IsNode(*node) || !node->whole) {
    Dangling(report, pipe, e.id, "the " + side + " node");
    return;
  }
  if (e.label != node->label) LabelMismatch(report, pipe, *node, e.label,
                                            node->label);
  if (node->network != pipe.network)
    report.Add("cross-network-link", {RefOf(pipe), RefOf(*node)},
               Describe(pipe) + " is connected to " + Describe(*node) +
                   " of another network.");
  int back = F(start ? NodeField::kPipesAtStartOID : NodeField::kPipesAtEndOID);
  if (!Lists(ValuesOf(*node, back), IdOf(pipe)))
    OneWay(report, pipe, *node,
           "the node does not list the pipe as " +
               std::string(start ? "starting" : "ending") + " there");
  if (pipe.entity->Kind() != host::EntityKind::kLwPolyline ||
      node->entity->Kind() != host::EntityKind::kBlockReference)
    return;
  std::vector<double> xy =
      host::As<host::LwPolyline>(*pipe.entity).Coordinates();
  if (xy.size() < 4) {
    report.Add("pipe-geometry", {RefOf(pipe)},
               Describe(pipe) + " has fewer than two vertices.");
    return;
  }
  double x = start ? xy[0] : xy[xy.size() - 2];
  double y = start ? xy[1] : xy[xy.size() - 1];
  host::Point3 p = host::As<host::BlockReference>(*node->entity).InsertionPoint();
  if (!SamePoint(x, y, p.x, p.y))
    report
        .Add("pipe-end-off-node", {RefOf(pipe), RefOf(*node)},
             "The " + side + " of " + Describe(pipe) + " lies at " +
                 core::GeneralText(x) + ", " + core::GeneralText(y) +
                 ", not on its node " + node->label + " at " +
                 core::GeneralText(p.x) + ", " + core::GeneralText(p.y) + ".")
        .values = {{"pipe x", core::GeneralText(x)},
                   {"pipe y", core::GeneralText(y)},
                   {"node x", core::GeneralText(p.x)},
                   {"node y", core::GeneralText(p.y)}};
}

void CheckNodeSide(const DrawingIndex& index, Reporter& report,
                   const Item& node, bool start) {
  auto entries = ReadPair(
      node, F(start ? NodeField::kPipesAtStartLabels : NodeField::kPipesAtEndLabels),
      F(start ? NodeField::kPipesAtStartOID : NodeField::kPipesAtEndOID), report);
  if (!entries) return;
  std::vector<std::string> seen;
  for (const Entry& e : *entries) {
    if (Lists(seen, e.id))
      report.Add("duplicate-entry", {RefOf(node)},
                 Describe(node) + " lists the pipe '" + e.label + "' twice.");
    seen.push_back(e.id);
    const Item* pipe = index.Find(e.id);
    if (!pipe || !IsPipe(*pipe) || !pipe->whole) {
      Dangling(report, node, e.id, "the pipe " + e.label);
      continue;
    }
    if (e.label != pipe->label) LabelMismatch(report, node, *pipe, e.label,
                                              pipe->label);
    int back = F(start ? PipeField::kStartNodeOID : PipeField::kEndNodeOID);
    if (!Lists(ValuesOf(*pipe, back), IdOf(node)))
      OneWay(report, node, *pipe,
             std::string("the pipe does not ") + (start ? "start" : "end") +
                 " there");
  }
}

// A single link from an owner to an object that names the owner back in
// its fields `back_label` and `back_id`.
struct Link {
  int label_field, id_field;
  std::string_view type;      // of the object linked
  std::string suffix;         // label stored = owner label & suffix
  int back_label, back_id;    // fields of the linked object naming the owner
  std::string what;
};

void CheckSingleLink(const DrawingIndex& index, Reporter& report,
                     const Item& owner, const Link& link) {
  auto entries = ReadPair(owner, link.label_field, link.id_field, report);
  if (!entries || entries->empty()) return;
  if (entries->size() > 1) {
    report.Add("reference-form", {RefOf(owner)},
               Describe(owner) + " names " + std::to_string(entries->size()) +
                   " objects as its " + link.what + ".");
    return;
  }
  const Entry& e = entries->front();
  const Item* target = index.Find(e.id);
  if (!target || target->type != link.type || !target->whole) {
    Dangling(report, owner, e.id, "the " + link.what);
    return;
  }
  if (!Lists(ValuesOf(*target, link.back_id), IdOf(owner)))
    OneWay(report, owner, *target, "the " + link.what + " names another object");
  // Renewal finds the object by the label stored here; a label that does
  // not follow its owner's would meet a new element given the old label.
  if (e.label != target->label)
    LabelMismatch(report, owner, *target, e.label, target->label);
  std::string expected = owner.label + link.suffix;
  if (!link.suffix.empty() && target->label != expected)
    report
        .Add("label-mismatch", {RefOf(*target), RefOf(owner)},
             Describe(*target) + " is labelled '" + target->label +
                 "' instead of '" + expected + "' after its owner.")
        .values = {{"stored", target->label}, {"expected", expected}};
  std::vector<std::string> back = ValuesOf(*target, link.back_label);
  if (back.size() != 1 || back[0] != owner.label)
    LabelMismatch(report, *target, owner, back.empty() ? "" : back[0],
                  owner.label);
}

// An object that belongs to one owner: the owner must exist and name it.
void CheckOwner(const DrawingIndex& index, Reporter& report, const Item& item,
                int owner_field, bool (*owner_kind)(const Item&),
                int owner_back_field, const std::string& what) {
  std::vector<std::string> owners = ValuesOf(item, owner_field);
  const Item* owner = owners.size() == 1 ? index.Find(owners[0]) : nullptr;
  if (!owner || !owner_kind(*owner) || !owner->whole) {
    report.Add("orphan", {RefOf(item)},
               Describe(item) + " belongs to no " + what +
                   " of the drawing; it is left over.");
    return;
  }
  if (!Lists(ValuesOf(*owner, owner_back_field), IdOf(item)))
    report.Add("orphan", {RefOf(item), RefOf(*owner)},
               Describe(item) + " names " + Describe(*owner) +
                   ", which does not name it back.");
}

bool IsElement(const Item& i) { return IsPipe(i) || IsNode(i); }
bool IsCrossingAnno(const Item& i) {
  return i.type == crossing::kCrossingPointAnnotation;
}
bool IsProfile(const Item& i) { return i.type == profile::kProfileKind; }

using crossing::CrossingAnnoField;
using crossing::CrossingLineField;
using lowhigh::LowHighField;
using profile::PlanAnnoField;
using profile::ProfileField;
using viewstyle::AnnotationField;

void CheckCrossingAnno(const DrawingIndex& index, Reporter& report,
                       const Item& anno) {
  const int pipe_labels[] = {F(CrossingAnnoField::kPipe1LabelRef),
                             F(CrossingAnnoField::kPipe2LabelRef)};
  const int pipe_ids[] = {F(CrossingAnnoField::kPipe1OIDRef),
                          F(CrossingAnnoField::kPipe2OIDRef)};
  const int pipe_nets[] = {F(CrossingAnnoField::kPipe1Net),
                           F(CrossingAnnoField::kPipe2Net)};
  for (int k = 0; k < 2; ++k) {
    std::vector<std::string> ids = ValuesOf(anno, pipe_ids[k]);
    const Item* pipe = ids.size() == 1 ? index.Find(ids[0]) : nullptr;
    if (!pipe || !IsPipe(*pipe) || !pipe->whole) {
      report.Add("orphan", {RefOf(anno)},
                 Describe(anno) + " names a crossed pipe that is not in the "
                 "drawing.");
      continue;
    }
    if (!Lists(ValuesOf(*pipe, F(PipeField::kCrossingOIDRefs)), IdOf(anno)))
      OneWay(report, anno, *pipe, "the pipe does not list the crossing");
    std::vector<std::string> labels = ValuesOf(anno, pipe_labels[k]);
    std::string stored = labels.empty() ? "" : labels[0];
    if (stored != pipe->label) LabelMismatch(report, anno, *pipe, stored,
                                             pipe->label);
    std::string net = FieldText(anno.record, pipe_nets[k]);
    if (net != pipe->network) LabelMismatch(report, anno, *pipe, net,
                                            pipe->network);
  }
  Link line{F(CrossingAnnoField::kLineLabelRef), F(CrossingAnnoField::kLineOIDRef),
            crossing::kCrossingPointLine, "", F(CrossingLineField::kAnnoLabelRef),
            F(CrossingLineField::kAnnoOIDRef), "leader line"};
  CheckSingleLink(index, report, anno, line);
  if (ValuesOf(anno, line.id_field).empty())
    report.Add("dangling-reference", {RefOf(anno)},
               Describe(anno) + " has no leader line.");
}

void CheckProfile(const DrawingIndex& index, Reporter& report,
                  const Item& prof) {
  auto pipes = ReadPair(prof, F(ProfileField::kPipeLabels),
                        F(ProfileField::kPipeOIDs), report);
  for (const Entry& e : pipes.value_or(std::vector<Entry>())) {
    const Item* pipe = index.Find(e.id);
    if (!pipe || !IsPipe(*pipe) || !pipe->whole) {
      Dangling(report, prof, e.id, "the pipe " + e.label);
      continue;
    }
    if (e.label != pipe->label) LabelMismatch(report, prof, *pipe, e.label,
                                              pipe->label);
    if (!Lists(ValuesOf(*pipe, F(PipeField::kProfileOIDRefs)), IdOf(prof)))
      OneWay(report, prof, *pipe, "the pipe does not list the profile");
  }
  auto style = ReadPair(prof, F(ProfileField::kStyleNameRef),
                        F(ProfileField::kStyleOIDRef), report);
  for (const Entry& e : style.value_or(std::vector<Entry>())) {
    const Item* marker = index.Find(e.id);
    if (!marker || marker->type != profile::kProfileStylePoint)
      Dangling(report, prof, e.id, "the profile style " + e.label);
  }
  Link plan{F(ProfileField::kPlanAnnoLabelRef), F(ProfileField::kPlanAnnoOIDRef),
            profile::kPlanAnnoKind, profile::kPlanAnnoSuffix,
            F(PlanAnnoField::kProfileNameRef), F(PlanAnnoField::kProfileOIDRef),
            "plan annotation"};
  CheckSingleLink(index, report, prof, plan);
}

// A reference list of an element to objects that list the element among
// theirs (crossings and profiles of a pipe).
void CheckManyLinks(const DrawingIndex& index, Reporter& report,
                    const Item& pipe, int label_field, int id_field,
                    bool (*kind)(const Item&),
                    const std::vector<int>& back_id_fields,
                    const std::string& what) {
  auto entries = ReadPair(pipe, label_field, id_field, report);
  std::vector<std::string> seen;
  for (const Entry& e : entries.value_or(std::vector<Entry>())) {
    if (Lists(seen, e.id))
      report.Add("duplicate-entry", {RefOf(pipe)},
                 Describe(pipe) + " lists the " + what + " '" + e.label +
                     "' twice.");
    seen.push_back(e.id);
    const Item* target = index.Find(e.id);
    if (!target || !kind(*target) || !target->whole) {
      Dangling(report, pipe, e.id, "the " + what + " " + e.label);
      continue;
    }
    if (e.label != target->label)
      LabelMismatch(report, pipe, *target, e.label, target->label);
    bool back = false;
    for (int f : back_id_fields) back = back || Lists(ValuesOf(*target, f),
                                                      IdOf(pipe));
    if (!back) OneWay(report, pipe, *target, "it does not name the pipe");
  }
}

}  // namespace

void CheckConnections(const DrawingIndex& index, Reporter& report) {
  for (const auto& [id, item] : index.items()) {
    if (!item.whole) continue;
    if (IsPipe(item)) {
      CheckPipeEnd(index, report, item, true);
      CheckPipeEnd(index, report, item, false);
    } else if (IsNode(item)) {
      CheckNodeSide(index, report, item, true);
      CheckNodeSide(index, report, item, false);
    }
  }
}

void CheckOwnedObjects(const DrawingIndex& index, Reporter& report) {
  const Link pipe_annotation{F(PipeField::kAnnotationLabelRef),
                             F(PipeField::kAnnotationOIDRef),
                             viewstyle::kAnnotation, viewstyle::kAnnotation,
                             F(AnnotationField::kElementLabelRef),
                             F(AnnotationField::kElementOIDRef), "annotation"};
  const Link pipe_arrow{F(PipeField::kArrowLabelRef), F(PipeField::kArrowOIDRef),
                        viewstyle::kArrow, viewstyle::kArrow,
                        F(AnnotationField::kElementLabelRef),
                        F(AnnotationField::kElementOIDRef), "direction arrow"};
  const Link node_annotation{F(NodeField::kAnnotationLabelRef),
                             F(NodeField::kAnnotationOIDRef),
                             viewstyle::kAnnotation, viewstyle::kAnnotation,
                             F(AnnotationField::kElementLabelRef),
                             F(AnnotationField::kElementOIDRef), "annotation"};
  const Link node_marker{F(NodeField::kLowHighLabelRef),
                         F(NodeField::kLowHighOIDRef), lowhigh::kLowHighPoint,
                         lowhigh::kMarkerSuffix, F(LowHighField::kNodeLabelRef),
                         F(LowHighField::kNodeOIDRef), "low or high point"};
  for (const auto& [id, item] : index.items()) {
    if (!item.whole) continue;
    if (IsPipe(item)) {
      CheckSingleLink(index, report, item, pipe_annotation);
      CheckSingleLink(index, report, item, pipe_arrow);
      CheckManyLinks(index, report, item, F(PipeField::kCrossingRefs),
                     F(PipeField::kCrossingOIDRefs), IsCrossingAnno,
                     {F(CrossingAnnoField::kPipe1OIDRef),
                      F(CrossingAnnoField::kPipe2OIDRef)},
                     "crossing");
      CheckManyLinks(index, report, item, F(PipeField::kProfileRefs),
                     F(PipeField::kProfileOIDRefs), IsProfile,
                     {F(ProfileField::kPipeOIDs)}, "profile");
    } else if (IsNode(item)) {
      CheckSingleLink(index, report, item, node_annotation);
      CheckSingleLink(index, report, item, node_marker);
    } else if (item.type == viewstyle::kAnnotation ||
               item.type == viewstyle::kArrow) {
      std::vector<std::string> owners =
          ValuesOf(item, F(AnnotationField::kElementOIDRef));
      const Item* owner = owners.size() == 1 ? index.Find(owners[0]) : nullptr;
      int back = !owner ? 0
                 : IsNode(*owner) ? F(NodeField::kAnnotationOIDRef)
                 : item.type == viewstyle::kArrow ? F(PipeField::kArrowOIDRef)
                                                  : F(PipeField::kAnnotationOIDRef);
      CheckOwner(index, report, item, F(AnnotationField::kElementOIDRef),
                 IsElement, back, "pipe or node");
    } else if (IsCrossingAnno(item)) {
      CheckCrossingAnno(index, report, item);
    } else if (item.type == crossing::kCrossingPointLine) {
      CheckOwner(index, report, item, F(CrossingLineField::kAnnoOIDRef),
                 IsCrossingAnno, F(CrossingAnnoField::kLineOIDRef),
                 "crossing annotation");
    } else if (item.type == lowhigh::kLowHighPoint) {
      CheckOwner(index, report, item, F(LowHighField::kNodeOIDRef), IsNode,
                 F(NodeField::kLowHighOIDRef), "node");
    } else if (IsProfile(item)) {
      CheckProfile(index, report, item);
    } else if (item.type == profile::kPlanAnnoKind) {
      CheckOwner(index, report, item, F(PlanAnnoField::kProfileOIDRef),
                 IsProfile, F(ProfileField::kPlanAnnoOIDRef), "profile");
    }
  }
}

}  // namespace kestrana::check
