#pragma once

#include <sys/stat.h>

#include <functional>
#include <string>

#include "platform/com/status.h"
#include "platform/storage/disk/file_place.h"
#include "platform/storage/disk/host_file.h"

namespace forgeyard::compound {

// A project file that this object keeps for itself: other openers, in this process and in others, are refused
// until it goes. The lock is on the file that the place names, and moves to the new file when the contents
// are replaced. The lock is advisory: programs that know nothing of it can change the file, which replace()
// notices. Failures throw StatusError.
class LockedFile {
 public:
  // Writes the new contents into an empty file; a failure is thrown.
  using WriteContents = std::function<void(HostFile&)>;

  // STG_E_SHAREVIOLATION if somebody has the file, STG_E_ACCESSDENIED for writing to one that nobody may
  // write to.
  static LockedFile open(const FilePlace& place, bool forWriting);
  // To read alone: without the lock, whoever has it.
  static LockedFile peek(const FilePlace& place);
  // STG_E_FILEALREADYEXISTS if something stands there.
  static LockedFile create(const FilePlace& place, const WriteContents& write);

  LockedFile(LockedFile&& other) noexcept = default;
  LockedFile& operator=(LockedFile&& other) noexcept;
  ~LockedFile();

  const SharedFile& file() const noexcept { return file_; }
  const FilePlace& place() const noexcept { return place_; }

  // Puts new contents in place of the old ones in one step: after a failure the old file stands there as it
  // was. STG_E_NOTCURRENT if another program wrote into the file meanwhile, or, with `onlyIfCurrent`, put
  // another file in its place. A name that was removed comes back. Other hard links to the old file keep the
  // old contents. After a success file() is the new file, and the result tells whether the change is also
  // durable.
  HRESULT replace(const WriteContents& write, bool onlyIfCurrent);

 private:
  LockedFile(FilePlace place, SharedFile file);
  void requireUntouched(bool onlyIfCurrent) const;
  void unlock() noexcept;

  FilePlace place_;
  SharedFile file_;
  struct stat known_ {};  // the file as it was when the lock was taken
};

}  // namespace forgeyard::compound
