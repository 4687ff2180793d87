#include "workbench/import/import_request.h"

#include <algorithm>
#include <filesystem>

#include "platform/files/host_location.h"
#include "platform/paths/command_line.h"
#include "workbench/base/failure.h"
#include "workbench/base/nearest.h"
#include "workbench/base/program_paths.h"
#include "workbench/import/source_names.h"
#include "workbench/session/targets.h"

namespace forgeyard::workbench {

namespace {

namespace fs = std::filesystem;

constexpr const char* kNative = "native";
constexpr std::string_view kAdapter = "gnu-cc";

bool covers(const std::string& directory, const std::string& path) {
  return path == directory || path.starts_with(directory.ends_with('/') ? directory : directory + "/");
}

}  // namespace

std::string ImportRequest::projectDirectory() const {
  const std::string_view directory = directoryName(project.host);
  return directory.empty() ? "/" : std::string(directory);
}

std::string ImportRequest::settingPath(const std::string& hostPath) const {
  const std::string own = projectDirectory();
  const ModelPath model = toModel(hostPath);
  if (!model) throw Failure(model.error);
  const std::string path = spelledHost(model.path).value_or(hostPath);
  // What the project lies in is told by the way up, so that it can move with that.
  const bool near = covers(own, path) || covers(directory, path) || (path != "/" && covers(path, own));
  if (!near) return model.path.narrow();
  std::string relative = fs::path(path).lexically_relative(own).string();
  std::replace(relative.begin(), relative.end(), '/', '\\');
  return relative;
}

std::string chosenTarget(const Registry& registry, const std::string& wanted) {
  std::vector<std::string> names;
  for (const Target& target : registeredTargets(registry)) {
    if (!target.compiler.empty()) names.push_back(target.name);
  }
  const bool known = std::find(names.begin(), names.end(), wanted) != names.end();
  if (!wanted.empty() && !known)
    throw Failure("There is no target " + wanted + " with a compiler." +
                  suggestion(wanted, names, "targets"));
  if (!wanted.empty()) return wanted;
  const bool native = std::find(names.begin(), names.end(), kNative) != names.end();
  return native || names.empty() ? kNative : names.front();
}

LinkTools linkToolsOf(const Registry& registry, const std::string& target) {
  LinkTools tools;
  for (const Target& known : registeredTargets(registry)) {
    if (known.name != target) continue;
    std::vector<std::string> words = CommandLineToArgvW(known.compiler);
    if (!words.empty() && words.front() == kAdapter) words.erase(words.begin());
    if (!words.empty()) tools.driver = words.front();
  }
  const std::size_t suffix = tools.driver.rfind("gcc");
  if (suffix != tools.driver.npos) {
    const std::string archiver = tools.driver.substr(0, suffix) + "ar";
    if (findProgram(archiver)) tools.archiver = quoteArgument(archiver);
  }
  tools.driver = quoteArgument(tools.driver);
  return tools;
}

}  // namespace forgeyard::workbench
