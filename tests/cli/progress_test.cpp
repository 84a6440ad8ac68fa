// The progress line: redrawn in place on a terminal, only when something
// shows a change, cleared before the result; silent elsewhere.
#include "cli/progress.h"

#include <gtest/gtest.h>

#include <sstream>

namespace kestrana::cli {
namespace {

TEST(ProgressLine, RedrawsOnEachWholePercentAndClearsAtTheEnd) {
  std::ostringstream err;
  {
    ProgressLine line(err, true);
    core::ProgressFn report = line.Callback();
    ASSERT_TRUE(report);
    for (size_t done = 1; done <= 400; ++done) report("converting", done, 400);
    report("crossings", 1, 2);
    report("crossings", 1, 2);  // nothing new
    line.Finish();
    EXPECT_EQ(err.str().substr(err.str().size() - 4), "\r\x1b[K");
    const std::string after = err.str();
    line.Finish();  // cleared once only
    EXPECT_EQ(err.str(), after);
  }
  const std::string text = err.str();
  size_t redraws = 0;
  for (size_t at = text.find("\r\x1b[Kkestrana: "); at != std::string::npos;
       at = text.find("\r\x1b[Kkestrana: ", at + 1))
    ++redraws;
  // 0% to 100% of the first stage, one line of the second.
  EXPECT_EQ(redraws, 102u) << text;
  EXPECT_NE(text.find("kestrana: converting 200 of 400 (50%)"),
            std::string::npos);
  EXPECT_NE(text.find("kestrana: crossings 1 of 2 (50%)"), std::string::npos);
  EXPECT_EQ(text.find("converting 201 of 400"), std::string::npos);
}

TEST(ProgressLine, IsSilentOffATerminal) {
  std::ostringstream err;
  ProgressLine line(err, false);
  EXPECT_FALSE(line.Callback());
  line.Report("converting", 1, 2);
  line.Finish();
  EXPECT_EQ(err.str(), "");
  // A string stream is never the terminal, whatever stderr is.
  EXPECT_FALSE(IsTerminal(err));
}

}  // namespace
}  // namespace kestrana::cli
