// An installation below a prefix of its own: its programs find each other, and nothing of the build is
// needed.

#include <filesystem>

#include "tests/hosts/console/console_sandbox.h"
#include "tests/support/places.h"

namespace forgeyard::console {
namespace {

using testing::HasSubstr;
namespace fs = std::filesystem;

class Installation : public ConsoleSandbox {};

TEST_F(Installation, WorksWhereItIsPut) {
  const std::string prefix = path("my prefix");
  const Outcome installed = run(places::cmake(), {"--install", places::build(), "--prefix", prefix});
  ASSERT_EQ(installed.exitCode, 0) << installed.errors;
  setPrograms(prefix + "/bin");
  const std::string findings = shown({"doctor"});
  for (const char* words :
       {"module     PREFIX/lib/forgeyard/Forgeyard.so\n", "home       PREFIX/lib/forgeyard\n",
        "spawner    PREFIX/lib/forgeyard/bin/TideSpawn.exe\n",
        "adapter    PREFIX/lib/forgeyard/bin/TRAMLINK\n"}) {
    std::string expected = words;
    EXPECT_THAT(findings, HasSubstr("ok       " + expected.replace(expected.find("PREFIX"), 6, prefix)));
  }
  put("main.c", "int main(void) { return 0; }\n");
  makeProgramProject({"main.c"});
  const Outcome built = forgeyard({"build", "-v"});
  EXPECT_EQ(built.exitCode, 0) << built.output << built.errors;
  EXPECT_THAT(built.errors, HasSubstr("Module " + prefix));
  EXPECT_TRUE(exists("out/prog"));
  const fs::path share = fs::path(prefix) / "share";
  for (const char* file : {"man/man1/forgeyard-build.1.gz", "bash-completion/completions/forgeyard",
                           "doc/forgeyard/copyright", "forgeyard/samples/hello/make-project.sh"})
    EXPECT_GT(fs::file_size(share / file), 0) << file;
}

}  // namespace
}  // namespace forgeyard::console
