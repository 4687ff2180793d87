#pragma once

#include <cstdint>
#include <vector>

#include "platform/text/bstring.h"
#include "typelib/component.h"
#include "typelib/folder.h"

namespace forgeyard {

// Finds the source file of a project by its full name with one look-up. The answer is that of a walk over the
// components and their files in order that tries each file's name as a pattern of the wanted name, without
// regard to case, and takes the first match: names that are more than plain text (a wildcard, a list, a blank
// in front) are tried one by one, and so are files and folders whose changes nobody tells. The index is made
// anew when a name or a folder has changed. Borrows the files; main thread only.
class FileIndex {
 public:
  // Null when no file matches. The version goes up with each change of the list of components.
  Ref<ISourceFile> find(const BString& name, const std::vector<Ref<IComponent>>& components,
                        std::uint64_t componentsVersion);

 private:
  struct Entry {
    BString name;
    ISourceFile* file;
    std::uint32_t hash;
  };
  // Something that has to be asked at each look-up: a file with a pattern or a stranger, or a whole folder.
  struct Asked {
    std::uint32_t order;
    ISourceFile* file;
    IFolder* folder;
  };

  void rebuild(const std::vector<Ref<IComponent>>& components);
  void enter(ISourceFile* file);
  void enterPlain(ISourceFile* file, BString name);
  void fillSlots();
  // The position in entries_ of the first plain name that matches, or the number of entries.
  std::uint32_t findPlain(const BString& name) const;
  Ref<ISourceFile> findAsked(const BString& name, std::uint32_t before) const;

  std::uint64_t generation_ = 0;  // of the names; 0 while there is no index
  std::uint64_t componentsVersion_ = 0;
  std::vector<Entry> entries_;        // every file, in the order of the walk; no name for an asked one
  std::vector<Asked> asked_;          // in the order of the walk
  std::vector<std::uint32_t> slots_;  // open addressing: position in entries_ plus 1
};

}  // namespace forgeyard
