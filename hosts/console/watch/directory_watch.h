#pragma once

#include <string>
#include <vector>

#include "platform/files/descriptor.h"
#include "platform/threads/waitable.h"
#include "workbench/watch/file_states.h"

namespace forgeyard::console {

// Is signalled when something happens in the directories of some files, and of the links that lead to them,
// or in what of those directories is there: one that is made later takes a new watch. Tells no more than that
// it is time to look. For one thread.
class DirectoryWatch final : public Waitable {
 public:
  // Watches from now on. Throws nothing: what can't be watched isn't, see isComplete().
  explicit DirectoryWatch(const workbench::FileStates::Paths& files);

  // -1 if the system gives no watches at all.
  int descriptor() const noexcept override { return events_.get(); }
  // False when changes may go unseen: the caller has to look by itself now and then.
  bool isComplete() const { return complete_; }
  // Takes what has happened so far.
  void clear() noexcept;

 private:
  void watch(std::string directory);

  Descriptor events_;
  bool complete_ = true;
};

}  // namespace forgeyard::console
