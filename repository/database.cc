#include "repository/database.h"

#include <filesystem>

#include "platform/files/host_location.h"
#include "platform/registry/registry.h"
#include "repository/item.h"
#include "repository/item_path.h"
#include "repository/items_reader.h"

namespace forgeyard::repository {

namespace {

namespace fs = std::filesystem;

constexpr const char* kIniName = "srcsafe.ini";

BString defaultDatabase() {
  const Registry registry = Registry::load(Registry::defaultFile());
  const auto path = registry.value(registry_keys::kSourceControl, registry_keys::kDefaultDatabase);
  if (!path || path->empty())
    throw RepositoryError("no default database is set: the registry has no value \"" +
                          std::string(registry_keys::kDefaultDatabase) + "\" in " +
                          std::string(registry_keys::kSourceControl));
  return BString::fromNarrow(*path);
}

// The file that a path means: itself, or the srcsafe.ini of a directory.
std::string iniFileOf(const BString& path) {
  const auto host = toHost(path);
  if (!host) throw RepositoryError(path.narrow() + " can name no file here");
  const fs::path file = fs::path(*host).lexically_normal();
  std::error_code error;
  if (fs::is_directory(file, error)) return file / kIniName;
  if (!fs::exists(file, error)) throw RepositoryError(file.string() + " doesn't exist");
  return file;
}

}  // namespace

Connection& Database::connection() {
  if (!connection_) throw RepositoryError("no source control database is open");
  return *connection_;
}

HRESULT Database::Open(const BString& srcSafeIni, const BString& userName, const BString& password) {
  return attempt([&] {
    const std::string file = iniFileOf(srcSafeIni.empty() ? defaultDatabase() : srcSafeIni);
    open(file, userName.empty() ? Logon{} : Logon{userName.narrow(), password.narrow()});
    srcSafeIni_ = toModel(file).path;
  });
}

void Database::open(const std::string& iniFile, Logon logon) {
  static_cast<void>(libraryPool());
  auto connection = std::make_unique<Connection>(readAddress(iniFile), std::move(logon));
  const auto top = findNode(*connection, "");
  if (!top || !top->folder)
    throw RepositoryError(connection->address().url + " is no folder of a repository");
  states_ = std::make_unique<ItemStates>(*connection);
  connection_ = std::move(connection);
  deleted_ = {};
  localSpecs_.clear();
}

HRESULT Database::get_SrcSafeIni(BString* value) {
  *value = srcSafeIni_;
  return connection_ ? S_OK : E_FAIL;
}

HRESULT Database::get_VSSItem(const BString& spec, bool deleted, Ref<IVSSItem>* out) {
  *out = nullptr;
  return attempt([&] {
    static_cast<void>(connection());
    const std::string path = relativePath(spec);
    const auto live = states_->node(path);
    if (live.has_value() == deleted)
      throw RepositoryError("no item " + specOf(path) + (deleted ? " is deleted" : ""));
    if (!deleted) {
      *out = make<Item>(this, path, live->folder);
      return;
    }
    const auto found = deleted_.find(connection(), path);
    if (!found) throw RepositoryError("no item " + specOf(path) + " is deleted");
    *out = make<Item>(this, path, *found);
  });
}

HRESULT Database::BeginBatch(const BString& spec) {
  return attempt([&] {
    static_cast<void>(connection());
    states_->begin(relativePath(spec));
  });
}

HRESULT Database::EndBatch() {
  return states_ && states_->end() ? S_OK : E_UNEXPECTED;
}

HRESULT Database::versions(const BString& spec, std::vector<RepositoryVersion>* out) {
  out->clear();
  return attempt([&] {
    const std::vector<Change> changes = changesOf(connection(), relativePath(spec), connection().newest());
    auto number = static_cast<std::int32_t>(changes.size());
    for (const Change& change : changes)
      out->push_back({number--, change.revision, change.author, change.comment, change.time});
  });
}

HRESULT Database::locks(const BString& spec, std::vector<RepositoryLock>* out) {
  out->clear();
  return attempt([&] {
    for (const auto& [path, lock] : locksBelow(connection(), relativePath(spec)))
      out->push_back({specOf(path), lock.owner, lock.comment, lock.time, lock.owner == connection_->user()});
  });
}

HRESULT Database::contents(const BString& spec, std::size_t limit, std::string* out) {
  out->clear();
  return attempt([&] {
    const std::string path = relativePath(spec);
    readFile(connection(), path, [&](std::string_view bytes) {
      if (bytes.size() > limit - out->size()) throw RepositoryError(specOf(path) + " is too large");
      out->append(bytes);
    });
  });
}

}  // namespace forgeyard::repository
