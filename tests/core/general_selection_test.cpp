#include <gtest/gtest.h>

#include "core/general.h"
#include "core/lists.h"
#include "memhost/document.h"

namespace kestrana::core {
namespace {

int SetsNamed(host::Document& doc, const std::string& name) {
  int count = 0;
  host::SelectionSets& sets = doc.GetSelectionSets();
  for (int i = 0; i < sets.Count(); ++i) count += sets.Item(i).Name() == name;
  return count;
}

TEST(SelectionSets, InitializingTwiceLeavesOneEmptySet) {
  memhost::MemDocument doc;
  host::Entity& line = doc.ModelSpace().AddLine({}, {1, 0, 0});
  host::SelectionSet& first = General::InitializeSelectionSet(doc, "Work");
  first.AddItems({&line});
  General::InitializeSelectionSet(doc, "Other");
  host::SelectionSet& second = General::InitializeSelectionSet(doc, "Work");
  EXPECT_EQ(second.Count(), 0);
  EXPECT_EQ(SetsNamed(doc, "Work"), 1);
  EXPECT_EQ(SetsNamed(doc, "Other"), 1);
  EXPECT_TRUE(General::SelectionSetToArray(second).empty());
  EXPECT_EQ(General::ConvertSelectionSetToOIDArray(second),
            std::vector<std::string>{""});
  // The host's set names ignore letter case: "work" replaces "Work".
  General::InitializeSelectionSet(doc, "work").AddItems({&line});
  EXPECT_EQ(doc.GetSelectionSets().Count(), 2);
  EXPECT_EQ(General::InitializeSelectionSet(doc, "WORK").Count(), 0);
}

TEST(SelectionSets, ObjectIdStringsBothWays) {
  memhost::MemDocument doc;
  host::Block& ms = doc.ModelSpace();
  host::Entity& a = ms.AddLine({}, {1, 0, 0});
  host::Entity& b = ms.AddCircle({}, 1);
  host::Entity& gone = ms.AddCircle({}, 2);
  std::string gone_id = IdText(gone.ObjectID());
  gone.Delete();
  std::string layer_id = IdText(doc.GetLayers().Item("0").ObjectID());
  std::string list = IdListEntry(b.ObjectID()) + "abc;;" + gone_id + ";" +
                     layer_id + ";12.5;" + IdListEntry(a.ObjectID()) +
                     IdListEntry(b.ObjectID());

  host::SelectionSet& set = General::ConvertOIDStringToSelectionSet(doc, list);
  EXPECT_EQ(set.Name(), "TempSet");
  EXPECT_EQ(General::SelectionSetToArray(set),
            (std::vector<host::Entity*>{&b, &a}));
  EXPECT_EQ(
      General::ConvertSelectionSetToOIDArray(set),
      (std::vector<std::string>{IdText(b.ObjectID()), IdText(a.ObjectID())}));
  EXPECT_EQ(General::ConvertOIDStringToSelectionSet(doc, "").Count(), 0);
  EXPECT_EQ(SetsNamed(doc, "TempSet"), 1);
}

}  // namespace
}  // namespace kestrana::core
