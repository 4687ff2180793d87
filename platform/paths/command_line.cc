#include "platform/paths/command_line.h"

#include <cstddef>
#include <utility>

namespace forgeyard {
namespace {

bool isBlank(char c) {
  return c == ' ' || c == '\t';
}

void skipBlanks(std::string_view& line) {
  while (!line.empty() && isBlank(line.front())) line.remove_prefix(1);
}

std::string takeProgram(std::string_view& line) {
  if (line.starts_with('"')) {
    line.remove_prefix(1);
    const std::size_t end = line.find('"');
    std::string program(line.substr(0, end));
    line.remove_prefix(end == line.npos ? line.size() : end + 1);
    return program;
  }
  std::size_t end = 0;
  while (end < line.size() && !isBlank(line[end])) ++end;
  std::string program(line.substr(0, end));
  line.remove_prefix(end);
  return program;
}

// Takes a run of backslashes and, if it makes it plain text, the double quote behind it.
void takeBackslashes(std::string_view& line, std::string& argument) {
  std::size_t count = 0;
  while (count < line.size() && line[count] == '\\') ++count;
  const bool beforeQuote = count < line.size() && line[count] == '"';
  argument.append(beforeQuote ? count / 2 : count, '\\');
  line.remove_prefix(count);
  if (beforeQuote && count % 2 != 0) {
    argument += '"';
    line.remove_prefix(1);
  }
}

std::string takeArgument(std::string_view& line) {
  std::string argument;
  bool quoted = false;
  while (!line.empty() && (quoted || !isBlank(line.front()))) {
    if (line.front() == '\\') {
      takeBackslashes(line, argument);
      // A quote that is left behind an even run of backslashes is a quote like any other.
      continue;
    }
    if (line.front() != '"') {
      argument += line.front();
    } else if (quoted && line.size() > 1 && line[1] == '"') {
      argument += '"';
      quoted = false;
      line.remove_prefix(1);
    } else {
      quoted = !quoted;
    }
    line.remove_prefix(1);
  }
  return argument;
}

void takeArguments(std::string_view line, std::vector<std::string>& arguments) {
  for (skipBlanks(line); !line.empty(); skipBlanks(line)) arguments.push_back(takeArgument(line));
}

}  // namespace

std::vector<std::string> CommandLineToArgvW(std::string_view commandLine) {
  std::vector<std::string> arguments;
  if (commandLine.empty()) return arguments;
  arguments.push_back(takeProgram(commandLine));
  takeArguments(commandLine, arguments);
  return arguments;
}

ToolCommand splitToolCommand(std::string_view command) {
  ToolCommand tool;
  skipBlanks(command);
  tool.program = takeProgram(command);
  takeArguments(command, tool.arguments);
  return tool;
}

std::vector<std::string> splitArguments(std::string_view text) {
  std::vector<std::string> arguments;
  takeArguments(text, arguments);
  return arguments;
}

std::string quoteArgument(std::string_view argument) {
  if (!argument.empty() && argument.find_first_of(" \t\"") == argument.npos) return std::string(argument);
  std::string result = "\"";
  std::size_t backslashes = 0;
  for (const char c : argument) {
    if (c == '"') result.append(backslashes + 1, '\\');
    backslashes = c == '\\' ? backslashes + 1 : 0;
    result += c;
  }
  result.append(backslashes, '\\');
  result += '"';
  return result;
}

}  // namespace forgeyard
