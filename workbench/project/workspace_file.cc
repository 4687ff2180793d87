#include "workbench/project/workspace_file.h"

#include <cstdlib>
#include <filesystem>

#include "platform/com/enumerators.h"
#include "platform/files/host_location.h"
#include "workbench/base/failure.h"
#include "workbench/base/lock_holder.h"

namespace forgeyard::workbench {

namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t kMode = STGM_TRANSACTED | STGM_SHARE_EXCLUSIVE | STGM_READWRITE;

std::string environment(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

constexpr std::uint32_t kLook = STGM_TRANSACTED | STGM_SHARE_DENY_NONE | STGM_READ;

bool isMissing(HRESULT status) {
  return status == STG_E_FILENOTFOUND || status == STG_E_PATHNOTFOUND;
}

BString modelPathOf(const std::string& file) {
  if (file.empty())
    throw Failure("There is no place for the workspace: set HOME, XDG_DATA_HOME or FORGEYARD_WORKSPACE.");
  const ModelPath path = toModel(file);
  if (!path) throw Failure(path.error);
  std::error_code error;
  if (fs::exists(file, error) && !fs::is_regular_file(file, error))
    throw Failure("The workspace " + file + " is no regular file.");
  return path.path;
}

void requireOpened(HRESULT status, const std::string& file) {
  if (status == STG_E_INVALIDHEADER) throw Failure(file + " is not a workspace.");
  if (status == STG_E_SHAREVIOLATION) throw Failure("The workspace " + inUse(file));
  require(status, "The workspace " + file + " can't be opened");
}

// The root of a workspace has storages alone; that of a project file has not.
void requireWorkspace(IStorage& root, const std::string& file) {
  Ref<IEnumSTATSTG> elements;
  check(root.EnumElements(&elements));
  forEach(elements, [&](const STATSTG& element) {
    if (element.type == StgType::Stream) throw Failure(file + " is not a workspace.");
  });
}

Ref<IStorage> openOrMake(const BString& path, const std::string& file) {
  Ref<IStorage> root;
  HRESULT status = StgOpenStorage(path, kMode, &root);
  if (isMissing(status)) {
    std::error_code ignored;
    fs::create_directories(fs::path(file).parent_path(), ignored);
    status = StgCreateDocfile(path, kMode | STGM_CREATE, &root);
  }
  requireOpened(status, file);
  requireWorkspace(*root, file);
  return root;
}

}  // namespace

std::string WorkspaceFile::fileFor(const std::string& named) {
  if (!named.empty()) return named;
  if (std::string file = environment("FORGEYARD_WORKSPACE"); !file.empty()) return file;
  if (const std::string data = environment("XDG_DATA_HOME"); !data.empty())
    return data + "/forgeyard/workspace";
  const std::string home = environment("HOME");
  return home.empty() ? "" : home + "/.local/share/forgeyard/workspace";
}

Ref<IStorage> WorkspaceFile::openToRead(const std::string& file) {
  Ref<IStorage> root;
  const HRESULT status = StgOpenStorage(modelPathOf(file), kLook, &root);
  if (isMissing(status)) return nullptr;
  requireOpened(status, file);
  requireWorkspace(*root, file);
  return root;
}

void WorkspaceFile::requireWhole(HRESULT status, const std::string& file) {
  if (status == E_FAIL || status == STG_E_DOCFILECORRUPT)
    throw Failure("The workspace " + file +
                  " is damaged. Move it away and add the projects anew; their files are not in it.");
  require(status, "The workspace " + file + " can't be read");
}

WorkspaceFile::WorkspaceFile(const std::string& file)
    : file_(file), root_(openOrMake(modelPathOf(file), file)) {}

WorkspaceFile::~WorkspaceFile() {
  for (const Attached& attached : attached_) ignore(attached.object->HandsOffStorage());
}

void WorkspaceFile::attach(IPersistStorage* object, const BString& name) {
  Ref<IStorage> storage;
  const bool known = succeeded(root_->OpenStorage(name, kMode, &storage));
  if (!known)
    require(root_->CreateStorage(name, kMode, &storage), "The workspace " + file_ + ", " + name.narrow());
  requireWhole(known ? object->Load(storage.get()) : object->InitNew(storage.get()), file_);
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

}  // namespace forgeyard::workbench
