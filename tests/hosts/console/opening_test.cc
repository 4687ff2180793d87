// new, and which project file a command works on.

#include <filesystem>

#include "tests/hosts/console/console_sandbox.h"
#include "tests/hosts/console/project_builder.h"

namespace forgeyard::console {
namespace {

using testing::HasSubstr;
namespace fs = std::filesystem;

class Opening : public ConsoleSandbox {};

TEST_F(Opening, NewMakesAProjectThatOpens) {
  const struct {
    Lines arguments;
    const char* file;
  } table[] = {
      {{"new", "a.nqp"}, "a.nqp"},
      {{"new", "deep/er/dir/b.nqp", "--name", "Other"}, "deep/er/dir/b.nqp"},
      {{"new", "with blank/c d.nqp"}, "with blank/c d.nqp"},
      {{"new", "höhe/日本.nqp"}, "höhe/日本.nqp"},
      {{"new", "../above.nqp"}, "../above.nqp"},
  };
  for (const auto& row : table) {
    EXPECT_EQ(shown(row.arguments), "");
    must({"-p", row.file, "folder", "add", "f"});
    EXPECT_EQ(shown({"-p", row.file, "config", "list"}).substr(0, 10), "* Default ") << row.file;
  }
  EXPECT_THAT(shown({"build", "-p", "deep/er/dir/b.nqp"}), HasSubstr("Project: Other - "));
  EXPECT_THAT(shown({"build", "-p", "with blank/c d.nqp"}), HasSubstr("Project: c d - "));
}

TEST_F(Opening, NewRefusesAndTouchesNothing) {
  put("there.nqp", "precious");
  put("file", "");
  fs::create_symlink("nowhere", path("dangling.nqp"));
  fs::create_directory(path("dir.nqp"));
  const Refusal table[] = {
      {{"new", "there.nqp"}, "exists already; it is not touched"},
      {{"new", "dangling.nqp"}, "exists already"},
      {{"new", "dir.nqp"}, "exists already"},
      {{"new", "name"}, "ends in \".nqp\""},
      {{"new", "name.prj"}, "ends in \".nqp\""},
      {{"new", ".nqp"}, "ends in \".nqp\""},
      {{"new", "file/x.nqp"}, "file/x.nqp"},
      {{"new", "a\\b.nqp"}, "backslash"},
  };
  for (const Refusal& row : table) EXPECT_THAT(refused(row.arguments), HasSubstr(row.words));
  EXPECT_EQ(content("there.nqp"), "precious");
  EXPECT_FALSE(exists("nowhere"));
}

TEST_F(Opening, FullDiskLeavesNoHalfProject) {
  e2e::Start start = this->start({"new", "p.nqp"});
  must({"target", "list"});  // so that the registry is there
  start.fileLimit = 100;
  const Outcome outcome = e2e::RunningProgram(start).finish();
  EXPECT_EQ(outcome.exitCode, 2);
  EXPECT_THAT(outcome.errors, HasSubstr("p.nqp"));
  EXPECT_FALSE(exists("p.nqp"));
}

TEST_F(Opening, WithoutNameTheOnlyProjectFileIsTaken) {
  EXPECT_THAT(refused({"build"}), HasSubstr("There is no project file (*.nqp) in " + directory()));
  must({"new", "one.nqp"});
  must({"build"});
  must({"new", "two.nqp"});
  EXPECT_THAT(refused({"build"}), HasSubstr("one.nqp and two.nqp. Name one with -p"));
  must({"-p", "two.nqp", "build"});
}

TEST_F(Opening, WhatCannotBeOpenedIsNamedWithTheReason) {
  must({"new", "good.nqp"});
  put("empty.nqp", "");
  put("text.nqp", std::string(5000, 'x'));
  put("dir/file", "");
  const std::string half = content("good.nqp").substr(0, content("good.nqp").size() / 2);
  put("half.nqp", half);
  const struct {
    const char* file;
    std::string words;
  } table[] = {
      {"god.nqp", "There is no project file " + path("god.nqp") + ". Did you mean good.nqp?"},
      {"nowhere/x.nqp", "nowhere/x.nqp"},
      {"dir", "dir is a directory"},
      {"empty.nqp", path("empty.nqp") + " is not a project file."},
      {"text.nqp", path("text.nqp") + " is not a project file."},
      {"half.nqp", path("half.nqp")},
      {"dir/file", "ends in \".nqp\""},
  };
  for (const auto& row : table) {
    for (const Lines& command : {Lines{"build"}, Lines{"folder", "add", "x"}}) {
      Lines line{"-p", row.file};
      line.insert(line.end(), command.begin(), command.end());
      EXPECT_THAT(refused(line), HasSubstr(row.words)) << row.file;
    }
  }
  EXPECT_EQ(content("half.nqp"), half);
}

TEST_F(Opening, PartlyDamagedProjectShowsWhatIsLeftAndIsNeitherBuiltNorStoredUnasked) {
  makeProject();
  replaceStream(path("p.nqp"), "Connections", "xx");
  const Outcome list = must({"component", "list"});
  EXPECT_EQ(list.output, "#0   folder  src\n#1   folder  inc\n#2   cc      cc\n#3   cmdline link\n");
  EXPECT_THAT(list.errors, HasSubstr("Connections"));
  EXPECT_THAT(list.errors, HasSubstr("was left out"));
  EXPECT_THAT(refused({"build"}), HasSubstr("Build what is left?"));
  EXPECT_THAT(refused({"folder", "add", "x"}), HasSubstr("loses that part for good"));
  must({"-y", "connect", "src", "cc"});
  EXPECT_EQ(must({"component", "list"}).errors, "");
  EXPECT_THAT(shown({"component", "list"}), HasSubstr("src -> cc\n"));
}

TEST_F(Opening, LinkToAProjectFileOpensIt) {
  must({"new", "real/p.nqp"});
  fs::create_symlink("real/p.nqp", path("link.nqp"));
  must({"-p", "link.nqp", "folder", "add", "f"});
  EXPECT_TRUE(fs::is_symlink(path("link.nqp")));
  EXPECT_THAT(shown({"-p", "real/p.nqp", "component", "list"}), HasSubstr("folder  f\n"));
}

}  // namespace
}  // namespace forgeyard::console
