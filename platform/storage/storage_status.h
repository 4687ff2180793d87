#pragma once

#include "platform/com/status.h"

namespace forgeyard::compound {

// What the caller was about to do decides the status of errors that tell nothing more particular.
enum class Attempt { Read, Write };

// The one place where the system's error numbers become storage statuses.
HRESULT statusOf(int error, Attempt attempt) noexcept;

// Throws the status of errno.
[[noreturn]] void throwErrno(Attempt attempt);

}  // namespace forgeyard::compound
