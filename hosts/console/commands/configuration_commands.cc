// config add, list, use, remove and set.

#include <nlohmann/json.hpp>

#include "hosts/console/commands/command.h"
#include "hosts/console/services/json_lines.h"
#include "hosts/console/session/session.h"
#include "workbench/base/failure.h"
#include "workbench/project/configuration_properties.h"
#include "workbench/project/configurations.h"
#include "workbench/project/open_project.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

using Kind = Parameter::Kind;

constexpr const char* kTarget = "Target";

Ref<IConfigurations> configurationList(IProject& project) {
  Ref<IConfigurations> configurations;
  check(project.get_Configurations(&configurations));
  return configurations;
}

// Which configuration is meant stands in the command itself.
void refuseOption(const Invocation& invocation) {
  if (!invocation.options().configuration.empty())
    throw Failure("-c chooses a configuration for a call that works on one; here it says nothing.");
}

ExitCode addConfiguration(const Invocation& invocation) {
  refuseOption(invocation);
  Session session(invocation.options());
  OpenProject project(session);
  const std::string& name = invocation.text("NAME");
  requireFreeConfigurationName(project.project(), name);
  Ref<IConfiguration> base;
  if (invocation.has("--from")) base = findConfiguration(project.project(), invocation.text("--from"));
  Ref<IConfiguration> made;
  require(configurationList(project.project())->New(BString::fromNarrow(name), base.get(), &made),
          "The configuration " + name + " can't be made");
  project.save();
  return ExitCode::Success;
}

constexpr std::array kListed{"OutputDirectory", "IntermediateDirectory", "UpdateFileDependencies"};

nlohmann::ordered_json membersOf(IConfiguration& configuration, bool active) {
  nlohmann::ordered_json members{
      {"configuration", nameOf(configuration)}, {"active", active}, {kTarget, targetOf(configuration)}};
  for (const char* property : kListed) members[property] = readProperty(configuration, property);
  return members;
}

ExitCode listConfigurations(const Invocation& invocation) {
  refuseOption(invocation);
  Session session(invocation.options());
  const OpenProject project(session);
  Ref<IConfiguration> active;
  check(project.project().get_ActiveConfiguration(&active));
  for (const auto& configuration : configurationsOf(project.project())) {
    if (session.options().json) {
      writeObject(session.output(), "configuration", membersOf(*configuration, configuration == active));
      continue;
    }
    std::string line = (configuration == active ? "* " : "  ") + nameOf(*configuration);
    line += std::string("  ") + kTarget + "=" + targetOf(*configuration);
    for (const char* property : kListed)
      line += std::string("  ") + property + "=" + readProperty(*configuration, property);
    session.output().line(line);
  }
  return session.finish();
}

ExitCode useConfiguration(const Invocation& invocation) {
  refuseOption(invocation);
  Session session(invocation.options());
  OpenProject project(session);
  const auto chosen = findConfiguration(project.project(), invocation.text("NAME"));
  const HRESULT status = project.project().put_ActiveConfiguration(chosen.get());
  require(status, nameOf(*chosen) + " can't be made active");
  if (status == S_OK) project.save();
  return ExitCode::Success;
}

ExitCode removeConfiguration(const Invocation& invocation) {
  refuseOption(invocation);
  Session session(invocation.options());
  OpenProject project(session);
  const auto chosen = findConfiguration(project.project(), invocation.text("NAME"));
  if (configurationsOf(project.project()).size() == 1)
    throw Failure(nameOf(*chosen) + " is the only configuration; a project keeps at least one.");
  require(configurationList(project.project())->Delete(chosen.get()), nameOf(*chosen) + " can't be removed");
  project.save();
  return ExitCode::Success;
}

ExitCode setProperties(const Invocation& invocation) {
  const std::vector<Assignment> wanted = assignments(invocation.texts("PROPERTY=VALUE"));
  Session session(invocation.options());
  OpenProject project(session);
  const Ref<IConfiguration> configuration = project.configuration();
  require(configuration->BeforeSettings(), "The configuration's settings");
  // A failure leaves all of it to the end of the session: nothing has been stored.
  for (const Assignment& assignment : wanted)
    setProperty(session, project.project(), *configuration, assignment);
  require(configuration->AfterSettings(1), "The configuration's settings");
  project.save();
  return ExitCode::Success;
}

constexpr std::array kCommands{
    Command{"config add",
            "Make a configuration",
            {{{Kind::Text, "NAME", "", "its name, unlike that of any other configuration"},
              {Kind::Option, "--from", "NAME",
               "the configuration whose directories, target and settings it gets; left out: default settings",
               Completes::Configuration}}},
            addConfiguration},
    Command{"config list", "Show the configurations; \"*\" marks the active one", {}, listConfigurations},
    Command{"config use",
            "Make a configuration the active one",
            {{{Kind::Text, "NAME", "", "its name", Completes::Configuration}}},
            useConfiguration},
    Command{"config remove",
            "Remove a configuration and its settings in all components",
            {{{Kind::Text, "NAME", "", "its name", Completes::Configuration}}},
            removeConfiguration},
    Command{"config set",
            "Change properties of the active configuration, or of -c",
            {{{Kind::Texts, "PROPERTY=VALUE", "",
               "OutputDirectory, IntermediateDirectory, Target, UpdateFileDependencies (0 or 1), Name",
               Completes::ConfigurationAssignment}}},
            setProperties},
};

}  // namespace

std::span<const Command> configurationCommands() {
  return kCommands;
}

}  // namespace forgeyard::console
