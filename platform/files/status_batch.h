#pragma once

#include <optional>
#include <span>
#include <vector>

#include "platform/files/file_system.h"
#include "platform/text/bstring.h"

namespace forgeyard {

// FileSystem::status of each path, in their order. Many are asked for at once from several threads, since a
// disk answers them sooner side by side, one behind a network much sooner. Returns when all are answered.
std::vector<std::optional<FileStatus>> statusBatch(FileSystem& disk, std::span<const BString> paths);

}  // namespace forgeyard
