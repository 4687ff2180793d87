#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

#include "platform/threads/named_event.h"
#include "tests/spawner/spawner_test.h"
#include "tests/support/places.h"

namespace forgeyard {
namespace {

class ToolStartTest : public EachWayTest {};

INSTANTIATE_TEST_SUITE_P(Ways, ToolStartTest, testing::ValuesIn(kWays),
                         [](const auto& info) { return std::string(info.param); });

TEST_P(ToolStartTest, GivesTheToolsExitCode) {
  for (const int code : {0, 1, 42, 127, 255}) {
    EXPECT_EQ(spawn(tool("exit " + std::to_string(code))), (Result{code, ""}));
  }
}

TEST_P(ToolStartTest, TellsWhichSignalEndedTheTool) {
  EXPECT_EQ(spawn(tool("die 9")), (Result{137, "TideSpawn: \"tool\" was killed by signal 9 (Killed)\n"}));
  const Result crash = spawn(tool("die 11"));
  EXPECT_EQ(crash.exitCode, 139);
  EXPECT_TRUE(crash.output.starts_with("TideSpawn: \"tool\" was killed by signal 11 (Segmentation fault)"))
      << crash.output;
}

TEST_P(ToolStartTest, TellsWhatItCouldNotStartAndWhy) {
  const std::string plain = scratch_ / "plain";
  writeFile(plain, "text");
  const std::string noInterpreter = scratch_ / "script";
  writeFile(noInterpreter, "#!/no/such/shell\n");
  const std::string noFormat = scratch_ / "noformat";
  writeFile(noFormat, "\x01\x02");
  for (const std::string& file : {noInterpreter, noFormat}) ASSERT_EQ(::chmod(file.c_str(), 0755), 0);

  const struct {
    std::string program;
    std::string why;
    int exitCode;
  } cases[] = {
      {"no-such-tool", "not found in " + places::programs() + " or on PATH", 127},
      {scratch_ / "missing", "No such file or directory", 127},
      {plain, "Permission denied", 126},
      {scratch_.path(), "it is a directory", 126},
      {noInterpreter, "the interpreter or loader that it names is missing", 126},
      {noFormat, "Exec format error", 126},
  };
  for (const auto& [program, why, exitCode] : cases) {
    const Result expected{exitCode, "TideSpawn: cannot start \"" + program + "\": " + why + "\n"};
    EXPECT_EQ(spawn(tool("x", program)), expected);
  }
}

TEST_P(ToolStartTest, PassesOverFilesOnThePathThatAreNoPrograms) {
  const std::string file = scratch_ / "tool";
  writeFile(file, "no program");
  const ScopedVariable path("PATH", scratch_.path() + ":" + places::spawnerTools());
  EXPECT_EQ(spawn(tool("exit 3")).exitCode, 3);
  const ScopedVariable only("PATH", scratch_.path());
  EXPECT_EQ(spawn(tool("exit 3")),
            (Result{126, "TideSpawn: cannot start \"tool\": " + file + " is not executable\n"}));
}

TEST_P(ToolStartTest, HandsBothOutputsOn) {
  const std::string output = spawn(tool("both")).output;
  EXPECT_TRUE(output == "to output\nto errors\n" || output == "to errors\nto output\n") << output;
}

constexpr const char* CLEAN = "input /dev/null\nown group\nblocked 0\nignored 0\n";

TEST_P(ToolStartTest, GivesTheToolACleanStart) {
  const auto event = NamedEvent::create("StopEvent");
  const Result result = spawn(tool("state"));
  EXPECT_EQ(result.output, CLEAN);
}

// Starts the spawner as a careless host would.
template <class Prepare>
int spawnRaw(const std::string& command, Prepare&& prepare) {
  const pid_t pid = ::fork();
  if (pid == 0) {
    prepare();
    ::execl(SPAWNER.c_str(), SPAWNER.c_str(), command.c_str(), nullptr);
    ::_exit(98);
  }
  int status = 0;
  ::waitpid(pid, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_P(ToolStartTest, SurvivesACarelessHost) {
  const std::string report = scratch_ / "report";
  const int code = spawnRaw(command("state"), [&] {
    ::signal(SIGCHLD, SIG_IGN);
    ::signal(SIGPIPE, SIG_IGN);
    sigset_t all;
    ::sigfillset(&all);
    ::sigprocmask(SIG_SETMASK, &all, nullptr);
    ::dup2(::open("/etc/passwd", O_RDONLY), 77);
    ::dup2(::open("/etc/passwd", O_RDONLY), STDIN_FILENO);
    ::dup2(::open(report.c_str(), O_WRONLY | O_CREAT, 0600), STDOUT_FILENO);
  });
  EXPECT_EQ(code, 0);
  EXPECT_EQ(readFile(report), CLEAN);
  EXPECT_EQ(spawnRaw(command("exit 5"), [] { ::signal(SIGCHLD, SIG_IGN); }), 5);
}

TEST_P(ToolStartTest, DoesNotTakeTheEventForAClosedOutput) {
  const auto event = NamedEvent::create("StopEvent");
  EXPECT_EQ(spawnRaw(command("both"), [] { ::closefrom(0); }), 0);
  EXPECT_FALSE(event->isSet());
}

TEST_P(ToolStartTest, PrefersToolsInItsOwnDirectory) {
  const std::string spawner = scratch_ / "TideSpawn.exe";
  std::filesystem::copy_file(SPAWNER, spawner);
  const std::string program = scratch_ / "tool";
  writeFile(program, "#!/bin/sh\nprintf '%s ' own \"$@\"\n");
  ASSERT_EQ(::chmod(program.c_str(), 0755), 0);
  // Their arguments stay as they are: they are made for these paths.
  EXPECT_EQ(spawn(tool("-o\\tmp\\a.obj \\usr Z:\\usr", "tool", spawner)),
            (Result{0, "own -o\\tmp\\a.obj \\usr Z:\\usr "}));
  EXPECT_EQ(spawn(tool("\\usr", program, spawner)), (Result{0, "own \\usr "}));
  EXPECT_EQ(spawn(tool("exit 4")).exitCode, 4);
}

TEST_F(SpawnerTest, CutsTheCommandLikeTheReference) {
  const char* const golden = std::getenv("FORGEYARD_GOLDEN");
  std::ifstream rows(std::string(golden ? golden : places::golden()) + "/paths/CommandLineToArgvW.tsv");
  setRegistry("[HKEY_CURRENT_USER\\Software\\Korvel\\Build Tool\\Native Paths]\ntool=\n");
  int checked = 0;
  for (std::string row; std::getline(rows, row);) {
    for (std::size_t tab; (tab = row.find("%09")) != row.npos;) row.replace(tab, 3, "\x01");
    std::istringstream fields(row);
    std::string line, count, arguments;
    std::getline(fields, line, '\t');
    std::getline(fields, count, '\t');
    std::getline(fields, arguments);
    if (!line.starts_with("prog ") || count == "1") continue;
    std::string expected = "[" + arguments.substr(5) + "]\n";
    for (std::size_t at; (at = expected.find('\x1f')) != expected.npos;) expected.replace(at, 1, "]\n[");
    std::string command = "tool print" + line.substr(4);
    for (std::string* text : {&expected, &command}) std::replace(text->begin(), text->end(), '\x01', '\t');
    EXPECT_EQ(spawn(command).output, expected) << line;
    ++checked;
  }
  EXPECT_GT(checked, 30);
}

// The job "count" says how many arguments came, and how many bytes.
std::string manyArguments(std::size_t count, const std::string& each) {
  std::string command = "count";
  for (std::size_t i = 0; i < count; ++i) command += " " + each;
  return command;
}

TEST_F(SpawnerTest, TakesACommandOfAnyLength) {
  // Far above what fits into one argument, and below what the system takes for a tool.
  const std::string argument(99, 'a');
  EXPECT_EQ(spawn(optionsForInput("tool " + manyArguments(10'000, argument))),
            (Result{0, "10000 arguments, 990000 bytes\n"}));
}

TEST_F(SpawnerTest, GivesGnuToolsAResponseFileForWhatTheSystemDoesNotTake) {
  const std::string program = scratch_ / "mipsel-elf-gcc-12.2";
  std::filesystem::create_symlink(places::spawnerTools() + "/tool", program);
  const std::string longName = "\"two  blanks\\\" \\'" + std::string(99, 'a') + "\"";
  const Result result = spawn(optionsForInput(program + " " + manyArguments(40'000, longName)));
  EXPECT_EQ(result.exitCode, 0) << result.output.substr(0, 300);
  // The name and its own "count" come in the file too.
  EXPECT_EQ(result.output, "1 arguments, 40001 in the response file, 4560005 bytes\n");
}

TEST_F(SpawnerTest, SaysWhatIsTooLongForATool) {
  const struct {
    std::string command;
    std::string why;
  } rows[] = {
      {"tool " + manyArguments(40'000, std::string(99, 'a')), "raise the limit of the stack"},
      {"tool count " + std::string(140'000, 'a'),
       "one of its arguments has 140000 bytes, and the system takes 131071"},
  };
  for (const auto& [command, why] : rows) {
    const Result result = spawn(optionsForInput(command));
    EXPECT_EQ(result.exitCode, 126);
    EXPECT_TRUE(result.output.starts_with("TideSpawn: cannot start \"tool\": ")) << result.output;
    EXPECT_NE(result.output.find(why), std::string::npos) << result.output;
    EXPECT_NE(result.output.find("write the names into a file that the tool reads"), std::string::npos);
  }
}

TEST_F(SpawnerTest, RefusesAnInputThatIsNoCommand) {
  EXPECT_EQ(
      spawn(optionsForInput(std::string("tool exit 3\0x", 13))),
      (Result{2, "TideSpawn: cannot start \"\": the command on standard input has a null byte in it\n"}));
  EXPECT_EQ(spawn(optionsFor({SPAWNER, "--stdin"})),
            (Result{127, "TideSpawn: cannot start \"\": the command names no program\n"}));
}

TEST_F(SpawnerTest, SpellsPathArgumentsForTheHost) {
  const std::string drive = scratch_ / "drive";
  std::filesystem::create_directories(drive + "/My Dir");
  writeFile(drive + "/My Dir/Main.c", "");
  setRegistry("[HKEY_CURRENT_USER\\Software\\Korvel\\Build Tool\\Drives]\nC:=" + drive + "\n");
  std::string model = scratch_.path();
  std::replace(model.begin(), model.end(), '/', '\\');
  const Result result = spawn("tool print " + model + "\\a.c -o" + model +
                              "\\a.obj \"C:\\my dir\\MAIN.C\" -IC:\\inc -Wl,-Map=" + model +
                              "\\m,-q \\n s/\\(a\\)/b/ \"-DX=\\\"a\\\"\" Q:\\none");
  EXPECT_EQ(result.output, "[" + scratch_.path() + "/a.c]\n[-o" + scratch_.path() + "/a.obj]\n[" + drive +
                               "/My Dir/Main.c]\n[-I" + drive + "/inc]\n[-Wl,-Map=" + scratch_.path() +
                               "/m,-q]\n[\\n]\n[s/\\(a\\)/b/]\n[-DX=\"a\"]\n[Q:\\none]\n");
}

TEST_F(SpawnerTest, LeavesTheArgumentsOfToolsWithNativePaths) {
  setRegistry("[HKEY_CURRENT_USER\\Software\\Korvel\\Build Tool\\Native Paths]\nTOOL=\n");
  EXPECT_EQ(spawn("tool print \\usr").output, "[\\usr]\n");
}

TEST_F(SpawnerTest, TakesTheProgramsPathInTheModelsSpelling) {
  std::string program = places::spawnerTools() + "/tool";
  std::replace(program.begin(), program.end(), '/', '\\');
  EXPECT_EQ(spawn(program + " exit 6").exitCode, 6);
  EXPECT_EQ(spawn("\"Z:" + program + "\" exit 6").exitCode, 6);
}

TEST_F(SpawnerTest, RefusesACallThatIsNoCommand) {
  const struct {
    std::vector<std::string> arguments;
    int exitCode;
    std::string beginning;
  } cases[] = {
      {{SPAWNER}, 2, "usage: TideSpawn.exe COMMAND"},
      {{SPAWNER, "tool", "exit"}, 2, "usage: TideSpawn.exe COMMAND"},
      {{SPAWNER, ""}, 127, "TideSpawn: cannot start \"\": the command names no program"},
      {{SPAWNER, " \t"}, 127, "TideSpawn: cannot start \"\": the command names no program"},
      {{SPAWNER, "--help"}, 0, "usage: TideSpawn.exe COMMAND"},
      {{SPAWNER, "--version"}, 0, "TideSpawn.exe "},
  };
  for (const auto& [arguments, exitCode, beginning] : cases) {
    Spawned run(arguments);
    EXPECT_TRUE(run.output().starts_with(beginning)) << arguments.back();
    EXPECT_EQ(run.wait(), exitCode) << arguments.back();
  }
}

}  // namespace
}  // namespace forgeyard
