#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace forgeyard {

// Cuts a command line into its arguments, program name first.
//   The program name ends at the first blank or tab, or, if it begins with a double quote, at the next one; a
//   backslash means nothing in it. A line that begins with a blank has an empty program name.
//   Behind it: blanks and tabs separate; double quotes hold them together; a run of backslashes is special
//   only before a double quote, where each two give one and an odd one makes the quote plain text; two double
//   quotes inside a quoted part give one and end the part.
// An empty line gives no argument at all.
std::vector<std::string> CommandLineToArgvW(std::string_view commandLine);

// A tool's whole command as it is to be started: blanks before the program name are skipped, so that it is
// empty only for a command that names none.
struct ToolCommand {
  std::string program;
  std::vector<std::string> arguments;  // those behind the program name
};
ToolCommand splitToolCommand(std::string_view command);

// Cuts text that holds arguments only, by the rules for those behind the program name.
std::vector<std::string> splitArguments(std::string_view text);

// The argument written so that splitArguments gives it back, quoted only if it must be.
std::string quoteArgument(std::string_view argument);

}  // namespace forgeyard
