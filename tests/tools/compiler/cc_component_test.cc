// The compiler component at work in a project.

#include <filesystem>

#include "tests/support/build_fixture.h"
#include "tools/compiler/cc.h"
#include "typelib/cookies.h"

namespace forgeyard::test {
namespace {

// Writes the object, and next to the source the content of "<source>.deps"; fails for a source that says so.
constexpr const char* kCompiler = R"(
out= src=
for word; do
  case $word in -o*) out=${word#-o};; -*) ;; *) src=$word;; esac
done
echo "compiling ${src##*/}"
grep -qs error "$src" && exit 3
echo object > "$out"
[ ! -f "$src.deps" ] || cp "$src.deps" "${src%.*}.d"
exit 0
)";

class CcComponentTest : public BuildFixture {
 protected:
  CcComponentTest() {
    compiler_ = putTool("cctool", kCompiler);
    setRegistry("Compilers", "mips", compiler_);
    setTarget(u"mips");
    cc_ = add<CCc>(u"Compiler");
    folder_ = addFolder(u"Sources");
    connect(folder_.get(), cc_.get());
  }
  void setTarget(const BString& target) {
    check(configuration().as<IKVSupportCookies>()->put_Cookie(u"Target", target));
  }
  // The lines about one run of the tool.
  static void append(Lines& lines, const Lines& more) { lines.insert(lines.end(), more.begin(), more.end()); }
  Lines toolLines(std::string_view file) const {
    const std::string stem(file.substr(0, file.rfind('.')));
    return {"", compiler_ + " -c -MD " + narrowPath(file) + " -o" + narrowPath("obj") + "\\" + stem + ".obj ",
            "compiling " + std::string(file), "Exit Code: 0 (0x0)."};
  }

  std::string compiler_;
  Ref<CCc> cc_;
  Ref<CFolder> folder_;
};

TEST_F(CcComponentTest, CompilesWhatIsOutOfDateAndReadsTheDependenciesBack) {
  const Ref<ISourceFile> a = addFile(*folder_, "a.c");
  const Ref<ISourceFile> b = addFile(*folder_, "b.c");
  directory_.put("inc/a.h");
  directory_.put("a.c.deps", "a.obj: a.c " + (directory_ / "inc/a.h") + "\r\n");

  Lines expected{"Component \"Compiler\""};
  append(expected, toolLines("a.c"));
  append(expected, toolLines("b.c"));
  append(expected, {"Component \"Compiler\" result: OK", "-----"});
  EXPECT_EQ(run(E_TASK_BUILD), expected);
  EXPECT_EQ(result(), E_BTR_COMPLETED);
  EXPECT_EQ(automaticDeps(*a), (Lines{".\\inc\\a.h"}));
  EXPECT_EQ(automaticDeps(*b), Lines{});
  EXPECT_FALSE(std::filesystem::exists(directory_ / "a.d"));
  EXPECT_EQ(valueOf(*settings<ICcSettings>(cc_.get()), &ICcSettings::get_BuildDirty), 0);

  EXPECT_EQ(run(E_TASK_BUILD), (Lines{"Component \"Compiler\"", "All outputs up to date.", "-----"}));

  touch("inc/a.h");
  expected = {"Component \"Compiler\""};
  append(expected, toolLines("a.c"));
  append(expected, {"Component \"Compiler\" result: OK", "-----"});
  EXPECT_EQ(run(E_TASK_BUILD), expected);
}

TEST_F(CcComponentTest, BuildsWhatItCannotKeepDependenciesForEachTime) {
  for (const char* name : {"a;b.c", "ax.c", "b*.c", "bx.c"}) addFile(*folder_, name);
  run(E_TASK_BUILD);
  Lines expected{"Component \"Compiler\""};
  for (const char* name : {"a;b.c", "b*.c", "bx.c"}) append(expected, toolLines(name));
  append(expected, {"Component \"Compiler\" result: OK", "-----"});
  EXPECT_EQ(run(E_TASK_BUILD), expected);

  check(configuration()->put_UpdateFileDependencies(0));
  EXPECT_EQ(run(E_TASK_BUILD), (Lines{"Component \"Compiler\"", "All outputs up to date.", "-----"}));
}

TEST_F(CcComponentTest, KeepsTheTemplateOfTheLastRunAsItsCommand) {
  addFile(*folder_, "a.c");
  EXPECT_EQ(shown(getProperty(*settings<ICcSettings>(cc_.get()), u"Command")), "");
  run(E_TASK_BUILD);
  EXPECT_EQ(shown(getProperty(*settings<ICcSettings>(cc_.get()), u"Command")),
            compiler_ + " -c -MD $(FileFullPath) -o$(OutDir)$(FileName).obj ");
  check(configuration()->put_UpdateFileDependencies(0));
  run(E_TASK_REBUILD);
  EXPECT_EQ(shown(getProperty(*settings<ICcSettings>(cc_.get()), u"Command")),
            compiler_ + " -c $(FileFullPath) -o$(OutDir)$(FileName).obj ");
}

TEST_F(CcComponentTest, DependencyFilesThatCannotBeReadChangeNothingAndGo) {
  const Ref<ISourceFile> a = addFile(*folder_, "a.c");
  directory_.put("a.c.deps", "a.obj: a.c one.h\r\n");
  run(E_TASK_BUILD);
  ASSERT_EQ(automaticDeps(*a), Lines{"one.h"});

  std::filesystem::remove(directory_ / "a.c.deps");
  run(E_TASK_REBUILD);
  EXPECT_EQ(automaticDeps(*a), Lines{"one.h"}) << "no file";

  directory_.put("a.c.deps", "x");
  run(E_TASK_REBUILD);
  EXPECT_EQ(result(), E_BTR_COMPLETED);
  EXPECT_EQ(automaticDeps(*a), Lines{"one.h"}) << "too short for a line end";
  EXPECT_FALSE(std::filesystem::exists(directory_ / "a.d"));

  std::filesystem::remove(directory_ / "a.c.deps");
  std::filesystem::create_directory(directory_ / "a.d");
  run(E_TASK_REBUILD);
  EXPECT_EQ(result(), E_BTR_COMPLETED);
  EXPECT_EQ(automaticDeps(*a), Lines{"one.h"}) << "a directory";
  EXPECT_TRUE(std::filesystem::is_directory(directory_ / "a.d"));
}

TEST_F(CcComponentTest, AnEmptyListOfDependenciesReplacesTheOldOne) {
  const Ref<ISourceFile> a = addFile(*folder_, "a.c");
  for (const char* text : {"a.obj: a.c\r\n", "a.obj: a.c \r\n", "\r\n"}) {
    directory_.put("a.c.deps", "a.obj: a.c one.h two.h\r\n");
    run(E_TASK_REBUILD);
    ASSERT_EQ(automaticDeps(*a), (Lines{"one.h", "two.h"}));
    directory_.put("a.c.deps", text);
    run(E_TASK_REBUILD);
    EXPECT_EQ(automaticDeps(*a), Lines{}) << text;
  }
}

TEST_F(CcComponentTest, TheLastTwoBytesAreCutWhateverTheyAre) {
  const Ref<ISourceFile> a = addFile(*folder_, "a.c");
  directory_.put("a.c.deps", "a.obj: a.c y.h\n");
  run(E_TASK_BUILD);
  EXPECT_EQ(automaticDeps(*a), Lines{"y."});
}

TEST_F(CcComponentTest, ALeftOverDependencyFileIsReadThoughNobodyAskedForOne) {
  const Ref<ISourceFile> a = addFile(*folder_, "a.c");
  check(configuration()->put_UpdateFileDependencies(0));
  directory_.put("a.d", "a.obj: a.c old.h\r\n");
  run(E_TASK_BUILD);
  EXPECT_EQ(automaticDeps(*a), Lines{"old.h"});
  EXPECT_FALSE(std::filesystem::exists(directory_ / "a.d"));
}

TEST_F(CcComponentTest, DependenciesWithVeryLongNamesStillForceARebuild) {
  addFile(*folder_, "a.c");
  std::string header = "deep";
  while (header.size() < 400) header += "/" + std::string(60, 'd');
  header += "/x.h";
  directory_.put(header);
  directory_.put("a.c.deps", "a.obj: a.c " + (directory_ / header) + "\r\n");
  run(E_TASK_BUILD);
  ASSERT_EQ(result(), E_BTR_COMPLETED);
  EXPECT_EQ(run(E_TASK_BUILD), (Lines{"Component \"Compiler\"", "All outputs up to date.", "-----"}));
  touch(header);
  EXPECT_EQ(run(E_TASK_BUILD).size(), 1 + toolLines("a.c").size() + 2);
}

TEST_F(CcComponentTest, AFileWithoutADotIsCompiledAndNoMore) {
  const Ref<ISourceFile> file = addFile(*folder_, "makefile");
  check(settings<ICcSettings>(cc_.get())->put_Input(u""));
  directory_.put("makefile.deps", "x: y one.h\r\n");
  const Lines lines = run(E_TASK_BUILD);
  EXPECT_EQ(result(), E_BTR_COMPLETED);
  EXPECT_EQ(automaticDeps(*file), Lines{});
}

TEST_F(CcComponentTest, OutputsOfAnotherComponentHaveNoDependencies) {
  addFile(*folder_, "a.c");
  directory_.put("a.c.deps", "a.obj: a.c one.h\r\n");
  const Ref<CCc> second = add<CCc>(u"Second");
  check(settings<ICcSettings>(second.get())->put_Input(u".obj"));
  connect(cc_.get(), second.get());
  directory_.put("obj/a.d", "a.obj: a.c one.h\r\n");
  run(E_TASK_BUILD);
  EXPECT_EQ(result(), E_BTR_COMPLETED);
  EXPECT_TRUE(std::filesystem::exists(directory_ / "obj/a.d"));
}

TEST_F(CcComponentTest, AnErrorInOneFileLetsTheOthersBeTried) {
  addFile(*folder_, "a.c");
  const Ref<ISourceFile> b = addFile(*folder_, "b.c", "error");
  addFile(*folder_, "c.c");
  directory_.put("b.c.deps", "b.obj: b.c b.h\r\n");
  directory_.put("b.d", "b.obj: b.c old.h\r\n");
  const Lines lines = run(E_TASK_BUILD);
  EXPECT_EQ(result(), E_BTR_ERROR);
  Lines expected{"Component \"Compiler\""};
  append(expected, toolLines("a.c"));
  append(expected, toolLines("b.c"));
  expected.back() = "Exit Code: 3 (0x3).";
  append(expected, toolLines("c.c"));
  append(expected, {"Component \"Compiler\" result: ERROR", "-----"});
  EXPECT_EQ(lines, expected);
  EXPECT_EQ(automaticDeps(*b), Lines{}) << "only a file that compiled is read back";
  EXPECT_TRUE(std::filesystem::exists(directory_ / "b.d"));
  EXPECT_EQ(valueOf(*settings<ICcSettings>(cc_.get()), &ICcSettings::get_BuildDirty), 1);
}

TEST_F(CcComponentTest, CompileWritesItsHeaderBeforeTheFirstFileThatRuns) {
  addFile(*folder_, "a.c");
  addFile(*folder_, "b.c");
  select({path("b.c")});
  Lines expected{"Component \"Compiler\""};
  append(expected, toolLines("b.c"));
  append(expected, {"Component \"Compiler\" result: OK", "-----"});
  EXPECT_EQ(run(E_TASK_COMPILE), expected);
  EXPECT_EQ(valueOf(*settings<ICcSettings>(cc_.get()), &ICcSettings::get_BuildDirty), 1)
      << "one file is not the whole component";
}

TEST_F(CcComponentTest, WithoutACompilerItSaysWhyAndRunsNothing) {
  addFile(*folder_, "a.c");
  const std::string result = "Component \"Compiler\" result: ERROR";
  setTarget(u"");
  EXPECT_EQ(run(E_TASK_BUILD), (Lines{"The target for this project was not specified. Use Project Settings, "
                                      "General tab to correct the Target entry.",
                                      result, "-----"}));
  EXPECT_EQ(this->result(), E_BTR_ERROR);
  setTarget(u"arm");
  EXPECT_EQ(run(E_TASK_BUILD),
            (Lines{"Specified target: arm has no compiler setting registry entry.", result, "-----"}));
  EXPECT_FALSE(std::filesystem::exists(directory_ / "obj/a.obj"));
}

TEST_F(CcComponentTest, OutputsFollowTheSuffixes) {
  addFile(*folder_, "sub/a.c");
  addFile(*folder_, "b.x");
  run(E_TASK_FAKEBUILD);
  EXPECT_EQ(inputsOf(static_cast<IComponent*>(cc_.get())), Lines{narrowPath("sub/a.c")});
  EXPECT_EQ(outputsOf(static_cast<IComponent*>(cc_.get())), Lines{narrowPath("obj/a.obj")});
  check(settings<ICcSettings>(cc_.get())->put_Output(u".s"));
  EXPECT_EQ(run(E_TASK_FAKEBUILD), Lines{});
  EXPECT_EQ(outputsOf(static_cast<IComponent*>(cc_.get())), Lines{narrowPath("obj/a.s")});
}

}  // namespace
}  // namespace forgeyard::test
