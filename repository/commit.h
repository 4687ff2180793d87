#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "repository/connection.h"

namespace forgeyard::repository {

// One path in a commit. `base` is the revision that the change was made on: a newer one in the repository
// refuses the commit.
struct PathChange {
  enum class Kind { Store, AddFile, AddFolder, Copy, Delete, MarkRoot };

  Kind kind = Kind::Store;
  std::string path;
  svn_revnum_t base = SVN_INVALID_REVNUM;
  int file = -1;        // Store, AddFile: the descriptor of the contents, read from its position
  bool binary = false;  // AddFile
  bool executable = false;
  bool folder = false;      // Copy: what it is
  std::string source = {};  // Copy: where it was
  svn_revnum_t sourceRevision = SVN_INVALID_REVNUM;
};

struct CommitRequest {
  std::vector<PathChange> changes;
  std::string comment;
  std::map<std::string, std::string> lockTokens;  // by path
  bool keepLocks = false;
  std::map<std::string, std::string> revisionProperties;  // besides the comment
};

// Makes one revision of all changes, or none, and returns its number. If the connection is lost in the middle
// the repository is asked, on a new one, whether the revision has come about. Throws RepositoryError.
svn_revnum_t commit(Connection& connection, const CommitRequest& request);

}  // namespace forgeyard::repository
