#include "platform/storage/disk/locked_file.h"

#include <fcntl.h>

#include <optional>
#include <utility>

#include "platform/com/status.h"
#include "platform/storage/disk/file_attributes.h"
#include "platform/storage/disk/new_file.h"

namespace forgeyard::compound {
namespace {

constexpr int kMaxTries = 100;
constexpr mode_t kAnyWrite = S_IWUSR | S_IWGRP | S_IWOTH;

// Also a superuser respects a file that is marked as read-only.
void requireUsable(const HostFile& file, bool forWriting) {
  const struct stat status = file.status();
  if (!S_ISREG(status.st_mode) || (forWriting && (status.st_mode & kAnyWrite) == 0)) {
    throw StatusError(STG_E_ACCESSDENIED);
  }
}

bool sameWrites(const struct stat& a, const struct stat& b) noexcept {
  return a.st_size == b.st_size && a.st_mtim.tv_sec == b.st_mtim.tv_sec &&
         a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

}  // namespace

LockedFile::LockedFile(FilePlace place, SharedFile file)
    : place_(std::move(place)), file_(std::move(file)), known_(file_->status()) {}

LockedFile& LockedFile::operator=(LockedFile&& other) noexcept {
  if (this != &other) {
    unlock();
    place_ = std::move(other.place_);
    file_ = std::move(other.file_);
    known_ = other.known_;
  }
  return *this;
}

LockedFile::~LockedFile() {
  unlock();
}

// Streams may still read from the file, so letting go of it is not enough.
void LockedFile::unlock() noexcept {
  if (file_) file_->unlock();
}

LockedFile LockedFile::open(const FilePlace& place, bool forWriting) {
  for (int tries = 0; tries < kMaxTries; ++tries) {
    SharedFile file = place.open(forWriting ? O_RDWR : O_RDONLY);
    requireUsable(*file, forWriting);
    if (!file->tryLock()) break;
    // Its holder may have replaced the file between our opening and locking it.
    if (!place.holds(*file)) continue;
    if (forWriting) NewFile::removeLeftover(place);
    return {place, std::move(file)};
  }
  throw StatusError(STG_E_SHAREVIOLATION);
}

LockedFile LockedFile::peek(const FilePlace& place) {
  SharedFile file = place.open(O_RDONLY);
  requireUsable(*file, false);
  return {place, std::move(file)};
}

LockedFile LockedFile::create(const FilePlace& place, const WriteContents& write) {
  NewFile fresh(place);
  write(*fresh.file());
  fresh.publish();
  place.syncDirectory();
  return {place, fresh.file()};
}

void LockedFile::requireUntouched(bool onlyIfCurrent) const {
  if (!sameWrites(known_, file_->status())) throw StatusError(STG_E_NOTCURRENT);
  if (onlyIfCurrent && place_.status() && !place_.holds(*file_)) throw StatusError(STG_E_NOTCURRENT);
}

HRESULT LockedFile::replace(const WriteContents& write, bool onlyIfCurrent) {
  requireUntouched(onlyIfCurrent);
  NewFile fresh(place_);
  write(*fresh.file());
  copyAttributes(*file_, *fresh.file());
  // Nothing is to fail between the file's coming into its place and our knowing of it.
  const struct stat written = fresh.file()->status();
  requireUntouched(onlyIfCurrent);
  fresh.replace();
  const SharedFile old = std::exchange(file_, fresh.file());
  old->unlock();
  known_ = written;
  return guard([this] { place_.syncDirectory(); });
}

}  // namespace forgeyard::compound
