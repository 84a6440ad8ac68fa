#include "core/user_names.h"

#include <gtest/gtest.h>

#include <string>

#include "host/errors.h"

namespace kestrana::core {
namespace {

std::string Refusal(const std::string& name,
                    NameRule rule = NameRule::kAllBanned) {
  try {
    CheckUserName("The network name", name, rule);
  } catch (const InvalidInputError& e) {
    return e.what();
  }
  return "";
}

TEST(UserNames, PlainNamesPass) {
  for (const char* name : {"Sewer", "Storm drain 2", "Öl-Leitung", "a", "P-1"})
    EXPECT_EQ(Refusal(name), "") << name;
  EXPECT_EQ(Refusal(std::string(kLongestName, 'x')), "");
  // Materials are stored in ";" lists and may hold the rest.
  EXPECT_EQ(Refusal("PVC/U, SN8", NameRule::kSemicolonOnly), "");
}

TEST(UserNames, WhatBreaksFilesOrHidesIsRefusedSayingWhy) {
  EXPECT_EQ(Refusal(""), "The network name is empty");
  EXPECT_EQ(Refusal("A\nB"),
            "The network name \"A\\x0AB\" holds a control character (a line "
            "break, tab or the like)");
  EXPECT_NE(Refusal("A\tB").find("control character"), std::string::npos);
  EXPECT_NE(Refusal(std::string("A\x7F")).find("control character"),
            std::string::npos);
  EXPECT_NE(Refusal(std::string("A\0B", 3)).find("control character"),
            std::string::npos);
  EXPECT_EQ(Refusal(" Sewer"),
            "The network name \" Sewer\" starts or ends with a blank");
  EXPECT_NE(Refusal("Sewer ").find("starts or ends with a blank"),
            std::string::npos);
  EXPECT_NE(Refusal("   ").find("starts or ends with a blank"),
            std::string::npos);
  EXPECT_NE(Refusal("A=B").find("cannot hold"), std::string::npos);
  EXPECT_NE(Refusal("A;B", NameRule::kSemicolonOnly).find("\";\""),
            std::string::npos);
  EXPECT_NE(Refusal("", NameRule::kSemicolonOnly).find("is empty"),
            std::string::npos);
  const std::string refusal = Refusal(std::string(kLongestName + 1, 'x'));
  EXPECT_NE(refusal.find("is 101 characters long; names take at most 100"),
            std::string::npos)
      << refusal;
  EXPECT_LT(refusal.size(), 200u) << "a long name is shortened when shown";
}

TEST(UserNames, TheLongestNamesStillMakeValidSymbolAndRecordTexts) {
  const std::string longest(kLongestName, 'x');
  // The longest texts built from two names: a plan annotation block and
  // its record's combined label; DXF holds 255 bytes in either.
  EXPECT_LE(("Kestrana_PlanAnno_" + longest + "_" + longest).size(), 255u);
  EXPECT_LE(("ProfilePlanAnno;" + longest + ";" + longest + "PlanAnno").size(),
            255u);
}

}  // namespace
}  // namespace kestrana::core
