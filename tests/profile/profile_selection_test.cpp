#include <gtest/gtest.h>

#include <random>

#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "core/references.h"
#include "core/text.h"
#include "host/host.h"
#include "memhost/document.h"
#include "profile/profile.h"
#include "support/network_elements.h"
#include "support/profile_fixture.h"

namespace kestrana::profile {
namespace {

using core::General;
using memhost::Input;

std::string Id(const host::Object& object) {
  return core::IdText(object.ObjectID());
}

// A sewer drawn west to east: N-1 (0,0) - N-2 (40,0) - N-3 (70,0) -
// N-4 (100,0), with a branch N-2 - N-5 (40,30). P-2 is drawn against the
// run (from N-3 to N-2).
class PipeRuns : public ::testing::Test {
 protected:
  void SetUp() override {
    General::CreateNetworkDefintion(*doc_, "Sewer", core::kGravity);
    General::CreateNetworkDefintion(*doc_, "Water", core::kPressure);
    test::NetworkElements sewer(*doc_, "Sewer");
    auto& n1 = sewer.AddNode("N-1", 0, 0, 102, 100);
    auto& n2 = sewer.AddNode("N-2", 40, 0, 102, 99.8);
    auto& n3 = sewer.AddNode("N-3", 70, 0, 102, 99.5);
    auto& n4 = sewer.AddNode("N-4", 100, 0, 102, 99.2);
    auto& n5 = sewer.AddNode("N-5", 40, 30, 102, 100.5);
    p1_ = &sewer.AddPipe("P-1", {0, 0, 40, 0}, n1, n2,
                         {.start_invert = 100, .end_invert = 99.8});
    p2_ = &sewer.AddPipe("P-2", {70, 0, 55, 5, 40, 0}, n3, n2,
                         {.start_invert = 99.5, .end_invert = 99.8});
    p3_ = &sewer.AddPipe("P-3", {70, 0, 100, 0}, n3, n4,
                         {.start_invert = 99.5, .end_invert = 99.2});
    p5_ = &sewer.AddPipe("P-5", {40, 30, 40, 0}, n5, n2,
                         {.start_invert = 100.5, .end_invert = 99.9});
    test::NetworkElements water(*doc_, "Water");
    w1_ = &water.AddPipeWithNodes("P-1", {0, 10, 100, 10});
  }

  host::SelectionSet& Set(const std::vector<host::LwPolyline*>& pipes) {
    host::SelectionSet& set = General::InitializeSelectionSet(*doc_, "Run");
    for (host::LwPolyline* pipe : pipes) set.AddItems({pipe});
    return set;
  }
  bool Connected(const std::vector<host::LwPolyline*>& pipes) {
    return Profile::CheckProfilePipesConnectivity(Set(pipes));
  }
  SortedPipes Sorted(const std::vector<host::LwPolyline*>& pipes, double x,
                     double y) {
    return Profile::GetSortedPipesArray(*doc_, Set(pipes), {x, y, 0});
  }

  std::unique_ptr<memhost::MemDocument> doc_ =
      test::NewFullProjectDocument("Metric");
  host::LwPolyline *p1_, *p2_, *p3_, *p5_, *w1_;
};

TEST_F(PipeRuns, OneUnbranchedOpenChainPasses) {
  EXPECT_TRUE(Connected({p1_}));
  EXPECT_TRUE(Connected({p1_, p2_}));
  EXPECT_TRUE(Connected({p3_, p1_, p2_})) << "in any order";
  EXPECT_FALSE(Connected({p1_, p2_, p5_})) << "three pipes at N-2";
  EXPECT_FALSE(Connected({p1_, p3_})) << "a gap between them";
  EXPECT_FALSE(Connected({}));
}

TEST_F(PipeRuns, RingsFailWithOrWithoutARunBeside) {
  test::NetworkElements sewer(*doc_, "Sewer");
  auto& a = sewer.AddNode("R-1", 0, 100);
  auto& b = sewer.AddNode("R-2", 10, 100);
  auto& c = sewer.AddNode("R-3", 5, 110);
  auto* r1 = &sewer.AddPipe("R-1", {0, 100, 10, 100}, a, b);
  auto* r2 = &sewer.AddPipe("R-2", {10, 100, 5, 110}, b, c);
  auto* r3 = &sewer.AddPipe("R-3", {5, 110, 0, 100}, c, a);
  EXPECT_FALSE(Connected({r1, r2, r3}));
  // Two end pipes are there, but the ring is not on the run.
  EXPECT_FALSE(Connected({p1_, p2_, r1, r2, r3}));
}

TEST_F(PipeRuns, ARunIsOrderedFromTheEndNearerThePoint) {
  const std::string labels = ";RelatedToP-1;RelatedToP-2;RelatedToP-3";
  const std::string ids = core::ReferenceEntry(Id(*p1_)) +
                          core::ReferenceEntry(Id(*p2_)) +
                          core::ReferenceEntry(Id(*p3_));
  // P-2 is drawn against the run: direction 1 from the west.
  EXPECT_EQ(Sorted({p3_, p2_, p1_}, -5, 3),
            (SortedPipes{labels, ids, ";0;1;0"}));
  EXPECT_EQ(Sorted({p1_, p2_, p3_}, 90, -20),
            (SortedPipes{";RelatedToP-3;RelatedToP-2;RelatedToP-1",
                         core::ReferenceEntry(Id(*p3_)) +
                             core::ReferenceEntry(Id(*p2_)) +
                             core::ReferenceEntry(Id(*p1_)),
                         ";1;0;1"}));
  // Halfway: the end pipe met first in the set is not strictly nearer, so
  // the run starts from the other end.
  EXPECT_EQ(Sorted({p1_, p2_, p3_}, 50, 0).labels,
            ";RelatedToP-3;RelatedToP-2;RelatedToP-1");
  EXPECT_EQ(Sorted({p3_, p2_, p1_}, 50, 0).labels, labels);
  // One pipe: from its end nearer the point.
  EXPECT_EQ(Sorted({p2_}, 71, 0).directions, ";0");
  EXPECT_EQ(Sorted({p2_}, 39, 0).directions, ";1");
  EXPECT_THROW(Sorted({p1_, p3_}, 0, 0), RefusedError);
}

TEST_F(PipeRuns, SelectionAsksForPipesOfTheNetworkAndTheStart) {
  memhost::Session& session = doc_->GetSession();
  session.ClearLog();
  session.Push(Input::Objects(
      {p3_->ObjectID(), p1_->ObjectID(), p2_->ObjectID(), w1_->ObjectID()}));
  session.Push(Input::PointAt(100, 0));
  const std::optional<SortedPipes> run =
      Profile::SelectPipesForProfile(*doc_, "Sewer");
  ASSERT_TRUE(run);
  EXPECT_EQ(run->labels, ";RelatedToP-3;RelatedToP-2;RelatedToP-1")
      << "the water pipe is not taken";
  EXPECT_EQ(
      session.Prompts(),
      (std::vector<std::string>{"Select profile pipes:", "SetPipesBySelection",
                                "Pick profile start point:"}));
  EXPECT_TRUE(session.Messages().empty());
  EXPECT_TRUE(session.Empty());
}

TEST_F(PipeRuns, ABranchedSelectionIsRefusedWithTheMessage) {
  memhost::Session& session = doc_->GetSession();
  session.ClearLog();
  session.Push(
      Input::Objects({p1_->ObjectID(), p2_->ObjectID(), p5_->ObjectID()}));
  EXPECT_FALSE(Profile::SelectPipesForProfile(*doc_, "Sewer"));
  EXPECT_EQ(session.Messages(),
            std::vector<std::string>{
                "The selected pipes don't represent a single continuous "
                "line!"});
  EXPECT_TRUE(session.Empty()) << "no start point is asked for";

  session.Push(Input::Objects({w1_->ObjectID()}));
  EXPECT_FALSE(Profile::SelectPipesForProfile(*doc_, "Sewer"))
      << "nothing of the network selected";
}

TEST_F(PipeRuns, TheStartIsWhereTheLowestOrHighestInvertLies) {
  const std::string ids = Id(*p1_) + ";" + Id(*p2_) + ";" + Id(*p3_) + ";";
  EXPECT_EQ(Profile::GetProfileStartFromDirection(*doc_, ids, 0),
            (host::Point3{100, 0, 0}));
  EXPECT_EQ(Profile::GetProfileStartFromDirection(*doc_, ids, 1),
            (host::Point3{0, 0, 0}));
  EXPECT_EQ(Profile::GetProfileStartFromDirection(*doc_, ";" + Id(*p2_), 0),
            (host::Point3{70, 0, 0}));
  EXPECT_THROW(Profile::GetProfileStartFromDirection(*doc_, "", 0),
               InvalidInputError);
}

// The documented connectivity test, every pipe counted against every
// other, plus the walk that every pipe must be reached by.
bool PlainOneRun(host::SelectionSet& set) {
  struct Ends {
    std::string start, end;
  };
  std::vector<Ends> pipes;
  for (host::Entity* pipe : set.Entities()) {
    const core::Record r = core::Record::ReadRequired(*pipe);
    pipes.push_back({r.Text(core::PipeField::kStartNodeLabel),
                     r.Text(core::PipeField::kEndNodeLabel)});
  }
  if (pipes.size() == 1) return true;
  int ends = 0, first_end = -1;
  std::string node;  // where the walk starts: the first end's free node
  for (size_t i = 0; i < pipes.size(); ++i) {
    int c1 = 0, c2 = 0;
    for (size_t j = 0; j < pipes.size(); ++j) {
      if (j == i) continue;
      c1 += pipes[j].start == pipes[i].start || pipes[j].end == pipes[i].start;
      c2 += pipes[j].start == pipes[i].end || pipes[j].end == pipes[i].end;
    }
    if (c1 > 1 || c2 > 1 || (c1 == 0 && c2 == 0)) return false;
    if ((c1 == 0) != (c2 == 0) && ends++ == 0) {
      first_end = static_cast<int>(i);
      node = c1 == 0 ? pipes[i].start : pipes[i].end;
    }
  }
  if (ends != 2) return false;
  std::vector<bool> taken(pipes.size(), false);
  size_t walked = 0;
  for (int at = first_end; at >= 0; ++walked) {
    taken[at] = true;
    node = pipes[at].start == node ? pipes[at].end : pipes[at].start;
    at = -1;
    for (size_t j = 0; j < pipes.size() && at < 0; ++j)
      if (!taken[j] && (pipes[j].start == node || pipes[j].end == node))
        at = static_cast<int>(j);
  }
  return walked == pipes.size();
}

TEST(PipeRunsGenerated, TheIndexedTestAgreesWithCountingEveryPair) {
  auto doc = test::NewFullProjectDocument("Metric");
  General::CreateNetworkDefintion(*doc, "Sewer", core::kGravity);
  test::NetworkElements sewer(*doc, "Sewer");
  std::mt19937 random(13);
  std::vector<host::BlockReference*> nodes;
  for (int i = 0; i < 12; ++i)
    nodes.push_back(&sewer.AddNode("N-" + std::to_string(i), 10.0 * (i % 4),
                                   10.0 * (i / 4)));
  std::vector<host::LwPolyline*> pipes;
  std::vector<std::pair<int, int>> joins;
  for (int k = 0; k < 20; ++k) {
    const int a = random() % 12, b = (a + 1 + random() % 11) % 12;
    const host::Point3 pa = nodes[a]->InsertionPoint();
    const host::Point3 pb = nodes[b]->InsertionPoint();
    pipes.push_back(&sewer.AddPipe("P-" + std::to_string(k),
                                   {pa.x, pa.y, pb.x, pb.y}, *nodes[a],
                                   *nodes[b]));
    joins.push_back({a, b});
  }
  int runs = 0;
  for (int trial = 0; trial < 400; ++trial) {
    host::SelectionSet& set = General::InitializeSelectionSet(*doc, "Trial");
    if (trial % 2 == 0) {
      // A random walk: often a run, sometimes a ring or a branch.
      int node = random() % 12;
      for (int step = 0, n = 1 + random() % 7; step < n; ++step) {
        std::vector<int> here;
        for (int k = 0; k < 20; ++k)
          if (joins[k].first == node || joins[k].second == node)
            here.push_back(k);
        if (here.empty()) break;
        const int k = here[random() % here.size()];
        set.AddItems({pipes[k]});
        node = joins[k].first == node ? joins[k].second : joins[k].first;
      }
    } else {
      for (int k = 0; k < 20; ++k)
        if (random() % 5 == 0) set.AddItems({pipes[k]});
    }
    if (set.Count() == 0) continue;
    const bool one_run = Profile::CheckProfilePipesConnectivity(set);
    ASSERT_EQ(one_run, PlainOneRun(set)) << "trial " << trial;
    if (!one_run) continue;
    ++runs;
    // The ordered run holds every pipe once, each meeting the next.
    const SortedPipes sorted = Profile::GetSortedPipesArray(*doc, set, {});
    const std::vector<std::string> ids = core::ReferenceValues(sorted.oids);
    const std::vector<std::string> directions = core::Split(sorted.directions);
    ASSERT_EQ(ids.size(), static_cast<size_t>(set.Count()));
    std::string at;
    for (size_t i = 0; i < ids.size(); ++i) {
      const core::Record r =
          core::Record::ReadRequired(core::EntityFromIdText(*doc, ids[i]));
      std::string from = r.Text(core::PipeField::kStartNodeLabel);
      std::string to = r.Text(core::PipeField::kEndNodeLabel);
      if (directions[i + 1] == "1") std::swap(from, to);
      if (i > 0) {
        EXPECT_EQ(from, at) << "trial " << trial;
      }
      at = to;
    }
  }
  EXPECT_GT(runs, 50) << "the trials should hold runs to order";
}

TEST(ManholeLines, LineNamesComeFromTheLabels) {
  EXPECT_EQ(Profile::GetManholeLineName("MH-A12"), "A");
  EXPECT_EQ(Profile::GetManholeLineName("M.H.7"), "Main");
  EXPECT_EQ(Profile::GetManholeLineName("B12"), "B");
  EXPECT_EQ(Profile::GetManholeLineName("MH_C.4"), "C");
  EXPECT_EQ(Profile::GetManholeLineName("mh/D-3"), "D");
  EXPECT_EQ(Profile::GetManholeLineName("A.12A"), "AA")
      << "a lettered manhole keeps its letter";
  EXPECT_EQ(Profile::GetManholeLineName("M_H-E.7"), "-E")
      << "M_H- is not one of the four-character prefixes; M_H is";
  EXPECT_EQ(Profile::GetManholeLineName("MH12"), "Main");
  EXPECT_EQ(Profile::GetManholeLineName(""), "Main");
  EXPECT_EQ(Profile::GetManholeLabelDelimiter("A/1-2"), "-");
  EXPECT_EQ(Profile::GetManholeLabelDelimiter("A12"), "");
}

TEST(ManholeLines, GravityLinesAreTheContinuousOnes) {
  auto doc = test::NewFullProjectDocument("Metric");
  General::CreateNetworkDefintion(*doc, "Sewer", core::kGravity);
  test::NetworkElements sewer(*doc, "Sewer");
  // Line A: A1 - A2 - A3 - OUT; line B: B1 - A2 and B2 - A3 (a branchy
  // "line" of two separate pipes).
  auto& a1 = sewer.AddNode("MH-A1", 0, 0);
  auto& a2 = sewer.AddNode("MH-A2", 10, 0);
  auto& a3 = sewer.AddNode("MH-A3", 20, 0);
  auto& out = sewer.AddNode("OUT", 30, 0);
  auto& b1 = sewer.AddNode("MH-B1", 10, 10);
  auto& b2 = sewer.AddNode("MH-B2", 20, 10);
  auto& p1 = sewer.AddPipe("P-1", {0, 0, 10, 0}, a1, a2);
  auto& p2 = sewer.AddPipe("P-2", {10, 0, 20, 0}, a2, a3);
  sewer.AddPipe("P-3", {10, 10, 10, 0}, b1, a2);
  auto& p4 = sewer.AddPipe("P-4", {20, 0, 30, 0}, a3, out);
  sewer.AddPipe("P-5", {20, 10, 20, 0}, b2, a3);
  const std::vector<GravityLine> expected{
      {"A", Id(p1) + ";" + Id(p2) + ";" + Id(p4) + ";"}};
  EXPECT_EQ(Profile::GetGravityLineNames(*doc, "Sewer"), expected);
}

TEST(ProfileDefinitions, RowsAreAddedFoundAndDeleted) {
  std::optional<ProfileDefinitions> rows;
  EXPECT_FALSE(Profile::CheckProfileNameExists(rows, "P1", "Sewer"));
  rows = Profile::AddProfileToProfileDefArray(rows, "P1", "Sewer", "11");
  rows = Profile::AddProfileToProfileDefArray(rows, "P2", "Sewer", "12");
  rows = Profile::AddProfileToProfileDefArray(rows, "P1", "Storm", "13");
  ASSERT_EQ(rows->Rows(), 3);
  EXPECT_EQ((*rows)(1, 0), "P2");
  EXPECT_EQ((*rows)(2, 2), "13");
  EXPECT_TRUE(Profile::CheckProfileNameExists(rows, "p1", "Sewer"));
  EXPECT_FALSE(Profile::CheckProfileNameExists(rows, "P1", "sewer"));
  EXPECT_EQ(Profile::GetProfileOIDFromProfileDefArray(rows, "P1", "Storm"),
            "13");
  EXPECT_EQ(Profile::GetProfileOIDFromProfileDefArray(rows, "p1", "Storm"),
            std::nullopt);
  rows = Profile::AddProfileToProfileDefArray(rows, "P1", "Storm", "14");
  EXPECT_EQ(Profile::GetProfileOIDFromProfileDefArray(rows, "P1", "Storm"),
            "14")
      << "the last of two rows";

  rows = Profile::DeleteProfileFromProfileDefArray(rows, "12");
  ASSERT_EQ(rows->Rows(), 3);
  EXPECT_EQ((*rows)(1, 2), "13");
  rows = Profile::DeleteProfileFromProfileDefArray(rows, "99");
  EXPECT_EQ(rows->Rows(), 3) << "no row of another block is lost";
  rows = Profile::DeleteProfileFromProfileDefArray(rows, "13");
  rows = Profile::DeleteProfileFromProfileDefArray(rows, "14");
  ASSERT_EQ(rows->Rows(), 1);
  EXPECT_EQ(Profile::DeleteProfileFromProfileDefArray(rows, "11"),
            std::nullopt);
}

TEST(ProfileDefinitions, TheDrawingsProfilesAreListedThroughTheirStyles) {
  auto doc = test::NewFullProjectDocument("Metric");
  General::CreateNetworkDefintion(*doc, "Sewer", core::kGravity);
  EXPECT_EQ(Profile::GetProfileDefinitionsArray(*doc), std::nullopt);
  auto& main =
      test::AddProfileBlock(*doc, {.name = "Main", .network = "Sewer"});
  auto& side =
      test::AddProfileBlock(*doc, {.name = "Side", .network = "Storm"});
  const std::optional<ProfileDefinitions> rows =
      Profile::GetProfileDefinitionsArray(*doc);
  ASSERT_TRUE(rows);
  ProfileDefinitions expected(2, 3);
  expected(0, 0) = "Main";
  expected(0, 1) = "Sewer";
  expected(0, 2) = Id(main);
  expected(1, 0) = "Side";
  expected(1, 1) = "Storm";
  expected(1, 2) = Id(side);
  EXPECT_EQ(*rows, expected);
}

}  // namespace
}  // namespace kestrana::profile
