// doctor: what it finds where all is well and where something is broken, and that it leaves all of it alone.

#include <signal.h>

#include <filesystem>

#include "tests/hosts/console/console_sandbox.h"
#include "tests/support/places.h"

namespace forgeyard::console {
namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;
namespace fs = std::filesystem;

class Doctor : public ConsoleSandbox {
 protected:
  // With NAME=VALUE in the environment, if that is not empty; changes nothing.
  Outcome examined(const std::string& variable = "") const {
    e2e::Start start = this->start({"doctor"});
    if (!variable.empty()) start.environment.push_back(variable);
    const auto before = everything();
    Outcome outcome = e2e::RunningProgram(start).finish();
    EXPECT_EQ(everything(), before) << variable;
    EXPECT_EQ(outcome.errors, "") << variable;
    return outcome;
  }
};

TEST_F(Doctor, FindsThatBuildsCanWorkBeforeTheFirstStartAndBehindIt) {
  for (const bool first : {true, false}) {
    const Outcome outcome = examined();
    EXPECT_EQ(outcome.exitCode, 0) << outcome.output;
    EXPECT_THAT(outcome.output, HasSubstr("ok       module     " + places::programs() + "/Forgeyard.so\n"));
    EXPECT_THAT(outcome.output,
                ContainsRegex("ok       target     native, compiler: gnu-cc gcc .*/gcc, gcc "));
    EXPECT_THAT(outcome.output, HasSubstr("runtime, yours, mode 0700\n"));
    EXPECT_THAT(outcome.output, ContainsRegex("\nBuilds can work[^\n]*\n$"));
    EXPECT_EQ(outcome.output.find("not there yet; the next command makes it") != std::string::npos, first);
    if (first) makeProject();
  }
  EXPECT_THAT(examined().output, HasSubstr("ok       project    " + path("p.nqp")));
}

TEST_F(Doctor, TellsWhatIsBroken) {
  makeProject();
  const std::string registry = content("../registry");
  must({"target", "add", "board", "--compiler", "gnu-cc vax-linux-gnu-gcc"});
  must({"target", "add", "odd", "--assembler", "my-as -x"});
  put("../registry", content("../registry") + "nonsense\n\x1b[2J" + std::string(100, 'x') +
                         "\n[HKEY_CURRENT_USER\\Software\\Korvel\\Build Tool\\Drives]\n"
                         "C:=/no/such\n"
                         "[HKEY_CURRENT_USER\\Software\\Korvel\\Build Tool\\Assemblers]\n"
                         "board=" +
                         std::string(261, 'x') + "\n");
  put("mangled", "[HKEY_CURRENT_USER\\Software\\Korvel]\nHome=Q:\\nowhere\n");
  put("file", "");
  fs::create_directories(path("open"));
  fs::permissions(path("open"), fs::perms::all);
  fs::create_directories(path("empty"));
  const struct {
    std::string variable;
    int exitCode;
    std::string words;
  } table[] = {
      {"", 0, ": \"nonsense\" is not understood\n"},
      {"", 0, ": \"?[2J" + std::string(56, 'x') + "...\" is not understood\n"},
      {"", 0, "warning  drive      C: is /no/such, which is no directory\n"},
      {"", 0,
       "warning  target     board, compiler: gnu-cc vax-linux-gnu-gcc: vax-linux-gnu-gcc is not "
       "found"},
      {"", 0,
       "-> apt install gcc-vax-linux-gnu; or enter another with: forgeyard target add board "
       "--compiler\n"},
      {"", 0, "-> Install my-as, or enter another with: forgeyard target add odd --assembler\n"},
      {"", 0,
       "warning  target     board, assembler: its text has 261 bytes; the longest that builds can use has "
       "260\n"},
      {"", 0, "Builds can work; "},
      {"FORGEYARD_REGISTRY=" + path("empty"), 1,
       "problem  registry   " + path("empty") + ": the registry must be"},
      {"FORGEYARD_REGISTRY=" + path("file/registry"), 1, "is not there and can't be made"},
      {"FORGEYARD_REGISTRY=" + path("mangled"), 0, "; the next command enters what is missing"},
      {"PATH=" + path("empty"), 1, "-> apt install gcc; or"},
      {"PATH=" + path("empty"), 1, "problem  target     No target has a compiler"},
      {"FORGEYARD_RUNTIME_DIR=" + path("open"), 1, "can be written by other users"},
      {"FORGEYARD_RUNTIME_DIR=" + path("a/b"), 1, path("a/b") + " is not there and can't be made"},
      {"FORGEYARD_RUNTIME_DIR=" + path("b"), 0, path("b") + ": not there yet; the next build makes it"},
      {"FORGEYARD_RUNTIME_DIR=c", 0, "warning  runtime    c is relative"},
      {"FORGEYARD_RUNTIME_DIR=c", 0, "c: not there yet; the next build makes it"},
      {"FORGEYARD_REGISTRY=r", 0, "warning  registry   r is relative"},
      {"FORGEYARD_WORKSPACE=" + path("open"), 0,
       "warning  workspace  " + path("open") + " is no regular file"},
  };
  for (const auto& row : table) {
    const Outcome outcome = examined(row.variable);
    EXPECT_EQ(outcome.exitCode, row.exitCode) << row.variable << outcome.output;
    EXPECT_THAT(outcome.output, HasSubstr(row.words)) << row.variable;
  }
  const Outcome quiet = forgeyard({"doctor", "-q"});
  EXPECT_THAT(quiet.output, Not(HasSubstr("\nok ")));
  EXPECT_THAT(quiet.output, HasSubstr("warning  target "));
}

TEST_F(Doctor, TellsWhatIsMissingOfTheInstallation) {
  const std::string bin = places::programs();
  fs::create_directories(path("inst/bin"));
  for (const char* name : {"forgeyard", "libforgeyard-platform.so", "TideSpawn.exe", "gnu-cc"})
    fs::copy(bin + "/" + name, path("inst/bin"));
  put("inst/bin/gnu-as", "#!/bin/sh\necho gnu-as 0.0.1\n");
  fs::permissions(path("inst/bin/gnu-as"), fs::perms::owner_all);
  put("inst/bin/TRAMLINK", "not executable");
  setPrograms(path("inst/bin"));
  const Outcome outcome = examined();
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.output,
              HasSubstr("problem  module     Forgeyard.so is neither in " + path("inst/bin")));
  EXPECT_THAT(outcome.output, HasSubstr("ok       spawner    " + path("inst/bin/TideSpawn.exe")));
  EXPECT_THAT(outcome.output, HasSubstr("is of another version: gnu-as 0.0.1\n"));
  EXPECT_THAT(outcome.output,
              HasSubstr("problem  adapter    " + path("inst/bin/TRAMLINK") + " is not executable"));
  EXPECT_THAT(outcome.output, HasSubstr("Builds can't work: 2 problems; 1 warning.\n"));
}

TEST_F(Doctor, TellsWhoHoldsWhat) {
  makeToolProject({"a.in"}, scriptedTool() + " touch running wait go");
  e2e::RunningProgram build(start({"build"}));
  waitForFile("running");
  const std::string holder = "process " + std::to_string(build.id()) + " (forgeyard)";
  std::string output = examined().output;
  EXPECT_THAT(output, HasSubstr("ok       builds     " + holder + " is running a tool"));
  EXPECT_THAT(output, HasSubstr("warning  project    " + path("p.nqp") + " is open in " + holder + ".\n"));
  build.signal(SIGSTOP);
  ASSERT_TRUE(e2e::eventually([&] {
    output = examined().output;
    return output.find("warning  builds     " + holder + " is stopped") != output.npos;
  })) << output;
  build.signal(SIGCONT);
  put("go", "");
  EXPECT_EQ(build.finish().exitCode, 0);
  EXPECT_THAT(examined().output, HasSubstr("ok       builds     none is running\n"));
}

}  // namespace
}  // namespace forgeyard::console
