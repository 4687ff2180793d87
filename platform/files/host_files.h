#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/files/file_system.h"

namespace forgeyard {

// A host path turned into the model's spelling, or why that can't be done: exactly one of the two is there.
struct ModelPath {
  BString path;
  std::string error;  // names the path and the reason
  explicit operator bool() const noexcept { return error.empty(); }
};

// The host path of an absolute model path, spelled as the disk has it where it exists: the longest part that
// exists is corrected, the rest stays as it is. Empty if there is no such place (drive not mapped, relative
// path, a name that the host can't hold). Any thread.
std::optional<std::string> toHost(const BString& path);

// The model's spelling of a host path; a relative one is taken from the process's working directory. The
// result is absolute, and "." and ".." are resolved by text. Any thread.
ModelPath toModel(std::string_view hostPath);

// Reads the table of drives anew, after the registry has changed. Any thread.
void reloadDrives();

// The host's disk. Owned by the process.
FileSystem& hostFiles();

}  // namespace forgeyard
