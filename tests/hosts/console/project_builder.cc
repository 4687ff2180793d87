#include "tests/hosts/console/project_builder.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include "hosts/console/session/session.h"
#include "platform/files/host_location.h"
#include "platform/storage/structured_storage.h"
#include "tests/platform/support/temporary_directory.h"
#include "tests/support/places.h"
#include "workbench/project/components.h"
#include "workbench/project/open_project.h"

namespace forgeyard::console {

using namespace workbench;

std::vector<std::filesystem::path> referenceProjects() {
  const char* given = std::getenv("FORGEYARD_GOLDEN");
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(
           std::filesystem::path(given ? given : places::golden()) / "projects")) {
    if (entry.path().extension() == ".nqp") files.push_back(entry.path());
  }
  EXPECT_FALSE(files.empty());
  return files;
}

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

namespace {

constexpr std::uint32_t kMode = STGM_READWRITE | STGM_SHARE_EXCLUSIVE;

void addContents(IStorage& storage, const std::string& way, std::map<std::string, std::string>& out) {
  STATSTG own;
  check(storage.Stat(&own));
  out[way] = formatGuid(own.clsid);
  Ref<IEnumSTATSTG> walk;
  check(storage.EnumElements(&walk));
  STATSTG element;
  while (walk->Next(1, &element, nullptr) == S_OK) {
    const std::string name = way + "/" + element.name.narrow();
    if (element.type == StgType::Storage) {
      Ref<IStorage> below;
      check(storage.OpenStorage(element.name, STGM_SHARE_EXCLUSIVE, &below));
      addContents(*below, name, out);
      continue;
    }
    Ref<IStream> stream;
    check(storage.OpenStream(element.name, STGM_SHARE_EXCLUSIVE, &stream));
    std::string bytes(element.size, '\0');
    std::uint32_t read = 0;
    check(stream->Read(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &read));
    bytes.resize(read);
    out[name] = bytes;
  }
}

}  // namespace

std::map<std::string, std::string> contentsOf(const std::string& projectFile) {
  Ref<IStorage> root;
  check(StgOpenStorage(toModel(projectFile).path, STGM_SHARE_EXCLUSIVE | STGM_TRANSACTED, &root));
  std::map<std::string, std::string> contents;
  addContents(*root, "", contents);
  return contents;
}

void replaceStream(const std::string& projectFile, const std::string& stream, const std::string& bytes) {
  Ref<IStorage> root;
  check(StgOpenStorage(toModel(projectFile).path, kMode | STGM_TRANSACTED, &root));
  Ref<IStorage> storage = root;
  const std::size_t slash = stream.find('/');
  if (slash != stream.npos)
    check(root->OpenStorage(BString::fromNarrow(stream.substr(0, slash)), kMode, &storage));
  Ref<IStream> opened;
  check(storage->CreateStream(BString::fromNarrow(stream.substr(slash == stream.npos ? 0 : slash + 1)),
                              kMode | STGM_CREATE, &opened));
  check(opened->Write(bytes.data(), static_cast<std::uint32_t>(bytes.size()), nullptr));
  opened = nullptr;
  storage = nullptr;
  check(root->Commit(STGC_DEFAULT));
}

}  // namespace forgeyard::console
