#include "memhost/landxml.h"

#include <gtest/gtest.h>

#include <cmath>

#include "support/host_errors.h"

namespace kestrana::memhost {
namespace {

std::string Wrap(const std::string& surfaces) {
  return "<?xml version=\"1.0\"?>\n"
         "<LandXML xmlns=\"http://www.landxml.org/schema/LandXML-1.2\">\n"
         "<Surfaces>\n" +
         surfaces + "</Surfaces>\n</LandXML>\n";
}

const char* kSquare =
    "<Surface name=\"EG\"><Definition surfType=\"TIN\">\n"
    "<Pnts><P id=\"1\">0 0 10</P><P id=\"2\">0 100 20</P>"
    "<P id=\"3\">50 100 30</P><P id=\"4\">50 0 15</P></Pnts>\n"
    "<Faces><F>1 2 3</F><F>1 3 4</F></Faces>\n"
    "</Definition></Surface>\n";

std::string ErrorOf(const std::string& text) {
  try {
    ParseLandXmlSurfaces(text, "s.xml");
  } catch (const LandXmlError& e) {
    return e.what();
  }
  return "";
}

TEST(LandXml, PointsAreNorthingEastingElevation) {
  auto surfaces = ParseLandXmlSurfaces(Wrap(kSquare), "s.xml");
  ASSERT_EQ(surfaces.size(), 1u);
  MemSurface& s = *surfaces[0];
  EXPECT_EQ(s.Name(), "EG");
  // (x = easting 100, y = northing 0) is point 2.
  EXPECT_NEAR(s.FindElevationAtXY(100, 0), 20, 1e-9);
  EXPECT_NEAR(s.FindElevationAtXY(0, 50), 15, 1e-9);
  EXPECT_THROW(s.FindElevationAtXY(0, 100), host::HostError);
}

TEST(LandXml, TheBundledExampleFollowsItsGroundFormula) {
  auto surfaces = ReadLandXmlSurfaces(std::string(KESTRANA_SOURCE_DIR) +
                                      "/examples/town-surface.xml");
  ASSERT_EQ(surfaces.size(), 1u);
  // At grid points the TIN holds the formula's value to the file's 3 places.
  double x = 190, y = 150;
  double z = 100.0 + 0.02 * x - 0.012 * y +
             1.5 * std::sin(x / 60.0) * std::cos(y / 50.0);
  EXPECT_NEAR(surfaces[0]->FindElevationAtXY(x, y), z, 6e-4);
}

TEST(LandXml, BadFilesNameWhatIsWrong) {
  for (const char* elevation : {"nan", "inf", "-1e10", "1e999"})
    EXPECT_NE(ErrorOf(Wrap("<Surface name=\"EG\"><Definition><Pnts>"
                           "<P id=\"1\">0 0 " +
                           std::string(elevation) +
                           "</P></Pnts></Definition></Surface>"))
                  .find("each a number from -1000000000 to 1000000000"),
              std::string::npos)
        << elevation;
  EXPECT_NE(ErrorOf("not xml <").find("not well-formed XML"),
            std::string::npos);
  EXPECT_NE(ErrorOf("<root/>").find("not a LandXML file"), std::string::npos);
  EXPECT_NE(ErrorOf(Wrap("")).find("holds no TIN surface"), std::string::npos);
  std::string bad_point = Wrap(
      "<Surface name=\"A\"><Definition surfType=\"TIN\"><Pnts>\n"
      "<P id=\"1\">0 x 1</P></Pnts><Faces/></Definition></Surface>");
  EXPECT_NE(ErrorOf(bad_point).find("line 5: a point needs"), std::string::npos)
      << ErrorOf(bad_point);
  std::string bad_face = Wrap(
      "<Surface name=\"A\"><Definition surfType=\"TIN\"><Pnts>"
      "<P id=\"1\">0 0 1</P></Pnts><Faces><F>1 2 3</F></Faces></Definition>"
      "</Surface>");
  EXPECT_NE(ErrorOf(bad_face).find("names point 2"), std::string::npos);
  EXPECT_THROW(ReadLandXmlSurfaces("/no/such/file.xml"), LandXmlError);
  // Words the number reader would take are not levels.
  for (const char* word : {"nan", "inf", "-infinity"}) {
    std::string odd = Wrap(
        "<Surface name=\"A\"><Definition surfType=\"TIN\"><Pnts>\n"
        "<P id=\"1\">0 " +
        std::string(word) + " 1</P></Pnts><Faces/></Definition></Surface>");
    EXPECT_NE(ErrorOf(odd).find("line 5: a point needs"), std::string::npos)
        << word;
  }
}

TEST(Surface, CornersThatAreNoNumbersOrTooFarApartAreRefused) {
  auto code = [](std::vector<host::Point3> points) {
    return test::CodeOf([&] {
      MemSurface("S", std::move(points), {{0, 1, 2}});
    });
  };
  EXPECT_EQ(code({{0, 0, 0}, {1, 0, 0}, {0, 1, NAN}}),
            host::ErrorCode::kBadArgument);
  EXPECT_EQ(code({{-1e308, 0, 0}, {1e308, 0, 0}, {0, 1, 0}}),
            host::ErrorCode::kBadArgument);
  // Grid coordinates of a national system, metres from a far origin.
  MemSurface far(
      "F",
      {{500000, 5400000, 100}, {501000, 5400000, 110}, {500000, 5401000, 120}},
      {{0, 1, 2}});
  EXPECT_NEAR(far.FindElevationAtXY(500250, 5400500), 112.5, 1e-6);
}

}  // namespace
}  // namespace kestrana::memhost
