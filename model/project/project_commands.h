#pragma once

#include <vector>

#include "model/project/project.h"
#include "typelib/dialog.h"

namespace forgeyard {

// What the user's commands do to a project, messages and choosers included. They fail with general failure
// where the user can't be asked. Main thread only.
class ProjectCommands {
 public:
  explicit ProjectCommands(CProject& project) : project_(project) {}

  // A project that isn't loaded is left alone.
  HRESULT save();
  // Asks before changes are lost; Cancel leaves the project as it is.
  HRESULT unload();
  HRESULT reload();
  // The choice of a configuration in the menu, by its position; refused during a build.
  HRESULT activate(std::size_t configuration);
  // The chooser of files, and their insertion by their extensions.
  HRESULT insertFiles();

  // The filters of that chooser: one for each folder by its extensions, then one for all files.
  std::vector<FileFilter> fileFilters() const;

 private:
  bool mayLoseChanges() const;

  CProject& project_;
};

}  // namespace forgeyard
