#pragma once

#include "platform/storage/disk/file_place.h"
#include "platform/storage/disk/host_file.h"

namespace forgeyard::compound {

// New contents for a place, written beside it and then put there in one step. Until then, and after a
// failure, the place is untouched; whatever was made goes with this object. It is locked from the start, so
// the file never stands unlocked in its place. Failures throw StatusError.
class NewFile {
 public:
  explicit NewFile(const FilePlace& place);
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;
  ~NewFile();

  const SharedFile& file() const noexcept { return file_; }

  // Makes what was written durable and puts it in place of what stands there, if anything does.
  void replace();
  // The same where nothing stands; STG_E_FILEALREADYEXISTS otherwise.
  void publish();

  // Removes what a killed process left beside a place that the caller has locked.
  static void removeLeftover(const FilePlace& place) noexcept;

 private:
  void makeNamed();

  const FilePlace& place_;
  std::string name_;  // of the file as it is being written
  SharedFile file_;
  bool named_ = false;
};

}  // namespace forgeyard::compound
