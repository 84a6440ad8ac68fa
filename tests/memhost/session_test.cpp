#include <gtest/gtest.h>

#include "memhost/document.h"
#include "memhost/text_metrics.h"
#include "support/host_errors.h"

namespace kestrana::memhost {
namespace {

using host::ErrorCode;
using host::HostError;

using test::CodeOf;

TEST(Session, PromptsConsumeScriptedInputInOrder) {
  MemDocument doc;
  auto& line = doc.ModelSpace().AddLine({0, 0, 0}, {1, 0, 0});
  Session& s = doc.GetSession();
  s.Push(Input::EntityAt(line.ObjectID(), {0.5, 0, 0}));
  s.Push(Input::PointAt(0.25, 0));
  s.Push(Input::Cancel());
  auto& u = doc.GetUtility();
  doc.SendCommand("\x1b");
  auto pick = u.GetEntity("Select pipe to split:");
  EXPECT_EQ(pick.entity, &static_cast<host::Entity&>(line));
  EXPECT_EQ(pick.pick_point.x, 0.5);
  EXPECT_EQ(u.GetPoint(std::nullopt, "Pick split point:").x, 0.25);
  EXPECT_EQ(
      CodeOf([&] { u.GetPoint(std::nullopt, "Pick profile start point:"); }),
      ErrorCode::kUserCancelled);
  EXPECT_EQ(CodeOf([&] { u.GetPoint(std::nullopt, "again"); }),
            ErrorCode::kNoInput);
  EXPECT_EQ(s.Prompts(), (std::vector<std::string>{
                             "Select pipe to split:", "Pick split point:",
                             "Pick profile start point:", "again"}));
  ASSERT_FALSE(s.Log().empty());
  EXPECT_EQ(s.Log()[0].kind, LogEntry::Kind::kCommand);
  EXPECT_EQ(s.Log()[0].text, "\x1b");
}

TEST(Session, OnScreenSelectionAppliesTheCallersFilter) {
  MemDocument doc;
  auto& ms = doc.ModelSpace();
  auto& a = ms.AddLine({0, 0, 0}, {1, 0, 0});
  auto& b = ms.AddCircle({0, 0, 0}, 1);
  auto& c = ms.AddLightWeightPolyline({0, 0, 5, 5});
  doc.GetSession().Push(
      Input::Objects({a.ObjectID(), b.ObjectID(), c.ObjectID()}));
  doc.GetSession().Push(Input::Cancel());
  doc.GetSession().Push(Input::Window({-1, -1, 0}, {2, 2, 0}));
  auto& set = doc.GetSelectionSets().Add("SetEntitiesToConvert");
  host::Filter convertible{
      {-4, "<or"}, {0, "LWPOLYLINE"}, {0, "LINE"}, {-4, "or>"}};
  set.SelectOnScreen(convertible);
  EXPECT_EQ(set.Count(), 2);
  set.Clear();
  set.SelectOnScreen(convertible);  // cancelled: nothing picked, no error
  EXPECT_EQ(set.Count(), 0);
  set.SelectOnScreen(convertible);  // window holds the line only
  EXPECT_EQ(set.Count(), 1);
  EXPECT_EQ(&set.Item(0), &static_cast<host::Entity&>(a));
  doc.GetSession().Push(Input::Objects({999}));
  EXPECT_EQ(CodeOf([&] { set.SelectOnScreen({}); }), ErrorCode::kNoSuchObject);
}

TEST(Session, MessageBoxesAreAnsweredAndRecorded) {
  MemApplication app;
  app.GetSession().Push(Input::Answer(host::msgbox::kAnswerNo));
  EXPECT_EQ(app.MessageBox("Overwrite?", host::msgbox::kYesNo, 48, "Kestrana"),
            host::msgbox::kAnswerNo);
  EXPECT_EQ(app.MessageBox("Done", host::msgbox::kOk, 64, "Kestrana"),
            host::msgbox::kAnswerOk);
  app.SetDefaultAnswer(host::msgbox::kYesNo, host::msgbox::kAnswerNo);
  EXPECT_EQ(app.MessageBox("Again?", host::msgbox::kYesNo, 48, "Kestrana"),
            host::msgbox::kAnswerNo);
  ASSERT_EQ(app.GetSession().Log().size(), 3u);
  EXPECT_EQ(app.GetSession().Log()[1].icon, 64);
  EXPECT_EQ(app.GetSession().Messages()[0], "Overwrite?");
}

TEST(Session, CivilApplicationOnlyUnderTheMatchingIdentifier) {
  MemApplication app;
  EXPECT_EQ(app.Version(), "17.1s (LMS Tech)");
  EXPECT_NO_THROW(app.GetInterfaceObject("AeccXUiLand.AeccApplication.5.0"));
  EXPECT_EQ(CodeOf([&] {
              app.GetInterfaceObject("AeccXUiLand.AeccApplication.6.0");
            }),
            ErrorCode::kNoSuchKey);
  app.SetVersion("17.2 (x)");
  EXPECT_NO_THROW(app.GetInterfaceObject("AeccXUiLand.AeccApplication.6.0"));
  app.SetVersion("18.0");
  EXPECT_EQ(CodeOf([&] { app.GetInterfaceObject(""); }), ErrorCode::kNoSuchKey);
  app.SetVersion("17.1");
  app.SetCivilInstalled(false);
  EXPECT_EQ(CodeOf([&] {
              app.GetInterfaceObject("AeccXUiLand.AeccApplication.5.0");
            }),
            ErrorCode::kNoSuchKey);
}

TEST(Surface, ElevationsInsideOnEdgesAndOutside) {
  // Two triangles over the unit square; z = x + 2y is linear, so any point
  // inside must give exactly that.
  MemSurface s("EG", {{0, 0, 0}, {10, 0, 10}, {10, 10, 30}, {0, 10, 20}},
               {{0, 1, 2}, {0, 2, 3}});
  EXPECT_NEAR(s.FindElevationAtXY(2, 1), 4, 1e-9);
  EXPECT_NEAR(s.FindElevationAtXY(7, 9), 25, 1e-9);
  EXPECT_NEAR(s.FindElevationAtXY(5, 5), 15, 1e-9);    // on the shared edge
  EXPECT_NEAR(s.FindElevationAtXY(10, 10), 30, 1e-9);  // a corner
  EXPECT_NEAR(s.FindElevationAtXY(0, 5), 10, 1e-9);    // an outer edge
  EXPECT_EQ(CodeOf([&] { s.FindElevationAtXY(10.001, 5); }),
            ErrorCode::kOutsideSurface);
  MemSurface empty("None", {}, {});
  EXPECT_EQ(CodeOf([&] { empty.FindElevationAtXY(0, 0); }),
            ErrorCode::kOutsideSurface);
  EXPECT_THROW(MemSurface("Bad", {{0, 0, 0}}, {{0, 1, 2}}), HostError);
}

TEST(Surface, LargeGridAgreesWithThePlane) {
  std::vector<Point3> pts;
  std::vector<std::array<int, 3>> tris;
  const int n = 120;
  for (int j = 0; j <= n; ++j)
    for (int i = 0; i <= n; ++i) pts.push_back({i * 1.0, j * 1.0, 3.0 * i - j});
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i) {
      int a = j * (n + 1) + i;
      tris.push_back({a, a + 1, a + n + 2});
      tris.push_back({a, a + n + 2, a + n + 1});
    }
  MemSurface s("Big", pts, tris);
  for (double x = 0.37; x < n; x += 7.13)
    for (double y = 0.11; y < n; y += 5.71)
      ASSERT_NEAR(s.FindElevationAtXY(x, y), 3 * x - y, 1e-7);
}

TEST(TextMetrics, ControlCodesAndWidths) {
  EXPECT_EQ(DisplayText("%%c200"),
            "\xC3\x98"
            "200");
  EXPECT_EQ(DisplayText("%%C200 %%d %%p %%%"),
            "\xC3\x98"
            "200 \xC2\xB0 \xC2\xB1 %");
  auto runs = DisplayRuns("a%%ub%%uc");
  ASSERT_EQ(runs.size(), 3u);
  EXPECT_TRUE(runs[1].underline);
  EXPECT_EQ(runs[1].text, "b");
  EXPECT_EQ(DisplayText("%%065"), "A");
  EXPECT_NEAR(TextWidth("00", 1), 2 * 556 / 716.0, 1e-12);
  EXPECT_NEAR(TextWidth("00", 2, 0.5), 2 * 556 / 716.0, 1e-12);
  EXPECT_DOUBLE_EQ(TextWidth("%%u", 1), 0);
}

TEST(Forms, ControlsByName) {
  MemForm form;
  auto& combo = form.AddComboBox("cmb_TextStyle");
  combo.AddItem("Standard");
  combo.AddItem("Romans");
  form.GetComboBox("cmb_TextStyle").SetText("Romans");
  EXPECT_EQ(combo.ListIndex(), 1);
  combo.SetListIndex(0);
  EXPECT_EQ(combo.Text(), "Standard");
  EXPECT_EQ(CodeOf([&] { combo.SetListIndex(2); }), ErrorCode::kBadArgument);
  form.AddCheckBox("chk_LabelPipeGravity").SetValue(1);
  EXPECT_EQ(form.GetCheckBox("chk_LabelPipeGravity").Value(), 1);
  EXPECT_EQ(CodeOf([&] { form.GetCheckBox("chk_Missing"); }),
            ErrorCode::kNoSuchKey);
  EXPECT_EQ(CodeOf([&] { form.GetTextBox("cmb_TextStyle"); }),
            ErrorCode::kNoSuchKey);
  MemDataGrid grid({{"a", "b"}, {"c"}}, 2);
  EXPECT_EQ(grid.Value(1, 1), "");
  EXPECT_EQ(CodeOf([&] { grid.Value(2, 0); }), ErrorCode::kBadArgument);
}

}  // namespace
}  // namespace kestrana::memhost
