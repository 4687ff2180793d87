#include "repository/item.h"

#include <fcntl.h>
#include <svn_io.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

#include "platform/files/host_location.h"
#include "repository/commit.h"
#include "repository/database.h"
#include "repository/incoming_file.h"
#include "repository/item_path.h"
#include "repository/items.h"
#include "repository/locking.h"

namespace forgeyard::repository {

namespace {

using Kind = PathChange::Kind;

Descriptor openLocal(const std::string& file) {
  Descriptor opened(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
  struct stat status {};
  if (!opened || ::fstat(opened.get(), &status) != 0)
    throw RepositoryError(file + " can't be read: " + std::generic_category().message(errno));
  if (!S_ISREG(status.st_mode)) throw RepositoryError(file + " is no file");
  return opened;
}

bool isBinary(const Descriptor& file) {
  std::array<char, 1024> beginning{};
  const ssize_t count = ::pread(file.get(), beginning.data(), beginning.size(), 0);
  return count > 0 && svn_io_is_binary_data(beginning.data(), static_cast<apr_size_t>(count));
}

bool isExecutable(const Descriptor& file) {
  struct stat status {};
  return ::fstat(file.get(), &status) == 0 && (status.st_mode & S_IXUSR);
}

}  // namespace

Item::Item(Database* database, std::string path, bool folder)
    : database_(database), path_(std::move(path)), folder_(folder) {}

Item::Item(Database* database, std::string path, const DeletedItem& deleted)
    : database_(database),
      path_(std::move(path)),
      folder_(deleted.folder),
      deletedAfter_(deleted.lastRevision) {}

HRESULT Item::get_Spec(BString* value) {
  return guard([&] { *value = BString::fromNarrow(specOf(path_)); });
}

HRESULT Item::get_Deleted(bool* value) {
  *value = deletedAfter_.has_value();
  return S_OK;
}

HRESULT Item::put_Deleted(bool value) {
  return database_->attempt([&] {
    if (value == deletedAfter_.has_value()) return;
    value ? remove(false) : recover();
  });
}

HRESULT Item::get_VersionNumber(std::int32_t* value) {
  *value = 0;
  return database_->attempt([&] {
    Connection& connection = database_->connection();
    *value = countVersions(connection, path_, deletedAfter_ ? *deletedAfter_ : connection.newest());
  });
}

HRESULT Item::get_IsCheckedOut(std::int32_t* value) {
  *value = VSSFILE_NOTCHECKEDOUT;
  return database_->attempt([&] {
    if (folder_ || deletedAfter_) return;
    const std::string owner = database_->states().lockOwner(path_);
    if (!owner.empty())
      *value = owner == database_->connection().user() ? VSSFILE_CHECKEDOUT_ME : VSSFILE_CHECKEDOUT;
  });
}

HRESULT Item::get_LocalSpec(BString* value) {
  return guard([&] {
    const auto found = database_->localSpecs().find(path_);
    *value = found == database_->localSpecs().end() ? BString(u"") : found->second;
  });
}

HRESULT Item::put_LocalSpec(const BString& value) {
  return guard([&] { database_->localSpecs()[path_] = value; });
}

HRESULT Item::get_Items(Ref<IVSSItems>* out) {
  *out = nullptr;
  return database_->attempt([&] {
    requireLive();
    if (!folder_) throw RepositoryError(specOf(path_) + " is no folder");
    *out = make<Items>(database_.get(), path_);
  });
}

std::string Item::localFile(const BString& local) const {
  BString path = local;
  if (path.empty()) {
    const auto found = database_->localSpecs().find(path_);
    if (found == database_->localSpecs().end()) throw RepositoryError(specOf(path_) + " has no local file");
    path = found->second;
  }
  auto file = toHost(path);
  if (!file) throw RepositoryError(path.narrow() + " can name no file here");
  return std::move(*file);
}

void Item::requireLive() const {
  if (deletedAfter_) throw RepositoryError(specOf(path_) + " is deleted");
}

FileFacts Item::fetch(IncomingFile& incoming) const {
  incoming.restart();
  return readFile(database_->connection(), path_, [&](std::string_view bytes) { incoming.append(bytes); });
}

HRESULT Item::Get(const BString& local, std::int32_t flags) {
  return database_->attempt([&] {
    requireLive();
    IncomingFile incoming(localFile(local));
    const FileFacts facts = fetch(incoming);
    if (!(flags & VSSFLAG_REPREPLACE)) incoming.requireReplaceable();
    incoming.replace(flags & VSSFLAG_USERRONO, facts.executable);
  });
}

HRESULT Item::Checkout(const BString& comment, const BString& local, std::int32_t flags) {
  constexpr int kAttempts = 5;
  return database_->attempt([&] {
    requireLive();
    Connection& connection = database_->connection();
    IncomingFile incoming(localFile(local));
    const std::string text = commentText(comment);
    std::optional<std::string> token;
    FileFacts facts;
    for (int attempt = 0; !token; ++attempt) {
      facts = fetch(incoming);
      if (!(flags & VSSFLAG_REPREPLACE)) incoming.requireReplaceable();
      token = lockPath(connection, path_, facts.changed, text);
      if (!token && attempt == kAttempts)
        throw RepositoryError(specOf(path_) + " changes too often to be checked out");
    }
    database_->states().forget(path_);
    try {
      incoming.replace(true, facts.executable);
    } catch (...) {
      // Without the local file the check-out would be of no use.
      if (!token->empty()) unlockQuietly(connection, path_, *token);
      throw;
    }
  });
}

HRESULT Item::Checkin(const BString& comment, const BString& local, std::int32_t flags) {
  return database_->attempt([&] {
    requireLive();
    const std::string file = localFile(local);
    const Descriptor contents = openLocal(file);
    Connection& connection = database_->connection();
    const Lock lock = ownLock(connection, path_);
    const auto node = findNode(connection, path_);
    if (!node) throw RepositoryError(specOf(path_) + " is no longer in the repository");
    const bool keep = flags & VSSFLAG_KEEPYES;
    CommitRequest request;
    request.comment = commentText(comment);
    request.changes = {{.kind = Kind::Store, .path = path_, .base = node->changed, .file = contents.get()}};
    request.lockTokens = {{path_, lock.token}};
    request.keepLocks = keep;
    commit(connection, request);
    database_->states().forget(path_);
    // A file that was stored while its lock stayed, since the connection was lost in between.
    if (!keep) unlockQuietly(connection, path_, lock.token);
    setWritable(file, keep);
  });
}

HRESULT Item::UndoCheckout(const BString& local, std::int32_t) {
  return database_->attempt([&] {
    requireLive();
    Connection& connection = database_->connection();
    const Lock lock = ownLock(connection, path_);
    IncomingFile incoming(localFile(local));
    const FileFacts facts = fetch(incoming);
    unlockPath(connection, path_, lock.token);
    database_->states().forget(path_);
    incoming.replace(false, facts.executable);
  });
}

HRESULT Item::Add(const BString& local, const BString& comment, std::int32_t flags, Ref<IVSSItem>* item) {
  *item = nullptr;
  return database_->attempt([&] {
    requireLive();
    if (!folder_) throw RepositoryError(specOf(path_) + " is no folder");
    const std::string file = localFile(local);
    const std::string path = joined(path_, checkedName(BString::fromNarrow(nameOf(file))));
    const Descriptor contents = openLocal(file);
    Connection& connection = database_->connection();
    CommitRequest request;
    request.comment = commentText(comment);
    request.changes = {{.kind = Kind::AddFile,
                        .path = path,
                        .file = contents.get(),
                        .binary = isBinary(contents),
                        .executable = isExecutable(contents)}};
    const svn_revnum_t made = commit(connection, request);
    database_->states().forget(path);
    const bool keep = flags & VSSFLAG_KEEPYES;
    if (keep) lockPath(connection, path, made, request.comment);
    setWritable(file, keep);
    *item = make<Item>(database_.get(), path, false);
  });
}

HRESULT Item::NewSubproject(const BString& name, const BString& comment, Ref<IVSSItem>* item) {
  *item = nullptr;
  return database_->attempt([&] {
    requireLive();
    const std::string path = joined(path_, checkedName(name));
    Connection& connection = database_->connection();
    CommitRequest request;
    request.comment = commentText(comment);
    request.changes = {{.kind = Kind::AddFolder, .path = path}};
    try {
      commit(connection, request);
    } catch (const SvnError& error) {
      // Somebody else may have made it at the same moment.
      const auto node = error.outOfDate() ? findNode(connection, path) : std::nullopt;
      if (!node || !node->folder) throw;
    }
    database_->states().forget(path);
    *item = make<Item>(database_.get(), path, true);
  });
}

HRESULT Item::Destroy() {
  return database_->attempt([&] {
    if (path_.empty()) throw RepositoryError("the root of the database can't be destroyed");
    deletedAfter_ ? destroyDeleted() : remove(true);
  });
}

void Item::remove(bool forEver) {
  Connection& connection = database_->connection();
  if (path_.empty()) throw RepositoryError("the root of the database can't be deleted");
  const svn_revnum_t before = connection.newest();
  CommitRequest request;
  request.changes = {{.kind = Kind::Delete, .path = path_, .base = before}};
  for (const auto& [path, lock] : locksBelow(connection, path_)) {
    if (lock.owner != connection.user())
      throw RepositoryError(specOf(path) + " is checked out by " + lock.owner);
    request.lockTokens[path] = lock.token;
  }
  if (forEver) request.revisionProperties[DeletedItems::kDestroyed] = connection.absoluteOf(path_);
  deletedAfter_ = commit(connection, request) - 1;
  database_->states().forget(path_);
}

// A commit needs a change: the mark goes onto a property of the top folder, for which writers may collide.
void Item::destroyDeleted() const {
  constexpr int kAttempts = 8;
  Connection& connection = database_->connection();
  CommitRequest request;
  request.changes = {{.kind = Kind::MarkRoot, .path = ""}};
  request.revisionProperties[DeletedItems::kDestroyed] = connection.absoluteOf(path_);
  for (int attempt = 1;; ++attempt) {
    try {
      commit(connection, request);
      return;
    } catch (const SvnError& error) {
      if (!error.outOfDate() || attempt == kAttempts) throw;
    }
  }
}

void Item::recover() {
  Connection& connection = database_->connection();
  CommitRequest request;
  std::string parent = parentOf(path_);
  for (; !parent.empty() && !findNode(connection, parent); parent = parentOf(parent))
    request.changes.insert(request.changes.begin(), {.kind = Kind::AddFolder, .path = parent});
  request.changes.push_back({.kind = Kind::Copy,
                             .path = path_,
                             .folder = folder_,
                             .source = path_,
                             .sourceRevision = *deletedAfter_});
  commit(connection, request);
  for (const PathChange& change : request.changes) database_->states().forget(change.path);
  deletedAfter_.reset();
}

}  // namespace forgeyard::repository
