#pragma once

#include <memory>
#include <string>
#include <vector>

#include "engine/component/builder_node.h"
#include "engine/component/output_tab.h"
#include "engine/self_documentation/diagnostics.h"
#include "engine/self_documentation/self_documenting.h"
#include "model/connections/connections.h"
#include "model/core/project_contents.h"
#include "model/core/source_control_binding.h"
#include "model/folders/file_index.h"
#include "model/folders/name_pool.h"
#include "platform/com/connection_point.h"
#include "platform/com/weak_ref.h"
#include "typelib/project.h"
#include "typelib/records.h"

namespace forgeyard {

// The root of the project model and the head of the build chain. Owns its configurations, components,
// connections and the open compound file; components and configurations point back at it weakly. The build
// tool makes it, gives it the host's services and ends it with OnClose(), which breaks all cycles. Main
// thread only.
//
// `Dirty` says that the contents differ from the file, `BuildDirty` that a build is due; the latter isn't
// stored.
class CProject final
    : public ComObject<Dual<IProject>, ConnectionPoints<IPropertyNotifySink, IProjectE>, IPersistStream,
                       CBuilderInputOutput, OutputTab, WeakSource, IComponentSite, IProjectReport,
                       IProjectChanges, IProjectRecords, IWorkspaceProjectRecord, SelfDocumenting> {
 public:
  CProject();

  // IProject
  HRESULT get_Name(BString* value) override;
  HRESULT put_Name(const BString& value) override;
  HRESULT get_WorkingDirectory(BString* value) override;
  HRESULT put_WorkingDirectory(const BString& value) override;
  HRESULT get_FileName(BString* value) override;
  HRESULT put_FileName(const BString& value) override;
  HRESULT get_SSRoot(BString* value) override;
  HRESULT put_SSRoot(const BString& value) override;
  HRESULT get_Active(std::int32_t* value) override;
  HRESULT put_Active(std::int32_t value) override;
  HRESULT get_Components(Ref<IComponents>* out) override;
  HRESULT OnClose() override;
  HRESULT ProjectLoad() override;
  HRESULT ProjectSave() override;
  HRESULT ProjectInit() override;
  HRESULT InsertFiles(IEnumString* files, IDispatch* folder) override;
  HRESULT get_Configurations(Ref<IConfigurations>* out) override;
  HRESULT get_ActiveConfiguration(Ref<IConfiguration>* out) override;
  HRESULT put_ActiveConfiguration(IConfiguration* value) override;
  HRESULT ManageConfigurations() override;
  HRESULT get_Connections(Ref<IConnections>* out) override;
  HRESULT get_SSControl(std::int32_t* value) override;
  HRESULT put_SSControl(std::int32_t value) override;
  HRESULT ProjectClose() override;
  HRESULT get_Loaded(std::int32_t* value) override;
  HRESULT put_Loaded(std::int32_t value) override;
  HRESULT get_Dirty(std::int32_t* value) override;
  HRESULT put_Dirty(std::int32_t value) override;
  HRESULT get_VSSDatabase(Ref<IUnknown>* out) override;
  HRESULT FindFileInProject(const BString& name, Ref<ISourceFile>* file) override;
  HRESULT SourceFilesChanged() override;
  HRESULT DeleteComponent(IUnknown* component) override;
  HRESULT get_ExternalDependencies(Ref<ISimpleCollection>* out) override;
  HRESULT BeforeSettings() override;
  HRESULT AfterSettings(std::int32_t apply) override;
  HRESULT get_BuildDirty(std::int32_t* value) override;
  HRESULT put_BuildDirty(std::int32_t value) override;
  HRESULT InsertFiles2(const Variant& file, IDispatch* folder) override;
  HRESULT UpdateComponentOutputs() override;

  // IPersistStream: the project's record in the workspace. Saving it saves the project; loading it loads the
  // project if it was loaded.
  HRESULT GetClassID(Guid* out) override;
  HRESULT IsDirty() override;
  HRESULT Load(IStream* stream) override;
  HRESULT Save(IStream* stream, bool clearDirty) override;

  // IBuilderInput: collects the components that feed nothing and starts the build.
  HRESULT PreBuild(IBuilderOutput* connection) override;

  // IComponentSite, ahead of every other call.
  HRESULT SetServices(IServiceLookup* services) override;

  // IProjectChanges
  HRESULT BeginChanges() override;
  HRESULT EndChanges() override;

  // IProjectReport
  const std::vector<LoadOmission>& omissions() const override { return omissions_; }
  HRESULT loadFailure() const override { return loadFailure_; }
  HRESULT saveFailure() const override { return saveFailure_; }

  // IProjectRecords
  HRESULT ReadRecords(const BString& path, ProjectRecords* out) override;
  HRESULT WriteRecords(const BString& path, const RecordNode& records, bool replace,
                       RecordFault* fault) override;

  // IWorkspaceProjectRecord
  HRESULT ReadRecord(IStream* stream, StoredWorkspaceProject* out) override;

  // For the other classes of the model and for source control.

  ProjectContents& contents() { return contents_; }
  SourceControlState& sourceControl() { return sourceControl_; }
  IServiceLookup* services() const { return services_.get(); }
  const BString& workingDirectory() const { return workingDirectory_; }
  // The full path of the project file.
  BString filePath() const;
  bool building() const { return !resting(); }
  // Sends a notification.
  void tell(std::int32_t id) const { notify(id); }
  // Sends a notification and marks the project dirty.
  void contentsChanged(std::int32_t id);
  // The list of components changed.
  void componentsChanged();
  // Calls body(IProjectE&) for every component that listens.
  template <class Body>
  void tellComponents(Body&& body) const {
    point<IProjectE>()->fire(std::forward<Body>(body));
  }
  void forgetConfigurationMenu() const;
  // Reads "Settings" of an open project file; keeps what it has when that stream is missing or damaged.
  void readSettings(IStorage& root);

 protected:
  ~CProject() override;

 private:
  class UpdateHold;

  // CBuilderInputOutput
  void OnTaskEnded() override;
  void StartTask() override;
  void ReportResult(e_btr) override {}
  IServiceLookup* outputServices() const override { return services_.get(); }
  const History& history() const override;

  void collectTerminalComponents();
  Ref<IBuilderTask> builderTask() const;
  void computeExternalDependencies();
  void setDirty() { ignore(put_Dirty(1)); }
  // The binding, made on first need; null without source control.
  ISourceControlBinding* binding();

  Ref<IStorage> openForLoad();
  void writeFile();
  void storeChanges();
  void closeComponents(bool cutLinks);
  void clearContents();
  // Whether the project was loaded.
  bool readRecord(IStream& stream);

  Ref<IServiceLookup> services_;
  Ref<ICommandHost> commandHost_;
  bool buildDirty_ = false;
  BString workingDirectory_;
  bool active_ = false;
  bool dirty_ = false;
  ProjectContents contents_;
  SourceControlState sourceControl_;
  std::unique_ptr<ISourceControlBinding> binding_;
  Ref<CConnections> connections_;
  std::vector<BString> externalDependencies_;  // sorted, each once
  FileIndex fileIndex_;
  std::shared_ptr<NamePool> names_ = NamePool::shared();  // held for the files
  int updatesHeld_ = 0;
  std::vector<LoadOmission> omissions_;
  HRESULT loadFailure_ = S_OK;
  HRESULT saveFailure_ = S_OK;
  Diagnostics diagnostics_{static_cast<IProject*>(this)};
};

}  // namespace forgeyard
