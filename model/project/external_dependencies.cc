#include "model/project/external_dependencies.h"

#include <algorithm>
#include <unordered_set>

#include "model/core/enumerate.h"
#include "typelib/folder.h"

namespace forgeyard {

namespace {

class Collector {
 public:
  void add(ISourceFile& file) {
    BString stored;
    check(file.get_PersistAs(&stored));
    own_.push_back(std::move(stored));
    if (const Ref<ISourceFileDependencies> lists = query<ISourceFileDependencies>(&file)) {
      for (const auto* list : {&lists->manualDependencies(), &lists->automaticDependencies()}) {
        for (const BString& name : *list) mention(name);
      }
    } else {
      addCollections(file);
    }
  }
  std::vector<BString> result() {
    for (const BString& name : own_) mentioned_.erase(name);
    std::vector<BString> sorted(mentioned_.begin(), mentioned_.end());
    std::sort(sorted.begin(), sorted.end());
    return sorted;
  }

 private:
  // Names are mentioned again and again, mostly by the same buffer: only the first mention costs a look at
  // the text.
  void mention(const BString& name) {
    if (seen_.insert(name.identity()).second) mentioned_.insert(name);
  }
  void addCollections(ISourceFile& file) {
    for (const auto get : {&ISourceFile::get_ManualDeps, &ISourceFile::get_AutomaticDeps}) {
      Ref<ISimpleCollection> names;
      check((file.*get)(&names));
      Ref<IUnknown> walk;
      check(names->get__NewEnum(&walk));
      forEach(walk.as<IEnumVARIANT>(), [&](const Variant& value) {
        BString name;
        check(value.toText(&name));
        mentioned_.insert(std::move(name));
      });
    }
  }

  std::vector<BString> own_;
  std::unordered_set<BString> mentioned_;
  std::unordered_set<const void*> seen_;  // buffers of names that the files hold
};

}  // namespace

std::vector<BString> externalDependencies(const std::vector<Ref<IComponent>>& components) {
  Collector collector;
  for (const Ref<IComponent>& component : components) {
    const Ref<IFolder> folder = component.as<IFolder>();
    if (!folder) continue;
    Ref<ISourceFiles> files;
    check(folder->get_SourceFiles(&files));
    forEachObject<ISourceFile>(*files, [&](ISourceFile& file) { collector.add(file); });
  }
  return collector.result();
}

}  // namespace forgeyard
