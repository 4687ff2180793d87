// A host that is killed while it saves.

#include <filesystem>
#include <random>
#include <thread>

#include "tests/model/support/model_fixture.h"
#include "tests/platform/storage/child.h"

namespace forgeyard::test {

namespace {

// In memory where that can be had: there the moments of a save lie close together, so a kill meets each of
// them.
class CrashTest : public ModelTest {
 protected:
  CrashTest() {
    std::string name = "/dev/shm/forgeyard-XXXXXX";
    if (::mkdtemp(name.data())) quick_ = name;
  }
  ~CrashTest() override { std::filesystem::remove_all(quick_); }

  Ref<CProject> projectThere() {
    const Ref<CProject> made = project();
    if (!quick_.empty()) check(made->put_WorkingDirectory(modelPath(quick_)));
    return made;
  }
  Ref<CProject> loaded() {
    Ref<CProject> made = projectThere();
    EXPECT_EQ(made->ProjectLoad(), S_OK);
    EXPECT_TRUE(made->omissions().empty());
    return made;
  }
  // Two states of one project whose files differ in every stream and in length.
  static void take(CProject& project, bool second) {
    check(project.put_Name(second ? u"Second" : u"F"));
    Ref<IConfiguration> active;
    check(project.get_ActiveConfiguration(&active));
    check(active->put_OutputDirectory(second ? BString(std::u16string(5000, u'o')) : u"out"));
    const Ref<IFolderFiles> folder = project.contents().components.front().as<IFolderFiles>();
    std::vector<BString> names(second ? 200 : 3, second ? u"\\inc\\second.h" : u"\\inc\\first.h");
    for (const Ref<ISourceFile>& file : folder->sourceFiles())
      check(file->put_AutomaticDeps(enumerator(names).get()));
  }

 private:
  std::string quick_;
};

}  // namespace

TEST_F(CrashTest, WheneverASaveIsKilledTheProjectIsWholeInOneOfItsStates) {
#ifdef __SANITIZE_ADDRESS__
  constexpr int kRounds = 100;  // each takes several times as long
#else
  constexpr int kRounds = 500;
#endif
  std::array<std::string, 2> states;
  {
    const Ref<CProject> made = projectThere();
    check(made->ProjectInit());
    const Ref<CFolder> folder = addFolder(*made, u"src");
    for (int i = 0; i < 20; ++i) addFile(*folder, u"\\x\\" + BString::fromNarrow(std::to_string(i)));
    for (const bool second : {true, false}) {
      take(*made, second);
      states[second ? 1 : 0] = dump(*made);
    }
    check(made->ProjectSave());
    check(made->ProjectClose());
  }
  std::mt19937 random(20);
  std::array<int, 2> met{};
  unsigned longest = 4000;  // microseconds, about one save; raised where saves take longer
  for (int round = 0; round < kRounds; ++round) {
    Child child([&](Child& self) {
      const Ref<CProject> mine = loaded();
      self.announce();
      for (bool second = true;; second = !second) {
        take(*mine, second);
        check(mine->ProjectSave());
      }
    });
    ASSERT_TRUE(child.awaitAnnouncement());
    std::this_thread::sleep_for(std::chrono::microseconds(random() % longest));
    child.kill();
    const Ref<CProject> left = loaded();
    const std::string state = dump(*left);
    check(left->ProjectClose());
    const auto known = std::find(states.begin(), states.end(), state);
    ASSERT_NE(known, states.end()) << "round " << round;
    ++met[static_cast<std::size_t>(known - states.begin())];
    if (met[1] == 0 && round % 8 == 7) longest *= 2;
  }
  EXPECT_GT(met[0], 0);
  EXPECT_GT(met[1], 0) << "the children did save";
}

}  // namespace forgeyard::test
