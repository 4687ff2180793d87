#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <utility>

#include "platform/com/status.h"
#include "platform/storage/disk/scratch_pages.h"
#include "platform/text/bstring.h"

namespace forgeyard::compound {

class StorageView;

// What all open objects of one project file share.
struct Session {
  explicit Session(FilePlace beside) : scratch(std::make_shared<ScratchPages>(std::move(beside))) {}

  // Calls come from one thread, but a last reference may go on any other.
  std::mutex mutex;
  std::shared_ptr<ScratchPages> scratch;
  // Why bytes of a stream were lost when its last reference went; the next commit reports it.
  HRESULT lost = S_OK;
};

// What a mode asks for. Everything is exclusive.
struct OpenMode {
  bool read = false;
  bool write = false;
  bool transacted = false;
  bool create = false;
};

// Throws STG_E_INVALIDPARAMETER for a mode that contradicts itself and STG_E_INVALIDFUNCTION for one that
// can't be served.
OpenMode parseMode(std::uint32_t mode);

// The state of an open stream or storage. Its parent knows it as long as it is open, and cuts it off when it
// goes itself or when the version goes that the element belongs to; from then on every operation gives
// STG_E_REVERTED. The COM object owns the state and closes it at its end. A state is no COM object itself,
// since its parent may call it while the object's last reference is going on another thread.
class OpenElement {
 public:
  OpenElement(const OpenElement&) = delete;
  OpenElement& operator=(const OpenElement&) = delete;

  // Ends the element's life in its parent. What is buffered is not lost.
  void close() noexcept;

  // With the session's mutex held, as all members below:
  // hands bytes that are buffered here and below to the parent's version.
  virtual void flush() = 0;
  virtual void cutOff() noexcept = 0;

 protected:
  OpenElement(std::shared_ptr<Session> session, StorageView* parent, const BString& name)
      : session_(std::move(session)), parent_(parent), name_(name) {}
  ~OpenElement() = default;

  // Runs the body of an operation under the session's mutex, unless this is cut off.
  template <class Body>
  HRESULT run(Body&& body) {
    return guard([&] {
      const std::lock_guard lock(session_->mutex);
      if (reverted_) throw StatusError(STG_E_REVERTED);
      return body();
    });
  }

  const std::shared_ptr<Session> session_;
  StorageView* parent_;  // null for the root, and once cut off
  BString name_;         // as the parent has it
  bool reverted_ = false;
};

}  // namespace forgeyard::compound
