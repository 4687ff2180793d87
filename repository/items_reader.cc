#include "repository/items_reader.h"

#include <svn_props.h>
#include <svn_time.h>

namespace forgeyard::repository {

namespace {

apr_array_header_t* textsOf(std::initializer_list<const char*> texts, apr_pool_t* pool) {
  apr_array_header_t* array = apr_array_make(pool, static_cast<int>(texts.size()), sizeof(const char*));
  for (const char* text : texts) APR_ARRAY_PUSH(array, const char*) = text;
  return array;
}

std::string textOf(apr_hash_t* properties, const char* name) {
  const auto* value = static_cast<const svn_string_t*>(
      properties ? apr_hash_get(properties, name, APR_HASH_KEY_STRING) : nullptr);
  return value ? std::string(value->data, value->len) : "";
}

std::int64_t timeOf(const std::string& text, apr_pool_t* pool) {
  apr_time_t time = 0;
  if (svn_error_t* error = svn_time_from_cstring(&time, text.c_str(), pool)) svn_error_clear(error);
  return time;
}

Lock lockOf(const svn_lock_t& lock) {
  return {lock.token, lock.owner, lock.comment ? lock.comment : "", lock.creation_date};
}

svn_error_t* passOn(void* baton, const char* bytes, apr_size_t* size) {
  const auto& sink = *static_cast<const std::function<void(std::string_view)>*>(baton);
  return callback([&] { sink({bytes, *size}); });
}

svn_error_t* countOne(void* baton, svn_log_entry_t* entry, apr_pool_t*) {
  if (SVN_IS_VALID_REVNUM(entry->revision)) ++*static_cast<std::int32_t*>(baton);
  return SVN_NO_ERROR;
}

svn_error_t* keepOne(void* baton, svn_log_entry_t* entry, apr_pool_t* pool) {
  if (!SVN_IS_VALID_REVNUM(entry->revision)) return SVN_NO_ERROR;
  return callback([&] {
    static_cast<std::vector<Change>*>(baton)->push_back(
        {entry->revision, textOf(entry->revprops, SVN_PROP_REVISION_AUTHOR),
         textOf(entry->revprops, SVN_PROP_REVISION_LOG),
         timeOf(textOf(entry->revprops, SVN_PROP_REVISION_DATE), pool)});
  });
}

}  // namespace

std::optional<Node> findNode(Connection& connection, const std::string& path, svn_revnum_t revision) {
  return connection.read([&](svn_ra_session_t* session, apr_pool_t* pool) -> std::optional<Node> {
    svn_dirent_t* entry = nullptr;
    check(svn_ra_stat(session, path.c_str(), revision, &entry, pool));
    if (!entry) return std::nullopt;
    return Node{entry->kind == svn_node_dir, entry->created_rev};
  });
}

std::map<std::string, Node> childrenOf(Connection& connection, const std::string& folder) {
  return connection.read([&](svn_ra_session_t* session, apr_pool_t* pool) {
    apr_hash_t* entries = nullptr;
    check(svn_ra_get_dir2(session, &entries, nullptr, nullptr, folder.c_str(), SVN_INVALID_REVNUM,
                          SVN_DIRENT_KIND | SVN_DIRENT_CREATED_REV, pool));
    std::map<std::string, Node> children;
    for (apr_hash_index_t* at = apr_hash_first(pool, entries); at; at = apr_hash_next(at)) {
      const auto* entry = static_cast<const svn_dirent_t*>(apr_hash_this_val(at));
      children.emplace(static_cast<const char*>(apr_hash_this_key(at)),
                       Node{entry->kind == svn_node_dir, entry->created_rev});
    }
    return children;
  });
}

FileFacts readFile(Connection& connection, const std::string& path,
                   const std::function<void(std::string_view)>& sink) {
  // Not run again after a loss: the sink has taken bytes already.
  return connection.write([&](svn_ra_session_t* session, apr_pool_t* pool) {
    svn_stream_t* stream = svn_stream_create(const_cast<void*>(static_cast<const void*>(&sink)), pool);
    svn_stream_set_write(stream, passOn);
    apr_hash_t* properties = nullptr;
    svn_revnum_t revision = SVN_INVALID_REVNUM;
    check(svn_ra_get_file(session, path.c_str(), SVN_INVALID_REVNUM, stream, &revision, &properties, pool));
    const std::string changed = textOf(properties, SVN_PROP_ENTRY_COMMITTED_REV);
    FileFacts facts;
    facts.changed = changed.empty() ? revision : SVN_STR_TO_REV(changed.c_str());
    facts.executable = apr_hash_get(properties, SVN_PROP_EXECUTABLE, APR_HASH_KEY_STRING) != nullptr;
    return facts;
  });
}

std::optional<Lock> findLock(Connection& connection, const std::string& path) {
  return connection.read([&](svn_ra_session_t* session, apr_pool_t* pool) -> std::optional<Lock> {
    svn_lock_t* lock = nullptr;
    check(svn_ra_get_lock(session, &lock, path.c_str(), pool));
    if (!lock) return std::nullopt;
    return lockOf(*lock);
  });
}

std::map<std::string, Lock> locksBelow(Connection& connection, const std::string& path) {
  static_cast<void>(connection.prefix());
  return connection.read([&](svn_ra_session_t* session, apr_pool_t* pool) {
    apr_hash_t* found = nullptr;
    check(svn_ra_get_locks2(session, &found, path.c_str(), svn_depth_infinity, pool));
    std::map<std::string, Lock> locks;
    for (apr_hash_index_t* at = apr_hash_first(pool, found); at; at = apr_hash_next(at)) {
      // Named from the repository's root, wherever the session is.
      const auto relative = connection.relativeOf(static_cast<const char*>(apr_hash_this_key(at)));
      if (relative) locks.emplace(*relative, lockOf(*static_cast<const svn_lock_t*>(apr_hash_this_val(at))));
    }
    return locks;
  });
}

std::int32_t countVersions(Connection& connection, const std::string& path, svn_revnum_t revision) {
  return connection.read([&](svn_ra_session_t* session, apr_pool_t* pool) {
    std::int32_t count = 0;
    check(svn_ra_get_log2(session, textsOf({path.c_str()}, pool), revision, 1, 0, FALSE, FALSE, FALSE,
                          textsOf({}, pool), countOne, &count, pool));
    return count;
  });
}

std::vector<Change> changesOf(Connection& connection, const std::string& path, svn_revnum_t revision) {
  return connection.read([&](svn_ra_session_t* session, apr_pool_t* pool) {
    std::vector<Change> changes;
    const auto* wanted =
        textsOf({SVN_PROP_REVISION_AUTHOR, SVN_PROP_REVISION_LOG, SVN_PROP_REVISION_DATE}, pool);
    check(svn_ra_get_log2(session, textsOf({path.c_str()}, pool), revision, 1, 0, FALSE, FALSE, FALSE, wanted,
                          keepOne, &changes, pool));
    return changes;
  });
}

}  // namespace forgeyard::repository
