#include "tests/console/project_builder.h"

#include <stdlib.h>

#include "hosts/console/project/components.h"
#include "hosts/console/project/open_project.h"
#include "platform/files/host_location.h"
#include "platform/storage/structured_storage.h"
#include "tests/platform_base/temporary_directory.h"

namespace forgeyard::console {

void renameComponent(const std::string& projectFile, const std::string& name, const std::string& newName) {
  const TemporaryDirectory directory;
  ::setenv("FORGEYARD_REGISTRY", (directory / "registry").c_str(), 1);
  Options options;
  options.project = projectFile;
  Session session(options);
  OpenProject project(session);
  const Ref<IFolder> folder = findComponent(project.project(), name).object.as<IFolder>();
  check(folder->put_Name(BString::fromNarrow(newName)));
  project.save();
}

void replaceStream(const std::string& projectFile, const std::string& stream, const std::string& bytes) {
  constexpr std::uint32_t mode = STGM_READWRITE | STGM_SHARE_EXCLUSIVE;
  Ref<IStorage> root;
  check(StgOpenStorage(toModel(projectFile).path, mode | STGM_TRANSACTED, &root));
  Ref<IStream> opened;
  check(root->CreateStream(BString::fromNarrow(stream), mode | STGM_CREATE, &opened));
  check(opened->Write(bytes.data(), static_cast<std::uint32_t>(bytes.size()), nullptr));
  opened = nullptr;
  check(root->Commit(STGC_DEFAULT));
}

}  // namespace forgeyard::console
