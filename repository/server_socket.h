#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <string>

#include "platform/files/descriptor.h"

namespace forgeyard::repository {

// A connected socket whose operations take no longer than a limit and raise no signal. One thread. Errors
// throw std::runtime_error with a sentence.
class ServerSocket {
 public:
  ServerSocket(Descriptor socket, std::string peer, std::chrono::seconds limit);

  // Connects to a host; port 0 is that of the protocol.
  static ServerSocket connectTo(const std::string& host, int port, std::chrono::seconds limit);

  // Some bytes, at least one; 0 at the end of the connection.
  std::size_t read(char* buffer, std::size_t size);
  void writeAll(const char* bytes, std::size_t size);
  // Whether a read would return at once.
  bool readable() const;
  // No more bytes either way; the peer sees the end.
  void shutDown() const noexcept;

 private:
  void await(short events, const char* doing) const;

  Descriptor socket_;
  std::string peer_;
  std::chrono::seconds limit_;
};

}  // namespace forgeyard::repository
