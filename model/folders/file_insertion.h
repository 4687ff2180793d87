#pragma once

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "model/core/project_core.h"
#include "typelib/folder.h"

namespace forgeyard {

// Whether a folder's list of extensions takes a file's extension, by a search in the text: the extension must
// stand at the end of the list, or have a semicolon as the second character behind it. (So in a list of two
// the first isn't found. Projects rely on where their files land.)
bool takesExtension(std::u16string_view list, std::u16string_view extension);

// The way of new files into a project: which folder takes a file, and which files are refused since the
// project has them. Lives for one insertion.
class FileInsertion {
 public:
  explicit FileInsertion(ProjectCore& project) : project_(project) {}

  // Inserts the files, into `folder` if that is given, else by their extensions. Throws StatusError(E_FAIL)
  // when the project has no folder.
  void run(IEnumString* files, IDispatch* folder);
  // Tells the user of the files that were refused, if any. Throws StatusError when there is no frame.
  void tellRefused() const;

 private:
  struct Target {
    Ref<ISourceFiles> files;
    BString extension;
  };

  void collectTargets();
  void collectNames(ISourceFiles& files);
  ISourceFiles* targetFor(const BString& name) const;
  void add(const BString& name, ISourceFiles& files);

  ProjectCore& project_;
  std::vector<Target> targets_;
  std::unordered_set<std::u16string> names_;  // of all files, with a to z as capitals
  std::vector<BString> refused_;
};

}  // namespace forgeyard
