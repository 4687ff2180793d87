// Projects in a git repository, set up as docs/git.md says.
#include <fstream>
#include <sstream>

#include "tests/e2e/sandbox.h"
#include "tests/support/places.h"

namespace forgeyard::e2e {
namespace {

using testing::HasSubstr;
using testing::Not;

class Git : public Sandbox {
 protected:
  void SetUp() override {
    if (run("git", {"--version"}).exitCode != 0) GTEST_SKIP() << "git is not installed";
    git({"init", "-q", "-b", "main", "."});
    git({"config", "user.name", "somebody"});
    git({"config", "user.email", "somebody@example.com"});
    // The page's own lines, for this clone, with the program of this build.
    const std::string program = start({}).command.front();
    const std::string page = contentOf(places::docs() + "/git.md");
    std::istringstream lines(page);
    std::string script = "forgeyard() { \"" + program + "\" \"$@\"; }\n";
    for (std::string line; std::getline(lines, line);) {
      if (line.starts_with("    git config --global "))
        script += "git config " + line.substr(24) + "\n";
      else if (line.starts_with("    echo '*.nqp"))
        script += line + "\n";
    }
    shell(script);
    for (const char* key : {"diff.forgeyard.textconv", "merge.forgeyard.driver"}) {
      std::string command = git({"config", key}).output;
      ASSERT_TRUE(command.starts_with("forgeyard ")) << command;
      command.pop_back();
      git({"config", key, "'" + program + "'" + command.substr(9)});
    }
  }

  Outcome started(Lines command) const {
    Start start = this->start({});
    start.command = std::move(command);
    start.environment.push_back("GIT_CONFIG_NOSYSTEM=1");
    return RunningProgram(start).finish();
  }
  Outcome git(Lines arguments) const {
    arguments.insert(arguments.begin(), "git");
    return started(std::move(arguments));
  }
  void shell(const std::string& script) const {
    const Outcome outcome = started({"/bin/sh", "-ec", script});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
  }
  void commitAll() const {
    git({"add", "-A"});
    EXPECT_EQ(git({"commit", "-q", "-m", "step"}).exitCode, 0);
  }
};

TEST_F(Git, ShowsAndMergesProjects) {
  put("a.c", "");
  put("b.c", "");
  must({"new", "p.nqp"});
  must({"folder", "add", "src", "--filter", "c"});
  must({"component", "add", "cc", "cc"});
  must({"file", "add", "a.c"});
  commitAll();

  git({"checkout", "-q", "-b", "side"});
  must({"file", "add", "b.c"});
  must({"set", "cc", "WarningLevel=2"});
  const std::string diff = git({"diff"}).output;
  EXPECT_THAT(diff, HasSubstr("\n-          \"WarningLevel\": 1,\n+          \"WarningLevel\": 2,\n"));
  EXPECT_THAT(diff, HasSubstr("+          \"PersistAs\": \".\\\\b.c\",\n"));
  EXPECT_THAT(diff, Not(HasSubstr("Binary")));
  commitAll();

  git({"checkout", "-q", "main"});
  must({"connect", "src", "cc"});
  must({"set", "cc", "DebugInfo=1"});
  commitAll();
  const Outcome merged = git({"merge", "-q", "--no-edit", "side"});
  EXPECT_EQ(merged.exitCode, 0) << merged.output << merged.errors;
  EXPECT_EQ(must({"get", "cc", "WarningLevel"}).output + must({"get", "cc", "DebugInfo"}).output, "2\n1\n");
  EXPECT_THAT(must({"component", "list"}).output, HasSubstr("src -> cc"));
  EXPECT_THAT(must({"file", "list"}).output, HasSubstr("b.c"));

  git({"checkout", "-q", "side"});
  must({"set", "cc", "DebugInfo=2"});
  commitAll();
  git({"checkout", "-q", "main"});
  must({"set", "cc", "DebugInfo=3"});
  commitAll();
  const Outcome stuck = git({"merge", "-q", "--no-edit", "side"});
  EXPECT_NE(stuck.exitCode, 0);
  EXPECT_THAT(stuck.output + stuck.errors,
              HasSubstr("Conflict: component \"cc\", configuration \"Default\", DebugInfo\n"));
  EXPECT_THAT(git({"status", "--short"}).output, HasSubstr("UU p.nqp"));
  EXPECT_EQ(must({"get", "cc", "DebugInfo"}).output, "3\n") << "the file works, with our value";
  must({"set", "cc", "DebugInfo=2"});
  commitAll();
  EXPECT_EQ(git({"status", "--short"}).output, "");
}

// A driver or conversion that fails would stop git.
TEST_F(Git, ADamagedProjectIsShownAndNotMerged) {
  must({"new", "p.nqp"});
  must({"component", "add", "cc", "cc"});
  commitAll();
  git({"checkout", "-q", "-b", "side"});
  put("p.nqp", content("p.nqp").substr(0, content("p.nqp").size() / 2));
  const Outcome diff = git({"diff"});
  EXPECT_EQ(diff.exitCode, 0) << diff.errors;
  EXPECT_THAT(diff.output, HasSubstr("+  \"left_out\": ["));
  commitAll();
  git({"checkout", "-q", "main"});
  must({"set", "cc", "DebugInfo=1"});
  commitAll();
  const std::string before = content("p.nqp");
  const Outcome merged = git({"merge", "-q", "--no-edit", "side"});
  EXPECT_NE(merged.exitCode, 0);
  EXPECT_THAT(merged.output + merged.errors, HasSubstr("is damaged. Nothing was merged"));
  EXPECT_EQ(content("p.nqp"), before);
}

}  // namespace
}  // namespace forgeyard::e2e
