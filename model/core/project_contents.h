#pragma once

#include <string>
#include <utility>
#include <vector>

#include "model/core/component_storages.h"
#include "model/core/settings_block.h"
#include "typelib/component.h"
#include "typelib/configuration.h"

namespace forgeyard {

// What a project holds of its file: the data that the collections, the reader and the writer work on.
struct ProjectContents {
  SettingsBlock settings;
  std::vector<Ref<IConfiguration>> configurations;  // in order of creation
  Ref<IConfiguration> active;                       // one of them, or null
  std::vector<Ref<IComponent>> components;          // in order of insertion
  ComponentStorages storages;
  Ref<IStorage> root;  // the open compound file; null while the project isn't loaded
};

// How a project stands to source control; the rest of it is in the settings block.
struct SourceControlState {
  bool control = false;
  bool localChanges = false;
  bool storeWithoutAsking = false;
  LogonBlock logon;
};

}  // namespace forgeyard
