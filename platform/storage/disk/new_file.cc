#include "platform/storage/disk/new_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <optional>

#include "platform/storage/storage_status.h"

namespace forgeyard::compound {
namespace {

constexpr mode_t kNewFileMode = 0666;  // less the process's mask

bool canBeNamed(const HostFile& file) {
  return ::access(("/proc/self/fd/" + std::to_string(file.descriptor())).c_str(), F_OK) == 0;
}

// Frees a name that nobody alive uses. Throws STG_E_SHAREVIOLATION if somebody does.
void freeName(const FilePlace& place, const std::string& name) {
  const int descriptor =
      place.calls().open(place.directory(), name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK, 0);
  if (descriptor < 0 && errno == ENOENT) return;
  HostFile leftover(place.calls(), descriptor);
  // What can't be opened, a link for example, is none of ours at work.
  if (descriptor >= 0 && !leftover.tryLock()) throw StatusError(STG_E_SHAREVIOLATION);
  if (place.calls().unlink(place.directory(), name.c_str()) != 0 && errno != ENOENT)
    throwErrno(Attempt::Write);
}

}  // namespace

NewFile::NewFile(const FilePlace& place)
    : place_(place), name_(place.savingName()), file_(place.openUnnamed()) {
  if (!file_ || !canBeNamed(*file_)) makeNamed();
  if (!file_->tryLock()) throw StatusError(STG_E_SHAREVIOLATION);
}

NewFile::~NewFile() {
  if (named_) place_.calls().unlink(place_.directory(), name_.c_str());
}

void NewFile::makeNamed() {
  const auto create = [this] {
    return place_.calls().open(place_.directory(), name_.c_str(), O_RDWR | O_CREAT | O_EXCL, kNewFileMode);
  };
  int descriptor = create();
  if (descriptor < 0 && errno == EEXIST) {
    freeName(place_, name_);
    descriptor = create();
  }
  if (descriptor < 0) throwErrno(Attempt::Write);
  named_ = true;
  file_ = std::make_shared<HostFile>(place_.calls(), descriptor);
}

void NewFile::replace() {
  file_->sync();
  if (!named_) {
    // A file without a name can't take the place of another; it needs a name for the moment in between.
    int linked = place_.calls().link(file_->descriptor(), place_.directory(), name_.c_str());
    if (linked != 0 && errno == EEXIST) {
      freeName(place_, name_);
      linked = place_.calls().link(file_->descriptor(), place_.directory(), name_.c_str());
    }
    if (linked != 0) throwErrno(Attempt::Write);
    named_ = true;
  }
  if (place_.calls().rename(place_.directory(), name_.c_str(), place_.name().c_str()) != 0) {
    throwErrno(Attempt::Write);
  }
  named_ = false;
}

void NewFile::publish() {
  file_->sync();
  const int done = named_
                       ? place_.calls().renameNew(place_.directory(), name_.c_str(), place_.name().c_str())
                       : place_.calls().link(file_->descriptor(), place_.directory(), place_.name().c_str());
  if (done != 0) throwErrno(Attempt::Write);
  named_ = false;
}

void NewFile::removeLeftover(const FilePlace& place) noexcept {
  try {
    freeName(place, place.savingName());
  } catch (const StatusError&) {
    return;  // a later save tries again
  }
}

}  // namespace forgeyard::compound
