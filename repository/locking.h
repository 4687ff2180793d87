#pragma once

#include <optional>
#include <string>

#include "repository/connection.h"
#include "repository/items_reader.h"

namespace forgeyard::repository {

// Locks a path that was read as it was after `changed`, the revision of its last change. Returns the token,
// which is empty when this user has had it locked before; nothing if the path has changed since. Throws
// RepositoryError, with the owner's name if another user has it.
std::optional<std::string> lockPath(Connection& connection, const std::string& path, svn_revnum_t changed,
                                    const std::string& comment);

void unlockPath(Connection& connection, const std::string& path, const std::string& token);
// The same where the lock may have gone already.
void unlockQuietly(Connection& connection, const std::string& path, const std::string& token) noexcept;

// This user's lock. Throws RepositoryError that says who has the path locked instead, if anybody.
Lock ownLock(Connection& connection, const std::string& path);

}  // namespace forgeyard::repository
