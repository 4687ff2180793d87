#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "platform/storage/open_element.h"
#include "platform/storage/storage_view.h"
#include "platform/storage/structured_storage.h"

namespace forgeyard::compound {

// The state of an open stream: a position, and the page around it. What lies in the page is read and written
// right here; all else goes through the parent's version. A read where a damaged stream breaks off fails with
// STG_E_DOCFILECORRUPT; up to there it can be read.
class StreamCursor final : public OpenElement {
 public:
  StreamCursor(std::shared_ptr<Session> session, StorageView* parent, const BString& name, OpenMode mode);

  HRESULT Read(void* bytes, std::uint32_t count, std::uint32_t* read) {
    if (count == 0 || cursor_ + count > readableEnd_) return readOn(bytes, count, read);
    std::memcpy(bytes, page_.data() + cursor_, count);
    cursor_ += count;
    if (read) *read = count;
    return S_OK;
  }

  HRESULT Write(const void* bytes, std::uint32_t count, std::uint32_t* written) {
    if (count == 0 || cursor_ + count > writableEnd_) return writeOn(bytes, count, written);
    std::memcpy(page_.data() + cursor_, bytes, count);
    wrote(count);
    if (written) *written = count;
    return S_OK;
  }

  HRESULT Seek(std::int64_t offset, StreamSeek origin, std::uint64_t* position);
  HRESULT SetSize(std::uint64_t bytes);
  HRESULT Commit();
  HRESULT Stat(STATSTG* out);

  void flush() override;
  void cutOff() noexcept override;

 private:
  HRESULT readOn(void* bytes, std::uint32_t count, std::uint32_t* read);
  HRESULT writeOn(const void* bytes, std::uint32_t count, std::uint32_t* written);
  std::uint32_t readSome(std::uint8_t* to, std::uint32_t count);
  std::uint32_t writeSome(const std::uint8_t* from, std::uint32_t count);

  std::uint64_t position() const noexcept { return pageStart_ + cursor_; }
  std::uint64_t size() const;
  void moveTo(std::uint64_t position);
  void loadPage();  // the one that the position lies in
  void dropPage() noexcept;
  void growPage(std::size_t bytes);
  void setLimits() noexcept;
  void wrote(std::size_t count) noexcept {
    cursor_ += count;
    used_ = std::max(used_, cursor_);
    if (mode_.read) readableEnd_ = used_;
    changed_ = true;
  }

  const OpenMode mode_;
  // The page that the position lies in, or at the end of. What is loaded of it or written to it stands in
  // page_, with zeros behind the used bytes.
  std::uint64_t pageStart_ = 0;
  std::size_t cursor_ = 0;  // in the page
  std::vector<std::uint8_t> page_;
  std::size_t used_ = 0;  // bytes of the page that belong to the stream
  bool loaded_ = false;
  bool changed_ = false;
  // How far Read and Write may go by themselves; 0 where they may not, whatever the reason.
  std::size_t readableEnd_ = 0;
  std::size_t writableEnd_ = 0;
};

}  // namespace forgeyard::compound
