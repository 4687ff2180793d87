#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/storage/structured_storage.h"
#include "typelib/component.h"
#include "typelib/configuration.h"
#include "typelib/folder.h"
#include "typelib/project.h"

namespace forgeyard {

// What stands in project files and workspaces, for who looks into them without loading: every record that can
// be read, whatever a load would make of it.

// An element of a compound file, with those below it.
struct StoredElement {
  BString name;
  StgType type = StgType::Stream;
  std::uint64_t size = 0;  // bytes; streams only
  Guid clsid{};            // storages only
  std::vector<StoredElement> elements;
};

// A record with its version and what it holds, as an object that belongs to no project.
template <class I>
struct StoredObject {
  std::uint32_t version = 0;
  Ref<I> object;
};

struct StoredProjectSettings {
  std::uint32_t version = 0;
  BString name;
  BString fileName;
  BString ssRoot;
  std::int32_t nextComponentId = 0;
  BString ssDatabasePath;
  std::int32_t ssVersion = 0;
};

struct StoredComponentSettings {
  BString configuration;
  Ref<IUnknown> settings;
};

struct StoredComponent {
  BString element;
  Guid clsid{};
  // Null where there is no such class; then nothing else is known.
  Ref<IComponent> object;
  std::vector<StoredObject<ISourceFile>> files;  // of a folder
  std::vector<StoredComponentSettings> settings;
  std::vector<LoadOmission> leftOut;
};

struct StoredConnection {
  std::int32_t from = 0;
  std::int32_t to = 0;
};

// What a load of the file brings up.
struct LoadResult {
  std::size_t configurations = 0;
  BString active;  // null when no configuration is
  std::size_t components = 0;
  std::size_t connections = 0;
  std::vector<LoadOmission> leftOut;
};

struct ProjectRecords {
  std::vector<StoredElement> elements;  // of the root, in the order of enumeration
  std::vector<LoadOmission> elementsLeftOut;
  std::optional<StoredProjectSettings> settings;
  std::vector<StoredObject<IConfiguration>> configurations;
  BString active;  // null when it can't be read
  std::vector<StoredComponent> components;
  std::vector<StoredConnection> connections;
  std::vector<LoadOmission> leftOut;  // of the records, those of components included
  LoadResult load;
};

// Offered by projects.
struct IProjectRecords : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("5B2D7036-93C4-4E6F-A8D1-2F60C1B49E01");

  // The records of the project file at a model path, which is neither changed nor locked, and may be open
  // elsewhere. Fails where nothing can be read;
  // all other damage is told in `leftOut`.
  virtual HRESULT ReadRecords(const BString& path, ProjectRecords* out) = 0;
};

// What a workspace keeps of a project.
struct StoredWorkspaceProject {
  BString name;
  BString workingDirectory;
  BString fileName;
  bool loaded = true;
};

struct WorkspaceRecords {
  std::vector<StoredWorkspaceProject> projects;
  std::optional<std::size_t> active;  // the position of the active project
};

// Offered by the build tool.
struct IWorkspaceRecords : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("5B2D7038-93C4-4E6F-A8D1-2F60C1B49E01");

  // What the tool's storage in a workspace holds; no project is loaded, and the tool stays as it is.
  virtual HRESULT ReadProjects(IStorage* storage, WorkspaceRecords* out) = 0;
};

// Inside the module only, offered by new projects: reads the project's record in a workspace without loading
// the project.
struct IWorkspaceProjectRecord : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("5B2D7039-93C4-4E6F-A8D1-2F60C1B49E01");

  virtual HRESULT ReadRecord(IStream* stream, StoredWorkspaceProject* out) = 0;
};

// Inside the module only, offered by components that are in no project.
struct IComponentRecords : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("5B2D7037-93C4-4E6F-A8D1-2F60C1B49E01");

  // Takes name and id from the component's storage, and lists its other records.
  virtual HRESULT ReadRecords(IStorage* storage, StoredComponent* out) = 0;
};

}  // namespace forgeyard
