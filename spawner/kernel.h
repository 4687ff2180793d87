#pragma once

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <sched.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

// The system calls of the spawner, in a form that needs nothing of the C library: no errno, no thread-local
// storage, nothing that must have been initialised. That is what lets the quick start work before the C
// library is up, and lets a child work while it still shares our memory. Each gives the call's result, or
// minus the error number.
namespace forgeyard::kernel {

inline long rawCall(long number, long a, long b, long c, long d, long e) noexcept {
#if defined(__x86_64__)
  long result;
  register long fourth asm("r10") = d;
  register long fifth asm("r8") = e;
  asm volatile("syscall"
               : "=a"(result)
               : "a"(number), "D"(a), "S"(b), "d"(c), "r"(fourth), "r"(fifth)
               : "rcx", "r11", "memory");
  return result;
#else
  const long result = ::syscall(number, a, b, c, d, e);
  return result < 0 ? -errno : result;
#endif
}

template <class T>
long word(T value) noexcept {
  return static_cast<long>(value);
}
template <class T>
long word(T* pointer) noexcept {
  return reinterpret_cast<long>(pointer);
}
inline long word(decltype(nullptr)) noexcept {
  return 0;
}

template <class A = int, class B = int, class C = int, class D = int, class E = int>
long call(long number, A a = 0, B b = 0, C c = 0, D d = 0, E e = 0) noexcept {
  return rawCall(number, word(a), word(b), word(c), word(d), word(e));
}

// A set of signals as the kernel wants it.
using SignalMask = unsigned long;
template <class... Signals>
constexpr SignalMask signalMask(Signals... signals) noexcept {
  return (SignalMask{0} | ... | (SignalMask{1} << (signals - 1)));
}

[[noreturn]] inline void exit(int code) noexcept {
  for (;;) call(SYS_exit_group, code);
}
inline long write(int fd, const char* data, unsigned long size) noexcept {
  return call(SYS_write, fd, data, size);
}
inline long read(int fd, void* data, unsigned long size) noexcept {
  return call(SYS_read, fd, data, size);
}
inline int open(const char* path, int flags) noexcept {
  return static_cast<int>(call(SYS_openat, AT_FDCWD, path, flags, 0));
}
inline void close(int fd) noexcept {
  call(SYS_close, fd);
}
inline long stat(const char* path, struct ::stat* status, int flags = 0) noexcept {
  return call(SYS_newfstatat, AT_FDCWD, path, status, flags);
}
inline long stat(int fd, struct ::stat* status) noexcept {
  return call(SYS_fstat, fd, status);
}
// A negative number of milliseconds waits without limit.
inline long poll(struct ::pollfd* entries, unsigned long count, long milliseconds) noexcept {
  struct ::timespec limit {
    milliseconds / 1000, milliseconds % 1000 * 1'000'000
  };
  return call(SYS_ppoll, entries, count, milliseconds < 0 ? nullptr : &limit, nullptr, 0);
}
inline long milliseconds() noexcept {
  struct ::timespec now {};
  call(SYS_clock_gettime, CLOCK_MONOTONIC, &now);
  return now.tv_sec * 1000 + now.tv_nsec / 1'000'000;
}
inline long kill(pid_t pid, int signal) noexcept {
  return call(SYS_kill, pid, signal);
}
inline pid_t wait(pid_t pid, int* status, int options) noexcept {
  return static_cast<pid_t>(call(SYS_wait4, pid, status, options, nullptr));
}
inline pid_t parent() noexcept {
  return static_cast<pid_t>(call(SYS_getppid));
}
inline void block(SignalMask signals) noexcept {
  call(SYS_rt_sigprocmask, SIG_SETMASK, &signals, nullptr, sizeof signals);
}
// The default action for a signal that whoever started us may have set to be ignored.
inline void restoreDefault(int signal) noexcept {
  struct Action {
    void (*handler)(int);
    unsigned long flags;
    void (*restorer)();
    SignalMask mask;
  } action{};
  call(SYS_rt_sigaction, signal, &action, nullptr, sizeof action.mask);
}

// Runs `body` in a new process that shares our memory, on a stack of its own that ends at `stackEnd` (a
// multiple of 16), and waits until the new process has gone on to another program or ended. `body` does not
// return, and calls only what stands in this file.
inline pid_t startSharing(int (*body)(void*), void* argument, char* stackEnd) noexcept {
  constexpr long kFlags = CLONE_VM | CLONE_VFORK | SIGCHLD;
#if defined(__x86_64__)
  long result;
  register long fourth asm("r10") = 0;
  register long fifth asm("r8") = 0;
  asm volatile(
      "syscall\n\t"
      "test %%rax, %%rax\n\t"
      "jnz 1f\n\t"
      "xor %%ebp, %%ebp\n\t"
      "mov %[argument], %%rdi\n\t"
      "call *%[body]\n\t"
      "hlt\n"
      "1:"
      : "=a"(result)
      : "a"(SYS_clone), "D"(kFlags), "S"(stackEnd), "d"(0L), "r"(fourth),
        "r"(fifth), [body] "r"(body), [argument] "r"(argument)
      : "rcx", "r11", "memory", "cc");
  return static_cast<pid_t>(result);
#else
  const int result = ::clone(body, stackEnd, static_cast<int>(kFlags), argument);
  return result < 0 ? -errno : result;
#endif
}

}  // namespace forgeyard::kernel
