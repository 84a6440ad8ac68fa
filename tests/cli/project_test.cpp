// How the network list is printed.
#include "cli/project.h"

#include <gtest/gtest.h>

namespace kestrana::cli {
namespace {

using commands::NetworkInfo;

TEST(NetworkList, PrintsATableOrJson) {
  EXPECT_EQ(NetworksJson({}), "[]\n");
  EXPECT_EQ(NetworksTable({}), "The project has no networks.\n");
  const std::vector<NetworkInfo> networks = {{"S", "Gravity", 2, 0},
                                             {"Water 1", "Pressure", 0, 1}};
  EXPECT_EQ(NetworksJson(networks),
            "[{\"name\": \"S\", \"type\": \"Gravity\", \"pipes\": 2, "
            "\"nodes\": 0}, {\"name\": \"Water 1\", \"type\": "
            "\"Pressure\", \"pipes\": 0, \"nodes\": 1}]\n");
  EXPECT_EQ(NetworksTable(networks),
            "NAME     TYPE      PIPES  NODES\n"
            "S        Gravity   2      0\n"
            "Water 1  Pressure  0      1\n");
}

}  // namespace
}  // namespace kestrana::cli
