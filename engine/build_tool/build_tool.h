#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/component/output_tab.h"
#include "engine/self_documentation/diagnostics.h"
#include "engine/self_documentation/self_documenting.h"
#include "platform/com/connection_point.h"
#include "platform/com/object.h"
#include "platform/com/weak_ref.h"
#include "platform/storage/records/persist.h"
#include "platform/threads/named_event.h"
#include "typelib/build_plan.h"
#include "typelib/buildtool.h"
#include "typelib/host.h"
#include "typelib/records.h"

namespace forgeyard {

// The one object that lives for the whole run of the host: it owns the projects of the workspace and the
// build run, one at a time, and is the last sink of the builder protocol. What a build command reaches first.
// Main thread only; the answers of worker threads arrive there too.
class CBuildTool final
    : public ComObject<Dual<IBuildTool>, Dual<IBuilderTask>, IBuilderOutput, OutputTab,
                       ConnectionPoints<DBuildToolE, IBuildToolE, IPropertyNotifySink>, ILoadedObject,
                       IUseCommands, IPersistStorage, IBuildRunResult, IWorkspaceRecords, IBuildPlan,
                       IBuildPlanner, SelfDocumenting, WeakSource> {
 public:
  CBuildTool();

  // IBuildTool
  HRESULT get_Projects(Ref<IProjects>* out) override;
  HRESULT get_ActiveProject(Ref<IProject>* out) override;
  HRESULT put_ActiveProject(IProject* value) override;
  HRESULT get_Building(std::int32_t* value) override;
  HRESULT InsertProject(const BString& path, Ref<IProject>* out) override;

  // IBuilderTask
  HRESULT get_CurrentTask(e_task* value) override;
  HRESULT put_CurrentTask(e_task value) override;
  HRESULT PreBuildSelection(Ref<IEnumString>* out) override;

  // IBuilderOutput: answers of the project that is being built.
  HRESULT Error() override;
  HRESULT Completed() override;
  HRESULT Stopped() override;

  // ILoadedObject
  HRESULT OnLoad(IUnknown* site) override;
  HRESULT OnUnload() override;

  // IUseCommands
  HRESULT GetCommands(std::span<const CommandEntry>* out) override;
  HRESULT RunCommand(std::uint32_t id) override;
  HRESULT UpdateCommand(std::uint32_t id, IHostCommand* command, std::int32_t* changed) override;

  // IPersistStorage: the stream "BuildTool" in the workspace storage.
  HRESULT GetClassID(Guid* out) override;
  HRESULT IsDirty() override;
  HRESULT InitNew(IStorage* storage) override;
  HRESULT Load(IStorage* storage) override;
  HRESULT Save(IStorage* storage, bool sameAsLoad) override;
  HRESULT SaveCompleted(IStorage* storage) override;
  HRESULT HandsOffStorage() override;

  // IBuildRunResult
  HRESULT get_LastResult(e_btr* result) override;

  // IBuildPlan
  HRESULT PlanBuild(e_task task, std::vector<PlannedComponent>* out) override;
  HRESULT GetDependencies(const BString& file, std::vector<BString>* out) override;
  // IBuildPlanner
  bool isPlanning() const override { return plan_ != nullptr; }
  FileTime nextTime() override { return timeToCome_++; }
  HRESULT AddPlanned(PlannedComponent planned) override;

  // IWorkspaceRecords
  HRESULT ReadProjects(IStorage* storage, WorkspaceRecords* out) override;

  // The list behind IProjects.
  const std::vector<Ref<IProject>>& projects() const { return projects_; }
  void addProject(IProject* project);
  void deleteProject(IProject* project);
  // Without the review: the caller still fills the project.
  Ref<IProject> newProject();
  // What follows each change of the list: where there are projects one of them is active.
  void ReviewActiveProject();

 private:
  class Services;

  // Build run
  void StartBuildRun();
  bool buildMayStart();
  void beginOutput();
  void prepareStopEvent();
  HRESULT answered(std::int32_t& counter);
  void CheckBuildRunDone();
  void EndBuildRun();
  void clearBuildDirty();
  e_btr runResult() const;
  BString projectLine();
  void build(e_task task);
  void takeSelection();
  void compileSelection();
  void stop();

  // Projects
  void chooseProject(std::uint32_t position);
  void removeActiveProject();
  bool confirmRemoval(IProject& project);
  void insertProjectByUser();
  void updateProjectCommand(std::uint32_t id, IHostCommand& command, std::int32_t& changed);
  void refreshProjectMenu();
  bool enabled(std::uint32_t id);
  bool hasSelection();
  Ref<IEnumUnknown> selectedItems();

  IServiceLookup* outputServices() const override { return site_.get(); }
  const History& history() const override;

  Ref<IServiceLookup> site_;
  Ref<IServiceLookup> services_;  // what the projects get: the host's, and this tool
  std::vector<Ref<IProject>> projects_;
  Ref<IProject> active_;
  std::shared_ptr<const std::vector<BString>> selection_;  // sorted full paths
  std::vector<Ref<IBuilderInput>> inputs_;                 // what the build run started
  std::int32_t completed_ = 0;
  std::int32_t errors_ = 0;
  std::int32_t stopped_ = 0;
  e_task task_ = E_TASK_BUILD;
  bool building_ = false;
  std::vector<PlannedComponent>* plan_ = nullptr;  // while one is made
  FileTime timeToCome_ = kTimeToCome;              // in it
  std::optional<e_btr> lastResult_;                // of the last run that ended
  bool chained_ = false;                           // would hold the build run open; nothing sets it
  Ref<IUnknown> saveToken_;
  std::unique_ptr<NamedEvent> stopEvent_;  // held between build runs, so that the name lives
  Ref<IStorage> storage_;
  Diagnostics diagnostics_{static_cast<IBuildTool*>(this)};
};

}  // namespace forgeyard
