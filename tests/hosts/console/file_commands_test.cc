// file add, list and remove.

#include <filesystem>

#include "tests/hosts/console/console_sandbox.h"

namespace forgeyard::console {
namespace {

using testing::HasSubstr;
using testing::Not;
namespace fs = std::filesystem;

class FileCommands : public ConsoleSandbox {
 protected:
  void SetUp() override { makeProject(); }
};

TEST_F(FileCommands, FilesGoToTheFolderOfTheirExtensionOrToTheNamedOne) {
  for (const char* name : {"a.c", "b.h", "sub dir/c.c", "d.txt"}) put(name, "");
  EXPECT_EQ(shown({"file", "add", "a.c", "b.h", "sub dir/c.c"}), "src: 2 files added\ninc: 1 file added\n");
  EXPECT_EQ(shown({"file", "add", "d.txt", "--folder", "src"}), "src: 1 file added\n");
  EXPECT_EQ(shown({"file", "list"}), "src\n  a.c\n  sub dir/c.c\n  d.txt\ninc\n  b.h\n");
}

TEST_F(FileCommands, EveryWayToNameAFileNamesTheSame) {
  put("sub/a.c", "");
  put("../above.c", "");
  fs::create_directory_symlink(directory(), path("../link"));
  must({"file", "add", "sub/a.c"});
  const std::string before = content("p.nqp");
  for (const std::string& name : {std::string("./sub/a.c"), std::string("sub/../sub/a.c"), path("sub/a.c"),
                                  path("../link/sub/a.c"), path("../link/./sub//a.c")}) {
    const Outcome outcome = must({"file", "add", name});
    EXPECT_THAT(outcome.errors, HasSubstr(name + " is in the project already."));
    EXPECT_EQ(outcome.output, "");
  }
  EXPECT_EQ(content("p.nqp"), before);
  must({"file", "add", "../above.c"});
  EXPECT_EQ(shown({"file", "list"}),
            "src\n  sub/a.c\n  " + fs::path(path("../above.c")).lexically_normal().string() + "\ninc\n");
  must({"file", "remove", path("../link/sub/a.c"), path("../link/../above.c")});
  EXPECT_EQ(shown({"file", "list"}), "src\ninc\n");
}

TEST_F(FileCommands, ProjectReachedThroughALinkShowsTheSameFiles) {
  put("a.c", "");
  must({"file", "add", "a.c"});
  fs::create_directory_symlink(directory(), path("../link"));
  const std::string project = path("../link/p.nqp");
  EXPECT_EQ(shown({"-p", project, "file", "list"}), "src\n  a.c\ninc\n");
  put("b.c", "");
  must({"-p", project, "file", "add", "b.c"});
  EXPECT_EQ(shown({"file", "list"}), "src\n  a.c\n  b.c\ninc\n");
}

TEST_F(FileCommands, DependenciesAreEnteredShownAndRemoved) {
  for (const char* name : {"a.c", "sub/table.bin", "../above.bin"}) put(name, "");
  must({"file", "add", "a.c"});
  must({"file", "depends", "a.c", "--add", "sub/table.bin", path("../above.bin")});
  const std::string above = fs::path(path("../above.bin")).lexically_normal().string();
  EXPECT_EQ(shown({"file", "depends", "a.c"}), "sub/table.bin\n" + above + "\n");
  EXPECT_THAT(shown({"dump"}), HasSubstr(R"(.\\sub\\table.bin)")) << "relative to the project";
  const Outcome again = must({"file", "depends", "a.c", "--add", "./sub/table.bin", "later.bin"});
  EXPECT_THAT(again.errors, HasSubstr("./sub/table.bin is among the dependencies already."));
  EXPECT_THAT(again.errors, HasSubstr("later.bin: there is no such file; until there is one"));
  must({"file", "depends", path("a.c"), "--remove", "later.bin", path("sub/table.bin")});
  EXPECT_EQ(shown({"file", "depends", "a.c"}), above + "\n");
}

TEST_F(FileCommands, WrongDependenciesChangeNothing) {
  for (const char* name : {"a.c", "table.bin"}) put(name, "");
  must({"file", "add", "a.c"});
  must({"file", "depends", "a.c", "--add", "table.bin"});
  const Refusal table[] = {
      {{"file", "depends", "b.c"}, "b.c is no file of the project."},
      {{"file", "depends", "a.c", "x"}, "Give --add or --remove."},
      {{"file", "depends", "a.c", "--add"}, "Give the files that PATH depends on"},
      {{"file", "depends", "a.c", "--add", "--remove", "x"}, "exclude each other"},
      {{"file", "depends", "a.c", "--remove", "table.bin", "tabel.bin"}, "Did you mean table.bin?"},
  };
  for (const Refusal& row : table) EXPECT_THAT(refused(row.arguments), HasSubstr(row.words));
  EXPECT_EQ(shown({"file", "depends", "a.c"}), "table.bin\n");
}

TEST_F(FileCommands, AddingAgainTakesInWhatIsNewAlone) {
  for (const char* name : {"a.c", "b.c", "c.c"}) put(name, "");
  must({"file", "add", "a.c", "b.c"});
  const Outcome outcome = must({"file", "add", "a.c", "b.c", "c.c", "c.c"});
  EXPECT_EQ(outcome.errors, "forgeyard: 3 of these files are in the project already.\n");
  EXPECT_EQ(outcome.output, "src: 1 file added\n");
  EXPECT_EQ(shown({"file", "list"}), "src\n  a.c\n  b.c\n  c.c\ninc\n");
}

TEST_F(FileCommands, NamesThatCountAsPatternsStandForThemselvesAlone) {
  for (const char* name : {"a*.c", "ab.c"}) put(name, "");
  const Outcome outcome = must({"file", "add", "a*.c", "ab.c"});
  EXPECT_THAT(outcome.errors, HasSubstr("a*.c: projects take a name with"));
  EXPECT_THAT(outcome.errors, Not(HasSubstr("ab.c:")));
  EXPECT_THAT(refused({"file", "remove", "aa.c"}), HasSubstr("aa.c is no file of the project"));
  EXPECT_THAT(refused({"compile", "aa.c"}), HasSubstr("aa.c is no file of the project"));
  must({"file", "remove", "ab.c"});
  EXPECT_EQ(shown({"file", "list"}), "src\n  a*.c\ninc\n");
}

TEST_F(FileCommands, MissingFilesAreAddedWithAWarning) {
  const Outcome outcome = must({"file", "add", "later.c"});
  EXPECT_THAT(outcome.errors, HasSubstr("later.c: there is no such file yet"));
  EXPECT_EQ(outcome.output, "src: 1 file added\n");
  EXPECT_EQ(must({"-q", "file", "add", "much later.c"}).output, "");
}

TEST_F(FileCommands, RemoveFindsWhatDiffersInCaseAlone) {
  must({"file", "add", "Main.C", "other.c"});
  must({"file", "remove", "main.c"});
  EXPECT_EQ(shown({"file", "list"}), "src\n  other.c\ninc\n");
}

TEST_F(FileCommands, WrongUseChangesNothing) {
  put("dir/a.c", "");
  must({"file", "add", "dir/a.c"});
  const Refusal table[] = {
      {{"file", "add", "new.c", "dir"}, "dir is a directory. Name the files in it, for example dir/*.c"},
      {{"file", "add", "new.c", "--folder", "scr"}, "There is no folder scr. Did you mean src?"},
      {{"file", "add", "new.c", "--folder", "cc"}, "There is no folder cc."},
      {{"file", "add", "back\\slash.c"}, "has a backslash in it"},
      {{"file", "add", ""}, "no path"},
      {{"file", "remove", "dir/b.c"}, "dir/b.c is no file of the project. Did you mean dir/a.c?"},
      {{"file", "remove", "dir/a.c", "nothing.h"}, "nothing.h is no file of the project"},
  };
  for (const Refusal& row : table) EXPECT_THAT(refused(row.arguments), HasSubstr(row.words));
}

TEST_F(FileCommands, ProjectWithoutAFolderTakesNone) {
  must({"new", "q.nqp"});
  EXPECT_THAT(refused({"-p", "q.nqp", "file", "add", "a.c"}), HasSubstr("forgeyard folder add"));
}

}  // namespace
}  // namespace forgeyard::console
