#include "memhost/flat_map.h"

#include <gtest/gtest.h>

#include <random>
#include <unordered_map>

namespace kestrana::memhost {
namespace {

TEST(FlatMap, BehavesAsAStandardMapThroughGrowthAndErasure) {
  // Mostly consecutive keys, as handles are, with erasures that leave
  // holes to probe past and slots to reuse.
  FlatMap<uint64_t, int*> flat;
  std::unordered_map<uint64_t, int*> plain;
  std::mt19937_64 random(3);
  int values[8];
  for (int step = 0; step < 200000; ++step) {
    uint64_t key = random() % 4 == 0 ? random() : random() % 5000;
    int* value = random() % 5 == 0 ? nullptr : &values[random() % 8];
    switch (random() % 3) {
      case 0:
      case 1:
        flat.set(key, value);
        plain[key] = value;
        break;
      case 2:
        ASSERT_EQ(flat.erase(key), plain.erase(key) == 1) << key;
        break;
    }
    if (step % 1000 == 0) {
      ASSERT_EQ(flat.size(), plain.size());
      for (uint64_t probe = 0; probe < 5000; ++probe) {
        auto it = plain.find(probe);
        int* const* found = flat.find(probe);
        ASSERT_EQ(found != nullptr, it != plain.end()) << probe;
        if (found != nullptr) {
          ASSERT_EQ(*found, it->second) << probe;
        }
      }
    }
  }
  // A key held with a null value is present.
  flat.set(123456789, nullptr);
  EXPECT_TRUE(flat.contains(123456789));
  EXPECT_FALSE(flat.contains(987654321));
}

}  // namespace
}  // namespace kestrana::memhost
