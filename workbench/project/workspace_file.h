#pragma once

#include <string>
#include <vector>

#include "platform/storage/records/persist.h"
#include "platform/storage/structured_storage.h"

namespace forgeyard::workbench {

// A workspace: one compound file in which each lasting object of the module has a storage of its own. The
// file is held, and closed to other hosts, until the end of this object. Nothing reaches it but by save(),
// all of it or nothing. Main thread only.
class WorkspaceFile {
 public:
  // The named file, or else $FORGEYARD_WORKSPACE, else $XDG_DATA_HOME/forgeyard/workspace, else
  // ~/.local/share/forgeyard/workspace; empty if the environment names none of them.
  static std::string fileFor(const std::string& named);
  // To look into, also while another host has it: null where there is no file. Throws a Failure that says
  // which file and why.
  static Ref<IStorage> openToRead(const std::string& file);

  // A Failure if an object could not be read from the workspace.
  static void requireWhole(HRESULT status, const std::string& file);

  // Opens the file of that host path; makes it, with missing directories, where there is none. Throws a
  // Failure that says which file and why.
  explicit WorkspaceFile(const std::string& file);
  WorkspaceFile(const WorkspaceFile&) = delete;
  WorkspaceFile& operator=(const WorkspaceFile&) = delete;
  // Takes the storages away from the objects again.
  ~WorkspaceFile();

  const std::string& file() const { return file_; }

  // Gives the object the storage of that name (at most 31 characters): what it holds is loaded, or else the
  // object starts anew. Keeps a reference to it. Throws a Failure when it can't be loaded.
  void attach(IPersistStorage* object, const BString& name);

  // Lets every attached object write, and stores all of it. Throws a Failure; the file then stands as it was.
  void save();

 private:
  struct Attached {
    Ref<IPersistStorage> object;
    Ref<IStorage> storage;
  };

  std::string file_;
  Ref<IStorage> root_;
  std::vector<Attached> attached_;
};

}  // namespace forgeyard::workbench
