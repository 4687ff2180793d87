#include "workbench/project/component_properties.h"

#include <algorithm>

#include "platform/text/fold.h"
#include "workbench/base/nearest.h"

namespace forgeyard::workbench {

IDispatch* PropertyHolders::readable(const std::string& property) const {
  if (settings && hasReadable(*settings, property)) return settings.get();
  return own && hasReadable(*own, property) ? own.get() : nullptr;
}

IDispatch* PropertyHolders::writable(const std::string& property) const {
  if (settings && hasWritable(*settings, property)) return settings.get();
  return own && hasWritable(*own, property) ? own.get() : nullptr;
}

std::vector<std::string> PropertyHolders::names(std::vector<std::string> (*list)(IDispatch&)) const {
  std::vector<std::string> all = settings ? list(*settings) : std::vector<std::string>();
  std::vector<std::string> ownNames = own ? list(*own) : std::vector<std::string>();
  std::erase_if(ownNames, [&](const std::string& name) {
    return std::find(all.begin(), all.end(), name) != all.end();
  });
  all.insert(all.begin(), ownNames.begin(), ownNames.end());
  return all;
}

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

Failure unknownProperty(const Component& component, const std::string& property,
                        const std::vector<std::string>& names) {
  std::string hint = suggestion(property, names, "properties");
  if (hint.empty()) hint = " \"forgeyard get " + component.name + "\" shows what there is.";
  return Failure(component.name + " (" + component.kindName() + ") has no property " + property + "." + hint);
}

namespace {

void setProperty(IProject& project, const Component& component, const PropertyHolders& holders,
                 const Assignment& assignment) {
  IDispatch* holder = holders.writable(assignment.property);
  if (!holder) {
    throw unknownProperty(component, assignment.property, holders.names(writableProperties));
  }
  // The command line tells components apart by their names.
  if (holder == holders.own.get() && equalFoldedAscii(assignment.property, "Name"))
    requireFreeName(project, assignment.value, component.object.get());
  editProperty(*holder, assignment.property, assignment.value);
}

}  // namespace

void setProperties(IProject& project, const Component& component, IConfiguration& configuration,
                   std::span<const Assignment> assignments) {
  const PropertyHolders holders = holdersOf(component, configuration);
  for (const Assignment& assignment : assignments) setProperty(project, component, holders, assignment);
  // A value that was given counts for more than one that follows from another property.
  for (const Assignment& assignment : assignments)
    putProperty(*holders.writable(assignment.property), assignment.property, assignment.value);
}

}  // namespace forgeyard::workbench
