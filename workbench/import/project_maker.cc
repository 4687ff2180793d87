#include "workbench/import/project_maker.h"

#include <algorithm>
#include <unordered_map>

#include "workbench/base/failure.h"
#include "workbench/project/component_properties.h"
#include "workbench/project/configuration_properties.h"
#include "workbench/project/connections.h"
#include "workbench/project/new_component.h"
#include "workbench/project/project_paths.h"

namespace forgeyard::workbench {

namespace {

const ComponentKind& kindNamed(const std::string& name) {
  const auto kinds = componentKinds();
  return *std::find_if(kinds.begin(), kinds.end(),
                       [&](const ComponentKind& kind) { return kind.name == name; });
}

class ProjectMaker {
 public:
  ProjectMaker(OpenProject& project, const ImportPlan& plan)
      : project_(project),
        plan_(plan),
        configuration_(project.configuration()),
        progress_(project.session().host().begin("parts of the project made")) {}

  void run() {
    const Ref<IProjectChanges> changes = query<IProjectChanges>(&project_.project());
    if (changes) check(changes->BeginChanges());
    setConfiguration();
    for (const PlannedFolder& folder : plan_.folders) make(folder);
    for (const PlannedTool& tool : plan_.tools) make(tool);
    for (const PlannedTool& tool : plan_.tools) connect(tool);
    if (changes) require(changes->EndChanges(), "The project's lists of files");
  }

 private:
  void setConfiguration() {
    require(configuration_->BeforeSettings(), "The configuration's settings");
    for (const Assignment& setting : plan_.configuration)
      setProperty(project_.session(), project_.project(), *configuration_, setting);
    require(configuration_->AfterSettings(1), "The configuration's settings");
  }

  void make(const PlannedFolder& folder) {
    progress_->step();
    const Component made = addFolder(project_, folder.name, folder.filter);
    made_.emplace(folder.name, made);
    const ProjectPaths paths(project_.project());
    std::vector<BString> names;
    names.reserve(folder.files.size());
    for (const std::string& file : folder.files) names.push_back(paths.toProject(file));
    const auto enumerator = forgeyard::make<ListEnumerator<IEnumString>>(std::move(names));
    require(project_.project().InsertFiles(enumerator.get(), made.object.as<IDispatch>().get()),
            "The files of " + folder.name + " can't be added");
  }

  void make(const PlannedTool& tool) {
    progress_->step();
    const Component made = addTool(project_, kindNamed(tool.kind), tool.name);
    made_.emplace(tool.name, made);
    require(made.object->BeforeSettings(), "The settings of " + tool.name);
    setProperties(project_.project(), made, *configuration_, tool.settings);
    require(made.object->AfterSettings(1), "The settings of " + tool.name);
  }

  void connect(const PlannedTool& tool) {
    progress_->step();
    for (const std::string& input : tool.inputs)
      addConnection(project_.project(), made_.at(input), made_.at(tool.name));
  }

  OpenProject& project_;
  const ImportPlan& plan_;
  Ref<IConfiguration> configuration_;
  std::unique_ptr<Progress> progress_;
  std::unordered_map<std::string, Component> made_;
};

}  // namespace

void makePlanned(OpenProject& project, const ImportPlan& plan) {
  ProjectMaker(project, plan).run();
}

}  // namespace forgeyard::workbench
