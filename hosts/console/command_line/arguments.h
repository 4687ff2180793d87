#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace forgeyard::console {

// The arguments of a command line as the parser takes them for what they are: it sees a list in "[a,b]" and
// an option whose value follows in "--name=". What comes out of it goes through unguarded().
std::vector<std::string> guardedArguments(const std::vector<std::string>& typed);
std::string unguarded(const std::string& argument);

// The words that are no options: the command, as far as it can be told from a line that doesn't parse.
std::vector<std::string> commandWordsOf(const std::vector<std::string>& arguments);

// Takes off what stands behind the one argument of a command that hands the rest on.
std::vector<std::string> cutRest(std::vector<std::string>& arguments);

}  // namespace forgeyard::console
