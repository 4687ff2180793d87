// TideSpawn.exe: runs one tool of a build, given as the text of its whole command. Hosts start it for every
// tool; see tool_run.h for what it promises them.

#include <unistd.h>

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/common/host_spelling.h"
#include "platform/paths/command_line.h"
#include "spawner/report.h"
#include "spawner/tool_command.h"
#include "spawner/tool_run.h"

namespace {

constexpr std::string_view HELP =
    "usage: TideSpawn.exe COMMAND\n"
    "\n"
    "Runs a tool. COMMAND is its whole command line in one argument: the program, then its arguments, "
    "parted\n"
    "by blanks and held together by double quotes; a backslash is special only before a double quote. No\n"
    "shell takes part.\n"
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

int runCommand(const char* text) {
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
  std::vector<const char*> words{command.program.c_str()};
  for (const std::string& argument : command.arguments) words.push_back(argument.c_str());
  words.push_back(nullptr);
  return runTool({tool.file.c_str(), command.program.c_str(), words.data(), environ});
}

}  // namespace

int main(int count, char** arguments) {
  const std::string_view only = count == 2 ? arguments[1] : "";
  if (only == "--help" || only == "--version") {
    const std::string_view text = only == "--help" ? HELP : "TideSpawn.exe " FORGEYARD_VERSION "\n";
    return std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0 ? 0
                                                                                                       : 1;
  }
  if (count != 2) {
    std::fputs("usage: TideSpawn.exe COMMAND (the whole command in one argument; --help tells more)\n",
               stderr);
    return forgeyard::WRONG_USAGE;
  }
  return runCommand(arguments[1]);
}
