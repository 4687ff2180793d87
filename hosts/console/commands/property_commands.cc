// set and get: the properties of components.

#include <nlohmann/json.hpp>

#include "hosts/console/commands/command.h"
#include "hosts/console/services/json_lines.h"
#include "hosts/console/session/session.h"
#include "workbench/base/failure.h"
#include "workbench/project/component_properties.h"
#include "workbench/project/configurations.h"
#include "workbench/project/open_project.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

using Kind = Parameter::Kind;

std::vector<Ref<IConfiguration>> chosenConfigurations(const OpenProject& project,
                                                      const Invocation& invocation) {
  if (!invocation.has("--all-configs")) return {project.configuration()};
  if (!invocation.options().configuration.empty())
    throw Failure("-c and --all-configs exclude each other: one names a single configuration.");
  return configurationsOf(project.project());
}

ExitCode setValues(const Invocation& invocation) {
  const std::vector<Assignment> wanted = assignments(invocation.texts("PROPERTY=VALUE"));
  Session session(invocation.options());
  OpenProject project(session);
  const Component component = findComponent(project.project(), invocation.text("COMPONENT"));
  const auto configurations = chosenConfigurations(project, invocation);
  require(component.object->BeforeSettings(), "The settings of " + component.name);
  // A failure leaves all of it to the end of the session: nothing has been stored.
  for (const auto& configuration : configurations)
    setProperties(project.project(), component, *configuration, wanted);
  require(component.object->AfterSettings(1), "The settings of " + component.name);
  project.save();
  return ExitCode::Success;
}

void tellProperty(LineWriter& out, const Component& component, IConfiguration& configuration,
                  const std::string& property, const std::string& value) {
  writeObject(out, "property",
              {{"component", component.name},
               {"configuration", nameOf(configuration)},
               {"property", property},
               {"value", value}});
}

void showOne(Session& session, const Component& component, IConfiguration& configuration,
             const std::string& property, const std::string& prefix) {
  const PropertyHolders holders = holdersOf(component, configuration);
  LineWriter& out = session.output();
  const bool json = session.options().json;
  if (!property.empty()) {
    IDispatch* holder = holders.readable(property);
    if (!holder) throw unknownProperty(component, property, holders.names(readableProperties));
    const std::string value = readProperty(*holder, property);
    if (json) return tellProperty(out, component, configuration, property, value);
    return out.line(prefix + value);
  }
  for (const std::string& name : holders.names(readableProperties)) {
    const std::string value = readProperty(*holders.readable(name), name);
    if (json) {
      tellProperty(out, component, configuration, name, value);
    } else {
      std::string line = prefix + name;
      out.line((line += '=') += value);
    }
  }
}

ExitCode showProperties(const Invocation& invocation) {
  Session session(invocation.options());
  const OpenProject project(session);
  const Component component = findComponent(project.project(), invocation.text("COMPONENT"));
  for (const auto& configuration : chosenConfigurations(project, invocation)) {
    const std::string prefix = invocation.has("--all-configs") ? nameOf(*configuration) + ": " : "";
    showOne(session, component, *configuration, invocation.text("PROPERTY"), prefix);
  }
  return session.finish();
}

constexpr std::array kCommands{
    Command{
        "set",
        "Change properties of a component, in the active configuration or that of -c; all of them or none",
        {{{Kind::Text, "COMPONENT", "", "its name, or \"#ID\" as \"component list\" shows it",
           Completes::Component},
          {Kind::Texts, "PROPERTY=VALUE", "", "names as \"get\" shows them; values are stored as typed",
           Completes::Assignment},
          {Kind::Flag, "--all-configs", "", "in every configuration"}}},
        setValues},
    Command{"get",
            "Show the properties of a component, or the value of one",
            {{{Kind::Text, "COMPONENT", "", "its name, or \"#ID\" as \"component list\" shows it",
               Completes::Component},
              {Kind::OptionalText, "PROPERTY", "", "the property whose value alone is shown",
               Completes::Property},
              {Kind::Flag, "--all-configs", "", "in every configuration, each line behind its name"}}},
            showProperties},
};

}  // namespace

std::span<const Command> propertyCommands() {
  return kCommands;
}

}  // namespace forgeyard::console
