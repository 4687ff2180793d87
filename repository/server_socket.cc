#include "repository/server_socket.h"

#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

#include <cerrno>
#include <memory>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace forgeyard::repository {

namespace {

constexpr int kSvnPort = 3690;

using Clock = std::chrono::steady_clock;

[[noreturn]] void fail(const std::string& what, int code) {
  throw std::runtime_error(what + ": " + std::generic_category().message(code));
}

// Waits for one of the events; false when the time is over. Interruptions by signals don't prolong it.
bool waitFor(int socket, short events, std::chrono::milliseconds limit) {
  const auto end = Clock::now() + limit;
  for (;;) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
    pollfd waiting{socket, events, 0};
    const int ready = ::poll(&waiting, 1, static_cast<int>(std::max<long long>(left.count(), 0)));
    if (ready > 0) return true;
    if (ready == 0) return false;
    if (errno != EINTR) fail("the wait for a server failed", errno);
  }
}

void setOption(int socket, int level, int option, int value) {
  static_cast<void>(::setsockopt(socket, level, option, &value, sizeof value));
}

// 0, or why this address can't be reached.
int connectSocket(int socket, const addrinfo& address, std::chrono::seconds limit) {
  if (::connect(socket, address.ai_addr, address.ai_addrlen) == 0) return 0;
  if (errno != EINPROGRESS) return errno;
  if (!waitFor(socket, POLLOUT, limit)) return ETIMEDOUT;
  int code = 0;
  socklen_t size = sizeof code;
  return ::getsockopt(socket, SOL_SOCKET, SO_ERROR, &code, &size) == 0 ? code : errno;
}

std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> resolve(const std::string& host, int port) {
  addrinfo hints{};
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = AI_ADDRCONFIG;
  addrinfo* found = nullptr;
  const int code = ::getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &found);
  if (code != 0) throw std::runtime_error("the host " + host + " is not known: " + ::gai_strerror(code));
  return {found, &::freeaddrinfo};
}

}  // namespace

ServerSocket::ServerSocket(Descriptor socket, std::string peer, std::chrono::seconds limit)
    : socket_(std::move(socket)), peer_(std::move(peer)), limit_(limit) {}

ServerSocket ServerSocket::connectTo(const std::string& host, int port, std::chrono::seconds limit) {
  const bool bracketed = host.size() > 2 && host.front() == '[' && host.back() == ']';
  const std::string name = bracketed ? host.substr(1, host.size() - 2) : host;
  const int usedPort = port > 0 ? port : kSvnPort;
  const std::string peer = host + " (port " + std::to_string(usedPort) + ")";
  const auto addresses = resolve(name, usedPort);
  int why = EHOSTUNREACH;
  for (const addrinfo* address = addresses.get(); address; address = address->ai_next) {
    Descriptor socket(::socket(address->ai_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    why = socket ? connectSocket(socket.get(), *address, limit) : errno;
    if (why != 0) continue;
    setOption(socket.get(), IPPROTO_TCP, TCP_NODELAY, 1);
    return {std::move(socket), peer, limit};
  }
  fail("there is no connection to " + peer, why);
}

void ServerSocket::await(short events, const char* doing) const {
  if (!waitFor(socket_.get(), events, limit_))
    throw std::runtime_error(peer_ + " has not " + doing + " anything for " + std::to_string(limit_.count()) +
                             " s");
}

std::size_t ServerSocket::read(char* buffer, std::size_t size) {
  for (;;) {
    const ssize_t count = ::recv(socket_.get(), buffer, size, MSG_DONTWAIT);
    if (count >= 0) {
      // The system forgets this after some time; without it answers in several parts take 40 ms each.
      setOption(socket_.get(), IPPROTO_TCP, TCP_QUICKACK, 1);
      return static_cast<std::size_t>(count);
    }
    if (errno == ECONNRESET) return 0;
    if (errno != EAGAIN && errno != EINTR) fail("the connection to " + peer_ + " is lost", errno);
    if (errno == EAGAIN) await(POLLIN, "sent");
  }
}

void ServerSocket::writeAll(const char* bytes, std::size_t size) {
  while (size > 0) {
    const ssize_t count = ::send(socket_.get(), bytes, size, MSG_NOSIGNAL | MSG_DONTWAIT);
    if (count >= 0) {
      bytes += count;
      size -= static_cast<std::size_t>(count);
    } else if (errno == EAGAIN) {
      await(POLLOUT, "taken");
    } else if (errno != EINTR) {
      fail("the connection to " + peer_ + " is lost", errno);
    }
  }
}

bool ServerSocket::readable() const {
  return waitFor(socket_.get(), POLLIN, std::chrono::milliseconds(0));
}

void ServerSocket::shutDown() const noexcept {
  static_cast<void>(::shutdown(socket_.get(), SHUT_RDWR));
}

}  // namespace forgeyard::repository
