// workspace, and which project a command works on where none is named.

#include <filesystem>

#include "platform/storage/root_storage.h"
#include "tests/hosts/console/console_sandbox.h"
#include "tests/hosts/console/project_builder.h"

namespace forgeyard::console {
namespace {

using testing::HasSubstr;
namespace fs = std::filesystem;

class WorkspaceCommands : public ConsoleSandbox {
 protected:
  void makeWorkspace() const {
    for (const char* file : {"one.nqp", "höhe/with blank.nqp", "three.nqp"}) {
      must({"new", file});
      must({"workspace", "add", file});
    }
  }
  // The names as `list` shows them, with what stands before and behind.
  std::string listed() const {
    std::string text = shown({"workspace", "list"});
    for (std::size_t at = text.find(directory()); at != text.npos; at = text.find(directory(), at))
      text.erase(at, directory().size() + 1);
    return text;
  }
  // Each row of it without the file: "* name", with "-" behind one that is not loaded.
  Lines rows() const {
    Lines result = must({"workspace", "list"}).lines();
    for (std::string& row : result) {
      const bool loaded = !row.ends_with("not loaded");
      row.erase(row.find("  ", 2));
      if (!loaded) row += '-';
    }
    return result;
  }
};

TEST_F(WorkspaceCommands, ProjectsComeGoAndTakeTurns) {
  EXPECT_EQ(listed(), "") << "a look makes no workspace";
  makeWorkspace();
  EXPECT_EQ(listed(),
            "* one         one.nqp\n"
            "  with blank  höhe/with blank.nqp\n"
            "  three       three.nqp\n");
  const struct {
    Lines arguments;
    Lines list;  // the names, marked as in the list: "-" for one that is not loaded
  } steps[] = {
      {{"use", "three"}, {"  one", "  with blank", "* three"}},
      {{"unload", "one"}, {"  one-", "  with blank", "* three"}},
      {{"load", "one"}, {"  one", "  with blank", "* three"}},
      {{"unload"}, {"  one", "  with blank", "* three-"}},
      {{"reload", "three.nqp"}, {"  one", "  with blank", "* three"}},
      {{"save"}, {"  one", "  with blank", "* three"}},
      {{"remove", "one"}, {"  with blank", "* three"}},
      {{"remove", "three"}, {"* with blank"}},
      {{"remove", "with blank"}, {}},
  };
  for (const auto& step : steps) {
    Lines line{"-y", "workspace"};
    line.insert(line.end(), step.arguments.begin(), step.arguments.end());
    must(line);
    EXPECT_EQ(rows(), step.list) << step.arguments.front();
  }
  EXPECT_TRUE(exists("one.nqp"));
}

TEST_F(WorkspaceCommands, TheActiveProjectIsWorkedOnWhereNoOtherIsMeant) {
  must({"new", "a/a.nqp"});
  must({"new", "b/b.nqp"});
  must({"workspace", "add", "a/a.nqp"});
  must({"workspace", "add", "b/b.nqp", "-w", "mine"});
  const struct {
    const char* directory;
    Lines options;
    const char* project;
  } table[] = {
      {"", {}, "a"},
      {"", {"-w", "mine"}, "b"},
      {"b", {}, "b"},
      {"", {"-p", "b/b.nqp"}, "b"},
      {"a", {"-w", "../mine"}, "b"},
      {"a", {"-w", "../mine", "-p", "a.nqp"}, "a"},
  };
  for (const auto& row : table) {
    Lines line = row.options;
    line.emplace_back("build");
    e2e::Start start = this->start(line);
    start.directory = directory() + "/" + row.directory;
    const Outcome outcome = e2e::RunningProgram(start).finish();
    EXPECT_THAT(outcome.output, HasSubstr(std::string("Project: ") + row.project + " - "));
    const bool byWorkspace =
        row.options.empty() ? *row.directory == '\0' : row.options.size() == 2 && row.options[0] == "-w";
    EXPECT_EQ(outcome.errors.empty(), !byWorkspace) << outcome.errors;
  }
}

TEST_F(WorkspaceCommands, WhatCannotBeReadOfAProjectIsNeverWritten) {
  makeWorkspace();
  replaceStream(path("one.nqp"), "Connections", "xx");
  const std::string damaged = content("one.nqp");
  const Outcome use = must({"workspace", "use", "three"});
  EXPECT_THAT(use.errors, HasSubstr("was left out"));
  EXPECT_THAT(use.errors, HasSubstr("forgeyard workspace load \"one\""));
  EXPECT_EQ(content("one.nqp"), damaged);
  EXPECT_THAT(refused({"workspace", "load", "one"}), HasSubstr("was left as it is"));
  EXPECT_THAT(refused({"workspace", "add", "-w", "other", "one.nqp"}), HasSubstr("was left as it is"));
  EXPECT_EQ(content("one.nqp"), damaged);
  must({"-y", "workspace", "load", "one"});
  EXPECT_NE(content("one.nqp"), damaged);
}

TEST_F(WorkspaceCommands, ProjectsThatAreMissingOrInUseStayInTheList) {
  makeWorkspace();
  fs::remove(path("one.nqp"));
  compound::FileCalls& calls = compound::FileCalls::system();
  const auto holder =
      compound::LockedFile::open(compound::FilePlace::resolve(calls, path("three.nqp")), false);
  const Outcome outcome = must({"workspace", "use", "with blank"});
  EXPECT_THAT(outcome.errors, HasSubstr("one.nqp can't be opened: there is no such file"));
  EXPECT_THAT(outcome.errors, HasSubstr("three.nqp is open in process " + std::to_string(::getpid())));
  EXPECT_EQ(listed(),
            "  one         one.nqp  missing\n"
            "* with blank  höhe/with blank.nqp\n"
            "  three       three.nqp  not loaded\n");
}

TEST_F(WorkspaceCommands, WrongUseSaysWhatIsWrong) {
  makeWorkspace();
  must({"new", "other/one.nqp"});
  must({"workspace", "add", "other/one.nqp"});
  put("text", "no workspace");
  fs::create_directory(path("dir"));
  const std::string before = listed();
  const Refusal table[] = {
      {{"workspace", "add", "one.nqp"}, "is in the workspace already: one"},
      {{"workspace", "add", "two.nqp"}, "There is no project file"},
      {{"workspace", "use", "tree"}, "Did you mean three?"},
      {{"workspace", "use", "one"}, "There are several projects one"},
      {{"workspace", "use", "other/one.nqp"}, "knows its active project by name"},
      {{"workspace", "remove", "one.nqp"}, "no terminal to ask on"},
      {{"workspace", "list", "-w", "nowhere"}, "There is no workspace nowhere"},
      {{"workspace", "list", "-w", "text"}, "text is not a workspace"},
      {{"workspace", "list", "-w", "one.nqp"}, "one.nqp is not a workspace"},
      {{"workspace", "add", "-w", "one.nqp", "three.nqp"}, "one.nqp is not a workspace"},
      {{"workspace", "list", "-w", "dir"}, "no regular file"},
      {{"workspace", "use", "three", "-p", "one.nqp"}, "-p"},
      {{"workspace"}, "add"},
  };
  for (const Refusal& row : table) EXPECT_THAT(refused(row.arguments), HasSubstr(row.words));
  EXPECT_EQ(listed(), before);
}

}  // namespace
}  // namespace forgeyard::console
