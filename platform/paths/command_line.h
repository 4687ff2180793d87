#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace forgeyard {

// Cuts a command line into its arguments, program name first.
//   The program name ends at the first blank or tab, or, if it begins with a double quote, at the next one; a
//   backslash means nothing in it. A line that begins with a blank has an empty program name.
//   After it: blanks and tabs separate; double quotes hold them together; a run of backslashes is special
//   only before a double quote, where each two give one and an odd one makes the quote plain text; two double
//   quotes inside a quoted part give one and end the part.
// An empty line gives no argument at all.
std::vector<std::string> CommandLineToArgvW(std::string_view commandLine);

// A tool's whole command as it is to be started: blanks before the program name are skipped, so that it is
// empty only for a command that names none.
struct ToolCommand {
  std::string program;
  std::vector<std::string> arguments;  // those after the program name

  friend bool operator==(const ToolCommand&, const ToolCommand&) = default;
};
ToolCommand splitToolCommand(std::string_view command);

// Text with a mark for each byte; kPlainText marks a byte that is part of no name.
struct MarkedText {
  static constexpr char kPlainText = ' ';

  std::string text;
  std::string marks;  // as long as the text

  void append(std::string_view more, char mark) {
    text.append(more);
    marks.append(more.size(), mark);
  }
};

// Where the bytes of names count as plain parts of their words, whatever they are.
enum class NamesHold { Everywhere, InsideQuotes };

struct MarkedCommand {
  MarkedText program;
  std::vector<MarkedText> arguments;
};
// Cuts a command in which names are marked. The blanks, quotes and backslashes of a name mean nothing there.
MarkedCommand splitMarkedCommand(const MarkedText& command, NamesHold hold);

// Cuts text that holds arguments only, by the rules for those after the program name.
std::vector<std::string> splitArguments(std::string_view text);

// The argument written so that splitArguments gives it back, quoted only if it must be.
std::string quoteArgument(std::string_view argument);

// The command written so that splitToolCommand gives it back. Nothing for a program name that can't be
// written: an empty one, or one that needs quotes and has one in it.
std::optional<std::string> joinToolCommand(const ToolCommand& command);

}  // namespace forgeyard
