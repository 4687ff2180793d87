#include "platform/storage/stream_cursor.h"

#include <limits>
#include <mutex>
#include <utility>

#include "platform/storage/compound_file/compound_layout.h"

namespace forgeyard::compound {
namespace {

constexpr std::uint64_t kMaxStreamSize = CompoundLayout::kMaxFileSize;
constexpr std::size_t kFirstPageBytes = 512;

}  // namespace

StreamCursor::StreamCursor(std::shared_ptr<Session> session, StorageView* parent, const BString& name,
                           OpenMode mode)
    : OpenElement(std::move(session), parent, name), mode_(mode) {}

HRESULT StreamCursor::readOn(void* bytes, std::uint32_t count, std::uint32_t* read) {
  std::uint32_t dummy = 0;
  std::uint32_t& done = read ? *read : dummy;
  done = 0;
  return run([&] {
    if (!mode_.read) throw StatusError(STG_E_ACCESSDENIED);
    if (!bytes && count > 0) throw StatusError(STG_E_INVALIDPOINTER);
    while (done < count) {
      const std::uint32_t more = readSome(static_cast<std::uint8_t*>(bytes) + done, count - done);
      if (more == 0) break;
      done += more;
    }
    if (done == 0 && count > 0 && parent_->streamOf(name_).damaged()) throw StatusError(STG_E_DOCFILECORRUPT);
  });
}

HRESULT StreamCursor::writeOn(const void* bytes, std::uint32_t count, std::uint32_t* written) {
  std::uint32_t dummy = 0;
  std::uint32_t& done = written ? *written : dummy;
  done = 0;
  return run([&] {
    if (!mode_.write) throw StatusError(STG_E_ACCESSDENIED);
    if (!bytes && count > 0) throw StatusError(STG_E_INVALIDPOINTER);
    if (position() > kMaxStreamSize || count > kMaxStreamSize - position())
      throw StatusError(STG_E_MEDIUMFULL);
    while (done < count) done += writeSome(static_cast<const std::uint8_t*>(bytes) + done, count - done);
  });
}

std::uint32_t StreamCursor::readSome(std::uint8_t* to, std::uint32_t count) {
  if (cursor_ == kPageSize) moveTo(position());
  loadPage();
  const std::size_t left = cursor_ < used_ ? used_ - cursor_ : 0;
  const std::uint32_t part = static_cast<std::uint32_t>(std::min<std::size_t>(count, left));
  if (part > 0) std::memcpy(to, page_.data() + cursor_, part);
  cursor_ += part;
  return part;
}

std::uint32_t StreamCursor::writeSome(const std::uint8_t* from, std::uint32_t count) {
  if (cursor_ == kPageSize) moveTo(position());
  loadPage();
  const std::uint32_t part = static_cast<std::uint32_t>(std::min<std::size_t>(count, kPageSize - cursor_));
  if (cursor_ + part > page_.size()) growPage(cursor_ + part);
  std::memcpy(page_.data() + cursor_, from, part);
  wrote(part);
  return part;
}

HRESULT StreamCursor::Seek(std::int64_t offset, StreamSeek origin, std::uint64_t* newPosition) {
  return run([&] {
    std::uint64_t from = 0;
    if (origin == StreamSeek::Current) from = position();
    if (origin == StreamSeek::End) from = size();
    std::int64_t target = 0;
    if (origin > StreamSeek::End ||
        __builtin_add_overflow(static_cast<std::int64_t>(from), offset, &target) || target < 0) {
      throw StatusError(STG_E_INVALIDFUNCTION);
    }
    const std::uint64_t to = static_cast<std::uint64_t>(target);
    if (loaded_ && to >= pageStart_ && to - pageStart_ <= kPageSize) {
      cursor_ = static_cast<std::size_t>(to - pageStart_);
    } else {
      moveTo(to);
    }
    if (newPosition) *newPosition = to;
  });
}

HRESULT StreamCursor::SetSize(std::uint64_t bytes) {
  return run([&] {
    if (!mode_.write) throw StatusError(STG_E_ACCESSDENIED);
    if (bytes > kMaxStreamSize) throw StatusError(STG_E_MEDIUMFULL);
    flush();
    parent_->changeStreamOf(name_).resize(bytes, *session_->scratch);
    dropPage();
  });
}

HRESULT StreamCursor::Commit() {
  return run([&] { flush(); });
}

HRESULT StreamCursor::Stat(STATSTG* out) {
  if (!out) return STG_E_INVALIDPOINTER;
  return run([&] { *out = {.name = name_, .type = StgType::Stream, .size = size(), .clsid = GUID_NULL}; });
}

std::uint64_t StreamCursor::size() const {
  return std::max(parent_->streamOf(name_).size(), changed_ ? pageStart_ + used_ : 0);
}

void StreamCursor::flush() {
  if (!changed_) return;
  std::vector<std::uint8_t> bytes(page_.begin(), page_.begin() + static_cast<std::ptrdiff_t>(used_));
  parent_->changeStreamOf(name_).replacePage(pageStart_ / kPageSize, std::move(bytes), *session_->scratch);
  changed_ = false;
}

void StreamCursor::cutOff() noexcept {
  dropPage();
  changed_ = false;
  reverted_ = true;
  parent_ = nullptr;
}

void StreamCursor::moveTo(std::uint64_t position) {
  flush();
  dropPage();
  cursor_ = static_cast<std::size_t>(position % kPageSize);
  pageStart_ = position - cursor_;
}

void StreamCursor::loadPage() {
  if (loaded_) return;
  const StreamContent& content = parent_->streamOf(name_);
  const std::uint64_t left = content.size() > pageStart_ ? content.size() - pageStart_ : 0;
  page_.resize(static_cast<std::size_t>(std::min<std::uint64_t>(left, kPageSize)));
  content.read(pageStart_, page_);
  used_ = page_.size();
  loaded_ = true;
  setLimits();
}

void StreamCursor::dropPage() noexcept {
  loaded_ = false;
  setLimits();
}

void StreamCursor::growPage(std::size_t bytes) {
  page_.resize(std::min(kPageSize, std::max({bytes, 2 * page_.size(), kFirstPageBytes})));
  setLimits();
}

void StreamCursor::setLimits() noexcept {
  const std::uint64_t room = kMaxStreamSize > pageStart_ ? kMaxStreamSize - pageStart_ : 0;
  readableEnd_ = loaded_ && mode_.read ? used_ : 0;
  writableEnd_ =
      loaded_ && mode_.write ? static_cast<std::size_t>(std::min<std::uint64_t>(page_.size(), room)) : 0;
}

}  // namespace forgeyard::compound
