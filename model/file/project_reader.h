#pragma once

#include <string>

#include "model/core/project_core.h"

namespace forgeyard {

// Reads an open project file into a project. Best effort: the first failure in the contents ends the reading,
// what was read stays, and the omissions of the project's report say what was left out and why. Lives for one
// load.
class ProjectReader {
 public:
  // Components keep their storages, which are opened with these rights.
  enum class Access { ReadOnly, ReadWrite };

  ProjectReader(ProjectCore& project, IStorage& root, Access access = Access::ReadWrite)
      : project_(project), root_(root), access_(access) {}

  // "Settings"; the project keeps what it has when that stream is missing or damaged.
  void readSettings();
  // Configurations, components, connections.
  void readContents();

 private:
  Ref<IStream> stream(const char16_t* name);
  void readConfigurations();
  void activate(const BString& name);
  void readComponents();
  void readComponent(const STATSTG& element);
  void attach(IComponent& component, IPersistStorage& persist, IStorage& storage);
  void readConnections();
  void leaveOutDamage();
  void leaveOut(std::string what, std::string why);

  ProjectCore& project_;
  IStorage& root_;
  Access access_;
  std::string step_;  // what is being read, for the omissions
};

}  // namespace forgeyard
