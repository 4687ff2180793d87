#include "workbench/project/open_project.h"

#include "workbench/base/failure.h"
#include "workbench/project/components.h"
#include "workbench/project/configurations.h"
#include "workbench/project/damage.h"
#include "workbench/project/workspace.h"

namespace forgeyard::workbench {

OpenProject::OpenProject(Session& session, ProjectFile file) : session_(session), file_(std::move(file)) {
  Ref<IProjects> projects;
  check(session.tool().get_Projects(&projects));
  check(projects->New(&project_));
  check(project_->put_WorkingDirectory(file_.directory));
  check(project_->put_FileName(file_.name));
}

OpenProject::OpenProject(Session& session) : OpenProject(session, chosenProjectFile(session)) {
  load();
  check(session.tool().put_ActiveProject(project_.get()));
}

OpenProject OpenProject::create(Session& session, const ProjectFile& file, const std::string& name) {
  OpenProject made(session, file);
  check(made.project_->put_Name(BString::fromNarrow(name)));
  if (failed(made.project_->ProjectInit())) throw Failure(creationFailure(file));
  check(session.tool().put_ActiveProject(made.project_.get()));
  return made;
}

void OpenProject::load() {
  const HRESULT status = project_->ProjectLoad();
  const Ref<IProjectReport> report = project_.as<IProjectReport>();
  if (failed(status)) {
    const HRESULT why = report && failed(report->loadFailure()) ? report->loadFailure() : status;
    throw Failure(openFailure(file_, why));
  }
  incomplete_ = reportOmissions(session_.host(), *project_, file_);
  // The load has brought back the name that the file had at its last save.
  BString name;
  check(project_->get_FileName(&name));
  if (name != file_.name) check(project_->put_FileName(file_.name));
}

void OpenProject::insert(Session& session, const ProjectFile& file) {
  OpenProject project(session, file);
  project.load();
  project.save();
  Ref<IProject> active;
  check(session.tool().get_ActiveProject(&active));
  if (!active) check(session.tool().put_ActiveProject(project.project_.get()));
}

Ref<IConfiguration> OpenProject::configuration() const {
  const std::string& wanted = session_.selection().configuration;
  if (!wanted.empty()) return findConfiguration(*project_, wanted);
  Ref<IConfiguration> active;
  check(project_->get_ActiveConfiguration(&active));
  if (!active)
    throw Failure(file_.host + " has no active configuration. Choose one: forgeyard config use NAME");
  return active;
}

void OpenProject::requireConsentIfIncomplete(const std::string& question) const {
  if (incomplete_) requireConsent(session_.host(), file_, question);
}

// A file that was cut or made by hand may lack them.
void OpenProject::requireSettings() const {
  const Ref<IConfiguration> at = configuration();
  for (const Component& component : componentsOf(*project_)) {
    Ref<IUnknown> settings;
    if (component.kindName() == kFolderKind || succeeded(component.object->get_Setting(at.get(), &settings)))
      continue;
    throw Failure(component.name + " has no settings in configuration " + nameOf(*at) + ": " + file_.host +
                  " is damaged. Make the component anew, or take the file from a backup.");
  }
}

void OpenProject::save() {
  requireConsentIfIncomplete(kStoreDamaged);
  HRESULT status = project_->ProjectSave();
  if (const Ref<IProjectReport> report = project_.as<IProjectReport>(); report && succeeded(status))
    status = report->saveFailure();
  std::int32_t dirty = 0;
  check(project_->get_Dirty(&dirty));
  if (succeeded(status) && dirty) status = E_FAIL;
  if (failed(status)) throw Failure(saveFailure(file_, status));
  incomplete_ = false;
  saved_ = true;
}

}  // namespace forgeyard::workbench
