#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace forgeyard {

// Response files in the notation of the GNU tools: words between blanks and line ends; single and double
// quotes hold them together, a backslash makes the next character plain text.
std::string responseFileText(const std::vector<std::string>& words);
std::vector<std::string> responseFileWords(std::string_view text);

// Whether a program is known by its name to read "@FILE" in that notation: the GNU tools with any prefix and
// version (mipsel-linux-gnu-gcc-12), compilers that are called like them, and the compiler adapter.
bool readsResponseFiles(std::string_view program);

// The words with each "@FILE" replaced by what the file holds, as the GNU tools do it: a file that can't be
// read leaves the word as it is, and files may name further ones. Throws std::runtime_error for files that go
// round in a circle.
std::vector<std::string> withResponseFiles(const std::vector<std::string>& words);

}  // namespace forgeyard
