#pragma once

#include <svn_types.h>

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "repository/connection.h"

namespace forgeyard::repository {

// What the newest revision holds at a path.
struct Node {
  bool folder = false;
  svn_revnum_t changed = SVN_INVALID_REVNUM;  // the revision of its last change
};

// One change of an item.
struct Change {
  svn_revnum_t revision = SVN_INVALID_REVNUM;
  std::string author;
  std::string comment;
  std::int64_t time = 0;  // in microseconds since 1970 (UTC)
};

// The lock of a path, which is how a check-out is stored.
struct Lock {
  std::string token;
  std::string owner;
  std::string comment;
  std::int64_t time = 0;
};

// What a file's properties say beside its contents.
struct FileFacts {
  svn_revnum_t changed = SVN_INVALID_REVNUM;
  bool executable = false;
};

// Questions to a repository. Paths are relative to the connection's address; `revision` is the newest one
// unless given. Errors throw RepositoryError.
std::optional<Node> findNode(Connection& connection, const std::string& path,
                             svn_revnum_t revision = SVN_INVALID_REVNUM);
std::map<std::string, Node> childrenOf(Connection& connection, const std::string& folder);

// Hands the bytes of a file to `sink`, which may throw; the transfer then ends, with the sink's message as
// the error.
FileFacts readFile(Connection& connection, const std::string& path,
                   const std::function<void(std::string_view)>& sink);

// Nothing when nobody has the path locked.
std::optional<Lock> findLock(Connection& connection, const std::string& path);
// Of everything at and below a path.
std::map<std::string, Lock> locksBelow(Connection& connection, const std::string& path);

// How often the item was changed up to a revision, itself renamed or brought back counting as changes: the
// number of its newest version.
std::int32_t countVersions(Connection& connection, const std::string& path, svn_revnum_t revision);
// The changes themselves, newest first.
std::vector<Change> changesOf(Connection& connection, const std::string& path, svn_revnum_t revision);

}  // namespace forgeyard::repository
