// View style records, the format array, number patterns, the settings
// dialog and the stored styles.
#include <gtest/gtest.h>

#include <set>

#include "core/project_record.h"
#include "memhost/session.h"
#include "styled_project.h"
#include "viewstyle/view_style_record.h"

namespace kestrana::viewstyle::test {
namespace {

using F = ViewStyleField;
using V = std::vector<std::string>;
constexpr int Index(F f) { return static_cast<int>(f); }

V Row(const core::TextTable& table, int row) {
  V cells;
  for (int c = 0; c < table.Columns(); ++c) cells.push_back(table(row, c));
  return cells;
}

TEST(ValidateViewStyleSettings, OldRecordsGetCoordinateItems) {
  ViewStyleSettings full = StandardViewStyle(true);
  EXPECT_EQ(ViewStyle::ValidateViewStyleSettings(full), full);
  ViewStyleSettings old(full.begin(), full.begin() + 41);
  ViewStyleSettings validated = ViewStyle::ValidateViewStyleSettings(old);
  ASSERT_EQ(validated.size(), 43u);
  EXPECT_EQ(V(validated.begin(), validated.begin() + 41), old);
  EXPECT_EQ(validated[41], "0;2;0");
  EXPECT_EQ(validated[42], "0;2;0");
  full.push_back("extra");
  EXPECT_THROW(ViewStyle::ValidateViewStyleSettings(full), std::out_of_range);
}

TEST(NumberPatterns, BySumOfPrecisionAndDecimals) {
  EXPECT_EQ(ViewStyle::GetDecimalsString("2", "1"), "###0.000");
  EXPECT_EQ(ViewStyle::GetDecimalsString("0", "0"), "###0");
  EXPECT_EQ(ViewStyle::GetDecimalsString("5", "0"), "###0.00000");
  EXPECT_EQ(ViewStyle::GetDecimalsString("3", "3"), "");
  EXPECT_EQ(ViewStyle::GetDecimalsString("-1", "0"), "");
  EXPECT_EQ(ViewStyle::GetDecimalsString("x", "1"), "###0.0");
  EXPECT_EQ(ViewStyle::GetPercentString("1", "1"), "###0.00%");
  EXPECT_EQ(ViewStyle::GetPercentString("2", "2"), "");
}

TEST(GetAnnotationFormatArray, EveryFormInItsColumns) {
  ViewStyleSettings s = StandardViewStyle(true);
  s[6] = "1;L=; m;2;1";
  s[8] = "1;S=;%;1;1;1";
  s[18] = "1";
  s[32] = "0";
  s[41] = "1;3;0";
  s[33] = "0;N:;";
  core::TextTable format = ViewStyle::GetAnnotationFormatArray(s);
  ASSERT_EQ(format.Rows(), 43);
  ASSERT_EQ(format.Columns(), 6);
  EXPECT_EQ(Row(format, 6), (V{"1", "L=", " m", "2", "###0.000", ""}));
  EXPECT_EQ(Row(format, 8), (V{"1", "S=", "%", "1", "1", "1"}));
  EXPECT_EQ(Row(format, 18), (V{"1", "", "", "", "", ""}));
  EXPECT_EQ(Row(format, 32), (V{"0", "", "", "", "", ""}));
  EXPECT_EQ(Row(format, 41), (V{"1", "3", "###0.000", "", "", ""}));
  EXPECT_EQ(Row(format, 33), (V{"0", "N:", "", "", "", ""}));
  EXPECT_EQ(Row(format, 3), (V{"Standard", "", "", "", "", ""}));
  EXPECT_EQ(Row(format, 4), (V{"2", "", "", "", "", ""}));
  for (int row : {0, 1, 2}) EXPECT_EQ(Row(format, row), V(6, "")) << row;
}

TEST(StandardViewStyle, EveryItemHasItsForm) {
  for (bool metric : {true, false}) {
    ViewStyleSettings s = StandardViewStyle(metric);
    ASSERT_EQ(s.size(), 43u);
    EXPECT_EQ(s[0], "Kestrana");
    EXPECT_EQ(s[1], "VSStandard");
    EXPECT_EQ(s[2], kViewStylePoint);
    EXPECT_GT(core::NumericValue(s[4]), 0);
    std::set<std::string> boxes;
    for (const ItemInfo& item : Items()) {
      V pieces = core::Split(s[item.field]);
      EXPECT_EQ(static_cast<int>(pieces.size()), PieceCount(item.form))
          << item.field << ": " << s[item.field];
      EXPECT_TRUE(pieces[0] == "0" || pieces[0] == "1") << item.field;
      boxes.insert(item.check_box);
    }
    EXPECT_EQ(boxes.size(), 38u);
    // Each kind shows its label; gravity pipes carry arrows.
    for (ElementKind kind : kElementKinds)
      EXPECT_EQ(core::Split(s[FirstItemField(kind)])[0], "1");
    EXPECT_EQ(s[18], "1");
  }
  EXPECT_EQ(ItemOfField(10).check_box, "chk_USInvertPipeGravity");
  EXPECT_EQ(ItemOfField(31).check_box, "chk_EndDepthPipePressure");
  EXPECT_EQ(ItemOfField(36).check_box, "chk_DepthNodeGravity");
  EXPECT_EQ(ItemOfField(42).check_box, "chk_CoordinatesNodePressure");
  EXPECT_EQ(ItemOfField(13).name, "downstream ground");
  EXPECT_EQ(ItemOfField(28).name, "start cover");
}

class StoredStyles : public StyledProject {
 protected:
  std::string Field1() {
    return core::ReadProjectRecord(*doc_).Text(core::ProjectField::kViewStyles);
  }
  void SetField1(const std::string& text) {
    core::Record project = core::ReadProjectRecord(*doc_);
    project.SetText(core::ProjectField::kViewStyles, text);
    core::WriteProjectRecord(*doc_, project);
  }
};

TEST_F(StoredStyles, TheActiveStyleIsTheMarkerCarryingItsName) {
  ViewStyleSettings standard =
      ViewStyle::GetActiveViewStyleSettingsArray(*doc_);
  EXPECT_EQ(standard, StandardViewStyle(true));
  ViewStyleSettings main = StandardViewStyle(true, "Main");
  main[4] = "3.5";
  // Stored without the coordinate items, as older drawings hold them.
  ViewStyleSettings main_old(main.begin(), main.begin() + 41);
  host::Point& point = doc_->ModelSpace().AddPoint({});
  host::XRecord items{{1001, "Kestrana"}};
  for (int i = 1; i < 41; ++i) items.push_back({1000, main_old[i]});
  point.SetXData(items);
  host::ObjectId first = ViewStyle::CreateViewStyle(*doc_, standard);
  SetField1("Main;x;" + core::IdText(first) + ";" +
            core::IdText(point.ObjectID()) + ";");
  EXPECT_EQ(ViewStyle::GetActiveViewStyleSettingsArray(*doc_), main);
  SetField1("Other;x;" + core::IdText(first) + ";");
  EXPECT_EQ(ViewStyle::GetActiveViewStyleSettingsArray(*doc_), V(43, ""));
}

TEST_F(StoredStyles, CreateUpdateAndActivateKeepField1InStep) {
  const std::string before = Field1();  // "Standard;11;<id>;"
  V pieces = core::Split(before);
  ASSERT_EQ(pieces.size(), 4u);
  EXPECT_EQ(pieces[1], "11");
  host::ObjectId old_marker = *core::ParseObjectId(pieces[2]);

  std::vector<ViewStyleSettings> styles = {StandardViewStyle(true),
                                           StandardViewStyle(true, "Plan"),
                                           StandardViewStyle(false, "Print")};
  ViewStyle::UpdateViewStylePoints(*doc_, styles, 3);
  core::ViewStylesField field = ReadStyleField(*doc_);
  EXPECT_EQ(field.active, "Standard");
  EXPECT_EQ(field.visibility, "11");
  ASSERT_EQ(field.markers.size(), 3u);
  EXPECT_THROW(doc_->ObjectIdToObject(old_marker), host::HostError);
  EXPECT_EQ(ReadViewStyles(*doc_), styles);
  for (const std::string& marker : field.markers) {
    auto& point = host::As<host::Point>(
        doc_->ObjectIdToObject(*core::ParseObjectId(marker)));
    EXPECT_FALSE(point.Visible());
    EXPECT_EQ(point.Layer(), "0");
    core::Record record = core::Record::ReadRequired(point);
    EXPECT_EQ(record.Code(core::Field::At(0)), 1001);
    for (int i = 1; i < record.Size(); ++i)
      EXPECT_EQ(record.Code(core::Field::At(i)), 1000);
  }

  // Only the count given is stored.
  ViewStyle::UpdateViewStylePoints(*doc_, styles, 2);
  EXPECT_EQ(ReadStyleField(*doc_).markers.size(), 2u);

  ViewStyle::UpdateMoSpaceXdataForViewStyle(*doc_, "Plan", "10");
  field = ReadStyleField(*doc_);
  EXPECT_EQ(Field1(),
            "Plan;10;" + field.markers[0] + ";" + field.markers[1] + ";");
  EXPECT_EQ(StyleNameOf(ViewStyle::GetActiveViewStyleSettingsArray(*doc_)),
            "Plan");

  ViewStyleSettings bad = styles[0];
  bad[0] = "Other";
  EXPECT_THROW(ViewStyle::CreateViewStyle(*doc_, bad), std::invalid_argument);
  EXPECT_THROW(ViewStyle::CreateViewStyle(*doc_, V(10, "Kestrana")),
               std::out_of_range);
  EXPECT_EQ(ReadStyleField(*doc_).markers.size(), 2u);
}

// The settings dialog, with every control it names.
class Dialog : public ::testing::Test {
 protected:
  void SetUp() override {
    memhost::MemComboBox& styles = form_.AddComboBox("cmb_TextStyle");
    for (const char* name : {"Standard", "Romans", "Arial"})
      styles.AddItem(name);
    form_.AddComboBox("cmb_StyleName");
    form_.AddTextBox("txt_TextHeight");
    form_.AddCommandButton("cmd_DeleteStyle");
    form_.AddCommandButton("cmd_RenameStyle");
    for (const ItemInfo& item : Items()) form_.AddCheckBox(item.check_box);
  }
  memhost::MemForm form_;
};

TEST_F(Dialog, ActivatingAStyleFillsEveryControl) {
  ViewStyleSettings plan = StandardViewStyle(true, "Plan");
  plan[3] = "Arial";
  plan[4] = "2.5";
  plan[6] = "1;L=; m;2;0";
  plan[18] = "0";
  plan[41] = "1;2;0";
  std::vector<ViewStyleSettings> styles = {StandardViewStyle(true), plan};
  ViewStyleSettings active;
  form_.GetComboBox("cmb_StyleName").SetText("Plan");
  ViewStyle::ActivateViewStyle("Plan", styles, form_, 2, active);
  EXPECT_EQ(active, plan);
  EXPECT_EQ(form_.GetComboBox("cmb_TextStyle").ListIndex(), 2);
  EXPECT_EQ(form_.GetTextBox("txt_TextHeight").Text(), "2.5");
  for (const ItemInfo& item : Items())
    EXPECT_EQ(form_.GetCheckBox(item.check_box).Value(),
              core::Split(plan[item.field])[0] == "1" ? 1 : 0)
        << item.check_box;
  EXPECT_EQ(form_.GetCheckBox("chk_LengthPipeGravity").Value(), 1);
  EXPECT_EQ(form_.GetCheckBox("chk_ArrowPipeGravity").Value(), 0);
  EXPECT_EQ(form_.GetCheckBox("chk_CoordinatesNodeGravity").Value(), 1);
  EXPECT_TRUE(form_.GetCommandButton("cmd_DeleteStyle").Enabled());
  EXPECT_TRUE(form_.GetCommandButton("cmd_RenameStyle").Enabled());

  // A text style the drawing lacks shows "Standard"; "2" shows as "2.0";
  // the Standard style cannot be deleted or renamed.
  styles[0][3] = "Gothic";
  form_.GetComboBox("cmb_StyleName").SetText("Standard");
  ViewStyle::ActivateViewStyle("Standard", styles, form_, 2, active);
  EXPECT_EQ(active, styles[0]);
  EXPECT_EQ(form_.GetComboBox("cmb_TextStyle").Text(), "Standard");
  EXPECT_EQ(form_.GetTextBox("txt_TextHeight").Text(), "2.0");
  EXPECT_EQ(form_.GetCheckBox("chk_ArrowPipeGravity").Value(), 1);
  EXPECT_FALSE(form_.GetCommandButton("cmd_DeleteStyle").Enabled());
  EXPECT_FALSE(form_.GetCommandButton("cmd_RenameStyle").Enabled());

  // Styles beyond the count are not looked at; the dialog is then filled
  // from what the caller held.
  ViewStyle::ActivateViewStyle("Plan", styles, form_, 1, active);
  EXPECT_EQ(active, styles[0]);
}

TEST_F(Dialog, AMissingControlIsTheHostsError) {
  memhost::MemForm bare;
  bare.AddComboBox("cmb_TextStyle");
  ViewStyleSettings active;
  EXPECT_THROW(ViewStyle::ActivateViewStyle(
                   "Standard", {StandardViewStyle(true)}, bare, 1, active),
               host::HostError);
}

}  // namespace
}  // namespace kestrana::viewstyle::test
