#pragma once

#include "model/core/project_core.h"

namespace forgeyard {

// The life of a project's file: created, loaded, saved, closed. Part of the project, which it announces
// itself by the project's notifications. Main thread only.
class ProjectFile {
 public:
  explicit ProjectFile(ProjectCore& project) : project_(project) {}

  bool isOpen() const { return static_cast<bool>(project_.contents().root); }
  // Creates the file and the first configuration. General failure where a file is open, or where the file
  // can't be created, which the user is told.
  HRESULT create();
  // S_FALSE where the file is open. General failure where it can't be opened; the report has the reason, as
  // it has what was left out of a file that could be.
  HRESULT load();
  // S_FALSE where no file is open. Success where nothing could be written; the report has the reason.
  HRESULT save();

  // Closing, in two steps. Closes the components; with `cutLinks` they also lose the project.
  void closeComponents(bool cutLinks);
  // Lets go of the file and of all contents but the settings and the active configuration.
  void clearContents();

 private:
  Ref<IStorage> openForLoad();
  // The controlled project's storage; null makes it an uncontrolled one.
  Ref<IStorage> openControlled();
  void write();
  void storeChanges();

  ProjectCore& project_;
};

}  // namespace forgeyard
