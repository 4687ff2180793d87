#include "repository/server_connection.h"

#include <svn_io.h>

#include <cstring>
#include <memory>
#include <optional>

#include "repository/secure_shell.h"
#include "repository/server_socket.h"
#include "repository/svn_error.h"

namespace forgeyard::repository {

namespace {

constexpr std::string_view kOwnName = "forgeyard";  // what follows "svn+" in the private scheme
constexpr std::string_view kSecureShellName = "ssh";

struct OpenConnection {
  std::optional<ServerSocket> direct;
  std::unique_ptr<SecureShell> shell;

  ServerSocket& socket() { return direct ? *direct : shell->socket(); }
};

template <class Body>
svn_error_t* transfer(Body&& body) noexcept {
  try {
    body();
    return SVN_NO_ERROR;
  } catch (const std::exception& error) {
    return svn_error_create(SVN_ERR_RA_SVN_IO_ERROR, nullptr, error.what());
  }
}

svn_error_t* readSome(void* baton, char* buffer, apr_size_t* size) {
  return transfer([&] { *size = static_cast<OpenConnection*>(baton)->socket().read(buffer, *size); });
}

svn_error_t* writeAll(void* baton, const char* bytes, apr_size_t* size) {
  return transfer([&] { static_cast<OpenConnection*>(baton)->socket().writeAll(bytes, *size); });
}

svn_error_t* isReadable(void* baton, svn_boolean_t* readable) {
  return transfer([&] { *readable = static_cast<OpenConnection*>(baton)->socket().readable(); });
}

void closeConnection(void* baton, void*) {
  delete static_cast<OpenConnection*>(baton);
}

svn_boolean_t isOwn(void*, const char* name) {
  return name == kOwnName || name == kSecureShellName;
}

svn_error_t* openConnection(svn_stream_t** request, svn_stream_t** response,
                            svn_ra_close_tunnel_func_t* close, void** closeBaton, void* baton,
                            const char* name, const char* user, const char* host, int port, svn_cancel_func_t,
                            void*, apr_pool_t* pool) {
  auto connection = std::make_unique<OpenConnection>();
  svn_error_t* const error = transfer([&] {
    const auto limit = *static_cast<const std::chrono::seconds*>(baton);
    if (name == kOwnName) {
      connection->direct.emplace(ServerSocket::connectTo(host, port, limit));
    } else {
      connection->shell = std::make_unique<SecureShell>(user ? user : "", host, port, limit);
    }
  });
  if (error) return error;
  OpenConnection* const raw = connection.release();
  *request = svn_stream_create(raw, pool);
  svn_stream_set_write(*request, writeAll);
  *response = svn_stream_create(raw, pool);
  svn_stream_set_read2(*response, readSome, nullptr);
  svn_stream_set_data_available(*response, isReadable);
  *close = closeConnection;
  *closeBaton = raw;
  return SVN_NO_ERROR;
}

}  // namespace

void useOwnConnections(svn_ra_callbacks2_t& callbacks, const std::chrono::seconds& limit) {
  callbacks.check_tunnel_func = isOwn;
  callbacks.open_tunnel_func = openConnection;
  callbacks.tunnel_baton = const_cast<std::chrono::seconds*>(&limit);
}

}  // namespace forgeyard::repository
