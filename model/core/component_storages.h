#pragma once

#include <vector>

#include "platform/storage/records/persist.h"
#include "platform/storage/structured_storage.h"

namespace forgeyard {

// The sub-storages of a project's components in the open compound file, with the names of their elements, in
// the order in which they came. All operations throw StatusError. Main thread only.
class ComponentStorages {
 public:
  struct Entry {
    Ref<IPersistStorage> component;
    Ref<IStorage> storage;  // null between release() and reopen()
    BString element;
  };

  const std::vector<Entry>& entries() const { return entries_; }
  void add(Ref<IPersistStorage> component, Ref<IStorage> storage, BString element);

  // Writes a component into the sub-storage that it keeps and commits that one.
  static void save(const Entry& entry);
  // Tells every component that the file holds what it saved.
  void saveCompleted();

  // Ends a component's life in the file, with its element; nothing for a component without one.
  void destroy(IUnknown* component, IStorage& root);
  // All components let go of their sub-storages, and so does this, as before the root moves to another file.
  void release();
  // The way back: the elements are opened again and handed to their components.
  void reopen(IStorage& root);
  // Components let go of their storages and all is forgotten.
  void close();

 private:
  std::vector<Entry> entries_;
};

}  // namespace forgeyard
