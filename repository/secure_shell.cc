#include "repository/secure_shell.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <utility>
#include <vector>

namespace forgeyard::repository {

namespace {

constexpr int kPolitePeriods = 20;
constexpr useconds_t kPeriod = 50'000;

std::pair<Descriptor, Descriptor> socketPair() {
  int ends[2] = {-1, -1};
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
    throw std::system_error(errno, std::generic_category(), "a connection to ssh can't be made");
  return {Descriptor(ends[0]), Descriptor(ends[1])};
}

// Its input and output are the socket, its messages go nowhere, and its signals are those of a fresh program.
pid_t startSsh(std::vector<std::string> arguments, int socket) {
  std::vector<char*> argv;
  for (std::string& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_adddup2(&files, socket, STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&files, socket, STDOUT_FILENO);
  posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t none;
  sigemptyset(&none);
  sigset_t pipe = none;
  sigaddset(&pipe, SIGPIPE);
  posix_spawnattr_setsigmask(&attributes, &none);
  posix_spawnattr_setsigdefault(&attributes, &pipe);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  pid_t program = -1;
  const int code = ::posix_spawnp(&program, "ssh", &files, &attributes, argv.data(), environ);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&files);
  if (code != 0) throw std::system_error(code, std::generic_category(), "the program ssh can't be started");
  return program;
}

}  // namespace

SecureShell::SecureShell(const std::string& user, const std::string& host, int port,
                         std::chrono::seconds limit)
    : SecureShell(socketPair(), user, host, port, limit) {}

SecureShell::SecureShell(std::pair<Descriptor, Descriptor> ends, const std::string& user,
                         const std::string& host, int port, std::chrono::seconds limit)
    : socket_(std::move(ends.first), "ssh to " + host, limit) {
  std::vector<std::string> arguments{"ssh", "-q", "-o", "BatchMode=yes"};
  if (port > 0) arguments.insert(arguments.end(), {"-p", std::to_string(port)});
  arguments.insert(arguments.end(), {"--", user.empty() ? host : user + "@" + host, "svnserve", "-t"});
  program_ = startSsh(std::move(arguments), ends.second.get());
}

SecureShell::~SecureShell() {
  socket_.shutDown();
  for (int period = 0; period < kPolitePeriods; ++period) {
    if (::waitpid(program_, nullptr, WNOHANG) != 0) return;
    ::usleep(kPeriod);
  }
  ::kill(program_, SIGKILL);
  while (::waitpid(program_, nullptr, 0) < 0 && errno == EINTR) {
  }
}

}  // namespace forgeyard::repository
