#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/storage/records/record_fields.h"
#include "platform/storage/structured_storage.h"
#include "typelib/project.h"
#include "typelib/record_tree.h"

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
  // All that the elements hold. What can't be told by fields is in it as bytes:
  //   clsid            of the root, where it has one
  //   settings, configurations, active, components, connections
  //   streams          what else there is to say of streams
  //   storages         storages that aren't components, with the same keys as those
  // A component has its element's name and clsid, the fields of its own stream, "files" if it is a folder,
  // "settings", and "streams" and "storages" like the root. An entry of "streams" has the stream's name and
  //   missing          true: it is none of the elements, though a component or project has it; or
  //   bytes            all of it; or, of one whose records stand elsewhere,
  //   version, count   where they aren't 0 and the number of those records
  //   rest             the bytes behind the records
  // A record that isn't written as it was read has one field, "bytes". Bytes are a list of hexadecimal texts.
  RecordNode records;
  std::vector<LoadOmission> keptAsBytes;  // records that can't be read: nothing of them is lost
  LoadResult load;
};

// Offered by projects.
struct IProjectRecords : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("5B2D7036-93C4-4E6F-A8D1-2F60C1B49E01");

  // The records of the project file at a model path, which is neither changed nor locked, and may be open
  // elsewhere. Fails where nothing can be read; all other damage is told in the result.
  virtual HRESULT ReadRecords(const BString& path, ProjectRecords* out) = 0;
  // Makes a project file of such records: each stream has the bytes that they were read from. E_INVALIDARG
  // and `fault` for records that can't be stored. A file that stands there is replaced if `replace` says so,
  // else it is STG_E_FILEALREADYEXISTS; after a failure it is as it was.
  virtual HRESULT WriteRecords(const BString& path, const RecordNode& records, bool replace,
                               RecordFault* fault) = 0;
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

  // The streams of the component's storage. Throws what `streams` throws.
  virtual void describeRecords(RecordStreams& streams) = 0;
};

}  // namespace forgeyard
