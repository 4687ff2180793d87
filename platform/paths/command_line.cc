#include "platform/paths/command_line.h"

#include <cstddef>
#include <iterator>
#include <utility>

#include "platform/paths/word_cutter.h"

namespace forgeyard {
namespace {

constexpr std::string_view kBlanks = " \t";

struct PlainBytes {
  std::string_view text;

  bool has(std::size_t i) const noexcept { return i < text.size(); }
  char at(std::size_t i) const noexcept { return text[i]; }
  static bool isLiteral(std::size_t, bool) noexcept { return false; }
};

struct PlainWords {
  std::string_view text;
  std::vector<std::string> list{};
  std::string word{};

  void addByte(std::size_t i) { word += text[i]; }
  void addBackslash() { word += '\\'; }
  void endWord() { list.push_back(std::exchange(word, {})); }
};

struct MarkedBytes {
  const MarkedText& command;
  NamesHold hold;

  bool has(std::size_t i) const noexcept { return i < command.text.size(); }
  char at(std::size_t i) const noexcept { return command.text[i]; }
  bool isLiteral(std::size_t i, bool quoted) const noexcept {
    return command.marks[i] != MarkedText::kPlainText && (quoted || hold == NamesHold::Everywhere);
  }
};

struct MarkedWords {
  const MarkedText& command;
  std::vector<MarkedText> list{};
  MarkedText word{};

  void addByte(std::size_t i) { word.append({&command.text[i], 1}, command.marks[i]); }
  void addBackslash() { word.append("\\", MarkedText::kPlainText); }
  void endWord() { list.push_back(std::exchange(word, {})); }
};

// The program first.
template <class Bytes, class Words>
auto cutCommand(const Bytes& bytes, Words words, bool afterBlanks) {
  WordCutter cutter(bytes, words);
  if (afterBlanks) cutter.skipBlanks();
  cutter.takeProgram();
  cutter.takeArguments();
  return std::move(words.list);
}

template <class Command, class List>
Command commandOf(List&& words) {
  Command command;
  command.program = std::move(words.front());
  command.arguments.assign(std::make_move_iterator(words.begin() + 1), std::make_move_iterator(words.end()));
  return command;
}

}  // namespace

std::vector<std::string> CommandLineToArgvW(std::string_view commandLine) {
  if (commandLine.empty()) return {};
  return cutCommand(PlainBytes{commandLine}, PlainWords{commandLine}, false);
}

ToolCommand splitToolCommand(std::string_view command) {
  return commandOf<ToolCommand>(cutCommand(PlainBytes{command}, PlainWords{command}, true));
}

MarkedCommand splitMarkedCommand(const MarkedText& command, NamesHold hold) {
  return commandOf<MarkedCommand>(cutCommand(MarkedBytes{command, hold}, MarkedWords{command}, true));
}

std::vector<std::string> splitArguments(std::string_view text) {
  const PlainBytes bytes{text};
  PlainWords words{text};
  WordCutter(bytes, words).takeArguments();
  return std::move(words.list);
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

std::optional<std::string> joinToolCommand(const ToolCommand& command) {
  std::string text = command.program;
  if (text.empty()) return std::nullopt;
  if (text.find_first_of(kBlanks) != text.npos || text.front() == '"') {
    if (text.find('"') != text.npos) return std::nullopt;
    text = '"' + text + '"';
  }
  for (const std::string& argument : command.arguments) text.append(" ").append(quoteArgument(argument));
  return text;
}

}  // namespace forgeyard
