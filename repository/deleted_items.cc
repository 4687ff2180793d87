#include "repository/deleted_items.h"

#include <algorithm>

#include "repository/item_path.h"
#include "repository/items_reader.h"

namespace forgeyard::repository {

namespace {

// The newest revision that a table has for the path or a folder above it.
svn_revnum_t newestAtOrAbove(const std::map<std::string, svn_revnum_t, std::less<>>& table,
                             std::string path) {
  svn_revnum_t newest = SVN_INVALID_REVNUM;
  for (;;) {
    if (const auto found = table.find(path); found != table.end()) newest = std::max(newest, found->second);
    if (path.empty()) return newest;
    path = parentOf(path);
  }
}

}  // namespace

struct DeletedItems::Reading {
  DeletedItems& items;
  Connection& connection;
};

svn_error_t* DeletedItems::take(void* baton, svn_log_entry_t* entry, apr_pool_t* pool) {
  return callback([&] {
    auto& [items, connection] = *static_cast<Reading*>(baton);
    const auto note = [&](auto& table, std::string_view absolute) {
      if (const auto path = connection.relativeOf(absolute)) table[*path] = entry->revision;
    };
    if (const auto* mark = static_cast<const svn_string_t*>(
            entry->revprops ? apr_hash_get(entry->revprops, kDestroyed, APR_HASH_KEY_STRING) : nullptr))
      note(items.destructions_, {mark->data, mark->len});
    if (!entry->changed_paths2) return;
    for (apr_hash_index_t* at = apr_hash_first(pool, entry->changed_paths2); at; at = apr_hash_next(at)) {
      const char action = static_cast<const svn_log_changed_path2_t*>(apr_hash_this_val(at))->action;
      if (action == 'D' || action == 'R')
        note(items.deletions_, static_cast<const char*>(apr_hash_this_key(at)));
    }
  });
}

void DeletedItems::readOn(Connection& connection) {
  const svn_revnum_t newest = connection.newest();
  if (newest <= seen_) return;
  static_cast<void>(connection.prefix());
  connection.read([&](svn_ra_session_t* session, apr_pool_t* pool) {
    Reading reading{*this, connection};
    apr_array_header_t* paths = apr_array_make(pool, 1, sizeof(const char*));
    APR_ARRAY_PUSH(paths, const char*) = "";
    apr_array_header_t* wanted = apr_array_make(pool, 1, sizeof(const char*));
    APR_ARRAY_PUSH(wanted, const char*) = kDestroyed;
    check(svn_ra_get_log2(session, paths, seen_ + 1, newest, 0, TRUE, FALSE, FALSE, wanted, take, &reading,
                          pool));
  });
  seen_ = newest;
}

std::optional<DeletedItem> DeletedItems::find(Connection& connection, const std::string& path) {
  readOn(connection);
  const svn_revnum_t deleted = newestAtOrAbove(deletions_, path);
  if (!SVN_IS_VALID_REVNUM(deleted) || newestAtOrAbove(destructions_, path) >= deleted) return std::nullopt;
  const auto node = findNode(connection, path, deleted - 1);
  if (!node) return std::nullopt;
  return DeletedItem{deleted - 1, node->folder};
}

}  // namespace forgeyard::repository
