// What can be wrong with a command line itself, and the help.

#include "hosts/console/commands/all_commands.h"
#include "hosts/console/usage/examples.h"
#include "tests/hosts/console/console_sandbox.h"

namespace forgeyard::console {
namespace {

using testing::HasSubstr;

class Usage : public ConsoleSandbox {};

Lines wordsOf(const Command& command) {
  const std::string name = command.name;
  const std::size_t blank = name.find(' ');
  if (blank == name.npos) return {name};
  return {name.substr(0, blank), name.substr(blank + 1)};
}

TEST_F(Usage, HelpIsThereOnEveryLevelAndNamesWhatTheCommandTakes) {
  const std::string all = shown({"--help"});
  for (const Command* command : allCommands()) {
    Lines line = wordsOf(*command);
    const bool listed = all.find("\n  " + line.front() + " ") != all.npos;
    EXPECT_NE(listed, command->hidden) << command->name;
    if (line.size() == 2) {
      EXPECT_THAT(shown({line.front(), "--help"}), HasSubstr("\n  " + line.back() + " "));
    }
    line.emplace_back("--help");
    const std::string help = shown(line);
    EXPECT_THAT(help, HasSubstr(command->help));
    for (const Example& example : examples()) {
      if (example.word.empty()) continue;  // some stand among those of a command as well
      const bool there = help.find("\n  " + std::string(example.line) + "\n") != help.npos;
      EXPECT_EQ(there, shows(example, command->name)) << example.line;
    }
    for (const Parameter& parameter : command->parameters) EXPECT_THAT(help, HasSubstr(parameter.name));
  }
  EXPECT_FALSE(exists("../registry")) << "help needs no registry";
}

TEST_F(Usage, VersionIsTold) {
  EXPECT_THAT(shown({"--version"}), testing::MatchesRegex("forgeyard [0-9]+\\.[0-9]+\\.[0-9]+\n"));
  EXPECT_EQ(shown({"build", "--version"}), shown({"--version"}));
}

TEST_F(Usage, WrongCommandLinesSayWhatIsWrong) {
  makeProject();
  const Refusal table[] = {
      {{}, "forgeyard --help"},
      {{"buidl"}, "There is no command buidl. Did you mean build?"},
      {{"xyzzy"}, "There is no command xyzzy. forgeyard --help"},
      {{"-p", "p.nqp", "buidl"}, "Did you mean build?"},
      {{"folder"}, "add"},
      {{"component"}, "add, list and remove"},
      {{"component", "lsit"}, "There is no command component lsit. Did you mean list?"},
      {{"build", "now"}, "now"},
      {{"build", "--fast"}, "--fast"},
      {{"--fast", "build"}, "--fast"},
      {{"file", "add", "x", "--folde", "y"}, "file add has no option --folde. Did you mean --folder?"},
      {{"-c", "Small", "build", "--quite"}, "build has no option --quite. Did you mean --quiet?"},
      {{"--jsn"}, "There is no option --jsn. Did you mean --json?"},
      {{"set", "cc", "Options=x", "--all-cofnigs=1"}, "Did you mean --all-configs?"},
      {{"connect", "src"}, "TO"},
      {{"connect", "src", "cc", "link"}, "link"},
      {{"file", "add"}, "PATH"},
      {{"set", "cc"}, "PROPERTY=VALUE"},
      {{"set", "cc", "Options"}, "\"Options\" sets nothing"},
      {{"set", "cc", "=x"}, "\"=x\" sets nothing"},
      {{"folder", "add", "x", "--filter"}, "--filter"},
      {{"folder", "add", "x", "--filter", "a", "--filter", "b"}, "--filter"},
      {{"-p"}, "--project"},
      {{"-q"}, "What is to be done?"},
      {{"config", "use", "Small", "-c", "Default"}, "-c"},
      {{"get", "cc", "-c", "Small", "--all-configs"}, "--all-configs"},
  };
  for (const Refusal& row : table) EXPECT_THAT(refused(row.arguments), HasSubstr(row.words));
}

TEST_F(Usage, OptionsStandBeforeOrBehindTheCommand) {
  makeProject();
  must({"set", "cc", "-c", "Small", "Options=-small"});
  for (const Lines& line :
       {Lines{"-c", "Small", "get", "cc", "Options"}, Lines{"get", "-c", "Small", "cc", "Options"},
        Lines{"get", "cc", "Options", "-c", "Small"}, Lines{"get", "cc", "Options", "--config=Small"},
        Lines{"-p", "p.nqp", "get", "cc", "Options", "-cSmall"}}) {
    EXPECT_EQ(shown(line), "-small\n");
  }
  EXPECT_EQ(shown({"get", "cc", "Options"}), "\n");
}

TEST_F(Usage, ArgumentsAreTakenAsTheyStand) {
  makeProject();
  // The last two look like an option and like a list to many a parser.
  for (const std::string value :
       {"", "a=b", "-O2", "\"quoted text\"", "ünïcödé", "[a,b]", "%s %%", "$(COutDir)\\x"}) {
    must({"set", "link", "Command=" + value});
    EXPECT_EQ(shown({"get", "link", "Command"}), value + "\n");
  }
  must({"folder", "add", "[x]", "--filter", "[c,h]"});
  EXPECT_EQ(shown({"get", "[x]", "Extension"}), "[c,h]\n");
  must({"folder", "add", "none", "--filter="});
  EXPECT_EQ(shown({"get", "none", "Extension"}), "\n");
  must({"file", "add", "--folder", "src", "--", "-odd.c", "[y].c"});
  EXPECT_THAT(shown({"file", "list"}), HasSubstr("src\n  -odd.c\n  [y].c\n"));
}

}  // namespace
}  // namespace forgeyard::console
