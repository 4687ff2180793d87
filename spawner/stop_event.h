#pragma once

namespace forgeyard {

// The event that is set when the user says stop: a FIFO in the user's runtime directory that the hosts hold
// open. Bytes in it mean set; it is only ever watched here, never read or written.
//
// Opens it for watching. -1 if there is none, or if it isn't safely this user's own: the tool then runs
// without. `environment` is that of the process, null-terminated.
int openStopEvent(const char* const* environment) noexcept;

// The value of an environment variable, or null if it is not set or empty.
const char* environmentValue(const char* const* environment, const char* name) noexcept;

}  // namespace forgeyard
