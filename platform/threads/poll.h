#pragma once

#include <chrono>
#include <cstddef>
#include <optional>

#include "platform/threads/waitable.h"

namespace forgeyard::detail {

// One poll over the handles and, behind them, `wake` (may be null). Returns the lowest signalled index, which
// is handles.size() for `wake`, or nothing after `timeout` (negative: never). Throws std::system_error if a
// descriptor is not open.
std::optional<std::size_t> pollFirst(Waitables handles, const Waitable* wake,
                                     std::chrono::milliseconds timeout);

// Whether the descriptor polls readable now.
bool isReadable(int fd) noexcept;

}  // namespace forgeyard::detail
