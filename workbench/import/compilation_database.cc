#include "workbench/import/compilation_database.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

#include "workbench/base/failure.h"
#include "workbench/import/source_names.h"

namespace forgeyard::workbench {

namespace {

using nlohmann::json;
namespace fs = std::filesystem;

constexpr int kDeepestResponseFile = 8;

bool isBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

std::string wholeFile(const std::string& path) {
  std::error_code error;
  if (fs::is_directory(path, error)) throw Failure(path + " is a directory.");
  std::ifstream stream(path, std::ios::binary);
  std::string text{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
  if (!stream) throw Failure(path + " can't be read.");
  return text;
}

// "@FILE" stands for what the file holds; where there is no such file, for itself.
void expand(const std::string& argument, const std::string& directory, int depth,
            std::vector<std::string>& out) {
  const std::string path = argument.size() > 1 ? pathFrom(directory, argument.substr(1)) : "";
  std::error_code error;
  if (!argument.starts_with('@') || depth == 0 || !fs::is_regular_file(path, error)) {
    out.push_back(argument);
    return;
  }
  for (const std::string& piece : splitShellCommand(wholeFile(path)))
    expand(piece, directory, depth - 1, out);
}

// What is wrong with an entry, for the message.
std::string textOf(const json& entry, const char* member) {
  const auto found = entry.find(member);
  if (found == entry.end()) return "";
  if (!found->is_string()) throw Failure(std::string("\"") + member + "\" is no text");
  return found->get<std::string>();
}

std::vector<std::string> argumentsOf(const json& entry) {
  const auto list = entry.find("arguments");
  if (list == entry.end()) return splitShellCommand(textOf(entry, "command"));
  if (!list->is_array()) throw Failure("\"arguments\" is no list");
  std::vector<std::string> arguments;
  for (const json& argument : *list) {
    if (!argument.is_string()) throw Failure("\"arguments\" holds what is no text");
    arguments.push_back(argument.get<std::string>());
  }
  return arguments;
}

CompileCommand commandOf(const json& entry, const std::string& databaseDirectory) {
  if (!entry.is_object()) throw Failure("it is no object");
  CompileCommand command;
  command.directory = pathFrom(databaseDirectory, textOf(entry, "directory"));
  command.output = textOf(entry, "output");
  const std::string file = textOf(entry, "file");
  if (file.empty()) throw Failure("\"file\" is missing");
  command.file = pathFrom(command.directory, file);
  for (const std::string& argument : argumentsOf(entry))
    expand(argument, command.directory, kDeepestResponseFile, command.arguments);
  if (command.arguments.empty()) throw Failure("neither \"command\" nor \"arguments\" names a program");
  return command;
}

}  // namespace

std::string pathFrom(const std::string& directory, const std::string& path) {
  std::string normal = (fs::path(directory) / path).lexically_normal().string();
  if (normal.size() > 1 && normal.ends_with('/')) normal.pop_back();
  return normal;
}

std::vector<std::string> splitShellCommand(std::string_view command) {
  std::vector<std::string> words;
  std::string word;
  bool inWord = false;
  char quote = '\0';
  for (std::size_t at = 0; at < command.size(); ++at) {
    const char c = command[at];
    if (quote == '\0' && isBlank(c)) {
      if (inWord) words.push_back(std::exchange(word, {}));
      inWord = false;
      continue;
    }
    inWord = true;
    if (c == quote) {
      quote = '\0';
    } else if (quote == '\0' && (c == '"' || c == '\'')) {
      quote = c;
    } else if (c == '\\' && quote != '\'' && at + 1 < command.size()) {
      const char next = command[at + 1];
      const bool special = quote == '\0' || std::string_view("\\\"$`\n").find(next) != std::string_view::npos;
      if (special) ++at;
      // A line that goes on.
      if (!special || next != '\n') word += special ? next : c;
    } else {
      word += c;
    }
  }
  if (inWord) words.push_back(std::move(word));
  return words;
}

std::vector<CompileCommand> readCompilationDatabase(const std::string& path) {
  const std::string text = wholeFile(path);
  json entries;
  try {
    entries = json::parse(text);
  } catch (const json::parse_error& error) {
    throw Failure(path + " is no JSON: byte " + std::to_string(error.byte) + " can't be understood.");
  }
  if (!entries.is_array()) throw Failure(path + " is no compilation database: it holds no list.");
  std::vector<CompileCommand> commands;
  for (const json& entry : entries) {
    try {
      commands.push_back(commandOf(entry, std::string(directoryName(path))));
    } catch (const Failure& failure) {
      throw Failure(path + ", entry " + std::to_string(commands.size() + 1) + ": " + failure.what() + ".");
    }
  }
  return commands;
}

}  // namespace forgeyard::workbench
