// Completion: what is answered to shells, and the script at work in a real Bash.

#include "tests/hosts/console/console_sandbox.h"
#include "tests/hosts/console/project_builder.h"
#include "tests/support/places.h"
#include "workbench/base/program_paths.h"

namespace forgeyard::console {

using namespace workbench;
namespace {

class CompletionOfShells : public ConsoleSandbox {
 protected:
  void makeContents() const {
    makeProject();
    for (const char* file : {"src/a.c", "src/b.c", "my sources/ü x.c", "top.c"}) put(file, "");
    must({"folder", "add", "my folder"});
    must({"component", "add", "cmdline", "$odd \"q's"});
    must({"file", "add", "src/a.c", "src/b.c", "my sources/ü x.c", "top.c", "--folder", "my folder"});
    must({"config", "add", "Größe 2"});
    must({"set", "link", "-c", "Small", "Output=small name"});
    must({"workspace", "add", "p.nqp"});
  }
  // What stands in the answer, one behind the other with "|" between.
  std::string answered(const std::string& shell, const std::string& line) const {
    const Outcome outcome = forgeyard({"complete", shell, line});
    EXPECT_EQ(outcome.exitCode, 0) << line;
    EXPECT_EQ(outcome.errors, "") << line;
    std::string all;
    for (const std::string& one : outcome.lines()) all += (all.empty() ? "" : "|") + one;
    return all;
  }
};

struct Row {
  const char* line;
  const char* answer;
};

TEST_F(CompletionOfShells, AnswersWordsAsBashIsToInsertThem) {
  makeContents();
  const auto before = everything();
  const Row table[] = {
      {"forgeyard do", "words|doctor "},
      {"forgeyard component ", "words|add |list |remove "},
      {"forgeyard component add l", "words|linker "},
      {"forgeyard -q --proj", "words|--project "},
      {"forgeyard -q --qui", "words"},
      {"forgeyard folder add x --f", "words|--filter "},
      {"forgeyard connect ", "words|src |inc |cc |link |my\\ folder |\\$odd\\ \\\"q\\'s "},
      {"forgeyard connect cc l", "words|link "},
      {"forgeyard connect cc link ", "words"},
      {"forgeyard get my", "words|my\\ folder "},
      {"forgeyard get 'my", "words|my folder'"},
      {"forgeyard get \"\\$o", "words|\\$odd \\\"q's\""},
      {"forgeyard get my\\ folder Ex", "words|Extension "},
      {"forgeyard set cc Warn", "words|WarningLevel="},
      {"forgeyard set cc Options=x warningl", "words|WarningLevel="},
      {"forgeyard set cc WarningLevel=", "words|0 |1 |2 "},
      {"forgeyard set cc OptimisationLevel=", "words|0 |1 |2 |3 "},
      {"forgeyard set cc DebugInfo=", "words|0 |1 "},
      {"forgeyard -c Small set link Output=", "words|small\\ name"},
      {"forgeyard set link Output=", "words|"},
      {"forgeyard config use G", "words|Größe\\ 2 "},
      {"forgeyard build -cSm", "words"},
      {"forgeyard build --config=Sm", "words|Small "},
      {"forgeyard config set Output", "words|OutputDirectory="},
      {"forgeyard config set Target=nat", "words|native "},
      {"forgeyard file add --folder ", "words|src |inc |my\\ folder "},
      {"forgeyard file remove ", "words|my\\ sources/|src/|top.c "},
      {"forgeyard file depends ", "words|my\\ sources/|src/|top.c "},
      {"forgeyard compile src/a.c my", "words|my\\ sources/ü\\ x.c "},
      {"forgeyard compile -- ./t", "words|./top.c "},
      {"forgeyard workspace use ", "words|p "},
      {"forgeyard typelib IProjectR", "words"},
      {"forgeyard typelib ICcS", "words|ICcSettings "},
      {"forgeyard completion ", "words|bash |zsh |fish "},
      {"forgeyard graph --format ", "words|text |dot |svg "},
      {"forgeyard -p ", "projects|"},
      {"forgeyard --project=sub/p", "projects|sub/p"},
      {"forgeyard script x.lua --", "files|--"},
      {"forgeyard get -p ~/no.nqp ", ""},
      {"forgeyard -w p.nqp get ", ""},
      {"forgeyard get nope ", "words"},
      {"forgeyard nope ", "words"},
      {"", ""},
  };
  for (const Row& row : table) EXPECT_EQ(answered("bash", row.line), row.answer) << row.line;
  EXPECT_EQ(answered("zsh", "forgeyard get 'my"), "words|my folder\ta folder of source files");
  EXPECT_EQ(answered("fish", "forgeyard set 'it\\'s' \"my"), "words");
  EXPECT_EQ(everything(), before);
  renameComponent(path("p.nqp"), "inc", "src");
  EXPECT_EQ(answered("bash", "forgeyard get "),
            "words|\\#0 |\\#1 |cc |link |my\\ folder |\\$odd\\ \\\"q\\'s ");
}

TEST_F(CompletionOfShells, WorksBesideABuildAndMakesNothing) {
  EXPECT_EQ(answered("bash", "forgeyard get "), "");
  EXPECT_FALSE(exists("../registry"));
  makeToolProject({"a.in"}, scriptedTool() + " touch running wait go");
  e2e::RunningProgram build(start({"build"}));
  waitForFile("running");
  EXPECT_EQ(answered("bash", "forgeyard get "), "words|src |tool ");
  put("go", "");
  EXPECT_EQ(build.finish().exitCode, 0);
}

// Which names the shell itself would add shows in a file that is no project.
TEST_F(CompletionOfShells, ScriptWorksInBash) {
  makeContents();
  put("other.txt", "");
  const std::string program = places::programs() + "/forgeyard";
  const std::string script =
      "compopt() { :; }; source <('" + program +
      "' completion bash)\n"
      "COMP_WORDS=('" +
      program + "'); COMP_LINE=$1; COMP_POINT=${#1}; _forgeyard; printf '<%s>' \"${COMPREPLY[@]}\"";
  const Row table[] = {
      {"forgeyard get my", "<my\\ folder >"},
      {"forgeyard set cc WarningLevel=", "<0 ><1 ><2 >"},
      {"forgeyard -p ", "<p.nqp><src><my sources>"},
      {"forgeyard --project=p", "<p.nqp>"},
      {"forgeyard script o", "<>"},
  };
  for (const Row& row : table) {
    e2e::Start start = this->start({});
    start.command = {"bash", "--norc", "-c", script, "bash", row.line};
    const Outcome outcome = e2e::RunningProgram(start).finish();
    EXPECT_EQ(outcome.output, row.answer) << row.line << outcome.errors;
  }
}

TEST_F(CompletionOfShells, ScriptsAreReadByTheirShells) {
  for (const char* shell : {"bash", "zsh", "fish"}) {
    put("script", shown({"completion", shell}));
    if (!findProgram(shell)) continue;
    const Outcome outcome = run(shell, {"-n", path("script")});
    EXPECT_EQ(outcome.exitCode, 0) << shell << outcome.errors;
  }
  EXPECT_THAT(refused({"completion", "tcsh"}), testing::HasSubstr("bash, zsh and fish"));
}

}  // namespace
}  // namespace forgeyard::console
