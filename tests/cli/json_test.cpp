// The JSON every command writes: commas in nested documents, numbers
// rounded as the text output rounds them, non-finite values, keys.
#include "cli/json.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "core/section_size.h"

namespace kestrana::cli {
namespace {

TEST(JsonWriter, PlacesCommasInNestedObjectsAndArrays) {
  JsonWriter json;
  json.BeginObject();
  json.Key("empty").BeginArray().EndArray();
  json.Key("pairs").BeginArray();
  for (int i = 0; i < 2; ++i) json.BeginArray().Int(i).Int(-i).EndArray();
  json.EndArray();
  json.Key("inner").BeginObject().Key("a").Bool(true).Key("b").Null();
  json.EndObject();
  json.Key("text").String("say \"hi\"\n");
  json.EndObject();
  EXPECT_EQ(json.Text(),
            "{\"empty\": [], \"pairs\": [[0, 0], [1, -1]], "
            "\"inner\": {\"a\": true, \"b\": null}, "
            "\"text\": \"say \\\"hi\\\"\\n\"}\n");
}

TEST(JsonWriter, NumbersAreRoundedHalfToEvenAndNeverInvalid) {
  JsonWriter json;
  json.BeginArray();
  json.Number(2.675, 2).Number(0.125, 2).Number(-0.004, 2).Number(98.5, 0);
  json.Real(0.5).Real(1e20).Real(-2.5e-7);
  json.Number(std::nan(""), 2).Real(std::numeric_limits<double>::infinity());
  json.EndArray();
  // A leading zero before the point, an exponent JSON reads, null for what
  // is not a number; -0.004 rounds to zero without a sign.
  EXPECT_EQ(json.Text(),
            "[2.68, 0.12, 0, 98, 0.5, 1E+20, -2.5E-07, null, null]\n");
}

TEST(JsonWriter, SizesAsNumbersWithTheirShape) {
  JsonWriter json;
  json.BeginArray();
  json.Size({false, 300, 300, 1}).Size({true, 1200, 800, 2});
  json.EndArray();
  EXPECT_EQ(json.Text(),
            "[{\"shape\": \"circular\", \"span\": 300, \"rise\": 300, "
            "\"cells\": 1}, {\"shape\": \"box\", \"span\": 1200, \"rise\": "
            "800, \"cells\": 2}]\n");
}

TEST(SnakeCase, NamesBecomeOneKeyStyle) {
  EXPECT_EQ(SnakeCase("upstream invert"), "upstream_invert");
  EXPECT_EQ(SnakeCase("Gravity Pipe"), "gravity_pipe");
  EXPECT_EQ(SnakeCase("low/high  points"), "low_high_points");
  EXPECT_EQ(SnakeCase("count"), "count");
}

}  // namespace
}  // namespace kestrana::cli
