// set and get: the properties of components.

#include "hosts/console/base/nearest.h"
#include "hosts/console/commands/command.h"
#include "hosts/console/project/components.h"
#include "hosts/console/project/configurations.h"
#include "hosts/console/project/open_project.h"
#include "hosts/console/project/properties.h"
#include "platform/text/fold.h"

namespace forgeyard::console {

namespace {

using Kind = Parameter::Kind;

// Where a component's properties lie: its settings in one configuration, and the component itself.
struct PropertyHolders {
  Ref<IDispatch> settings;  // null for a component without
  Ref<IDispatch> own;       // null for a kind that the command line doesn't know

  IDispatch* readable(const std::string& property) const {
    if (settings && hasReadable(*settings, property)) return settings.get();
    return own && hasReadable(*own, property) ? own.get() : nullptr;
  }
  IDispatch* writable(const std::string& property) const {
    if (settings && hasWritable(*settings, property)) return settings.get();
    return own && hasWritable(*own, property) ? own.get() : nullptr;
  }
  std::vector<std::string> names(std::vector<std::string> (*list)(IDispatch&)) const {
    std::vector<std::string> all = settings ? list(*settings) : std::vector<std::string>();
    std::vector<std::string> ownNames = own ? list(*own) : std::vector<std::string>();
    std::erase_if(ownNames, [&](const std::string& name) {
      return std::find(all.begin(), all.end(), name) != all.end();
    });
    all.insert(all.begin(), ownNames.begin(), ownNames.end());
    return all;
  }
};

PropertyHolders holdersOf(const Component& component, IConfiguration& configuration) {
  PropertyHolders holders;
  Ref<IUnknown> settings;
  if (succeeded(component.object->get_Setting(&configuration, &settings)))
    holders.settings = settings.as<IDispatch>();
  void* own = nullptr;
  // Every dual interface begins with those of IDispatch, so a pointer to one is a pointer to the other.
  if (component.kind && succeeded(component.object->QueryInterface(component.kind->iid, &own)))
    holders.own = Ref<IDispatch>::adopt(static_cast<IDispatch*>(own));
  return holders;
}

std::vector<Ref<IConfiguration>> chosenConfigurations(const OpenProject& project,
                                                      const Invocation& invocation) {
  if (!invocation.has("--all-configs")) return {project.configuration()};
  if (!invocation.options().configuration.empty())
    throw Failure("-c and --all-configs exclude each other: one names a single configuration.");
  return configurationsOf(project.project());
}

Failure unknownProperty(const Component& component, const std::string& property,
                        const std::vector<std::string>& names) {
  std::string hint = suggestion(property, names, "properties");
  if (hint.empty()) hint = " \"forgeyard get " + component.name + "\" shows what there is.";
  return Failure(component.name + " (" + component.kindName() + ") has no property " + property + "." + hint);
}

void setOne(OpenProject& project, const Component& component, IConfiguration& configuration,
            const Assignment& assignment) {
  const PropertyHolders holders = holdersOf(component, configuration);
  IDispatch* holder = holders.writable(assignment.property);
  if (!holder) {
    throw unknownProperty(component, assignment.property, holders.names(writableProperties));
  }
  // The command line tells components apart by their names.
  if (holder == holders.own.get() && equalFoldedAscii(assignment.property, "Name"))
    requireFreeName(project.project(), assignment.value, component.object.get());
  writeProperty(*holder, assignment.property, assignment.value);
}

ExitCode setProperties(const Invocation& invocation) {
  const std::vector<Assignment> wanted = assignments(invocation.texts("PROPERTY=VALUE"));
  Session session(invocation.options());
  OpenProject project(session);
  const Component component = findComponent(project.project(), invocation.text("COMPONENT"));
  const auto configurations = chosenConfigurations(project, invocation);
  require(component.object->BeforeSettings(), "The settings of " + component.name);
  // A failure leaves all of it to the end of the session: nothing has been stored.
  for (const auto& configuration : configurations) {
    for (const Assignment& assignment : wanted) setOne(project, component, *configuration, assignment);
  }
  require(component.object->AfterSettings(1), "The settings of " + component.name);
  project.save();
  return ExitCode::Success;
}

void showOne(LineWriter& out, const Component& component, IConfiguration& configuration,
             const std::string& property, const std::string& prefix) {
  const PropertyHolders holders = holdersOf(component, configuration);
  if (!property.empty()) {
    IDispatch* holder = holders.readable(property);
    if (!holder) throw unknownProperty(component, property, holders.names(readableProperties));
    return out.line(prefix + readProperty(*holder, property));
  }
  for (const std::string& name : holders.names(readableProperties))
    out.line(prefix + name + "=" + readProperty(*holders.readable(name), name));
}

ExitCode showProperties(const Invocation& invocation) {
  Session session(invocation.options());
  const OpenProject project(session);
  const Component component = findComponent(project.project(), invocation.text("COMPONENT"));
  for (const auto& configuration : chosenConfigurations(project, invocation)) {
    const std::string prefix = invocation.has("--all-configs") ? nameOf(*configuration) + ": " : "";
    showOne(session.output(), component, *configuration, invocation.text("PROPERTY"), prefix);
  }
  return session.finish();
}

constexpr std::array kCommands{
    Command{
        "set",
        "Change properties of a component, in the active configuration or that of -c; all of them or none",
        {{{Kind::Text, "COMPONENT", "", "its name, or \"#ID\" as \"component list\" shows it"},
          {Kind::Texts, "PROPERTY=VALUE", "", "names as \"get\" shows them; values are stored as typed"},
          {Kind::Flag, "--all-configs", "", "in every configuration"}}},
        setProperties},
    Command{"get",
            "Show the properties of a component, or the value of one",
            {{{Kind::Text, "COMPONENT", "", "its name, or \"#ID\" as \"component list\" shows it"},
              {Kind::OptionalText, "PROPERTY", "", "the property whose value alone is shown"},
              {Kind::Flag, "--all-configs", "", "in every configuration, each line behind its name"}}},
            showProperties},
};

}  // namespace

std::span<const Command> propertyCommands() {
  return kCommands;
}

}  // namespace forgeyard::console
