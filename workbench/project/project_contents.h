#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/com/type_info.h"
#include "typelib/records.h"
#include "workbench/project/components.h"
#include "workbench/project/project_file.h"
#include "workbench/project/workspace.h"
#include "workbench/session/module.h"

namespace forgeyard::workbench {

// What has properties: the types that describe them, and what is stored of them.
struct PropertySource {
  std::vector<const TypeInfo*> types;    // the first that has a property counts
  std::vector<const RecordNode*> nodes;  // theirs, of the same order; borrowed; null where none is stored

  // The type that has a property of that name in any case; null for none.
  const TypeInfo* typeOf(const std::string& property) const;
  // The text of a property as it is stored; empty for none, and for what is no text.
  std::string text(const std::string& property) const;
};

// A component as its records have it.
struct NamedComponent {
  std::string name;
  std::int64_t id = 0;
  const ComponentKind* kind = nullptr;  // null for a class that the command line doesn't know
  const RecordNode* node = nullptr;     // borrowed
};

// A project and a workspace as their files have them, for who only wants to know names: nothing is loaded,
// locked, made or written, and no session is needed. Whatever can't be read has no names. Main thread only.
class ProjectContents {
 public:
  // What is selected. Throws a Failure where there is no module.
  explicit ProjectContents(const Selection& selection);

  const Registry& registry() const { return registry_; }
  const std::vector<WorkspaceProject>& workspace();

  // All of the project that a command would work on. Throw a Failure if there is none.
  std::vector<NamedComponent> components();
  // Each with its target.
  std::vector<std::pair<std::string, std::string>> configurations();
  // Host paths.
  std::vector<std::string> sourceFiles();

  // Of a component by name or "#ID", in the configuration that is selected, else in the active one.
  PropertySource propertiesOf(const std::string& component);
  // Of that configuration itself.
  PropertySource configurationProperties();

 private:
  const RecordNode& records();
  // The elements of a list of the records; none where there is no such list.
  const RecordNode::List& list(const char* name);
  std::string chosenConfiguration();

  Selection selection_;
  Registry registry_;
  Module module_;
  std::optional<std::vector<WorkspaceProject>> workspace_;
  std::optional<ProjectRecords> records_;
  ProjectFile file_;
};

}  // namespace forgeyard::workbench
