// The linker component at work in a project.

#include <filesystem>

#include "tests/support/build_fixture.h"
#include "tests/support/places.h"
#include "tools/linker/linker.h"

namespace forgeyard::test {
namespace {

// Makes the one output; the list of files is the last word, in the model's spelling.
constexpr const char* kLinker = R"sh(
for word; do list=$word; done
printf 'linking %s\n' "${list%%,*}"
echo made > "$(printf %s "${list#*,}" | tr '\\' /)"
)sh";

class LinkerComponentTest : public BuildFixture {
 protected:
  LinkerComponentTest() {
    linker_ = add<CLinker>(u"Linker");
    folder_ = addFolder(u"Scripts");
    connect(folder_.get(), linker_.get());
  }
  Ref<ILinkerSettings> linkSettings() { return settings<ILinkerSettings>(linker_.get()); }
  std::string setting(const BString& name) { return shown(getProperty(*linkSettings(), name)); }
  Lines outputs() { return outputsOf(static_cast<IComponent*>(linker_.get())); }

  Ref<CLinker> linker_;
  Ref<CFolder> folder_;
};

TEST_F(LinkerComponentTest, WorksItsOutputsOutOfTheScriptWithoutABuild) {
  addFile(*folder_, "game.lk");
  check(linkSettings()->put_CreateMapFile(1));
  EXPECT_EQ(run(E_TASK_FAKEBUILD), Lines{});
  EXPECT_EQ(result(), E_BTR_COMPLETED);
  EXPECT_EQ(setting(u"OutputName"), "game");
  EXPECT_EQ(setting(u"Output"), "game.cpe;game.map");
  EXPECT_EQ(setting(u"Command"), "");
  EXPECT_EQ(outputs(), (Lines{narrowPath("out/game.cpe"), narrowPath("out/game.map")}));
}

TEST_F(LinkerComponentTest, KeepsAnOutputNameThatThereIs) {
  addFile(*folder_, "game.lk");
  check(linkSettings()->put_OutputName(u"sub\\prog"));
  check(linkSettings()->put_CreateSymbolFile(1));
  run(E_TASK_FAKEBUILD);
  EXPECT_EQ(setting(u"OutputName"), "sub\\prog");
  EXPECT_EQ(outputs(), (Lines{narrowPath("out/sub/prog.cpe"), narrowPath("out/sub/prog.sym")}));
}

TEST_F(LinkerComponentTest, WithoutExactlyOneScriptThereIsNoOutput) {
  run(E_TASK_FAKEBUILD);
  EXPECT_EQ(outputs(), Lines{});
  addFile(*folder_, "a.lk");
  run(E_TASK_FAKEBUILD);
  EXPECT_EQ(outputs(), Lines{narrowPath("out/a.cpe")});
  addFile(*folder_, "b.lk");
  run(E_TASK_FAKEBUILD);
  EXPECT_EQ(setting(u"Output"), "");
  EXPECT_EQ(outputs(), Lines{});
}

TEST_F(LinkerComponentTest, NothingToLinkIsNoError) {
  addFile(*folder_, "a.obj");
  EXPECT_EQ(run(E_TASK_BUILD),
            (Lines{"Component \"Linker\"", "No inputs to build.", "All outputs up to date.", "-----"}));
  EXPECT_EQ(result(), E_BTR_COMPLETED);
}

TEST_F(LinkerComponentTest, RefusesAnyNumberOfScriptsButOne) {
  const std::string result = "Component \"Linker\" result: ERROR";
  // Passes the filter, which ignores case, and is none all the same.
  addFile(*folder_, "game.LK");
  const Lines none{"No scripts passed - there must be exactly one.", result, "-----"};
  EXPECT_EQ(run(E_TASK_BUILD), none);
  EXPECT_EQ(run(E_TASK_REBUILD), none);
  EXPECT_EQ(this->result(), E_BTR_ERROR);
  addFile(*folder_, "a.lk");
  addFile(*folder_, "b.lk");
  EXPECT_EQ(run(E_TASK_BUILD),
            (Lines{"Too many scripts passed - there must be exactly one.", result, "-----"}));
  EXPECT_EQ(setting(u"Command"), "");
}

TEST_F(LinkerComponentTest, CompilingFilesIsNoneOfItsBusiness) {
  addFile(*folder_, "game.lk");
  select({path("game.lk")});
  EXPECT_EQ(run(E_TASK_COMPILE), Lines{});
  EXPECT_EQ(result(), E_BTR_COMPLETED);
  EXPECT_EQ(setting(u"Output"), "") << "no lists are worked out";
}

TEST_F(LinkerComponentTest, LinksOnceAndAgainWhenTheScriptChanges) {
  // A linker of the test's own, beside a spawner of the test's own.
  const std::filesystem::path spawner = std::filesystem::path(places::programs()) / "TideSpawn.exe";
  std::filesystem::create_directory(directory_ / "bin");
  std::filesystem::copy_file(spawner, directory_ / "bin/TideSpawn.exe");
  putTool("bin/TRAMLINK", kLinker);
  useHome(directory_.path());
  const Ref<CLinker> linker = add<CLinker>(u"Second");
  connect(folder_.get(), linker.get());
  check(project_->DeleteComponent(static_cast<IComponent*>(linker_.get())));
  addFile(*folder_, "game.lk");

  const Lines linked{"Component \"Second\"",
                     "",
                     "TRAMLINK /c /s @" + narrowPath("game.lk") + "," + narrowPath("out/game.cpe"),
                     "linking @" + narrowPath("game.lk"),
                     "Exit Code: 0 (0x0).",
                     "Component \"Second\" result: OK",
                     "-----"};
  const Lines upToDate{"Component \"Second\"", "All outputs up to date.", "-----"};
  EXPECT_EQ(run(E_TASK_BUILD), linked);
  EXPECT_EQ(result(), E_BTR_COMPLETED);
  EXPECT_EQ(valueOf(*settings<ILinkerSettings>(linker.get()), &ILinkerSettings::get_BuildDirty), 0);
  EXPECT_EQ(run(E_TASK_BUILD), upToDate);
  touch("game.lk");
  EXPECT_EQ(run(E_TASK_BUILD), linked);
  EXPECT_EQ(run(E_TASK_REBUILD), linked);
  EXPECT_EQ(run(E_TASK_CLEAN),
            (Lines{"Component \"Second\"", "Deleting " + narrowPath("out/game.cpe"), "-----"}));
  EXPECT_FALSE(std::filesystem::exists(directory_ / "out/game.cpe"));
}

}  // namespace
}  // namespace forgeyard::test
