#pragma once

#include <cerrno>
#include <string>
#include <system_error>

namespace forgeyard::detail {

// Throws what the last system call reported; `what` says what was tried, and on what.
[[noreturn]] inline void throwErrno(const std::string& what, int error = errno) {
  throw std::system_error(error, std::generic_category(), what);
}

inline std::error_code errorOf(int error) {
  return {error, std::generic_category()};
}
inline std::error_code lastError() {
  return errorOf(errno);
}

// Runs a system call again as long as a signal interrupts it.
template <class Call>
auto retry(Call&& systemCall) noexcept {
  auto result = systemCall();
  while (result == -1 && errno == EINTR) result = systemCall();
  return result;
}

}  // namespace forgeyard::detail
