#include "platform/storage/disk/scratch_pages.h"

#include <algorithm>

#include "platform/com/status.h"

namespace forgeyard::compound {

ScratchPage::ScratchPage(std::shared_ptr<ScratchPages> home, std::vector<std::uint8_t> bytes)
    : home_(std::move(home)), size_(bytes.size()), fileOffset_(home_->place(bytes)) {
  if (!fileOffset_) bytes_ = std::move(bytes);
}

ScratchPage::~ScratchPage() {
  home_->release(size_, fileOffset_);
}

void ScratchPage::read(std::size_t offset, std::span<std::uint8_t> out) const {
  if (!fileOffset_) {
    std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(offset), out.size(), out.begin());
  } else if (home_->file_->readAt(*fileOffset_ + offset, out) != out.size()) {
    throw StatusError(STG_E_READFAULT);
  }
}

SharedPage ScratchPages::store(std::vector<std::uint8_t> bytes) {
  return std::make_shared<ScratchPage>(shared_from_this(), std::move(bytes));
}

std::optional<std::uint64_t> ScratchPages::place(std::span<const std::uint8_t> bytes) {
  const std::lock_guard lock(mutex_);
  if (inMemory_ + bytes.size() > kMemoryLimit) {
    if (const std::optional<std::uint64_t> offset = writeOut(bytes)) return offset;
  }
  inMemory_ += bytes.size();
  return std::nullopt;
}

std::optional<std::uint64_t> ScratchPages::writeOut(std::span<const std::uint8_t> bytes) {
  if (fileFailed_) return std::nullopt;
  const bool reuse = bytes.size() == kPageSize && !freeSlots_.empty();
  const std::uint64_t offset = reuse ? freeSlots_.back() : fileEnd_;
  try {
    if (!file_) file_ = place_.openUnnamed();
    if (!file_) throw StatusError(STG_E_ACCESSDENIED);
    HostFile::requireAllowedSize(offset + bytes.size());
    file_->writeAt(offset, bytes);
  } catch (const StatusError&) {
    fileFailed_ = true;
    return std::nullopt;
  }
  if (reuse) {
    freeSlots_.pop_back();
  } else {
    fileEnd_ += bytes.size();
  }
  ++pagesInFile_;
  if (freeSlots_.capacity() < pagesInFile_) freeSlots_.reserve(2 * pagesInFile_);  // release() must not fail
  return offset;
}

void ScratchPages::release(std::size_t size, std::optional<std::uint64_t> fileOffset) noexcept {
  const std::lock_guard lock(mutex_);
  if (!fileOffset) {
    inMemory_ -= size;
  } else if (--pagesInFile_ == 0) {
    // Once everything is committed the file starts anew.
    fileEnd_ = 0;
    freeSlots_.clear();
    file_->discardContents();
  } else if (size == kPageSize) {
    freeSlots_.push_back(*fileOffset);
  }
}

}  // namespace forgeyard::compound
