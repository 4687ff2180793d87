// Manual pages: of every command, and clean for the programs that show them.

#include <filesystem>
#include <regex>

#include "hosts/console/commands/all_commands.h"
#include "hosts/console/commands/common_usage.h"
#include "hosts/console/usage/examples.h"
#include "tests/hosts/console/console_sandbox.h"
#include "workbench/base/program_paths.h"

namespace forgeyard::console {

using namespace workbench;
namespace {

using testing::HasSubstr;
namespace fs = std::filesystem;

class Manual : public ConsoleSandbox {};

TEST_F(Manual, HasEveryCommandWithWhatItTakes) {
  fs::create_directory(path("man"));
  must({"man", "--directory", "man"});
  for (const Command* command : allCommands()) {
    const std::string file = "man/forgeyard-" + firstWord(command->name) + ".1";
    EXPECT_NE(exists(file), command->hidden) << file;
    if (command->hidden) continue;
    for (const Parameter& parameter : command->parameters) {
      const std::string name =
          std::regex_replace(std::string(longForm(parameter.name)), std::regex("-"), "\\-");
      EXPECT_THAT(content(file), HasSubstr(name)) << file;
    }
    EXPECT_EQ(shown({"man", firstWord(command->name)}), content(file));
  }
  for (const Example& example : examples())
    EXPECT_TRUE(example.word.empty() || exists("man/forgeyard-" + std::string(example.word) + ".1"))
        << example.word;
  EXPECT_EQ(shown({"man"}), content("man/forgeyard.1"));
  if (!findProgram("groff")) GTEST_SKIP() << "no groff to read the pages with";
  for (const auto& entry : fs::directory_iterator(path("man"))) {
    const Outcome read = run("groff", {"-man", "-ww", "-z", "-Kutf8", "-Tutf8", entry.path()});
    EXPECT_EQ(read.errors, "") << entry.path();
  }
}

TEST_F(Manual, OfSetHasTheProperties) {
  const std::string page = shown({"man", "set"});
  const struct {
    const char* kind;
    std::vector<const char*> lines;
  } table[] = {
      {"every", {"CommandOutDir", "BuildDirty"}},
      {"cmdline", {"FileSeparator", "Execute Once: one run for all inputs (0 or 1)."}},
      {"cc", {"OptimisationLevel", "0 none, 1 standard, 2 all."}},
      {"asm", {"MakeUndefinedXREF"}},
      {"linker", {"OutputFormat", "0 executable, 1 pure binary, 2 S\\-record."}},
  };
  for (const auto& row : table) {
    for (const char* line : row.lines) EXPECT_THAT(page, HasSubstr(line)) << row.kind;
  }
}

TEST_F(Manual, WrongUseIsTold) {
  EXPECT_THAT(refused({"man", "buidl"}), HasSubstr("There is no command buidl. Did you mean build?"));
  EXPECT_THAT(refused({"man", "complete"}), HasSubstr("There is no command complete."));
  EXPECT_THAT(refused({"man", "--directory", "nowhere"}),
              testing::MatchesRegex(".*nowhere/forgeyard.1 can't be written: .+"));
}

}  // namespace
}  // namespace forgeyard::console
