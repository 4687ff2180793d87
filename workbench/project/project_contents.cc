#include "workbench/project/project_contents.h"

#include <algorithm>
#include <filesystem>

#include "platform/com/class_table.h"
#include "platform/files/host_location.h"
#include "platform/text/fold.h"
#include "typelib/classes.h"
#include "typelib/type_library.h"
#include "workbench/base/failure.h"
#include "workbench/session/session.h"

namespace forgeyard::workbench {

namespace {

Ref<IWorkspaceRecords> workspaceReader() {
  Ref<IWorkspaceRecords> reader = createInstance<IWorkspaceRecords>(CLSID_BuildTool);
  if (!reader) throw Failure("This module can't look into workspaces.");
  return reader;
}

const RecordNode::List& elements(const RecordNode* node) {
  static const RecordNode::List kNone;
  const auto* list = node ? node->get<RecordNode::List>() : nullptr;
  return list ? *list : kNone;
}

std::string textOf(const RecordNode* node) {
  const auto* text = node ? node->get<BString>() : nullptr;
  return text ? text->narrow() : "";
}

std::string targetOf(const RecordNode& configuration) {
  for (const RecordNode& cookie : elements(configuration.find("cookies"))) {
    const RecordNode::List& pair = elements(&cookie);
    if (pair.size() == 2 && textOf(&pair[0]) == "Target") return textOf(&pair[1]);
  }
  return "";
}

}  // namespace

const TypeInfo* PropertySource::typeOf(const std::string& property) const {
  const auto found = std::find_if(types.begin(), types.end(), [&](const TypeInfo* type) {
    return type->find(BString::fromNarrow(property)) != nullptr;
  });
  return found == types.end() ? nullptr : *found;
}

std::string PropertySource::text(const std::string& property) const {
  for (const RecordNode* node : nodes) {
    const auto* fields = node ? node->get<RecordNode::Fields>() : nullptr;
    if (!fields) continue;
    for (const RecordField& field : *fields) {
      if (equalFoldedAscii(field.name, property)) return textOf(&field.node);
    }
  }
  return "";
}

ProjectContents::ProjectContents(const Selection& selection)
    : selection_(selection), registry_(openRegistry()), module_(registry_) {}

const std::vector<WorkspaceProject>& ProjectContents::workspace() {
  if (!workspace_) workspace_ = workspaceProjects(selection_, *workspaceReader());
  return *workspace_;
}

const RecordNode& ProjectContents::records() {
  if (records_) return records_->records;
  file_ = chosenProjectFile(selection_, *workspaceReader(), nullptr, FileNames::Any);
  records_.emplace();
  const Ref<IProjectRecords> reader = createInstance<IProjectRecords>(CLSID_Project);
  if (reader) ignore(reader->ReadRecords(file_.path(), &*records_));
  return records_->records;
}

const RecordNode::List& ProjectContents::list(const char* name) {
  return elements(records().find(name));
}

std::vector<NamedComponent> ProjectContents::components() {
  std::vector<NamedComponent> result;
  for (const RecordNode& node : list("components")) {
    const auto clsid = parseGuid(textOf(node.find("clsid")));
    const RecordNode* id = node.find("Id");
    if (!node.find("Name")) continue;
    result.push_back({textOf(node.find("Name")),
                      id && id->get<std::int64_t>() ? *id->get<std::int64_t>() : -1,
                      clsid ? kindOf(*clsid) : nullptr, &node});
  }
  return result;
}

std::vector<std::pair<std::string, std::string>> ProjectContents::configurations() {
  std::vector<std::pair<std::string, std::string>> result;
  for (const RecordNode& node : list("configurations"))
    result.emplace_back(textOf(node.find("Name")), targetOf(node));
  return result;
}

std::vector<std::string> ProjectContents::sourceFiles() {
  std::vector<std::string> paths;
  for (const RecordNode& component : list("components")) {
    for (const RecordNode& file : elements(component.find("files"))) {
      const std::string stored = textOf(file.find("PersistAs"));
      // Relative to the project's directory where it lies in or near that.
      const std::string prefix = stored.starts_with('.') ? file_.directory.narrow() + "\\" : "";
      const auto host = spelledHost(BString::fromNarrow(prefix + stored));
      if (host) paths.push_back(std::filesystem::path(*host).lexically_normal().string());
    }
  }
  return paths;
}

std::string ProjectContents::chosenConfiguration() {
  return selection_.configuration.empty() ? textOf(records().find("active")) : selection_.configuration;
}

PropertySource ProjectContents::propertiesOf(const std::string& component) {
  const std::vector<NamedComponent> all = components();
  auto found = std::find_if(all.begin(), all.end(), [&](const auto& one) { return one.name == component; });
  if (found == all.end()) {
    found = std::find_if(all.begin(), all.end(),
                         [&](const auto& one) { return "#" + std::to_string(one.id) == component; });
  }
  PropertySource source;
  if (found == all.end() || !found->kind) return source;
  const RecordNode* settings = nullptr;
  for (const RecordNode& node : elements(found->node->find("settings"))) {
    if (textOf(node.find("configuration")) == chosenConfiguration()) settings = &node;
  }
  if (const TypeInfo* type = findInterface(found->kind->iid)) source.types.push_back(type);
  if (const TypeInfo* type = findInterface(found->kind->settings)) source.types.push_back(type);
  source.nodes = {found->node, settings};
  return source;
}

PropertySource ProjectContents::configurationProperties() {
  PropertySource source{{&typeInfo<IConfiguration>()}, {}};
  for (const RecordNode& node : list("configurations")) {
    if (textOf(node.find("Name")) == chosenConfiguration()) source.nodes = {&node};
  }
  return source;
}

}  // namespace forgeyard::workbench
