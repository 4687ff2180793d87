#include "workbench/project/configuration_properties.h"

#include <algorithm>

#include "platform/text/fold.h"
#include "typelib/cookies.h"
#include "workbench/base/failure.h"
#include "workbench/base/nearest.h"
#include "workbench/project/configurations.h"
#include "workbench/session/targets.h"

namespace forgeyard::workbench {

namespace {

constexpr const char* kTarget = "Target";
constexpr const char* kName = "Name";

void warnOfUnknownTarget(const Session& session, const std::string& target) {
  std::vector<std::string> names;
  for (const Target& known : registeredTargets(session.registry())) {
    if (known.name == target) return;
    names.push_back(known.name);
  }
  if (!target.empty())
    session.host().tell("The registry has no target " + target + " yet." +
                        suggestion(target, names, "targets"));
}

void setTarget(const Session& session, IConfiguration& configuration, const std::string& target) {
  warnOfUnknownTarget(session, target);
  const Ref<IKVSupportCookies> cookies = query<IKVSupportCookies>(&configuration);
  if (!cookies) throw Failure("This configuration keeps no target.");
  require(cookies->put_Cookie(BString::fromNarrow(kTarget), BString::fromNarrow(target)), kTarget);
}

bool isDirectory(std::string_view property) {
  return equalFoldedAscii(property, "OutputDirectory") || equalFoldedAscii(property, "IntermediateDirectory");
}

// Also of a relative path, or one with a drive.
std::string modelSpelling(std::string path) {
  std::replace(path.begin(), path.end(), '/', '\\');
  return path;
}

}  // namespace

void requireFreeConfigurationName(IProject& project, const std::string& name, IConfiguration* except) {
  if (name.empty()) throw Failure("A configuration needs a name.");
  for (const auto& configuration : configurationsOf(project)) {
    if (configuration.get() != except && nameOf(*configuration) == name)
      throw Failure("A configuration already exists with that name: " + name + ".");
  }
}

void setProperty(const Session& session, IProject& project, IConfiguration& configuration,
                 const Assignment& assignment) {
  if (equalFoldedAscii(assignment.property, kTarget))
    return setTarget(session, configuration, assignment.value);
  if (!hasWritable(configuration, assignment.property)) {
    std::vector<std::string> names = writableProperties(configuration);
    names.emplace_back(kTarget);
    throw Failure("A configuration has no property " + assignment.property + "." +
                  suggestion(assignment.property, names, "properties"));
  }
  if (equalFoldedAscii(assignment.property, kName))
    requireFreeConfigurationName(project, assignment.value, &configuration);
  putProperty(configuration, assignment.property,
              isDirectory(assignment.property) ? modelSpelling(assignment.value) : assignment.value);
}

}  // namespace forgeyard::workbench
