#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace forgeyard::workbench {

// One compilation as a database has it, with absolute host paths.
struct CompileCommand {
  std::string directory;               // where it ran
  std::string file;                    // the source
  std::string output;                  // as the database names it; may be empty
  std::vector<std::string> arguments;  // the program first; response files are replaced by what they hold
};

// The entries of a compile_commands.json in their order. Throws a Failure that names the entry at fault.
std::vector<CompileCommand> readCompilationDatabase(const std::string& path);

// Cuts a command the way a shell does: quotes of both kinds, backslashes; nothing is expanded.
std::vector<std::string> splitShellCommand(std::string_view command);

// A path as one in the directory sees it, "." and ".." resolved by text.
std::string pathFrom(const std::string& directory, const std::string& path);

}  // namespace forgeyard::workbench
