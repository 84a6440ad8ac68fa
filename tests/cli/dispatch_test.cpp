// Finding a command of one to three words, listing groups, and the exit
// code and message of each kind of failure.
#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>

#include "cli/command.h"
#include "commands/command.h"
#include "host/errors.h"
#include "host/types.h"

namespace kestrana::cli {
namespace {

class Dispatching : public ::testing::Test {
 protected:
  Dispatching() {
    for (const char* name :
         {"info", "profile draw", "profile style list", "profile style show"})
      commands_.push_back(
          {name, std::string("summary of ") + name,
           std::string("Usage: ") + name + "\n",
           [this, name](const std::vector<std::string>& args, Io&) {
             ran_ = name;
             ran_args_ = args;
             if (!args.empty() && args[0] == "fail") Fail(args.at(1));
             return 0;
           }});
  }
  static void Fail(const std::string& kind) {
    if (kind == "usage") throw UsageError("bad use");
    if (kind == "option") throw commands::OptionError("bad value");
    if (kind == "host")
      throw host::HostError(host::ErrorCode::kBadArgument, "bad call");
    if (kind == "missing") throw NotFoundError("not there");
    throw std::logic_error("a bug");
  }
  int Run(const std::vector<std::string>& args) {
    out_.str("");
    err_.str("");
    ran_.clear();
    Io io{out_, err_};
    return Dispatch(commands_, args, io);
  }

  std::vector<CommandInfo> commands_;
  std::string ran_;
  std::vector<std::string> ran_args_;
  std::ostringstream out_, err_;
};

TEST_F(Dispatching, TheLongestNameTheArgumentsStartWithRuns) {
  EXPECT_EQ(Run({"profile", "style", "list", "site.dxf", "--json"}), 0);
  EXPECT_EQ(ran_, "profile style list");
  EXPECT_EQ(ran_args_, (std::vector<std::string>{"site.dxf", "--json"}));
  EXPECT_EQ(Run({"profile", "draw", "style"}), 0);
  EXPECT_EQ(ran_, "profile draw");
  EXPECT_EQ(Run({"profile", "style", "show", "--help"}), 0);
  EXPECT_EQ(ran_, "");
  EXPECT_EQ(out_.str(), "Usage: profile style show\n");
}

TEST_F(Dispatching, GroupsOfOneOrTwoWordsListTheirCommands) {
  EXPECT_EQ(Run({"profile", "style"}), 2);
  EXPECT_EQ(err_.str(),
            "kestrana profile style: which one?\n"
            "Commands of 'profile style':\n"
            "  profile style list  summary of profile style list\n"
            "  profile style show  summary of profile style show\n");
  EXPECT_EQ(Run({"profile", "style", "--help"}), 0);
  EXPECT_EQ(out_.str().rfind("Commands of 'profile style':\n", 0), 0u);
  EXPECT_EQ(Run({"profile", "style", "paint"}), 2);
  EXPECT_EQ(
      err_.str().rfind("kestrana profile style: unknown command 'paint'\n", 0),
      0u);
  // One word up, the group holds all three.
  EXPECT_EQ(Run({"profile", "paint"}), 2);
  EXPECT_EQ(err_.str(),
            "kestrana profile: unknown command 'paint'\n"
            "Commands of 'profile':\n"
            "  profile draw        summary of profile draw\n"
            "  profile style list  summary of profile style list\n"
            "  profile style show  summary of profile style show\n");
  EXPECT_EQ(Run({"paint"}), 2);
  EXPECT_EQ(err_.str(),
            "kestrana: unknown command 'paint' (see kestrana --help)\n");
  EXPECT_TRUE(out_.str().empty());
}

TEST_F(Dispatching, EachKindOfFailureHasItsExitCode) {
  EXPECT_EQ(Run({"info", "fail", "usage"}), 2);
  EXPECT_EQ(err_.str(), "kestrana info: bad use\n\nUsage: info\n");
  EXPECT_EQ(Run({"profile", "draw", "fail", "option"}), 2);
  EXPECT_EQ(err_.str(),
            "kestrana profile draw: bad value\n\nUsage: profile draw\n");
  EXPECT_EQ(Run({"info", "fail", "host"}), 1);
  EXPECT_EQ(err_.str(), "kestrana info: drawing error: bad call\n");
  EXPECT_EQ(Run({"info", "fail", "missing"}), 1);
  EXPECT_EQ(err_.str(), "kestrana info: not there\n");
  EXPECT_EQ(Run({"info", "fail", "bug"}), 1);
  EXPECT_EQ(err_.str(), "kestrana info: a bug\n");
}

}  // namespace
}  // namespace kestrana::cli
