// target list, add, remove and detect.

#include <filesystem>

#include "tests/hosts/console/console_sandbox.h"

namespace forgeyard::console {
namespace {

using testing::HasSubstr;
using testing::Not;
namespace fs = std::filesystem;

class TargetCommands : public ConsoleSandbox {
 protected:
  // A program of that name in the directory "tools", which is all of the PATH.
  void install(const std::string& name) const {
    put("tools/" + name, "#!/bin/sh\n");
    fs::permissions(path("tools/" + name), fs::perms::owner_all);
  }
  Outcome withTools(Lines arguments) const {
    e2e::Start start = this->start(std::move(arguments));
    start.environment.push_back("PATH=" + path("tools"));
    return e2e::RunningProgram(start).finish();
  }
};

TEST_F(TargetCommands, FirstStartEntersTheToolChainsOfThePath) {
  for (const char* name : {"gcc", "as", "mipsel-linux-gnu-gcc", "mipsel-linux-gnu-as", "avr-gcc", "avr-ld"})
    install(name);
  // None of these is a cross compiler: no tools of its own, another name for the native one, no program at
  // all.
  for (const char* name : {"c99-gcc", "gcc-ar", "gcc-12"}) install(name);
  install("x86_64-linux-gnu-as");
  fs::create_symlink(path("tools/gcc"), path("tools/x86_64-linux-gnu-gcc"));
  put("tools/sparc-gcc", "not executable");
  install("sparc-as");
  const std::string list = withTools({"target", "list"}).output;
  EXPECT_EQ(list.find("compiler:  gnu-cc avr-gcc"), list.find("avr\n") + 6);
  EXPECT_THAT(list, HasSubstr("avr\n  compiler:  gnu-cc avr-gcc"));
  EXPECT_THAT(list, HasSubstr("mips\n  compiler:  gnu-cc mipsel-linux-gnu-gcc -mno-abicalls -fno-pic"));
  EXPECT_THAT(list, HasSubstr("\n  assembler: gnu-as mipsel-linux-gnu-as"));
  EXPECT_THAT(list, HasSubstr("native\n  compiler:  gnu-cc gcc"));
  for (const char* other : {"c99", "x86_64", "sparc", "gcc-12"}) EXPECT_THAT(list, Not(HasSubstr(other)));
}

TEST_F(TargetCommands, DetectAddsWhatIsNewAndLeavesTheRest) {
  install("gcc");
  withTools({"target", "list"});
  must({"target", "add", "native", "--compiler", "gnu-cc gcc -m32"});
  install("arm-none-eabi-gcc");
  install("arm-none-eabi-ld");
  EXPECT_EQ(withTools({"target", "detect"}).output,
            "arm-none-eabi: added, gnu-cc arm-none-eabi-gcc\nnative: known already\n");
  EXPECT_THAT(shown({"target", "list"}), HasSubstr("gnu-cc gcc -m32"));
}

TEST_F(TargetCommands, ListTellsWhatIsMissing) {
  install("there");
  must({"target", "add", "x", "--compiler", "gnu-cc no-such-gcc -O", "--assembler", "no-such-as -x"});
  must({"target", "add", "y", "--compiler", path("tools/there") + " -c"});
  must({"target", "add", "z"});
  const std::string list = shown({"target", "list"});
  EXPECT_THAT(list, HasSubstr("x\n  compiler:  gnu-cc no-such-gcc -O  [not found: no-such-gcc]\n"
                              "  assembler: no-such-as -x  [not found: no-such-as]\n"));
  EXPECT_THAT(list, HasSubstr("y\n  compiler:  " + path("tools/there") + " -c\n  assembler: (none)\n"));
  EXPECT_THAT(list, HasSubstr("z\n  compiler:  (none)\n"));
}

TEST_F(TargetCommands, AddChangesWhatIsGivenAndRemoveTakesAllOfIt) {
  must({"target", "add", "my target", "--compiler", "a", "--assembler", "b"});
  must({"target", "add", "my target", "--compiler", "c"});
  EXPECT_THAT(shown({"target", "list"}),
              HasSubstr("my target\n  compiler:  c  [not found: c]\n  assembler: b"));
  EXPECT_THAT(refused({"target", "add", "my target"}), HasSubstr("There is a target my target already."));
  EXPECT_THAT(refused({"target", "add", ""}), HasSubstr("needs a name"));
  EXPECT_THAT(refused({"target", "remove", "my trget"}), HasSubstr("Did you mean my target?"));
  must({"target", "remove", "my target"});
  EXPECT_THAT(shown({"target", "list"}), Not(HasSubstr("my target")));
  EXPECT_THAT(content("../registry"), Not(HasSubstr("my target")));
}

TEST_F(TargetCommands, ATextThatBuildsCannotUseIsRefused) {
  const std::string longest(260, 'x');
  const std::string registry = (must({"target", "add", "x", "--compiler", longest}), content("../registry"));
  for (const std::string tool : {"compiler", "assembler"}) {
    EXPECT_THAT(
        refused({"target", "add", "x", "--" + tool, longest + "y"}),
        HasSubstr("The text of the " + tool + " has 261 bytes; the longest that builds can use has 260."));
  }
  EXPECT_EQ(content("../registry"), registry);
}

TEST_F(TargetCommands, OneMipsLinkerServesAllTargets) {
  for (const char* name : {"mips-elf-ld", "arm-none-eabi-ld", "mips64-elf-ld"}) install(name);
  EXPECT_EQ(withTools({"target", "list"}).output, "linker of all targets: mips-elf-\n");
  install("mipsel-linux-gnu-ld");
  EXPECT_EQ(withTools({"target", "detect"}).output,
            "linker of all targets: known already\n"
            "There is no compiler (gcc, or a cross compiler) along PATH.\n");
  must({"target", "add", "x", "--linker", "/opt/no such/ld"});
  EXPECT_THAT(withTools({"target", "list"}).output,
              HasSubstr("linker of all targets: /opt/no such/ld  [not found: /opt/no such/ld]\n"));
  must({"target", "add", "x", "--linker", path("tools")});
  EXPECT_THAT(withTools({"target", "list"}).output, HasSubstr("[not found: " + path("tools") + "/ld]"));
  put("../registry", "[HKEY_CURRENT_USER\\Software\\Korvel\\Build Tool\\Targets]\n");
  EXPECT_THAT(withTools({"target", "detect"}).output,
              HasSubstr("linker of all targets: added, mipsel-linux-gnu-\n"))
      << "where there is a choice";
}

TEST_F(TargetCommands, RemovedTargetsDoNotComeBackByThemselves) {
  install("gcc");
  withTools({"target", "list"});
  must({"target", "remove", "native"});
  EXPECT_EQ(withTools({"target", "list"}).output, "");
  EXPECT_EQ(withTools({"target", "detect"}).output, "native: added, gnu-cc gcc\n");
}

}  // namespace
}  // namespace forgeyard::console
