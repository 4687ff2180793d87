// The operations of the database that commands for its administration use.

#include <fcntl.h>
#include <svn_dirent_uri.h>
#include <svn_repos.h>
#include <unistd.h>

#include <filesystem>

#include "platform/files/descriptor.h"
#include "repository/commit.h"
#include "repository/database.h"
#include "repository/item_path.h"
#include "repository/locking.h"

namespace forgeyard::repository {

namespace {

namespace fs = std::filesystem;
using Kind = PathChange::Kind;

// An empty file to store; it has no name.
Descriptor emptyFile() {
  int ends[2] = {-1, -1};
  if (::pipe2(ends, O_CLOEXEC) != 0) throw RepositoryError("a pipe can't be made");
  ::close(ends[1]);
  return Descriptor(ends[0]);
}

}  // namespace

HRESULT Database::create(const std::string& directory) {
  return attempt([&] {
    if (!isValidUtf8(directory)) throw RepositoryError(directory + ": the name is not valid UTF-8");
    std::error_code error;
    if (fs::exists(directory, error) && !fs::is_empty(directory, error))
      throw RepositoryError(directory + " exists and is not empty");
    fs::create_directories(fs::path(directory).parent_path(), error);
    const Pool pool;
    svn_repos_t* repository = nullptr;
    repository::check(svn_repos_create(&repository, svn_dirent_internal_style(directory.c_str(), pool),
                                       nullptr, nullptr, nullptr, nullptr, pool));
  });
}

HRESULT Database::describe(std::string* address, std::string* user, std::int64_t* newestRevision) {
  return attempt([&] {
    *address = connection().address().url;
    *user = connection_->user();
    *newestRevision = connection_->newest();
  });
}

HRESULT Database::tryWriting(const BString& spec, std::vector<std::string>* steps) {
  steps->clear();
  return attempt([&] {
    const std::string folder = joined(relativePath(spec), ".forgeyard-check-" + std::to_string(::getpid()));
    const std::string file = joined(folder, "file");
    const Descriptor contents = emptyFile();
    CommitRequest add;
    add.comment = "A check of rights, removed again";
    add.changes = {{.kind = Kind::AddFolder, .path = folder},
                   {.kind = Kind::AddFile, .path = file, .file = contents.get()}};
    const svn_revnum_t made = commit(connection(), add);
    steps->emplace_back("a file can be added");
    CommitRequest away;
    away.comment = add.comment;
    away.changes = {{.kind = Kind::Delete, .path = folder, .base = made}};
    away.revisionProperties[DeletedItems::kDestroyed] = connection_->absoluteOf(folder);
    std::optional<RepositoryError> refused;
    try {
      const auto token = lockPath(*connection_, file, made, add.comment);
      steps->emplace_back("a file can be checked out");
      if (token) unlockPath(*connection_, file, *token);
    } catch (const RepositoryError& error) {
      refused = error;
    }
    commit(*connection_, away);
    if (refused) throw RepositoryError(*refused);
    steps->emplace_back("a file can be deleted");
  });
}

}  // namespace forgeyard::repository
