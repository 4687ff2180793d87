#pragma once

#include <map>
#include <optional>
#include <string>

#include "repository/connection.h"

namespace forgeyard::repository {

// A deleted item as it was before its deletion.
struct DeletedItem {
  svn_revnum_t lastRevision = SVN_INVALID_REVNUM;  // the newest one that still has it
  bool folder = false;
};

// What has been deleted from a repository, by path: read from its log at the first question and continued
// from there at later ones. Items that were destroyed are left out.
class DeletedItems {
 public:
  // Nothing for a path that was never there or was destroyed. Whether the path is live again doesn't matter.
  std::optional<DeletedItem> find(Connection& connection, const std::string& path);

  // The revision property that a commit carries when it destroys an item: the path from the repository's
  // root.
  static constexpr const char* kDestroyed = "forgeyard:destroyed";

 private:
  struct Reading;
  static svn_error_t* take(void* baton, svn_log_entry_t* entry, apr_pool_t* pool);
  void readOn(Connection& connection);

  svn_revnum_t seen_ = 0;
  std::map<std::string, svn_revnum_t, std::less<>> deletions_;  // newest, by relative path
  std::map<std::string, svn_revnum_t, std::less<>> destructions_;
};

}  // namespace forgeyard::repository
