// What a build stores, what it must not store, and what becomes of the file when it can't be written.
#include <sys/stat.h>

#include "tests/e2e/sandbox.h"

namespace forgeyard::e2e {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class ProjectFile : public Sandbox {
 protected:
  ProjectFile() {
    put("main.c", "#include \"code.h\"\nint main(void) { return CODE; }\n");
    put("code.h", "#define CODE 0\n");
    makeProgramProject({"main.c"});
    must({"config", "add", "second", "--from", "Default"});
    must({"-c", "second", "config", "set", "OutputDirectory=out2", "IntermediateDirectory=obj2"});
  }
};

TEST_F(ProjectFile, ConfigurationOfOneCallIsNotStored) {
  const std::string list = must({"config", "list"}).output;
  EXPECT_THAT(list, HasSubstr("* Default"));
  must({"-c", "second", "build"});
  EXPECT_TRUE(exists("out2/prog"));
  EXPECT_FALSE(exists("out/prog"));
  EXPECT_EQ(must({"config", "list"}).output, list);

  // Both are up to date then, and asking changes no byte.
  must({"build"});
  const std::string file = content("p.nqp");
  EXPECT_EQ(toolRuns(must({"-c", "second", "build"})), 0);
  EXPECT_EQ(toolRuns(must({"build"})), 0);
  EXPECT_EQ(content("p.nqp"), file);
}

TEST_F(ProjectFile, LearnsDependenciesAlsoWhenTheBuildFails) {
  put("bad.c", "int bad(void) { return nowhere; }\n");
  must({"file", "add", "--folder", "src", "bad.c"});
  EXPECT_EQ(forgeyard({"build"}).exitCode, 1);
  touch("code.h");
  EXPECT_THAT(compiled(forgeyard({"build"})), ElementsAre("bad", "main"));
}

TEST_F(ProjectFile, FullDiskLeavesItAsItWas) {
  put("long name of a source file that takes some room in the project file.c", "int x;\n");
  const std::string before = content("p.nqp");
  Start add = start({"file", "add", "--folder", "src",
                     "long name of a source file that takes some room in the project file.c"});
  add.fileLimit = 1024;
  const Outcome outcome = RunningProgram(add).finish();
  EXPECT_EQ(outcome.exitCode, 2);
  EXPECT_THAT(outcome.errors, HasSubstr("p.nqp can't be written"));
  EXPECT_EQ(content("p.nqp"), before);
  EXPECT_THAT(must({"file", "list"}).output, Not(HasSubstr("long name")));

  Start build = start({"build"});
  build.fileLimit = 1024;
  // Neither object nor program nor what was learnt finds room; all of that is said.
  EXPECT_NE(RunningProgram(build).finish().exitCode, 0);
  EXPECT_EQ(content("p.nqp"), before);
  EXPECT_EQ(toolRuns(must({"build"})), 2);
}

TEST_F(ProjectFile, ReadOnlyOneIsMadeWritable) {
  // As one that comes from a file server or an archive is.
  ASSERT_EQ(::chmod(path("p.nqp").c_str(), 0444), 0);
  must({"set", "cc", "WarningLevel=2"});
  EXPECT_THAT(must({"get", "cc", "WarningLevel"}).output, HasSubstr("2"));
  EXPECT_EQ(toolRuns(must({"build"})), 2);
}

TEST_F(ProjectFile, DamagedOneIsRefusedAndLeftAlone) {
  const std::string whole = content("p.nqp");
  for (const std::size_t size : {std::size_t{0}, std::size_t{100}, whole.size() / 2}) {
    put("p.nqp", whole.substr(0, size));
    const Outcome outcome = forgeyard({"build"});
    EXPECT_EQ(outcome.exitCode, 2) << size;
    EXPECT_THAT(outcome.errors, HasSubstr("p.nqp")) << size;
    EXPECT_EQ(content("p.nqp"), whole.substr(0, size)) << size;
  }
}

TEST_F(Sandbox, FailedChangeLeavesTheProjectFileAsItWas) {
  put("a.c", "");
  makeProgramProject({"a.c"});
  const std::string before = content("p.nqp");
  const Lines changes[] = {
      {"set", "cc", "OptimisationLevel=2", "NoSuchProperty=1"},
      {"set", "cc", "OptimisationLevel=high"},
      {"config", "set", "OutputDirectory=x", "Nothing=1"},
      {"config", "remove", "Default"},
      {"connect", "link", "nobody"},
      {"component", "add", "cc", "cc"},
      {"folder", "add", "src"},
      {"file", "add", "a.c", "missing/b.c", "--folder", "nobody"},
      {"new", "p.nqp"},
  };
  for (const Lines& change : changes) {
    const Outcome outcome = forgeyard(change);
    EXPECT_EQ(outcome.exitCode, 2) << testing::PrintToString(change);
    EXPECT_NE(outcome.errors, "") << testing::PrintToString(change);
    EXPECT_EQ(content("p.nqp"), before) << testing::PrintToString(change);
  }
}

}  // namespace
}  // namespace forgeyard::e2e
