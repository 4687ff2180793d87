// The life of a project's file: made, loaded, saved, closed.

#include <algorithm>

#include "engine/modal_scope.h"
#include "model/configurations/configurations.h"
#include "model/file/project_reader.h"
#include "model/file/project_writer.h"
#include "model/project/project.h"
#include "platform/files/file_system.h"
#include "typelib/classes.h"

namespace forgeyard {

namespace {

constexpr std::uint32_t kCreate = STGM_CREATE | STGM_TRANSACTED | STGM_SHARE_EXCLUSIVE | STGM_READWRITE;
constexpr std::uint32_t kLoad = STGM_TRANSACTED | STGM_SHARE_EXCLUSIVE | STGM_READ;
constexpr std::uint32_t kOpen = STGM_TRANSACTED | STGM_SHARE_EXCLUSIVE | STGM_READWRITE;

}  // namespace

HRESULT CProject::ProjectInit() {
  return guard([&] {
    const ModalScope scope(services_.get());
    if (contents_.root) return E_FAIL;
    files().createDirectories(workingDirectory_);
    const BString path = filePath();
    Ref<IStorage> root;
    if (failed(StgCreateDocfile(path, kCreate, &root))) {
      scope.show(u"Could not create the following file for writing:-\n" + path, u"Initialise new project",
                 MessageButtons::Ok, MessageIcon::Stop);
      return E_FAIL;
    }
    contents_.root = std::move(root);
    return make<CConfigurations>(Ref<CProject>(this))->New(u"Default", nullptr, nullptr);
  });
}

// Loading

HRESULT CProject::get_Loaded(std::int32_t* value) {
  *value = contents_.root ? 1 : 0;
  return S_OK;
}

HRESULT CProject::put_Loaded(std::int32_t) {
  return contents_.root ? ProjectClose() : ProjectLoad();
}

void CProject::readSettings(IStorage& root) {
  ProjectReader reader(*this, root, omissions_);
  reader.readSettings();
}

HRESULT CProject::ProjectLoad() {
  return guard([&] {
    const ModalScope scope(services_.get());
    if (contents_.root) return S_FALSE;
    omissions_.clear();
    loadFailure_ = guard([&] { contents_.root = openForLoad(); });
    if (failed(loadFailure_)) return E_FAIL;
    ProjectReader(*this, *contents_.root, omissions_).readContents();
    fileIndex_.invalidate();
    forgetConfigurationMenu();
    check(put_Dirty(sourceControl_.localChanges ? 1 : 0));
    notify(kProjectLoaded);
    return S_OK;
  });
}

Ref<IStorage> CProject::openForLoad() {
  const BString path = filePath();
  Ref<IStorage> root;
  check(StgOpenStorage(path, kLoad, &root));
  readSettings(*root);
  root = nullptr;
  if (sourceControl_.control) {
    // Whatever fails there, the project comes up as an uncontrolled one.
    const HRESULT status = guard([&] {
      if (ISourceControlBinding* bound = binding()) root = bound->OpenForLoad();
    });
    if (succeeded(status) && root) return root;
    sourceControl_.control = false;
  }
  static_cast<void>(files().setNormalAttributes(path));
  check(StgOpenStorage(path, kOpen, &root));
  return root;
}

// Saving

HRESULT CProject::ProjectSave() {
  return guard([&] {
    const ModalScope scope(services_.get());
    if (!contents_.root) return S_FALSE;
    saveFailure_ = guard([&] { writeFile(); });
    // The file is as it was and the project as dirty as it was.
    if (failed(saveFailure_)) return S_OK;
    ignore(guard([&] { storeChanges(); }));
    return put_Dirty(0);
  });
}

void CProject::writeFile() {
  ProjectWriter writer(*this, *contents_.root);
  writer.writeStreams();
  for (const auto entries = contents_.storages.entries(); const ComponentStorages::Entry& entry : entries) {
    if (!dirty_ && entry.component->IsDirty() == S_OK) check(put_Dirty(1));
    ComponentStorages::save(entry);
  }
  check(contents_.root->Commit(STGC_ONLYIFCURRENT));
  if (sourceControl_.control && binding()) ignore(guard([&] { binding()->CopyLocalFile(); }));
  contents_.storages.saveCompleted();
}

void CProject::storeChanges() {
  if (!dirty_) return;
  if (!sourceControl_.control) {
    sourceControl_.localChanges = true;
  } else if (binding()) {
    binding()->Store();
  }
}

// Closing

void CProject::closeComponents(bool cutLinks) {
  contents_.storages.close();
  for (const auto components = contents_.components; const Ref<IComponent>& component : components) {
    if (cutLinks) ignore(component->put_Project(nullptr));
    ignore(component->Close());
  }
}

void CProject::clearContents() {
  contents_.root = nullptr;
  contents_.components.clear();
  contents_.configurations.clear();
  buildDirty_ = false;
  clearSources();
  fileIndex_.invalidate();
}

HRESULT CProject::ProjectClose() {
  return guard([&] {
    closeComponents(true);
    clearContents();
    notify(kProjectLoaded);
    contentsChanged(kProjectComponents);
    if (connections_) check(connections_->Close());
    if (binding_) binding_->Disconnect();
  });
}

HRESULT CProject::OnClose() {
  return guard([&] {
    closeComponents(false);
    contents_.settings.nextComponentId = 0;
    if (active_ && commandHost_) {
      ignore(commandHost_->UnregisterObject(CLSID_Project, static_cast<IProject*>(this)));
    }
    services_ = nullptr;
    commandHost_ = nullptr;
    clearContents();
    clearSinks();
    contents_.active = nullptr;
    contentsChanged(kProjectComponents);
    if (const Ref<CConnections> connections = std::exchange(connections_, nullptr)) {
      check(connections->Close());
      connections->detach();
    }
    binding_ = nullptr;
  });
}

// Source control

ISourceControlBinding* CProject::binding() {
  if (!binding_ && sourceControlFactory()) binding_ = sourceControlFactory()(*this);
  return binding_.get();
}

HRESULT CProject::get_SSControl(std::int32_t* value) {
  *value = sourceControl_.control ? 1 : 0;
  return S_OK;
}

HRESULT CProject::put_SSControl(std::int32_t value) {
  return guard([&] {
    const bool before = sourceControl_.control;
    if ((value != 0) == before) return S_OK;
    if (!binding()) return E_FAIL;
    HRESULT status = guard([&] { return before ? binding()->Remove() : binding()->Add(); });
    if (!before && succeeded(status)) status = ProjectSave();
    if (sourceControl_.control != before) notify(kProjectSSControl);
    return status;
  });
}

HRESULT CProject::get_VSSDatabase(Ref<IUnknown>* out) {
  *out = Ref<IUnknown>(binding_ ? binding_->Database() : nullptr);
  return *out ? S_OK : E_FAIL;
}

}  // namespace forgeyard
