#include "hosts/console/services/workspace_file.h"

#include <cstdlib>
#include <filesystem>

#include "hosts/console/base/failure.h"
#include "platform/files/host_location.h"

namespace forgeyard::console {

namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t kMode = STGM_TRANSACTED | STGM_SHARE_EXCLUSIVE | STGM_READWRITE;

std::string environment(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

Ref<IStorage> openOrMake(const BString& path, const std::string& file) {
  Ref<IStorage> root;
  HRESULT status = StgOpenStorage(path, kMode, &root);
  if (status == STG_E_FILENOTFOUND || status == STG_E_PATHNOTFOUND) {
    std::error_code ignored;
    fs::create_directories(fs::path(file).parent_path(), ignored);
    status = StgCreateDocfile(path, kMode | STGM_CREATE, &root);
  }
  require(status, "The workspace " + file + " can't be opened");
  return root;
}

}  // namespace

std::string WorkspaceFile::defaultFile() {
  if (std::string file = environment("FORGEYARD_WORKSPACE"); !file.empty()) return file;
  if (const std::string data = environment("XDG_DATA_HOME"); !data.empty())
    return data + "/forgeyard/workspace";
  const std::string home = environment("HOME");
  return home.empty() ? "" : home + "/.local/share/forgeyard/workspace";
}

WorkspaceFile::WorkspaceFile(const std::string& file) : file_(file) {
  if (file.empty())
    throw Failure("There is no place for the workspace: set HOME, XDG_DATA_HOME or FORGEYARD_WORKSPACE.");
  const ModelPath path = toModel(file);
  if (!path) throw Failure(path.error);
  root_ = openOrMake(path.path, file);
}

WorkspaceFile::~WorkspaceFile() {
  for (const Attached& attached : attached_) ignore(attached.object->HandsOffStorage());
}

void WorkspaceFile::attach(IPersistStorage* object, const BString& name) {
  Ref<IStorage> storage;
  const bool known = succeeded(root_->OpenStorage(name, kMode, &storage));
  const std::string what = "The workspace " + file_ + ", " + name.narrow();
  if (!known) require(root_->CreateStorage(name, kMode, &storage), what);
  require(known ? object->Load(storage.get()) : object->InitNew(storage.get()), what);
  attached_.push_back({Ref<IPersistStorage>(object), std::move(storage)});
}

void WorkspaceFile::save() {
  const std::string what = "The workspace " + file_ + " can't be stored; it stands as it was";
  for (const Attached& attached : attached_) {
    require(attached.object->Save(nullptr, true), what);
    require(attached.storage->Commit(STGC_DEFAULT), what);
  }
  require(root_->Commit(STGC_DEFAULT), what);
  for (const Attached& attached : attached_) ignore(attached.object->SaveCompleted(nullptr));
}

}  // namespace forgeyard::console
