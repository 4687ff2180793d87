// TideSpawn.exe: runs one tool of a build, given as the text of its whole command. Hosts start it for every
// tool; see tool_run.h for what it promises them.

#include <errno.h>
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/common/fitted_command.h"
#include "adapters/common/host_spelling.h"
#include "platform/paths/command_line.h"
#include "spawner/report.h"
#include "spawner/tool_command.h"
#include "spawner/tool_run.h"

namespace {

constexpr std::string_view kHelp =
    "usage: TideSpawn.exe COMMAND\n"
    "       TideSpawn.exe --stdin < FILE\n"
    "\n"
    "Runs a tool. COMMAND is its whole command line in one argument: the program, then its arguments, "
    "parted\n"
    "by blanks and held together by double quotes; a backslash is special only before a double quote. No\n"
    "shell takes part. --stdin reads a COMMAND of any length from standard input; GNU tools get their "
    "arguments\n"
    "in a response file if there are more than the system takes.\n"
    "\n"
    "A program named without a directory is looked for beside TideSpawn.exe first, then along PATH. "
    "Programs\n"
    "beside TideSpawn.exe, and those that the registry key \"Software\\Korvel\\Build Tool\\Native Paths\" "
    "names,\n"
    "get their arguments as they stand; all others get path arguments (\\home\\u\\a.c, -oC:\\out\\a.obj)\n"
    "spelled for this system.\n"
    "\n"
    "The tool and all it has started end when the user's stop event is set, when the process that started\n"
    "TideSpawn.exe ends, or on SIGTERM, SIGINT or SIGHUP.\n"
    "\n"
    "Exit code: the tool's; 128 + n if signal n ended it; 2 wrong usage, 126 not executable, 127 not "
    "found.\n";

std::optional<std::string> readInput() {
  std::string text;
  char bytes[65536];
  for (;;) {
    const ssize_t size = ::read(STDIN_FILENO, bytes, sizeof bytes);
    if (size < 0 && errno == EINTR) continue;
    if (size < 0) return std::nullopt;
    if (size == 0) return text;
    text.append(bytes, static_cast<std::size_t>(size));
  }
}

int runFitted(const forgeyard::FoundTool& tool, std::vector<std::string> command) {
  using namespace forgeyard;
  const FittedCommand fitted(std::move(command));
  std::vector<const char*> words;
  for (const std::string& word : fitted.words()) words.push_back(word.c_str());
  words.push_back(nullptr);
  const int kept = fitted.responseFile() ? fitted.responseFile()->descriptor() : -1;
  return runTool({tool.file.c_str(), words.front(), words.data(), environ, kept});
}

int runCommand(std::string_view text) {
  using namespace forgeyard;
  ToolCommand command = splitToolCommand(text);
  if (command.program.empty()) {
    reportCannotStart("", "the command names no program");
    return NOT_FOUND;
  }
  UserRegistry registry;
  HostSpelling spelling(registry);
  const FoundTool tool = findCommandTool(command.program, spelling, environ);
  if (tool.file.empty()) {
    reportCannotStart(command.program.c_str(), tool.problem.c_str());
    return tool.exitCode;
  }
  if (!tool.besideSpawner && !wantsNativePaths(tool.file, registry)) {
    for (std::string& argument : command.arguments) argument = spelling.argument(argument);
  }
  command.arguments.insert(command.arguments.begin(), command.program);
  return runFitted(tool, std::move(command.arguments));
}

int runInput() {
  using namespace forgeyard;
  const std::optional<std::string> text = readInput();
  if (text && text->find('\0') == text->npos) return runCommand(*text);
  reportCannotStart("", text ? "the command on standard input has a null byte in it"
                             : "the command can't be read from standard input");
  return WRONG_USAGE;
}

int run(std::string_view only) {
  if (only == "--help" || only == "--version") {
    const std::string_view text = only == "--help" ? kHelp : "TideSpawn.exe " FORGEYARD_VERSION "\n";
    return std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0 ? 0
                                                                                                       : 1;
  }
  return only == "--stdin" ? runInput() : runCommand(only);
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) {
    std::fputs("usage: TideSpawn.exe COMMAND (the whole command in one argument; --help tells more)\n",
               stderr);
    return forgeyard::WRONG_USAGE;
  }
  try {
    return run(arguments[1]);
  } catch (const std::exception& failure) {
    std::fputs(("TideSpawn: " + std::string(failure.what()) + "\n").c_str(), stderr);
    return forgeyard::CANNOT_EXECUTE;
  }
}
