#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>

namespace forgeyard {

// The parts of a path in the model's or the host's spelling, by text alone.
std::string_view baseName(std::string_view path) noexcept;       // behind the last separator
std::string_view directoryPart(std::string_view path) noexcept;  // up to the last separator, which is its end
bool beginsWithDrive(std::string_view path) noexcept;            // `C:\`, `C:/`
bool isAbsolute(std::string_view path) noexcept;                 // begins with a separator or a drive

// A host path's directory, as a path to put a slash and a name behind.
std::string directoryOf(const std::string& hostPath);

// The kind of file that a host path names, S_IFREG say; 0 if there is none.
mode_t kindOf(const std::string& hostPath) noexcept;

// Whether two host paths name one existing file.
bool sameFile(const std::string& a, const std::string& b) noexcept;

}  // namespace forgeyard
