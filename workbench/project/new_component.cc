#include "workbench/project/new_component.h"

#include "platform/com/class_table.h"
#include "workbench/base/failure.h"

namespace forgeyard::workbench {

namespace {

Component add(OpenProject& project, const ComponentKind& kind, std::vector<BString> answers) {
  const Ref<IComponent> component = createInstance<IComponent>(kind.clsid);
  if (!component) throw Failure(std::string("The module has no components of the kind ") + kind.name + ".");
  Ref<IComponents> components;
  check(project.project().get_Components(&components));
  std::int32_t before = 0;
  std::int32_t after = 0;
  check(components->get_Count(&before));
  const std::string name = answers.front().narrow();
  project.session().host().fillNextDialog(std::move(answers));
  require(components->New(component.as<IDispatch>().get()),
          std::string("The ") + kind.name + " component can't be made");
  check(components->get_Count(&after));
  if (after != before + 1) throw Failure(std::string("The ") + kind.name + " component was not made.");
  Component made{component, 0, name, &kind};
  check(component->get_Id(&made.id));
  return made;
}

}  // namespace

Component addFolder(OpenProject& project, const std::string& name, const std::string& filter) {
  return add(project, componentKinds().front(), {BString::fromNarrow(name), BString::fromNarrow(filter)});
}

Component addTool(OpenProject& project, const ComponentKind& kind, const std::string& name) {
  return add(project, kind, {BString::fromNarrow(name)});
}

}  // namespace forgeyard::workbench
