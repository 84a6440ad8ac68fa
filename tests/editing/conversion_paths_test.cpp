// The batch conversion must leave exactly the drawing that converting one
// polyline after the other leaves: the same labels, nodes, links, levels,
// annotations, crossings and low/high points, written out byte for byte.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "commands/networks.h"
#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "dxf/io.h"
#include "editing/conversion.h"
#include "editing/editing.h"
#include "host/host.h"
#include "library/library.h"
#include "support/drawn_lines.h"
#include "support/network_elements.h"

namespace kestrana::editing {
namespace {

namespace fs = std::filesystem;
using core::General;
using core::NodeField;
using core::PipeField;

host::SelectionSet& SetOf(host::Document& document,
                          const std::vector<host::LwPolyline*>& polylines) {
  host::SelectionSet& set =
      General::InitializeSelectionSet(document, "SetEntitiesToConvert");
  set.AddItems({polylines.begin(), polylines.end()});
  return set;
}

void Convert(host::Document& document, const test::DrawnGridOptions& grid,
             bool existing, const std::string& network, const std::string& type,
             ConversionPath path) {
  ConvertEntities(document, SetOf(document, test::AddDrawnGrid(document, grid)),
                  existing, network, type, path);
}

// Sumps and rules that make matching move inverts, and so slopes, when new
// pipes join these nodes; and a larger main.
void EditNodes(host::Document& document, const std::string& network) {
  const char* rules[] = {kMatchSoffits, kMatchCenterlines, kMatchInverts,
                         kNoMatching};
  host::SelectionSet& low_high =
      General::InitializeSelectionSet(document, "EditedForLowHigh");
  int k = 0;
  for (host::Entity* node :
       General::GetNetworkSet(document, network, core::network_set::kNodes)
           .Entities()) {
    ++k;
    Editing::UpdateNodeData(
        document, core::IdText(node->ObjectID()),
        General::EntityLabelFromCombined(
            core::Record::ReadRequired(*node).Text(NodeField::kCombinedLabel)),
        100 + k % 7, 98 - 0.01 * k, rules[k % 4], low_high);
  }
  host::Entity& pipe =
      *General::GetNetworkSet(document, network, core::network_set::kPipes)
           .Entities()[2];
  Editing::UpdatePipeData(
      document, core::IdText(pipe.ObjectID()), "P-3", 97.5, 97.2, "PE",
      "Circular - 400", 1,
      library::Library::GetSizesArray(document, library::kCircular),
      library::Library::GetSizesArray(document, library::kBox),
      library::Library::GetMaterialsArray(document), low_high);
}

// Two networks across each other, converted in batches into new and
// existing networks, with duplicate nodes, missed and near-miss ends,
// doubled pipes and loops.
std::unique_ptr<memhost::MemDocument> Site(ConversionPath path, int size) {
  auto document = test::NewFullProjectDocument();
  commands::AddNetwork(*document, {"Water", core::kPressure});
  commands::AddNetwork(*document, {"Sewer", core::kGravity});
  test::DrawnGridOptions water{.polylines = size,
                               .spacing = 60,
                               .origin_x = 30,
                               .origin_y = 20,
                               .layer = "Water lines",
                               .seed = 11,
                               .awkward = true};
  Convert(*document, water, false, "Water", core::kPressure,
          ConversionPath::kSteps);
  EditNodes(*document, "Water");

  test::DrawnGridOptions sewer{
      .polylines = size, .layer = "Sewer lines", .seed = 5, .awkward = true};
  Convert(*document, sewer, false, "Sewer", core::kGravity, path);
  // Half on the first batch's junctions, not joined to its nodes.
  sewer.origin_x = 100;
  sewer.seed = 6;
  Convert(*document, sewer, false, "Sewer", core::kGravity, path);
  // Joined to whichever of the doubled nodes the walk takes, whose rules
  // move the new pipes' inverts.
  EditNodes(*document, "Sewer");
  sewer.origin_y = 150;
  sewer.seed = 7;
  Convert(*document, sewer, true, "Sewer", core::kGravity, path);
  // New mains on the edited nodes move the inverts of crossed pipes.
  water.origin_x = -30;
  water.seed = 12;
  Convert(*document, water, true, "Water", core::kPressure, path);
  return document;
}

std::string Written(memhost::MemDocument& document, const std::string& name) {
  const fs::path path = fs::temp_directory_path() /
                        ("kestrana_conversion_paths_" + name + ".dxf");
  dxf::SaveDrawing(document, path.string());
  std::ifstream in(path, std::ios::binary);
  std::string bytes{std::istreambuf_iterator<char>(in), {}};
  fs::remove(path);
  return bytes;
}

TEST(ConversionPaths, BatchLeavesTheDrawingTheStepsLeave) {
  for (int size : {40, 120}) {
    SCOPED_TRACE(size);
    auto steps = Site(ConversionPath::kSteps, size);
    auto batch = Site(ConversionPath::kBatch, size);
    const std::string expected = Written(*steps, "steps");
    EXPECT_TRUE(expected == Written(*batch, "batch"));

    // The site exercises what the comparison is about.
    int sewer_pipes =
        General::GetNetworkSet(*batch, "Sewer", core::network_set::kPipes)
            .Count();
    int sewer_nodes =
        General::GetNetworkSet(*batch, "Sewer", core::network_set::kNodes)
            .Count();
    EXPECT_GT(sewer_pipes, 2 * size);
    EXPECT_LT(sewer_nodes, sewer_pipes);
    int moved_inverts = 0, crossed = 0;
    for (host::Entity* pipe :
         General::GetNetworkSet(*batch, "Water", core::network_set::kPipes)
             .Entities()) {
      core::Record record = core::Record::ReadRequired(*pipe);
      moved_inverts += record.Number(PipeField::kStartInvert) != 0;
      crossed += !record.Text(PipeField::kCrossingRefs).empty();
    }
    EXPECT_GT(moved_inverts, 5);
    EXPECT_GT(crossed, size / 2);
  }
}

}  // namespace
}  // namespace kestrana::editing
