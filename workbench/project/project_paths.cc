#include "workbench/project/project_paths.h"

#include <filesystem>

#include "platform/files/host_location.h"
#include "platform/paths/shell_path.h"
#include "workbench/base/failure.h"

namespace forgeyard::workbench {

namespace {

namespace fs = std::filesystem;

constexpr std::u16string_view kBesideProject = u".\\";

}  // namespace

ProjectPaths::ProjectPaths(IProject& project) {
  BString directory;
  check(project.get_WorkingDirectory(&directory));
  prefix_ = directory.view();
  PathAddBackslashA(prefix_);
  hostPrefix_ = spelledHost(directory).value_or("");
  std::error_code error;
  realDirectory_ = fs::canonical(hostPrefix_, error).string();
  if (!hostPrefix_.ends_with('/')) hostPrefix_ += '/';
}

BString ProjectPaths::toProject(const std::string& path) const {
  const ModelPath model = toModel(path);
  if (!model) throw Failure(model.error);
  if (model.path.view().starts_with(prefix_) || realDirectory_.empty()) return model.path;
  const fs::path spelled(spelledHost(model.path).value_or(path));
  std::error_code error;
  // Not the last component: a link to a file is a file of the project by its own name.
  const fs::path real = fs::weakly_canonical(spelled.parent_path(), error) / spelled.filename();
  if (error) return model.path;
  const fs::path below = real.lexically_relative(realDirectory_);
  if (below.empty() || *below.begin() == "..") return model.path;
  const ModelPath respelled = toModel(hostPrefix_ + below.string());
  return respelled ? respelled.path : model.path;
}

BString ProjectPaths::toDependency(const std::string& path) const {
  BString name = toProject(path);
  if (!name.view().starts_with(prefix_)) return name;
  return BString::concat(kBesideProject, name.view().substr(prefix_.size()));
}

std::string ProjectPaths::dependencyToUser(const BString& entry) const {
  if (!entry.view().starts_with(kBesideProject)) return toUser(entry);
  return toUser(BString::concat(prefix_, entry.view().substr(kBesideProject.size())));
}

std::string ProjectPaths::directory() const {
  return hostPrefix_.size() > 1 ? hostPrefix_.substr(0, hostPrefix_.size() - 1) : hostPrefix_;
}

std::string ProjectPaths::toUser(const BString& name) const {
  // A dependency's spelling may not be that of the disk.
  const bool reported = name.view().find(u'\u00a0') != std::u16string_view::npos;
  const std::string host = (reported ? toHost(name) : spelledHost(name)).value_or(name.narrow());
  const bool inside = host.size() > hostPrefix_.size() && host.starts_with(hostPrefix_);
  return inside ? host.substr(hostPrefix_.size()) : host;
}

}  // namespace forgeyard::workbench
