#include <string>
#include <vector>

#include "core/general.h"
#include "core/lists.h"
#include "core/messages.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "core/references.h"
#include "core/text.h"
#include "core/values.h"
#include "crossing/crossing.h"
#include "crossing/crossing_record.h"
#include "editing/editing.h"
#include "host/host.h"
#include "library/library.h"
#include "profile/profile.h"
#include "profile/profile_record.h"
#include "viewstyle/view_style.h"

namespace kestrana::editing {

namespace {

using core::General;
using core::NodeField;
using core::PipeField;
using core::Record;

bool IsPipe(const host::Entity& entity) {
  const std::string type = General::GetElementType(entity);
  return type == core::kGravityPipe || type == core::kPressurePipe;
}

// The list with every entry `from` turned into `to` (";"-led entries).
std::string Replaced(const std::string& list, const std::string& from,
                     const std::string& to) {
  std::vector<std::string> pieces = core::Split(list);
  std::string out;
  for (size_t i = 1; i < pieces.size(); ++i)
    out += ";" + (pieces[i] == from ? to : pieces[i]);
  return out;
}

}  // namespace

bool Editing::GetSplitPipeAndPoint(host::Document& document,
                                   host::Entity*& split_pipe_entity,
                                   host::Point3& split_point) {
  try {
    document.SendCommand(core::kEscape);
    host::EntityPick pick = document.GetUtility().GetEntity(kSplitPipePrompt);
    while (pick.entity == nullptr || !IsPipe(*pick.entity)) {
      core::ShowMessage(document, kNotAPipeMessage, host::msgbox::kCritical);
      pick = document.GetUtility().GetEntity(kSplitPipePrompt);
    }
    const auto& pipe = host::As<host::LwPolyline>(*pick.entity);
    document.SendCommand(core::kEscape);
    while (true) {
      const host::Point3 point =
          document.GetUtility().GetPoint(std::nullopt, kSplitPointPrompt);
      const int16_t on = General::PointIsOnPolyline(point, pipe);
      if (on == 2) {
        split_pipe_entity = pick.entity;
        split_point = point;
        return true;
      }
      core::ShowMessage(document,
                        on == 1 ? kPointAtPipeEndMessage : kPointOffPipeMessage,
                        host::msgbox::kCritical);
    }
  } catch (const host::HostError& e) {
    if (e.code() == host::ErrorCode::kUserCancelled) return false;
    throw;
  }
}

void Editing::CreateSplitEntities(host::Document& document,
                                  host::Entity& split_pipe_entity,
                                  const host::Point3& split_point,
                                  host::LwPolyline*& new_pipe_entity1,
                                  host::LwPolyline*& new_pipe_entity2,
                                  host::BlockReference*& new_node_entity) {
  const auto& pipe = host::As<host::LwPolyline>(split_pipe_entity);
  const std::vector<double> xy = pipe.Coordinates();
  const size_t k =
      static_cast<size_t>(General::GetNodeIndexOnPolyline(pipe, split_point));
  std::vector<double> first(xy.begin(),
                            xy.begin() + static_cast<std::ptrdiff_t>(2 * k));
  first.insert(first.end(), {split_point.x, split_point.y});
  std::vector<double> second = {split_point.x, split_point.y};
  second.insert(second.end(), xy.begin() + static_cast<std::ptrdiff_t>(2 * k),
                xy.end());
  host::Block& space = document.ModelSpace();
  new_pipe_entity1 = &space.AddLightWeightPolyline(first);
  new_pipe_entity2 = &space.AddLightWeightPolyline(second);
  new_node_entity = &space.InsertBlock({split_point.x, split_point.y, 0},
                                       core::kNodeBlock, 1, 1, 1, 0);
  const std::string layer = split_pipe_entity.Layer();
  new_pipe_entity1->SetLayer(layer);
  new_pipe_entity2->SetLayer(layer);
  new_node_entity->SetLayer(layer);
}

void Editing::AssignSplitXdata(host::Document& document,
                               host::Entity& split_pipe_entity,
                               const host::Point3& split_point,
                               host::Entity& new_pipe_entity1,
                               host::Entity& new_pipe_entity2,
                               host::Entity& new_node_entity) {
  const Record a = core::ReadRecordWithFields(split_pipe_entity,
                                              core::kPipeRecordLength, "pipe");
  const std::string combined = a.Text(PipeField::kCombinedLabel);
  const std::string network = General::EntityNetworkFromCombined(combined);
  const std::string label = General::EntityLabelFromCombined(combined);
  const std::string type = a.Text(PipeField::kElementType);
  const std::string new_pipe_label = GetNextLabel(document, network, type);
  const std::string node_label =
      GetNextLabel(document, network, General::GetNodeTypeFromPipeType(type));

  const auto& pipe = host::As<host::LwPolyline>(split_pipe_entity);
  const double t =
      General::GetPointStationOnPolyline(pipe.Coordinates(), split_point);
  const double length = pipe.Length();
  auto at_point = [&](double start, double end) {
    return length > 0 ? start + (end - start) * t / length : start;
  };
  const double invert = at_point(a.Number(PipeField::kStartInvert),
                                 a.Number(PipeField::kEndInvert));
  const std::string s_id = core::SingleReference(a, PipeField::kStartNodeOID);
  const std::string e_id = core::SingleReference(a, PipeField::kEndNodeOID);
  auto ground_at = [&](const std::string& id) {
    const std::optional<host::ObjectId> oid = core::ParseObjectId(id);
    return oid ? General::GetGroundLevelAtNode(document, *oid) : 0.0;
  };
  const double ground = at_point(ground_at(s_id), ground_at(e_id));

  const std::string a_id = core::IdText(split_pipe_entity.ObjectID());
  const std::string a1_id = core::IdText(new_pipe_entity1.ObjectID());
  const std::string a2_id = core::IdText(new_pipe_entity2.ObjectID());
  const std::string k_id = core::IdText(new_node_entity.ObjectID());

  Record a1 = a;
  a1.SetReal(PipeField::kEndInvert, invert);
  a1.SetText(PipeField::kEndNodeLabel, core::ReferenceEntry(node_label));
  a1.SetText(PipeField::kEndNodeOID, core::ReferenceEntry(k_id));
  a1.SetText(PipeField::kCrossingRefs, "");
  a1.SetText(PipeField::kCrossingOIDRefs, "");
  a1.Write(new_pipe_entity1);

  Record a2 = a;
  a2.SetText(
      PipeField::kCombinedLabel,
      core::CombinedLabel{core::kPipeKind, network, new_pipe_label}.Format());
  a2.SetReal(PipeField::kStartInvert, invert);
  a2.SetText(PipeField::kStartNodeLabel, core::ReferenceEntry(node_label));
  a2.SetText(PipeField::kStartNodeOID, core::ReferenceEntry(k_id));
  a2.SetText(PipeField::kCrossingRefs, "");
  a2.SetText(PipeField::kCrossingOIDRefs, "");
  a2.Write(new_pipe_entity2);

  std::optional<Record> s_record;
  if (!s_id.empty()) {
    host::Entity& s = core::EntityFromIdText(document, s_id);
    Record record = Record::ReadRequired(s);
    record.SetText(NodeField::kPipesAtStartOID,
                   Replaced(record.Text(NodeField::kPipesAtStartOID),
                            core::RelatedTo(a_id), core::RelatedTo(a1_id)));
    record.Write(s);
    s_record = record;
  }
  if (!e_id.empty()) {
    host::Entity& e = core::EntityFromIdText(document, e_id);
    Record record = Record::ReadRequired(e);
    record.SetText(NodeField::kPipesAtEndOID,
                   Replaced(record.Text(NodeField::kPipesAtEndOID),
                            core::RelatedTo(a_id), core::RelatedTo(a2_id)));
    record.SetText(
        NodeField::kPipesAtEndLabels,
        Replaced(record.Text(NodeField::kPipesAtEndLabels),
                 core::RelatedTo(label), core::RelatedTo(new_pipe_label)));
    record.Write(e);
  }

  // The new node is a copy of the start node, so it takes its kind and
  // matching rule.
  Record k = s_record ? *s_record : Record::WithCodes(core::kNodeRecordCodes);
  if (!s_record) {
    k.SetText(NodeField::kElementType, General::GetNodeTypeFromPipeType(type));
  }
  k.SetText(NodeField::kCombinedLabel,
            core::CombinedLabel{core::kNodeKind, network, node_label}.Format());
  k.SetText(NodeField::kPipesAtStartLabels,
            core::ReferenceEntry(new_pipe_label));
  k.SetText(NodeField::kPipesAtEndLabels, core::ReferenceEntry(label));
  k.SetText(NodeField::kPipesAtStartOID, core::ReferenceEntry(a2_id));
  k.SetText(NodeField::kPipesAtEndOID, core::ReferenceEntry(a1_id));
  k.SetReal(NodeField::kGroundLevel, ground);
  k.SetReal(NodeField::kSumpLevel, invert);
  for (auto field :
       {NodeField::kAnnotationLabelRef, NodeField::kAnnotationOIDRef,
        NodeField::kLowHighLabelRef, NodeField::kLowHighOIDRef})
    k.SetText(field, "");
  k.Write(new_node_entity);

  const double correction = General::GetCorrectionAngleForCS(document);
  for (host::Entity* entity :
       {&new_pipe_entity1, &new_pipe_entity2, &new_node_entity})
    viewstyle::ViewStyle::InsertAnnotationsForNewEntity(document, *entity,
                                                        correction);
}

void Editing::UpdateLibrariesAfterSplitting(host::Document& document,
                                            host::Entity& split_pipe_entity) {
  host::SelectionSet& set =
      General::InitializeSelectionSet(document, "SplitPipeSet");
  set.AddItems({&split_pipe_entity});
  library::Library::UpdateLibrariesForPipes(document, set, 1);
  set.Delete();
}

void Editing::UpdateCrossingsAfterSplitting(host::Document& document,
                                            host::Entity& split_pipe_entity,
                                            host::Entity& new_pipe_entity1,
                                            host::Entity& new_pipe_entity2) {
  using F = crossing::CrossingAnnoField;
  const Record a = Record::ReadRequired(split_pipe_entity);
  const std::string a_ref =
      core::ReferenceEntry(core::IdText(split_pipe_entity.ObjectID()));
  for (const std::string& id :
       core::ReferenceValues(a.Text(PipeField::kCrossingOIDRefs))) {
    host::Entity& annotation = core::EntityFromIdText(document, id);
    Record record = Record::ReadRequired(annotation);
    const std::string label =
        General::EntityLabelFromCombined(record.Text(F::kCombinedLabel));
    const host::Point3 point =
        core::CrossingPoint::Parse(record.Text(F::kPoint)).ToPoint();
    host::Entity& owner =
        General::CheckPointOnPolyline(
            point, host::As<host::LwPolyline>(new_pipe_entity1))
            ? new_pipe_entity1
            : new_pipe_entity2;
    Record pipe = Record::ReadRequired(owner);
    core::AddLink(pipe, core::kCrossingLinks, label, id);
    pipe.Write(owner);
    const std::string owner_ref =
        core::ReferenceEntry(core::IdText(owner.ObjectID()));
    if (record.Text(F::kPipe1OIDRef) == a_ref)
      record.SetText(F::kPipe1OIDRef, owner_ref);
    else if (record.Text(F::kPipe2OIDRef) == a_ref)
      record.SetText(F::kPipe2OIDRef, owner_ref);
    record.Write(annotation);
    crossing::Crossing::UpdateCrossingData(document, annotation);
  }
}

void Editing::UpdateProfilesAfterSplitting(host::Document& document,
                                           host::Entity& split_pipe_entity,
                                           host::Entity& new_pipe_entity1,
                                           host::Entity& new_pipe_entity2) {
  const Record a = Record::ReadRequired(split_pipe_entity);
  const std::string a_id = core::IdText(split_pipe_entity.ObjectID());
  auto label_of = [](host::Entity& pipe) {
    return General::EntityLabelFromCombined(
        Record::ReadRequired(pipe).Text(PipeField::kCombinedLabel));
  };
  const std::string label1 = label_of(new_pipe_entity1);
  const std::string label2 = label_of(new_pipe_entity2);
  const std::string id1 = core::IdText(new_pipe_entity1.ObjectID());
  const std::string id2 = core::IdText(new_pipe_entity2.ObjectID());
  for (const std::string& profile_oid :
       core::ReferenceValues(a.Text(PipeField::kProfileOIDRefs))) {
    host::Entity& block = core::EntityFromIdText(document, profile_oid);
    Record record = core::ReadRecordWithFields(
        block, profile::kProfileRecordLength, "profile");
    const profile::PipeChain chain = profile::ReadPipeChain(record);
    profile::PipeChain split_chain;
    auto add = [&](const std::string& label, const std::string& id,
                   const std::string& direction) {
      split_chain.labels.push_back(label);
      split_chain.ids.push_back(id);
      split_chain.directions.push_back(direction);
    };
    for (size_t i = 0; i < chain.ids.size(); ++i) {
      const std::string& direction = chain.directions[i];
      if (chain.ids[i] != a_id) {
        add(chain.labels[i], chain.ids[i], direction);
      } else if (direction == profile::kAlong) {
        add(label1, id1, direction);
        add(label2, id2, direction);
      } else {
        add(label2, id2, direction);
        add(label1, id1, direction);
      }
    }
    profile::WritePipeChain(record, split_chain);
    record.Write(block);
    profile::Profile::FlagProfileForUpdate(document, profile_oid);
  }
}

void Editing::DeleteSplitPipe(host::Document& document,
                              host::Entity& split_pipe_entity) {
  const Record a = Record::ReadRequired(split_pipe_entity);
  core::EraseIfPresent(document,
                       core::SingleReference(a, PipeField::kAnnotationOIDRef));
  core::EraseIfPresent(document,
                       core::SingleReference(a, PipeField::kArrowOIDRef));
  split_pipe_entity.Delete();
}

}  // namespace kestrana::editing
