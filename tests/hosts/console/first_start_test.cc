// The registry: made at the first start, mended when the installation has moved, otherwise left alone.

#include <sys/stat.h>

#include <filesystem>

#include "tests/hosts/console/console_sandbox.h"
#include "tests/support/places.h"

namespace forgeyard::console {
namespace {

using testing::HasSubstr;
using testing::Not;
namespace fs = std::filesystem;

constexpr const char* kRegistry = "../registry";

class FirstStart : public ConsoleSandbox {
 protected:
  // What this build's programs are entered as.
  static std::string home() {
    std::string home = fs::path(places::programs()).parent_path();
    std::replace(home.begin(), home.end(), '/', '\\');
    return "Home=" + home + "\n";
  }
  std::string replaced(const std::string& from, const std::string& to) const {
    std::string text = content(kRegistry);
    const std::size_t at = text.find(from);
    EXPECT_NE(at, text.npos) << from;
    return text.replace(at, from.size(), to);
  }
};

TEST_F(FirstStart, MakesARegistryThatABuildCanStartFrom) {
  makeProject();
  const std::string registry = content(kRegistry);
  EXPECT_THAT(registry, HasSubstr(home()));
  EXPECT_THAT(registry, HasSubstr("[HKEY_CURRENT_USER\\Software\\Korvel\\Build Tool\\Targets]\n"));
  EXPECT_THAT(registry, HasSubstr("Forgeyard.so"));
  EXPECT_EQ(must({"component", "list"}).errors, "") << "and says nothing about it";
}

TEST_F(FirstStart, LaterStartsLeaveItAlone) {
  makeProject();
  // A second writer would show by its lock.
  fs::remove(path("../registry.lock"));
  const std::string before = content(kRegistry);
  must({"build"});
  must({"target", "list"});
  EXPECT_EQ(content(kRegistry), before);
  EXPECT_FALSE(exists("../registry.lock"));
}

TEST_F(FirstStart, MendsWhatHasMovedAndKeepsTheRest) {
  makeProject();
  const std::string whole = content(kRegistry);
  const struct {
    const char* name;
    std::string damaged;
  } table[] = {
      {"home", replaced(home(), "Home=\\no\\such\\place\n")},
      {"no home", replaced(home(), "")},
      {"module", replaced("InprocServer32]\n@=", "InprocServer32]\n@=/no/such")},
      {"no classes", whole.substr(0, whole.find("[HKEY_CLASSES_ROOT"))},
  };
  for (const auto& row : table) {
    put(kRegistry, row.damaged + "\n[HKEY_CURRENT_USER\\Software\\Mine]\nKept=yes\n");
    EXPECT_EQ(must({"component", "list"}).errors, "") << row.name;
    const std::string now = content(kRegistry);
    EXPECT_THAT(now, HasSubstr(home())) << row.name;
    EXPECT_THAT(now, Not(HasSubstr("/no/such"))) << row.name;
    EXPECT_THAT(now, HasSubstr("Forgeyard.so")) << row.name;
    EXPECT_THAT(now, HasSubstr("Kept=yes")) << row.name;
  }
}

TEST_F(FirstStart, KeepsAHomeThatHasASpawner) {
  makeProject();
  fs::create_directories(path("other/bin"));
  fs::create_symlink(places::programs() + "/TideSpawn.exe", path("other/bin/TideSpawn.exe"));
  std::string other = "Home=" + path("other") + "\n";
  std::replace(other.begin(), other.end(), '/', '\\');
  put(kRegistry, replaced(home(), other));
  must({"component", "list"});
  EXPECT_THAT(content(kRegistry), HasSubstr(other));
}

TEST_F(FirstStart, SaysWhyTheRegistryCannotBeMade) {
  e2e::Start start = this->start({"new", "p.nqp"});
  start.environment.push_back("FORGEYARD_REGISTRY=" + path("file/registry"));
  put("file", "");
  const Outcome outcome = e2e::RunningProgram(start).finish();
  EXPECT_EQ(outcome.exitCode, 2);
  EXPECT_THAT(outcome.errors, HasSubstr(path("file/registry")));
}

// A copy of the programs in another place, with some of them missing.
TEST_F(FirstStart, SaysWhatIsMissingOfTheInstallation) {
  const std::string bin = places::programs();
  fs::create_directories(path("inst/bin"));
  fs::copy(bin + "/forgeyard", path("inst/bin"));
  fs::copy(bin + "/libforgeyard-platform.so", path("inst/bin"));
  setPrograms(path("inst/bin"));
  EXPECT_THAT(refused({"new", "p.nqp"}), HasSubstr("Forgeyard.so is neither in " + path("inst/bin")));
  put("inst/bin/Forgeyard.so", "no library");
  EXPECT_THAT(refused({"new", "p.nqp"}), HasSubstr(path("inst/bin/Forgeyard.so") + " can't be loaded: "));
  fs::remove(path("inst/bin/Forgeyard.so"));
  fs::create_directories(path("inst/lib/forgeyard"));
  fs::copy(bin + "/libforgeyard-platform.so", path("inst/lib/forgeyard/Forgeyard.so"));
  EXPECT_THAT(refused({"new", "p.nqp"}),
              HasSubstr("is not the Forgeyard module: it has no DllGetClassObject"));
  // Where the registry says, in the end.
  fs::remove(path("inst/lib/forgeyard/Forgeyard.so"));
  setPrograms(bin);
  must({"target", "list"});
  setPrograms(path("inst/bin"));
  must({"new", "p.nqp"});
}

}  // namespace
}  // namespace forgeyard::console
