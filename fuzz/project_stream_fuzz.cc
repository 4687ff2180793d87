// The records of a project file's streams and of a workspace's, on any bytes: the first byte chooses the
// stream, the others take its place in a file that is whole otherwise.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "engine/classes.h"
#include "fuzz/project_host.h"
#include "model/project/project_records.h"
#include "model/project/workspace_object.h"
#include "model/records/record_encoder.h"
#include "platform/com/class_table.h"
#include "typelib/classes.h"

namespace {

using namespace forgeyard;
using fuzz::require;

constexpr std::uint32_t kStream = STGM_READWRITE | STGM_SHARE_EXCLUSIVE;
constexpr std::uint32_t kStorage = kStream | STGM_TRANSACTED;

struct Place {
  const char16_t* storage;  // null for the root
  const char16_t* stream;
};
constexpr const char16_t* kTool = u"Tool";
constexpr std::array kPlaces{
    Place{nullptr, u"Settings"},
    Place{nullptr, u"Configurations"},
    Place{nullptr, u"Connections"},
    Place{u"Component0", u"FolderSettings"},
    Place{u"Component0", u"SourceFiles"},
    Place{u"Component0", u"Settings"},
    Place{u"Component1", u"Cc"},
    Place{u"Component1", u"Settings"},
    Place{u"Component2", u"Asm"},
    Place{u"Component2", u"Settings"},
    Place{u"Component3", u"Linker"},
    Place{u"Component3", u"Settings"},
    Place{u"Component4", u"CmdLineSettings"},
    Place{u"Component4", u"Settings"},
    Place{kTool, u"BuildTool"},
    Place{kTool, u"Workspace"},
};

// A project with a component of each kind, and a place for a workspace's streams; never committed again.
Ref<IStorage> makeFile() {
  const Ref<IProject> project = fuzz::ProjectHost::project(u"whole.nqp");
  check(project->ProjectInit());
  Ref<IComponents> components;
  check(project->get_Components(&components));
  for (const Guid& kind : {CLSID_Folder, CLSID_Cc, CLSID_Asm, CLSID_Linker, CLSID_CmdLine}) {
    const auto component = createInstance<IComponent>(kind);
    check(component->SetParent(project.get(), nullptr));
    check(component->Init());
    check(components->Add(component.get()));
  }
  check(project->ProjectSave());
  check(project->OnClose());
  Ref<IStorage> root;
  check(StgOpenStorage(toModel(fuzz::scratchDirectory() + "/whole.nqp").path, kStorage, &root));
  return root;
}

// Elements have no order of their own.
void requireSame(const StorageBytes& a, const StorageBytes& b) {
  require(a.clsid == b.clsid && a.streams.size() == b.streams.size() &&
          a.storages.size() == b.storages.size());
  for (const auto& stream : a.streams)
    require(std::find(b.streams.begin(), b.streams.end(), stream) != b.streams.end());
  for (std::size_t i = 0; i < a.storages.size(); ++i) {
    require(a.storages[i].name == b.storages[i].name);
    requireSame(a.storages[i], b.storages[i]);
  }
}

void put(IStorage& storage, const BString& name, const std::uint8_t* data, std::size_t size) {
  Ref<IStream> stream;
  check(storage.CreateStream(name, kStream | STGM_CREATE, &stream));
  check(stream->Write(data, static_cast<std::uint32_t>(size), nullptr));
}

// Whatever a stream holds, its bytes come back from what is told of it.
void readProject(IStorage& root) {
  ProjectRecords records = readProjectRecords(root, u"\\nowhere\\whole.nqp");
  std::vector<StoredElement> elements;
  const StorageBytes bytes = readStorage(root, elements, records.elementsLeftOut);
  const StorageBytes again = encodeProject(records.records);
  requireSame(bytes, again);
}

void readWorkspace(IStorage& storage) {
  static const test::ClassSource engine(engineClasses());
  static const auto tool = createInstance<IWorkspaceRecords>(CLSID_BuildTool);
  WorkspaceRecords records;
  if (succeeded(tool->ReadProjects(&storage, &records)))
    require(records.projects.empty() ? !records.active : *records.active < records.projects.size());
  Ref<IStream> stream;
  if (succeeded(storage.OpenStream(u"Workspace", kStream, &stream)))
    ignore(make<CWorkspaceLO>()->Load(stream.get()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Ref<IStorage> root = makeFile();
  if (size == 0) return 0;
  const Place& place = kPlaces[data[0] % kPlaces.size()];
  Ref<IStorage> storage;
  if (place.storage == kTool) {
    check(root->CreateStorage(kTool, kStorage, &storage));
  } else if (place.storage) {
    check(root->OpenStorage(place.storage, kStream, &storage));
  }
  put(storage ? *storage : *root, place.stream, data + 1, size - 1);
  if (place.storage == kTool) {
    readWorkspace(*storage);
  } else {
    storage = nullptr;
    readProject(*root);
  }
  storage = nullptr;
  check(root->Revert());
  return 0;
}
