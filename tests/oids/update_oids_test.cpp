// Renewing stored object IDs: a drawing written in one session and opened
// in another, where every object got a new ID.
#include "oids/update_oids.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "commands/networks.h"
#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/project_record.h"
#include "core/record.h"
#include "core/references.h"
#include "core/text.h"
#include "dxf/reader.h"
#include "dxf/writer.h"
#include "editing/editing.h"
#include "host/host.h"
#include "memhost/document.h"
#include "support/drawn_lines.h"
#include "support/elements.h"
#include "support/network_elements.h"
#include "support/profile_fixture.h"

namespace kestrana::oids {
namespace {

using core::General;
using core::NodeField;
using core::PipeField;
using core::Record;

// Every record by handle, the project record under "project".
std::map<std::string, host::XRecord> Records(memhost::MemDocument& doc) {
  std::map<std::string, host::XRecord> records;
  for (host::Entity* e : doc.ModelSpace().Entities())
    if (auto record = Record::Read(*e)) records[e->Handle()] = record->Items();
  records["project"] = core::ReadProjectRecord(doc).Items();
  return records;
}

// The record with every ID of `from` (a whole ";"-piece, with or without
// "RelatedTo") put as it is called in `to`.
host::XRecord Translated(host::XRecord record,
                         const std::map<std::string, std::string>& ids) {
  for (host::XItem& item : record) {
    if (!item.value.IsText()) continue;
    const std::string text = item.value.Text();
    std::vector<std::string> pieces = core::Split(text);
    for (std::string& piece : pieces) {
      const bool related = piece.rfind("RelatedTo", 0) == 0;
      auto it = ids.find(related ? piece.substr(9) : piece);
      if (it != ids.end()) piece = (related ? "RelatedTo" : "") + it->second;
    }
    std::string joined;
    for (size_t i = 0; i < pieces.size(); ++i)
      joined += (i ? ";" : "") + pieces[i];
    item.value = host::XValue(joined);
  }
  return record;
}

class Renewal : public ::testing::Test {
 protected:
  // Sewers crossed by a main, annotated, with low and high points on the
  // main and a profile along two sewers.
  void SetUp() override {
    first_ = test::NewFullProjectDocument("Metric");
    commands::AddNetwork(*first_, {"Sewer", core::kGravity});
    commands::AddNetwork(*first_, {"Water", core::kPressure});
    auto convert = [&](const std::vector<std::vector<double>>& lines,
                       const std::string& network) {
      test::ConvertDrawn(*first_, lines, network,
                         network == "Sewer" ? core::kGravity : core::kPressure);
    };
    convert({{0, 0, 100, 0}, {100, 0, 200, 0}, {200, 0, 200, 80}}, "Sewer");
    convert({{50, -40, 50, 40}, {50, 40, 150, 40}, {150, 40, 150, -40}},
            "Water");
    test::ProfileSpec profile;
    profile.network = "Sewer";
    for (const char* label : {"P-1", "P-2"})
      profile.pipes.push_back(&static_cast<host::LwPolyline&>(
          test::ElementLabelled(*first_, "Sewer", "Pipe", label)));
    profile.directions = {"0", "0"};
    profile.y = 300;
    test::AddProfileBlock(*first_, profile);
  }

  // The drawing as the next session opens it: the same objects, new IDs.
  std::unique_ptr<memhost::MemDocument> Reopened() {
    auto doc = std::make_unique<memhost::MemDocument>(
        nullptr, memhost::Options{memhost::IdPolicy::kFresh, 7});
    dxf::ReadDxf(*doc, dxf::WriteDxf(*first_));
    return doc;
  }

  // Old ID text -> new ID text, object by object.
  std::map<std::string, std::string> IdsByHandle(memhost::MemDocument& next) {
    std::map<std::string, host::ObjectId> old_ids;
    for (host::Entity* e : first_->ModelSpace().Entities())
      old_ids[e->Handle()] = e->ObjectID();
    std::map<std::string, std::string> ids;
    for (host::Entity* e : next.ModelSpace().Entities())
      if (old_ids.count(e->Handle()))
        ids[core::IdText(old_ids[e->Handle()])] = core::IdText(e->ObjectID());
    return ids;
  }

  std::unique_ptr<memhost::MemDocument> first_;
};

TEST_F(Renewal, EveryLinkIsTheSameObjectUnderItsNewID) {
  auto next = Reopened();
  ASSERT_FALSE(UpdateOIDs::StoredIdsAreStale(*first_));
  ASSERT_TRUE(UpdateOIDs::StoredIdsAreStale(*next));
  const auto before = Records(*first_);
  const auto ids = IdsByHandle(*next);
  ASSERT_GT(ids.size(), 30u);
  EXPECT_NE(ids.begin()->first, ids.begin()->second);

  const int written = UpdateOIDs::UpdateObjectIDs(*next);
  EXPECT_FALSE(UpdateOIDs::StoredIdsAreStale(*next));
  const auto after = Records(*next);
  ASSERT_EQ(after.size(), before.size());
  int linked = 0;
  for (const auto& [handle, record] : before) {
    EXPECT_EQ(after.at(handle), Translated(record, ids)) << handle;
    linked += after.at(handle) != record;
  }
  // Records without links (the library markers, the view style) are not
  // written again.
  EXPECT_EQ(written, linked);
  EXPECT_GE(linked, static_cast<int>(before.size()) - 3);

  // What the links are followed for works again: the pipe's end nodes as a
  // selection set, and the node's pipes.
  host::Entity& pipe = test::ElementLabelled(*next, "Sewer", "Pipe", "P-2");
  Record p = Record::ReadRequired(pipe);
  std::string id_list;
  for (auto field : {PipeField::kStartNodeOID, PipeField::kEndNodeOID})
    for (const std::string& id : core::ReferenceValues(p.Text(field)))
      id_list += id + ";";
  host::SelectionSet& ends =
      General::ConvertOIDStringToSelectionSet(*next, id_list);
  ASSERT_EQ(ends.Count(), 2);
  EXPECT_EQ(
      General::EntityLabelFromCombined(
          Record::ReadRequired(ends.Item(0)).Text(NodeField::kCombinedLabel)),
      "N-2");

  // A second run finds nothing to do.
  EXPECT_EQ(UpdateOIDs::UpdateObjectIDs(*next), 0);
  EXPECT_EQ(Records(*next), after);
}

TEST_F(Renewal, ADrawingWhoseIDsHeldIsLeftAsItWas) {
  const auto before = Records(*first_);
  EXPECT_EQ(UpdateOIDs::UpdateObjectIDs(*first_), 0);
  EXPECT_EQ(Records(*first_), before);
}

TEST_F(Renewal, ReferencesToObjectsThatAreGoneAreDroppedInStep) {
  auto next = Reopened();
  host::Entity& main = test::ElementLabelled(*next, "Water", "Pipe", "P-1");
  host::Entity& node = test::ElementLabelled(*next, "Water", "Node", "N-1");
  Record main_before = Record::ReadRequired(main);
  const auto crossings =
      core::ReferenceValues(main_before.Text(PipeField::kCrossingRefs));
  ASSERT_EQ(crossings.size(), 1u);
  Record node_before = Record::ReadRequired(node);
  ASSERT_FALSE(node_before.Text(NodeField::kLowHighLabelRef).empty());
  ASSERT_FALSE(node_before.Text(NodeField::kAnnotationLabelRef).empty());

  // The main's crossing annotation, the node's low/high marker and its
  // annotation are erased while the IDs are stale (by their handles).
  const auto ids = IdsByHandle(*next);
  auto erase_linked = [&](const std::string& old_reference) {
    const std::string old_id = core::ReferenceValues(old_reference).at(0);
    core::EntityFromIdText(*next, ids.at(old_id)).Delete();
  };
  erase_linked(main_before.Text(PipeField::kCrossingOIDRefs));
  erase_linked(node_before.Text(NodeField::kLowHighOIDRef));
  erase_linked(node_before.Text(NodeField::kAnnotationOIDRef));

  UpdateOIDs::UpdateObjectIDs(*next);
  Record main_after = Record::ReadRequired(main);
  EXPECT_EQ(main_after.Text(PipeField::kCrossingRefs), "");
  EXPECT_EQ(main_after.Text(PipeField::kCrossingOIDRefs), "");
  Record node_after = Record::ReadRequired(node);
  for (auto field :
       {NodeField::kLowHighLabelRef, NodeField::kLowHighOIDRef,
        NodeField::kAnnotationLabelRef, NodeField::kAnnotationOIDRef})
    EXPECT_EQ(node_after.Text(field), "") << static_cast<int>(field);
  // The pipes at the node are untouched by that and renewed.
  EXPECT_EQ(node_after.Text(NodeField::kPipesAtStartLabels),
            node_before.Text(NodeField::kPipesAtStartLabels));
  EXPECT_EQ(&core::EntityFromReference(
                *next, node_after.Text(NodeField::kPipesAtStartOID)),
            &main);
}

TEST_F(Renewal, LockedLayersAreLockedAgain) {
  auto next = Reopened();
  next->GetLayers().Item("Sewer - Network").SetLock(true);
  EXPECT_GT(UpdateOIDs::UpdateObjectIDs(*next), 0);
  EXPECT_TRUE(next->GetLayers().Item("Sewer - Network").Lock());
  EXPECT_FALSE(UpdateOIDs::StoredIdsAreStale(*next));
  host::Entity& pipe = test::ElementLabelled(*next, "Sewer", "Pipe", "P-1");
  EXPECT_NO_THROW(core::EntityFromReference(
      *next, Record::ReadRequired(pipe).Text(PipeField::kStartNodeOID)));
}

}  // namespace
}  // namespace kestrana::oids
