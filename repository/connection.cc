#include "repository/connection.h"

#include <pwd.h>
#include <svn_auth.h>
#include <svn_dirent_uri.h>
#include <svn_path.h>
#include <unistd.h>

#include <array>

#include "repository/item_path.h"
#include "repository/server_connection.h"

namespace forgeyard::repository {

namespace {

std::string loginName() {
  std::array<char, 4096> buffer{};
  passwd entry{};
  passwd* found = nullptr;
  if (::getpwuid_r(::geteuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || !found)
    return std::to_string(::geteuid());
  return found->pw_name;
}

// The user in "svn+ssh://user@host/".
std::string userOf(const std::string& url) {
  const std::size_t begin = url.find("://") + 3;
  const std::size_t at = url.find('@', begin);
  return at < url.find('/', begin) ? url.substr(begin, at - begin) : "";
}

std::string repositoryUser(const Address& address, const Logon& logon) {
  const bool named = !address.isSecureShell() && !logon.user.empty();
  if (named) return logon.user;
  const std::string inUrl = userOf(address.url);
  return inUrl.empty() ? loginName() : inUrl;
}

svn_error_t* giveLogon(svn_auth_cred_simple_t** credentials, void* baton, const char*, const char*,
                       svn_boolean_t, apr_pool_t* pool) {
  const auto* logon = static_cast<const Logon*>(baton);
  *credentials = static_cast<svn_auth_cred_simple_t*>(apr_pcalloc(pool, sizeof(svn_auth_cred_simple_t)));
  (*credentials)->username = apr_pstrdup(pool, logon->user.c_str());
  (*credentials)->password = apr_pstrdup(pool, logon->password.c_str());
  return SVN_NO_ERROR;
}

svn_error_t* giveUser(svn_auth_cred_username_t** credentials, void* baton, const char*, svn_boolean_t,
                      apr_pool_t* pool) {
  *credentials = static_cast<svn_auth_cred_username_t*>(apr_pcalloc(pool, sizeof(svn_auth_cred_username_t)));
  (*credentials)->username = apr_pstrdup(pool, static_cast<const std::string*>(baton)->c_str());
  return SVN_NO_ERROR;
}

}  // namespace

struct Connection::Session {
  Pool pool;
  svn_ra_session_t* session = nullptr;
};

Connection::Connection(Address address, Logon logon)
    : address_(std::move(address)), logon_(std::move(logon)), user_(repositoryUser(address_, logon_)) {}

Connection::~Connection() = default;

svn_ra_session_t* Connection::open() {
  if (session_) return session_->session;
  auto fresh = std::make_unique<Session>();
  apr_pool_t* pool = fresh->pool;
  apr_array_header_t* providers = apr_array_make(pool, 2, sizeof(svn_auth_provider_object_t*));
  svn_auth_provider_object_t* provider = nullptr;
  if (!logon_.user.empty()) {
    svn_auth_get_simple_prompt_provider(&provider, giveLogon, &logon_, 0, pool);
    APR_ARRAY_PUSH(providers, svn_auth_provider_object_t*) = provider;
  }
  svn_auth_get_username_prompt_provider(&provider, giveUser, &user_, 0, pool);
  APR_ARRAY_PUSH(providers, svn_auth_provider_object_t*) = provider;
  svn_ra_callbacks2_t* callbacks = nullptr;
  check(svn_ra_create_callbacks(&callbacks, pool));
  svn_auth_open(&callbacks->auth_baton, providers, pool);
  useOwnConnections(*callbacks, address_.limit);
  // Without a configuration nothing of the user's own set-up is read or written.
  check(svn_ra_open5(&fresh->session, nullptr, nullptr, address_.libraryUrl().c_str(), nullptr, callbacks,
                     nullptr, nullptr, pool));
  session_ = std::move(fresh);
  return session_->session;
}

void Connection::drop() noexcept {
  session_.reset();
}

svn_revnum_t Connection::newest() {
  return read([](svn_ra_session_t* session, apr_pool_t* pool) {
    svn_revnum_t revision = SVN_INVALID_REVNUM;
    check(svn_ra_get_latest_revnum(session, &revision, pool));
    return revision;
  });
}

const std::string& Connection::prefix() {
  if (!prefix_) {
    prefix_ = read([](svn_ra_session_t* session, apr_pool_t* pool) {
      const char* url = nullptr;
      const char* relative = nullptr;
      check(svn_ra_get_session_url(session, &url, pool));
      check(svn_ra_get_path_relative_to_root(session, &relative, url, pool));
      return std::string(relative);
    });
  }
  return *prefix_;
}

std::optional<std::string> Connection::relativeOf(std::string_view absolute) {
  while (absolute.starts_with('/')) absolute.remove_prefix(1);
  if (!isAtOrBelow(absolute, prefix())) return std::nullopt;
  absolute.remove_prefix(prefix().size());
  if (absolute.starts_with('/')) absolute.remove_prefix(1);
  return std::string(absolute);
}

std::string Connection::absoluteOf(std::string_view relative) {
  return "/" + joined(prefix(), relative);
}

}  // namespace forgeyard::repository
