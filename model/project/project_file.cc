#include "model/project/project_file.h"

#include "engine/modal_scope.h"
#include "model/configurations/configurations.h"
#include "model/file/project_reader.h"
#include "model/file/project_writer.h"
#include "platform/files/file_system.h"

namespace forgeyard {

namespace {

constexpr std::uint32_t kCreate = STGM_CREATE | STGM_TRANSACTED | STGM_SHARE_EXCLUSIVE | STGM_READWRITE;
constexpr std::uint32_t kLoad = STGM_TRANSACTED | STGM_SHARE_EXCLUSIVE | STGM_READ;
constexpr std::uint32_t kOpen = STGM_TRANSACTED | STGM_SHARE_EXCLUSIVE | STGM_READWRITE;

}  // namespace

HRESULT ProjectFile::create() {
  return guard([&] {
    const ModalScope scope(project_.services().get());
    if (isOpen()) return E_FAIL;
    files().createDirectories(project_.contents().workingDirectory);
    const BString path = project_.filePath();
    Ref<IStorage> root;
    if (failed(StgCreateDocfile(path, kCreate, &root))) {
      scope.show(u"Could not create the following file for writing:-\n" + path, u"Initialise new project",
                 MessageButtons::Ok, MessageIcon::Stop);
      return E_FAIL;
    }
    project_.contents().root = std::move(root);
    return make<CConfigurations>(Ref<ProjectCore>(&project_))->New(u"Default", nullptr, nullptr);
  });
}

// Loading

HRESULT ProjectFile::load() {
  return guard([&] {
    const ModalScope scope(project_.services().get());
    if (isOpen()) return S_FALSE;
    ProjectContents& contents = project_.contents();
    FileReport& report = project_.report();
    report.omissions.clear();
    report.loadFailure = guard([&] { contents.root = openForLoad(); });
    if (failed(report.loadFailure)) return E_FAIL;
    ProjectReader(project_, *contents.root).readContents();
    contents.componentsReplaced();
    project_.services().refreshConfigurationMenu();
    check(project_.project().put_Dirty(project_.sourceControl().localChanges ? 1 : 0));
    project_.notifications().send(kProjectLoaded);
    return S_OK;
  });
}

Ref<IStorage> ProjectFile::openForLoad() {
  const BString path = project_.filePath();
  Ref<IStorage> root;
  check(StgOpenStorage(path, kLoad, &root));
  ProjectReader(project_, *root).readSettings();
  root = nullptr;
  if (project_.sourceControl().control) {
    if (Ref<IStorage> controlled = openControlled()) return controlled;
    project_.sourceControl().control = false;
  }
  static_cast<void>(files().setNormalAttributes(path));
  check(StgOpenStorage(path, kOpen, &root));
  return root;
}

Ref<IStorage> ProjectFile::openControlled() {
  Ref<IStorage> root;
  ignore(guard([&] {
    if (ISourceControlBinding* bound = project_.binding()) root = bound->OpenForLoad();
  }));
  return root;
}

// Saving

HRESULT ProjectFile::save() {
  return guard([&] {
    const ModalScope scope(project_.services().get());
    if (!isOpen()) return S_FALSE;
    HRESULT& failure = project_.report().saveFailure;
    failure = guard([&] { write(); });
    // The file is as it was and the project as dirty as it was.
    if (failed(failure)) return S_OK;
    ignore(guard([&] { storeChanges(); }));
    return project_.project().put_Dirty(0);
  });
}

void ProjectFile::write() {
  ProjectContents& contents = project_.contents();
  ProjectWriter writer(project_, *contents.root);
  writer.writeStreams();
  for (const auto entries = contents.storages.entries(); const ComponentStorages::Entry& entry : entries) {
    if (!contents.dirty && entry.component->IsDirty() == S_OK) check(project_.project().put_Dirty(1));
    ComponentStorages::save(entry);
  }
  check(contents.root->Commit(STGC_ONLYIFCURRENT));
  if (project_.sourceControl().control && project_.binding()) {
    ignore(guard([&] { project_.binding()->CopyLocalFile(); }));
  }
  contents.storages.saveCompleted();
}

void ProjectFile::storeChanges() {
  if (!project_.contents().dirty) return;
  if (!project_.sourceControl().control) {
    project_.sourceControl().localChanges = true;
  } else if (project_.binding()) {
    project_.binding()->Store();
  }
}

// Closing

void ProjectFile::closeComponents(bool cutLinks) {
  ProjectContents& contents = project_.contents();
  contents.storages.close();
  for (const auto components = contents.components; const Ref<IComponent>& component : components) {
    if (cutLinks) ignore(component->put_Project(nullptr));
    ignore(component->Close());
  }
}

void ProjectFile::clearContents() {
  ProjectContents& contents = project_.contents();
  contents.root = nullptr;
  contents.components.clear();
  contents.configurations.clear();
  contents.buildDirty = false;
  contents.componentsReplaced();
}

}  // namespace forgeyard
