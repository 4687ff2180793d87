#include "repository/locking.h"

#include "repository/item_path.h"

namespace forgeyard::repository {

namespace {

// What became of one path of a call that could take many.
struct LockResult {
  std::string token;
  std::optional<SvnError> error;
};

svn_error_t* keepResult(void* baton, const char*, svn_boolean_t, const svn_lock_t* lock, svn_error_t* error,
                        apr_pool_t*) {
  return callback([&] {
    auto& result = *static_cast<LockResult*>(baton);
    if (error) result.error.emplace(svn_error_dup(error));
    if (lock) result.token = lock->token;
  });
}

}  // namespace

std::optional<std::string> lockPath(Connection& connection, const std::string& path, svn_revnum_t changed,
                                    const std::string& comment) {
  LockResult result;
  connection.write([&](svn_ra_session_t* session, apr_pool_t* pool) {
    apr_hash_t* paths = apr_hash_make(pool);
    apr_hash_set(paths, path.c_str(), APR_HASH_KEY_STRING, &changed);
    check(svn_ra_lock(session, paths, comment.c_str(), FALSE, keepResult, &result, pool));
  });
  if (!result.error) return result.token;
  if (result.error->outOfDate()) return std::nullopt;
  if (!result.error->has(SVN_ERR_FS_PATH_ALREADY_LOCKED)) throw SvnError(*result.error);
  const auto lock = findLock(connection, path);
  if (!lock) throw SvnError(*result.error);
  if (lock->owner != connection.user())
    throw RepositoryError(specOf(path) + " is checked out by " + lock->owner);
  return "";
}

void unlockPath(Connection& connection, const std::string& path, const std::string& token) {
  LockResult result;
  connection.write([&](svn_ra_session_t* session, apr_pool_t* pool) {
    apr_hash_t* tokens = apr_hash_make(pool);
    apr_hash_set(tokens, path.c_str(), APR_HASH_KEY_STRING, token.c_str());
    check(svn_ra_unlock(session, tokens, FALSE, keepResult, &result, pool));
  });
  if (result.error) throw SvnError(*result.error);
}

void unlockQuietly(Connection& connection, const std::string& path, const std::string& token) noexcept {
  try {
    const auto lock = findLock(connection, path);
    if (lock && lock->token == token) unlockPath(connection, path, token);
  } catch (const std::exception&) {
    // The lock stays; the next refresh shows it, and an undo ends it.
  }
}

Lock ownLock(Connection& connection, const std::string& path) {
  auto lock = findLock(connection, path);
  if (!lock) throw RepositoryError(specOf(path) + " is not checked out");
  if (lock->owner != connection.user())
    throw RepositoryError(specOf(path) + " is checked out by " + lock->owner + ", not by " +
                          connection.user());
  return std::move(*lock);
}

}  // namespace forgeyard::repository
