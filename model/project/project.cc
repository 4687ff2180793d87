#include "model/project/project.h"

#include "engine/simple_collection.h"
#include "model/components/component_removal.h"
#include "model/components/components.h"
#include "model/configurations/configurations.h"
#include "model/dialogs/configuration_dialogs.h"
#include "model/folders/file_insertion.h"
#include "model/project/external_dependencies.h"
#include "model/project/project_records.h"
#include "model/project/workspace_record.h"
#include "typelib/classes.h"

namespace forgeyard {

// Keeps UpdateComponentOutputs from running for each of many changes in a row; who holds it runs it at the
// end.
class CProject::UpdateHold {
 public:
  explicit UpdateHold(CProject& project) : project_(project) { ++project_.updatesHeld_; }
  UpdateHold(const UpdateHold&) = delete;
  UpdateHold& operator=(const UpdateHold&) = delete;
  ~UpdateHold() { --project_.updatesHeld_; }

 private:
  CProject& project_;
};

CProject::CProject() : connections_(make<CConnections>(core_)) {}

CProject::~CProject() {
  if (connections_) connections_->detach();
}

HRESULT CProject::SetServices(IServiceLookup* services) {
  return guard([&] { core_.services().set(services); });
}

// Identity and flags

HRESULT CProject::get_Name(BString* value) {
  *value = contents().settings.name;
  return S_OK;
}

HRESULT CProject::put_Name(const BString& value) {
  return guard([&] {
    contents().settings.name = value;
    contentsChanged(kProjectName);
  });
}

HRESULT CProject::get_WorkingDirectory(BString* value) {
  *value = contents().workingDirectory;
  return S_OK;
}

HRESULT CProject::put_WorkingDirectory(const BString& value) {
  return guard([&] {
    contents().workingDirectory = value;
    notify(kProjectWorkingDirectory);
  });
}

HRESULT CProject::get_FileName(BString* value) {
  *value = contents().settings.fileName;
  return S_OK;
}

HRESULT CProject::put_FileName(const BString& value) {
  return guard([&] {
    contents().settings.fileName = value;
    contentsChanged(kProjectFileName);
  });
}

HRESULT CProject::get_SSRoot(BString* value) {
  *value = contents().settings.ssRoot;
  return S_OK;
}

HRESULT CProject::put_SSRoot(const BString& value) {
  return guard([&] {
    contents().settings.ssRoot = value;
    contentsChanged(kProjectSSRoot);
  });
}

HRESULT CProject::get_Active(std::int32_t* value) {
  *value = active_ ? 1 : 0;
  return S_OK;
}

HRESULT CProject::put_Active(std::int32_t value) {
  return guard([&] {
    const bool wish = value != 0;
    if (wish == active_) return;
    IUnknown* self = static_cast<IProject*>(this);
    if (wish) {
      core_.services().registerActive(self);
    } else {
      core_.services().unregisterActive(self);
    }
    active_ = wish;
    notify(kProjectActive);
  });
}

HRESULT CProject::get_Dirty(std::int32_t* value) {
  *value = contents().dirty ? 1 : 0;
  return S_OK;
}

HRESULT CProject::put_Dirty(std::int32_t value) {
  return guard([&] {
    const bool wish = value != 0;
    if (wish != contents().dirty) {
      contents().dirty = wish;
      notify(kProjectDirty);
    }
    // The flag stands whatever becomes of the lists.
    ignore(UpdateComponentOutputs());
  });
}

HRESULT CProject::get_BuildDirty(std::int32_t* value) {
  *value = contents().buildDirty ? 1 : 0;
  return S_OK;
}

HRESULT CProject::put_BuildDirty(std::int32_t value) {
  contents().buildDirty = value != 0;
  return S_OK;
}

// The settings transaction runs on each configuration and component, not here.
HRESULT CProject::BeforeSettings() {
  return S_OK;
}

HRESULT CProject::AfterSettings(std::int32_t) {
  return S_OK;
}

// Contents

HRESULT CProject::get_Components(Ref<IComponents>* out) {
  return guard([&] { *out = make<CComponents>(Ref<ProjectCore>(&core_)); });
}

HRESULT CProject::get_Configurations(Ref<IConfigurations>* out) {
  return guard([&] { *out = make<CConfigurations>(Ref<ProjectCore>(&core_)); });
}

HRESULT CProject::get_Connections(Ref<IConnections>* out) {
  *out = connections_;
  return connections_ ? S_OK : E_FAIL;
}

HRESULT CProject::get_ActiveConfiguration(Ref<IConfiguration>* out) {
  *out = contents().active;
  return contents().active ? S_OK : S_FALSE;
}

HRESULT CProject::put_ActiveConfiguration(IConfiguration* value) {
  return guard([&] {
    if (sameObject(contents().active.get(), value)) return S_FALSE;
    contents().active = Ref<IConfiguration>(value);
    contentsChanged(kProjectActiveConfiguration);
    core_.services().refreshConfigurationMenu();
    return S_OK;
  });
}

HRESULT CProject::ManageConfigurations() {
  return guard([&] {
    const auto configurations = make<CConfigurations>(Ref<ProjectCore>(&core_));
    runDialog(core_.services().get(),
              *make<ManageConfigurationsDialog>(configurations.get(), core_.services().get()));
  });
}

HRESULT CProject::FindFileInProject(const BString& name, Ref<ISourceFile>* file) {
  return guard([&] {
    if (name.isNull()) return E_FAIL;
    if (Ref<ISourceFile> found = fileIndex_.find(name, contents().components, contents().componentsVersion))
      *file = std::move(found);
    return S_OK;
  });
}

HRESULT CProject::SourceFilesChanged() {
  return guard([&] {
    contentsChanged(kProjectSourceFilesChanged);
    contents().buildDirty = true;
  });
}

HRESULT CProject::DeleteComponent(IUnknown* component) {
  return removeComponent(core_, connections_.get(), component);
}

HRESULT CProject::InsertFiles(IEnumString* files, IDispatch* folder) {
  return guard([&] {
    FileInsertion insertion(core_);
    {
      const UpdateHold hold(*this);
      insertion.run(files, folder);
    }
    const HRESULT told = guard([&] { insertion.tellRefused(); });
    check(UpdateComponentOutputs());
    return told;
  });
}

HRESULT CProject::BeginChanges() {
  ++updatesHeld_;
  return S_OK;
}

HRESULT CProject::EndChanges() {
  if (updatesHeld_ == 0) return E_UNEXPECTED;
  return --updatesHeld_ == 0 ? UpdateComponentOutputs() : S_OK;
}

HRESULT CProject::InsertFiles2(const Variant& file, IDispatch* folder) {
  return guard([&] {
    BString name;
    check(file.toText(&name));
    if (name.empty()) return E_FAIL;
    return InsertFiles(make<ListEnumerator<IEnumString>>(std::vector{name}).get(), folder);
  });
}

HRESULT CProject::get_ExternalDependencies(Ref<ISimpleCollection>* out) {
  return guard([&] { *out = make<CSimpleCollection>(externalDependencies_); });
}

void CProject::computeExternalDependencies() {
  std::vector<BString> found = externalDependencies(contents().components);
  if (found == externalDependencies_) return;
  externalDependencies_ = std::move(found);
  notify(kProjectExternalDependencies);
}

// The file

HRESULT CProject::get_Loaded(std::int32_t* value) {
  *value = file_.isOpen() ? 1 : 0;
  return S_OK;
}

HRESULT CProject::put_Loaded(std::int32_t) {
  return file_.isOpen() ? ProjectClose() : ProjectLoad();
}

HRESULT CProject::ProjectInit() {
  return file_.create();
}

HRESULT CProject::ProjectLoad() {
  return file_.load();
}

HRESULT CProject::ProjectSave() {
  return file_.save();
}

HRESULT CProject::ProjectClose() {
  return guard([&] {
    file_.closeComponents(true);
    file_.clearContents();
    clearSources();
    notify(kProjectLoaded);
    contentsChanged(kProjectComponents);
    if (connections_) check(connections_->Close());
    if (ISourceControlBinding* made = core_.madeBinding()) made->Disconnect();
  });
}

HRESULT CProject::OnClose() {
  return guard([&] {
    file_.closeComponents(false);
    contents().settings.nextComponentId = 0;
    if (active_) core_.services().unregisterActive(static_cast<IProject*>(this));
    core_.services().clear();
    file_.clearContents();
    clearSources();
    clearSinks();
    contents().active = nullptr;
    contentsChanged(kProjectComponents);
    if (const Ref<CConnections> connections = std::exchange(connections_, nullptr)) {
      check(connections->Close());
      connections->detach();
    }
    core_.dropBinding();
  });
}

HRESULT CProject::ReadRecords(const BString& path, ProjectRecords* out) {
  return guard([&] { *out = readProjectRecords(path); });
}

HRESULT CProject::WriteRecords(const BString& path, const RecordNode& records, bool replace,
                               RecordFault* fault) {
  return writeProjectRecords(path, records, replace, fault);
}

// The record in the workspace

HRESULT CProject::GetClassID(Guid* out) {
  *out = CLSID_Project;
  return S_OK;
}

HRESULT CProject::IsDirty() {
  return contents().dirty ? S_OK : S_FALSE;
}

// The project's own file is written first; if that fails the workspace still keeps the project.
HRESULT CProject::Save(IStream* stream, bool) {
  return guard([&] {
    if (file_.isOpen()) ignore(ProjectSave());
    writeWorkspaceRecord(core_, *stream);
  });
}

// A project whose file can't be loaded stays in the workspace, unloaded.
HRESULT CProject::Load(IStream* stream) {
  return guard([&] {
    if (readWorkspaceRecord(core_, *stream)) ignore(ProjectLoad());
    computeExternalDependencies();
    check(put_Dirty(0));
  });
}

HRESULT CProject::ReadRecord(IStream* stream, StoredWorkspaceProject* out) {
  return guard([&] {
    out->loaded = readWorkspaceRecord(core_, *stream);
    out->name = contents().settings.name;
    out->workingDirectory = contents().workingDirectory;
    out->fileName = contents().settings.fileName;
  });
}

// Source control

HRESULT CProject::get_SSControl(std::int32_t* value) {
  *value = sourceControl().control ? 1 : 0;
  return S_OK;
}

HRESULT CProject::put_SSControl(std::int32_t value) {
  return guard([&] {
    const bool before = sourceControl().control;
    if ((value != 0) == before) return S_OK;
    ISourceControlBinding* binding = core_.binding();
    if (!binding) return E_FAIL;
    HRESULT status = guard([&] { return before ? binding->Remove() : binding->Add(); });
    if (!before && succeeded(status)) status = ProjectSave();
    if (sourceControl().control != before) notify(kProjectSSControl);
    return status;
  });
}

HRESULT CProject::get_VSSDatabase(Ref<IUnknown>* out) {
  const ISourceControlBinding* binding = core_.madeBinding();
  *out = Ref<IUnknown>(binding ? binding->Database() : nullptr);
  return *out ? S_OK : E_FAIL;
}

// The builder chain

Ref<IBuilderTask> CProject::builderTask() const {
  return lookUp<IBuilderTask>(core_.services().get(), SID_BuildTool);
}

void CProject::collectTerminalComponents() {
  clearSources();
  for (const Ref<IComponent>& component : contents().components) {
    // What a circle feeds could never start, and nothing could end: it stays out like the circle itself.
    if (connections_ &&
        (connections_->feedsAnother(component.get()) || connections_->fedByCircle(component.get()))) {
      continue;
    }
    if (const Ref<IBuilderInput> input = component.as<IBuilderInput>()) addSource(input.get());
  }
}

HRESULT CProject::PreBuild(IBuilderOutput* connection) {
  return guard([&] {
    collectTerminalComponents();
    check(CBuilderInputOutput::PreBuild(connection));
    check(Build());
  });
}

void CProject::StartTask() {
  check(BuildResult(E_BTR_COMPLETED, 1));
}

void CProject::OnTaskEnded() {
  const Ref<IBuilderTask> tool = builderTask();
  if (!tool || !contents().active) return;
  e_task task = E_TASK_FAKEBUILD;
  check(tool->get_CurrentTask(&task));
  if (task == E_TASK_FAKEBUILD || task == E_TASK_CLEAN) return;
  std::int32_t update = 0;
  check(contents().active->get_UpdateFileDependencies(&update));
  if (update) computeExternalDependencies();
}

// While a build runs the task must stay what it is: the lists follow with the next change.
HRESULT CProject::UpdateComponentOutputs() {
  return guard([&] {
    if (updatesHeld_ != 0 || building()) return;
    const Ref<IBuilderTask> tool = builderTask();
    if (!tool) return;
    check(tool->put_CurrentTask(E_TASK_FAKEBUILD));
    collectTerminalComponents();
    check(CBuilderInputOutput::PreBuild(nullptr));
    check(Build());
    notify(kProjectComponentOutputs);
  });
}

}  // namespace forgeyard
