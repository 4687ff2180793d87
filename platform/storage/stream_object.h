#pragma once

#include <memory>

#include "platform/com/object.h"
#include "platform/storage/stream_cursor.h"
#include "platform/storage/structured_storage.h"

namespace forgeyard::compound {

// The COM object of an open stream.
class StreamObject final : public ComObject<IStream> {
 public:
  StreamObject(std::shared_ptr<Session> session, StorageView* parent, const BString& name, OpenMode mode)
      : state_(std::move(session), parent, name, mode) {}

  StreamCursor& state() noexcept { return state_; }

  HRESULT Read(void* bytes, std::uint32_t count, std::uint32_t* read) override {
    return state_.Read(bytes, count, read);
  }
  HRESULT Write(const void* bytes, std::uint32_t count, std::uint32_t* written) override {
    return state_.Write(bytes, count, written);
  }
  HRESULT Seek(std::int64_t offset, StreamSeek origin, std::uint64_t* position) override {
    return state_.Seek(offset, origin, position);
  }
  HRESULT SetSize(std::uint64_t bytes) override { return state_.SetSize(bytes); }
  HRESULT Commit(std::uint32_t) override { return state_.Commit(); }
  HRESULT Stat(STATSTG* out) override { return state_.Stat(out); }

 private:
  ~StreamObject() override { state_.close(); }

  StreamCursor state_;
};

}  // namespace forgeyard::compound
