// The everyday cycle with a real compiler: what is built, and what is not built again.
#include "tests/e2e/sandbox.h"

namespace forgeyard::e2e {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class BuildCycle : public Sandbox {
 protected:
  BuildCycle() {
    put("inc/inner.h", "#define ANSWER 40\n");
    put("inc/outer.h", "#include \"inner.h\"\nint more(void);\nint other(void);\n");
    put("src/main.c",
        "#include <stdio.h>\n#include \"outer.h\"\n"
        "int main(void) { printf(\"%d\\n\", ANSWER + more() + other()); return 0; }\n");
    put("src/more.c", "#include \"outer.h\"\nint more(void) { return 2; }\n");
    put("src/other.c", "int other(void) { return 0; }\n");
    makeProgramProject({"src/main.c", "src/more.c", "src/other.c"});
    must({"set", "cc", "IncludePath=inc"});
  }

  std::string programOutput() const { return run(path("out/prog")).output; }
};

TEST_F(BuildCycle, CompilesAndLinksAProgramThatRuns) {
  const Outcome build = must({"build"});
  EXPECT_THAT(compiled(build), ElementsAre("main", "more", "other"));
  EXPECT_EQ(toolRuns(build), 4);
  EXPECT_EQ(build.lines().back(), "-----");
  EXPECT_EQ(count(build, "Final result: OK"), 1);
  EXPECT_EQ(programOutput(), "42\n");
}

TEST_F(BuildCycle, SecondBuildRunsNoToolAndLeavesTheProjectFileAlone) {
  must({"build"});
  const std::string file = content("p.nqp");
  const Outcome again = must({"build"});
  EXPECT_EQ(toolRuns(again), 0) << again.output;
  EXPECT_EQ(count(again, "All outputs up to date."), 2);
  EXPECT_EQ(content("p.nqp"), file);
}

TEST_F(BuildCycle, HeaderRebuildsJustTheSourcesThatIncludeIt) {
  must({"build"});
  for (const char* header : {"inc/inner.h", "inc/outer.h"}) {
    touch(header);
    EXPECT_THAT(compiled(must({"build"})), ElementsAre("main", "more")) << header;
    EXPECT_EQ(toolRuns(must({"build"})), 0) << header;
  }
  put("inc/inner.h", "#define ANSWER 50\n");
  must({"build"});
  EXPECT_EQ(programOutput(), "52\n");
}

TEST_F(BuildCycle, DeletedHeaderThatNobodyIncludesAnyMoreBreaksNothing) {
  must({"build"});
  put("src/more.c", "int more(void) { return 3; }\n");
  put("inc/outer.h", "#define ANSWER 40\nint more(void);\nint other(void);\n");
  std::filesystem::remove(path("inc/inner.h"));
  EXPECT_THAT(compiled(must({"build"})), ElementsAre("main", "more"));
  EXPECT_EQ(toolRuns(must({"build"})), 0);
  EXPECT_EQ(programOutput(), "43\n");
}

TEST_F(BuildCycle, ErrorInOneSourceLetsTheOthersCompileAndLinksNothing) {
  put("src/main.c", "int main(void) { return nowhere; }\n");
  const Outcome broken = forgeyard({"build"});
  EXPECT_EQ(broken.exitCode, 1);
  EXPECT_THAT(compiled(broken), ElementsAre("main", "more", "other"));
  EXPECT_THAT(broken.output, HasSubstr("'nowhere' undeclared"));
  EXPECT_EQ(count(broken, "Component \"cc\" result: ERROR"), 1);
  EXPECT_EQ(count(broken, "Component \"link\""), 0);
  EXPECT_EQ(count(broken, "Final result: ERRORS"), 1);
  EXPECT_FALSE(exists("out/prog"));

  put("src/main.c", "int main(void) { return 0; }\n");
  EXPECT_EQ(forgeyard({"build"}).exitCode, 0);
  EXPECT_TRUE(exists("out/prog"));
}

TEST_F(BuildCycle, AfterAnErrorJustTheBrokenSourceIsTriedAgain) {
  must({"build"});
  put("src/main.c", "int main(void) { return nowhere; }\n");
  for (int i = 0; i < 2; ++i) {
    const Outcome broken = forgeyard({"build"});
    EXPECT_EQ(broken.exitCode, 1);
    EXPECT_THAT(compiled(broken), ElementsAre("main"));
  }
  put("src/main.c", "int main(void) { return 0; }\n");
  EXPECT_THAT(compiled(must({"build"})), ElementsAre("main"));
  touch("inc/inner.h");
  EXPECT_THAT(compiled(must({"build"})), ElementsAre("more"));
}

TEST_F(BuildCycle, WarningsAreShownAndStopNothing) {
  put("src/other.c", "int other(void) { int unused; return 0; }\n");
  must({"set", "cc", "WarningLevel=2"});
  const Outcome build = must({"build"});
  EXPECT_THAT(build.output, HasSubstr("unused variable 'unused'"));
  EXPECT_EQ(programOutput(), "42\n");
}

TEST_F(BuildCycle, ChangedSettingRebuildsItsComponentAndAnUnchangedOneDoesNot) {
  must({"build"});
  must({"set", "cc", "OptimisationLevel=0"});
  EXPECT_EQ(toolRuns(must({"build"})), 0);
  must({"set", "cc", "DefineMacros=EXTRA"});
  EXPECT_THAT(compiled(must({"build"})), ElementsAre("main", "more", "other"));
  EXPECT_EQ(toolRuns(must({"build"})), 0);
}

TEST_F(BuildCycle, RebuildRunsEverythingAndCleanDeletesWhatWasMade) {
  must({"build"});
  EXPECT_EQ(toolRuns(must({"rebuild"})), 4);
  EXPECT_EQ(toolRuns(must({"build"})), 0);

  const Outcome clean = must({"clean"});
  EXPECT_EQ(toolRuns(clean), 0);
  EXPECT_THAT(clean.output, HasSubstr("Deleting "));
  for (const char* made : {"obj/main.obj", "obj/more.obj", "obj/other.obj", "out/prog"})
    EXPECT_FALSE(exists(made)) << made;
  EXPECT_TRUE(exists("src/main.c"));
  EXPECT_EQ(toolRuns(must({"build"})), 4);
}

TEST_F(BuildCycle, CompileRunsTheCompilerForTheNamedFilesAlone) {
  must({"build"});
  const Outcome one = must({"compile", "src/more.c"});
  EXPECT_THAT(compiled(one), ElementsAre("more"));
  EXPECT_EQ(toolRuns(one), 1);
  // Its object is new now, so the program is linked by the next build.
  EXPECT_EQ(toolRuns(must({"build"})), 1);
  const Outcome nobody = forgeyard({"compile", "src/nobody.c"});
  EXPECT_EQ(nobody.exitCode, 2);
  EXPECT_THAT(nobody.errors, HasSubstr("src/nobody.c"));
}

TEST_F(BuildCycle, NewSourceIsCompiledAndLinkedAndARemovedOneIsNot) {
  must({"build"});
  put("src/late.c", "int other(void) { return 100; }\n");
  must({"file", "add", "--folder", "src", "src/late.c"});
  must({"file", "remove", "src/other.c"});
  EXPECT_THAT(compiled(must({"build"})), ElementsAre("late"));
  EXPECT_EQ(programOutput(), "142\n");
}

TEST_F(BuildCycle, ExecuteOnceLinksAgainWhenTheProgramIsGone) {
  must({"build"});
  std::filesystem::remove(path("out/prog"));
  const Outcome build = must({"build"});
  EXPECT_THAT(compiled(build), IsEmpty());
  EXPECT_EQ(toolRuns(build), 1);
  EXPECT_EQ(programOutput(), "42\n");
}

TEST_F(Sandbox, FileRewrittenInPlaceIsJudgedByItsMarker) {
  put("a.txt", "text\n");
  must({"new", "p.nqp"});
  must({"folder", "add", "texts"});
  must({"component", "add", "cmdline", "stamp"});
  must({"connect", "texts", "stamp"});
  must({"set", "stamp", "Output=.txt", "CommandOutDir=.",
        "Command=" + scriptedTool() + " log \"$(FileFullPath)\" stamped"});
  must({"file", "add", "--folder", "texts", "a.txt"});
  EXPECT_EQ(toolRuns(must({"build"})), 1);
  EXPECT_TRUE(exists("a.txt.stamp.trg"));
  EXPECT_EQ(toolRuns(must({"build"})), 0);
  touch("a.txt");
  EXPECT_EQ(toolRuns(must({"build"})), 1);
  EXPECT_EQ(toolRuns(must({"build"})), 0);
  EXPECT_EQ(content("a.txt"), "text\nstamped\nstamped\n");
}

}  // namespace
}  // namespace forgeyard::e2e
