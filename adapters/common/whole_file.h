#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace forgeyard {

// Errors are told as errno values; 0 is success.

// All of the text, however many writes it takes.
[[nodiscard]] int writeAll(int fd, std::string_view text);

// Nothing, with errno set, if the file can't be read whole.
std::optional<std::string> readWholeFile(const std::string& file);

// At most `size` bytes from the start of the file; fewer if there are no more or it can't be read.
std::string readBeginning(const std::string& file, std::size_t size);

// Makes or empties the file and writes the content; removes it again if that fails.
[[nodiscard]] int writeWholeFile(const std::string& file, std::string_view content);

// Puts a file with the content in the place of `file` in one step.
[[nodiscard]] int replaceFile(const std::string& file, std::string_view content);

}  // namespace forgeyard
