#pragma once

#include <memory>
#include <string>
#include <vector>

#include "engine/component/builder_node.h"
#include "engine/component/output_tab.h"
#include "engine/self_documentation/diagnostics.h"
#include "engine/self_documentation/self_documenting.h"
#include "model/connections/connections.h"
#include "model/core/project_core.h"
#include "model/folders/file_index.h"
#include "model/folders/name_pool.h"
#include "model/project/project_file.h"
#include "platform/com/connection_point.h"
#include "platform/com/weak_ref.h"
#include "typelib/project.h"
#include "typelib/records.h"

namespace forgeyard {

// The root of the project model and the head of the build chain. What it is made of works by itself: the core
// has the contents, the services and the notifications, ProjectFile loads and saves them, the collections
// change them; this object gives them their interfaces and joins the project to a build. Components and
// configurations refer to it weakly. The build tool makes it, gives it the host's services and ends it with
// OnClose(), which breaks all cycles. Main thread only.
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
  const std::vector<LoadOmission>& omissions() const override { return core_.report().omissions; }
  HRESULT loadFailure() const override { return core_.report().loadFailure; }
  HRESULT saveFailure() const override { return core_.report().saveFailure; }

  // IProjectRecords
  HRESULT ReadRecords(const BString& path, ProjectRecords* out) override;
  HRESULT WriteRecords(const BString& path, const RecordNode& records, bool replace,
                       RecordFault* fault) override;

  // IWorkspaceProjectRecord
  HRESULT ReadRecord(IStream* stream, StoredWorkspaceProject* out) override;

  // For source control, the commands and the module's own records.
  ProjectCore& core() { return core_; }
  ProjectContents& contents() { return core_.contents(); }
  SourceControlState& sourceControl() { return core_.sourceControl(); }
  bool building() const { return !resting(); }

 protected:
  ~CProject() override;

 private:
  class UpdateHold;

  // CBuilderInputOutput
  void OnTaskEnded() override;
  void StartTask() override;
  void ReportResult(e_btr) override {}
  IServiceLookup* outputServices() const override { return core_.services().get(); }
  const History& history() const override;

  void collectTerminalComponents();
  Ref<IBuilderTask> builderTask() const;
  void computeExternalDependencies();
  void contentsChanged(std::int32_t id) { core_.notifications().contentsChanged(id); }

  ProjectCore core_{
      *this, {*this, point<IPropertyNotifySink>(), point<IProjectE>()}, [this] { return building(); }};
  ProjectFile file_{core_};
  bool active_ = false;
  Ref<CConnections> connections_;
  std::vector<BString> externalDependencies_;  // sorted, each once
  FileIndex fileIndex_;
  std::shared_ptr<NamePool> names_ = NamePool::shared();  // held for the files
  int updatesHeld_ = 0;
  Diagnostics diagnostics_{static_cast<IProject*>(this)};
};

}  // namespace forgeyard
