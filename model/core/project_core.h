#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "model/core/project_contents.h"
#include "model/core/project_notifications.h"
#include "model/core/project_services.h"
#include "model/core/source_control_binding.h"
#include "typelib/project.h"

namespace forgeyard {

// What the parts of one project work on: its contents, notifications, services and source control. Part of
// the project object and counted as one with it, so a reference to the core keeps the project alive. Main
// thread only.
class ProjectCore {
 public:
  // `building` returns whether a build is running the project.
  ProjectCore(IProject& project, ProjectNotifications notifications, std::function<bool()> building)
      : project_(project), notifications_(std::move(notifications)), building_(std::move(building)) {}
  ProjectCore(const ProjectCore&) = delete;
  ProjectCore& operator=(const ProjectCore&) = delete;

  std::uint32_t AddRef() { return project_.AddRef(); }
  std::uint32_t Release() { return project_.Release(); }

  IProject& project() const { return project_; }
  ProjectContents& contents() { return contents_; }
  const ProjectNotifications& notifications() const { return notifications_; }
  ProjectServices& services() { return services_; }
  const ProjectServices& services() const { return services_; }
  FileReport& report() { return report_; }
  const FileReport& report() const { return report_; }
  bool building() const { return building_(); }

  // Announces a new list of components.
  void componentsChanged();
  // The full path of the project file.
  BString filePath() const;

  SourceControlState& sourceControl() { return sourceControl_; }
  // The binding, made when first needed; null without source control.
  ISourceControlBinding* binding();
  // The binding if there is one yet.
  ISourceControlBinding* madeBinding() const { return binding_.get(); }
  void dropBinding() { binding_ = nullptr; }

 private:
  IProject& project_;
  ProjectContents contents_;
  ProjectNotifications notifications_;
  ProjectServices services_;
  FileReport report_;
  std::function<bool()> building_;
  SourceControlState sourceControl_;
  std::unique_ptr<ISourceControlBinding> binding_;
};

}  // namespace forgeyard
