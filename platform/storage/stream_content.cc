#include "platform/storage/stream_content.h"

#include <algorithm>
#include <utility>

#include "platform/com/status.h"

namespace forgeyard::compound {

StreamContent::StreamContent(SharedFile file, ByteRuns runs, std::uint64_t size)
    : file_(std::move(file)), runs_(std::move(runs)), damaged_(runs_.size() < size) {
  runs_.truncate(size);
  size_ = fileSize_ = runs_.size();
}

std::size_t StreamContent::read(std::uint64_t offset, std::span<std::uint8_t> out) const {
  if (offset >= size_) return 0;
  out = out.first(static_cast<std::size_t>(std::min<std::uint64_t>(out.size(), size_ - offset)));
  std::size_t done = 0;
  while (done < out.size()) {
    const std::uint64_t at = offset + done;
    std::span<std::uint8_t> rest = out.subspan(done);
    if (at / kPageSize >= pages_.size()) {
      readFile(at, rest);
      break;
    }
    const std::size_t inPage = static_cast<std::size_t>(at % kPageSize);
    rest = rest.first(std::min(rest.size(), kPageSize - inPage));
    if (const SharedPage& page = pages_[static_cast<std::size_t>(at / kPageSize)]) {
      readPage(page, inPage, rest);
    } else {
      readFile(at, rest);
    }
    done += rest.size();
  }
  return out.size();
}

void StreamContent::readPage(const SharedPage& page, std::size_t offset, std::span<std::uint8_t> out) const {
  const std::size_t stored = offset < page->size() ? std::min(out.size(), page->size() - offset) : 0;
  if (stored > 0) page->read(offset, out.first(stored));
  std::fill(out.begin() + static_cast<std::ptrdiff_t>(stored), out.end(), std::uint8_t{0});
}

void StreamContent::readFile(std::uint64_t offset, std::span<std::uint8_t> out) const {
  const std::size_t stored =
      offset < fileSize_ ? static_cast<std::size_t>(std::min<std::uint64_t>(out.size(), fileSize_ - offset))
                         : 0;
  if (stored > 0) readRuns(*file_, runs_, offset, out.first(stored));
  std::fill(out.begin() + static_cast<std::ptrdiff_t>(stored), out.end(), std::uint8_t{0});
}

void StreamContent::replacePage(std::uint64_t page, std::vector<std::uint8_t> bytes, ScratchPages& scratch) {
  const std::uint64_t end = page * kPageSize + bytes.size();
  SharedPage stored = scratch.store(std::move(bytes));
  if (pages_.size() <= page) pages_.resize(static_cast<std::size_t>(page) + 1);
  pages_[static_cast<std::size_t>(page)] = std::move(stored);
  if (end <= size_) return;
  size_ = end;
  damaged_ = false;
}

void StreamContent::resize(std::uint64_t size, ScratchPages& scratch) {
  const std::size_t pages = static_cast<std::size_t>((size + kPageSize - 1) / kPageSize);
  const std::size_t inLastPage = static_cast<std::size_t>(size % kPageSize);
  if (pages_.size() > pages) pages_.resize(pages);
  // What lies beyond the new end must not come back when the stream grows again.
  if (pages > 0 && pages_.size() == pages && inLastPage != 0 && pages_.back()) {
    std::vector<std::uint8_t> kept(std::min(pages_.back()->size(), inLastPage));
    pages_.back()->read(0, kept);
    pages_.back() = scratch.store(std::move(kept));
  }
  fileSize_ = std::min(fileSize_, size);
  size_ = size;
  damaged_ = false;
}

void StreamContent::moveTo(SharedFile file, std::uint64_t fileOffset) {
  file_ = std::move(file);
  runs_ = {};
  runs_.append(fileOffset, size_);
  fileSize_ = size_;
  pages_.clear();
  pages_.shrink_to_fit();
  damaged_ = false;
}

}  // namespace forgeyard::compound
