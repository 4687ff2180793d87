#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace forgeyard::workbench {

// What a file of a source tree is for a project, by its extension.
enum class FileKind : std::uint8_t {
  Compiled,   // C, C++, or assembler that the preprocessor reads first (.S)
  Assembled,  // .s
  Header,
  Other,
};
FileKind kindOfFile(std::string_view path);

// Whether it takes the driver of a C++ compiler to link what becomes of the file.
bool isCxx(std::string_view path);

// Behind the last slash, and of that what stands before the last dot.
std::string_view fileName(std::string_view path);
std::string_view fileStem(std::string_view path);
// What stands before the last slash; empty if there is none.
std::string_view directoryName(std::string_view path);
// With its dot; empty if there is none.
std::string_view fileExtension(std::string_view path);

// Why no command of a build can carry the path of such a file, as the end of a sentence; nothing if it can.
std::optional<std::string> unusableBecause(std::string_view path, FileKind kind);

}  // namespace forgeyard::workbench
