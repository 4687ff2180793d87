#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "model/core/component_storages.h"
#include "model/core/settings_block.h"
#include "typelib/component.h"
#include "typelib/configuration.h"
#include "typelib/project.h"

namespace forgeyard {

// The contents of a project, on which the collections, the reader and the writer work.
struct ProjectContents {
  BString workingDirectory;
  SettingsBlock settings;
  std::vector<Ref<IConfiguration>> configurations;  // in order of creation
  Ref<IConfiguration> active;                       // one of them, or null
  std::vector<Ref<IComponent>> components;          // in order of insertion
  std::uint64_t componentsVersion = 0;              // goes up with each change of the list of components
  ComponentStorages storages;
  Ref<IStorage> root;       // the open compound file; null while the project isn't loaded
  bool dirty = false;       // differs from the file
  bool buildDirty = false;  // a build is due; not stored

  void componentsReplaced() { ++componentsVersion; }
};

// A project's source control state; the rest of it is in the settings block.
struct SourceControlState {
  bool control = false;
  bool localChanges = false;
  bool storeWithoutAsking = false;
  LogonBlock logon;
};

// What went wrong in the last load and the last save, as IProjectReport returns it.
struct FileReport {
  std::vector<LoadOmission> omissions;
  HRESULT loadFailure = S_OK;
  HRESULT saveFailure = S_OK;
};

}  // namespace forgeyard
