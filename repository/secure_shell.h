#pragma once

#include <sys/types.h>

#include <chrono>
#include <string>

#include "repository/server_socket.h"

namespace forgeyard::repository {

// A run of `ssh` with the repository's server at its other end. It asks nothing: keys come from the user's
// agent or files.
class SecureShell {
 public:
  // `user` may be empty, a port of 0 is the usual one. Throws std::runtime_error if ssh can't be started.
  SecureShell(const std::string& user, const std::string& host, int port, std::chrono::seconds limit);
  SecureShell(const SecureShell&) = delete;
  SecureShell& operator=(const SecureShell&) = delete;
  // Ends the program, by force if it doesn't go by itself.
  ~SecureShell();

  ServerSocket& socket() { return socket_; }

 private:
  SecureShell(std::pair<Descriptor, Descriptor> ends, const std::string& user, const std::string& host,
              int port, std::chrono::seconds limit);

  ServerSocket socket_;
  pid_t program_ = -1;
};

}  // namespace forgeyard::repository
