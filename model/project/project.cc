#include "model/project/project.h"

#include "engine/modal_scope.h"
#include "engine/simple_collection.h"
#include "model/components/components.h"
#include "model/configurations/configurations.h"
#include "model/dialogs/configuration_dialogs.h"
#include "model/folders/file_insertion.h"
#include "model/project/external_dependencies.h"
#include "typelib/classes.h"

namespace forgeyard {

namespace {

// The dynamic commands of the configuration menu.
constexpr std::uint32_t kFirstConfigurationCommand = 136;
constexpr std::uint32_t kLastConfigurationCommand = 155;

}  // namespace

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

CProject::CProject() : connections_(make<CConnections>(*this)) {}

CProject::~CProject() {
  if (connections_) connections_->detach();
}

HRESULT CProject::SetServices(IServiceLookup* services) {
  return guard([&] {
    services_ = Ref<IServiceLookup>(services);
    commandHost_ = lookUp<ICommandHost>(services_.get(), SID_CommandHost);
  });
}

BString CProject::filePath() const {
  const std::u16string_view separator = workingDirectory_.view().ends_with(u'\\') ? u"" : u"\\";
  return BString::concat(workingDirectory_, separator, contents_.settings.fileName);
}

void CProject::contentsChanged(std::int32_t id) {
  notify(id);
  setDirty();
}

void CProject::componentsChanged() {
  fileIndex_.invalidate();
  contentsChanged(kProjectComponents);
}

void CProject::forgetConfigurationMenu() const {
  if (commandHost_) ignore(commandHost_->RefreshMenu(kFirstConfigurationCommand, kLastConfigurationCommand));
}

// Identity and flags

HRESULT CProject::get_Name(BString* value) {
  *value = contents_.settings.name;
  return S_OK;
}

HRESULT CProject::put_Name(const BString& value) {
  return guard([&] {
    contents_.settings.name = value;
    contentsChanged(kProjectName);
  });
}

HRESULT CProject::get_WorkingDirectory(BString* value) {
  *value = workingDirectory_;
  return S_OK;
}

HRESULT CProject::put_WorkingDirectory(const BString& value) {
  return guard([&] {
    workingDirectory_ = value;
    notify(kProjectWorkingDirectory);
  });
}

HRESULT CProject::get_FileName(BString* value) {
  *value = contents_.settings.fileName;
  return S_OK;
}

HRESULT CProject::put_FileName(const BString& value) {
  return guard([&] {
    contents_.settings.fileName = value;
    contentsChanged(kProjectFileName);
  });
}

HRESULT CProject::get_SSRoot(BString* value) {
  *value = contents_.settings.ssRoot;
  return S_OK;
}

HRESULT CProject::put_SSRoot(const BString& value) {
  return guard([&] {
    contents_.settings.ssRoot = value;
    contentsChanged(kProjectSSRoot);
  });
}

HRESULT CProject::get_Active(std::int32_t* value) {
  *value = active_ ? 1 : 0;
  return S_OK;
}

// Host commands that are bound to the class of projects reach the active one.
HRESULT CProject::put_Active(std::int32_t value) {
  return guard([&] {
    const bool wish = value != 0;
    if (wish == active_) return;
    IUnknown* self = static_cast<IProject*>(this);
    if (commandHost_) {
      ignore(wish ? commandHost_->RegisterObject(CLSID_Project, self)
                  : commandHost_->UnregisterObject(CLSID_Project, self));
    }
    active_ = wish;
    notify(kProjectActive);
  });
}

HRESULT CProject::get_Dirty(std::int32_t* value) {
  *value = dirty_ ? 1 : 0;
  return S_OK;
}

HRESULT CProject::put_Dirty(std::int32_t value) {
  return guard([&] {
    const bool wish = value != 0;
    if (wish != dirty_) {
      dirty_ = wish;
      notify(kProjectDirty);
    }
    // The flag stands whatever becomes of the lists.
    ignore(UpdateComponentOutputs());
  });
}

HRESULT CProject::get_BuildDirty(std::int32_t* value) {
  *value = buildDirty_ ? 1 : 0;
  return S_OK;
}

HRESULT CProject::put_BuildDirty(std::int32_t value) {
  buildDirty_ = value != 0;
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
  return guard([&] { *out = make<CComponents>(Ref<CProject>(this)); });
}

HRESULT CProject::get_Configurations(Ref<IConfigurations>* out) {
  return guard([&] { *out = make<CConfigurations>(Ref<CProject>(this)); });
}

HRESULT CProject::get_Connections(Ref<IConnections>* out) {
  *out = connections_;
  return connections_ ? S_OK : E_FAIL;
}

HRESULT CProject::get_ActiveConfiguration(Ref<IConfiguration>* out) {
  *out = contents_.active;
  return contents_.active ? S_OK : S_FALSE;
}

HRESULT CProject::put_ActiveConfiguration(IConfiguration* value) {
  return guard([&] {
    if (sameObject(contents_.active.get(), value)) return S_FALSE;
    contents_.active = Ref<IConfiguration>(value);
    contentsChanged(kProjectActiveConfiguration);
    forgetConfigurationMenu();
    return S_OK;
  });
}

HRESULT CProject::ManageConfigurations() {
  return guard([&] {
    const auto configurations = make<CConfigurations>(Ref<CProject>(this));
    runDialog(services_.get(), *make<ManageConfigurationsDialog>(configurations.get(), services_.get()));
  });
}

HRESULT CProject::FindFileInProject(const BString& name, Ref<ISourceFile>* file) {
  return guard([&] {
    if (name.isNull()) return E_FAIL;
    if (Ref<ISourceFile> found = fileIndex_.find(name, contents_.components)) *file = std::move(found);
    return S_OK;
  });
}

HRESULT CProject::SourceFilesChanged() {
  return guard([&] {
    contentsChanged(kProjectSourceFilesChanged);
    buildDirty_ = true;
  });
}

HRESULT CProject::DeleteComponent(IUnknown* component) {
  return guard([&] {
    const ModalScope scope(services_.get());
    if (scope.show(u"Are you sure you want to delete this component?", u"Delete Component",
                   MessageButtons::YesNo, MessageIcon::Exclamation) != MessageAnswer::Yes) {
      return S_OK;
    }
    auto& list = contents_.components;
    const auto found = std::find_if(list.begin(), list.end(),
                                    [&](const auto& entry) { return sameObject(entry.get(), component); });
    if (found == list.end()) return E_FAIL;
    const Ref<IComponent> gone = *found;
    if (connections_) connections_->deleteAllOf(gone.get());
    if (contents_.root) contents_.storages.destroy(gone.get(), *contents_.root);
    ignore(gone->Close());
    std::erase(list, gone);
    contentsChanged(kProjectConnections);
    componentsChanged();
    return S_OK;
  });
}

HRESULT CProject::InsertFiles(IEnumString* files, IDispatch* folder) {
  return guard([&] {
    FileInsertion insertion(*this);
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
  std::vector<BString> found = externalDependencies(contents_.components);
  if (found == externalDependencies_) return;
  externalDependencies_ = std::move(found);
  notify(kProjectExternalDependencies);
}

// The builder chain

Ref<IBuilderTask> CProject::builderTask() const {
  return lookUp<IBuilderTask>(services_.get(), SID_BuildTool);
}

void CProject::collectTerminalComponents() {
  clearSources();
  for (const Ref<IComponent>& component : contents_.components) {
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
  if (!tool || !contents_.active) return;
  e_task task = E_TASK_FAKEBUILD;
  check(tool->get_CurrentTask(&task));
  if (task == E_TASK_FAKEBUILD || task == E_TASK_CLEAN) return;
  std::int32_t update = 0;
  check(contents_.active->get_UpdateFileDependencies(&update));
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
