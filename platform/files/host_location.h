#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "platform/text/bstring.h"

namespace forgeyard {

// Where the model's paths lie on the host: one table of drives (from the registry, read at the first
// question) and one cache of directory listings for the process. All of it may be called from any thread.

// The host path of a model path, spelled as the disk has it where it exists: parents that exist are
// corrected, the rest stays as it is. A relative path stays relative. Empty if the path can name no file
// (drive not mapped, network share, no text).
std::optional<std::string> toHost(const BString& path);

// The host path of a file or directory that exists; empty if none does.
std::optional<std::string> existingHost(const BString& path);

// The host path letter for letter: no look at the disk. Empty as with toHost().
std::optional<std::string> spelledHost(const BString& path);

// A host path turned into the model's spelling, or why that can't be done: exactly one of the two is there.
struct ModelPath {
  BString path;
  std::string error;  // a sentence that names the path and the reason
  explicit operator bool() const noexcept { return error.empty(); }
};

// The model's spelling of a host path: absolute, without a slash at its end, "." and ".." resolved by text. A
// relative path is taken from the working directory, spelled as the environment's PWD has it if that is
// right.
ModelPath toModel(std::string_view hostPath);

// Reads the table of drives anew, after the registry has changed.
void reloadDrives();
// Raised by each reloadDrives(): paths with a drive may lie elsewhere since.
std::size_t drivesVersion() noexcept;

}  // namespace forgeyard
