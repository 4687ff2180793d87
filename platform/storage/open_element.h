#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <utility>

#include "platform/com/status.h"
#include "platform/storage/scratch_pages.h"
#include "platform/text/bstring.h"

namespace forgeyard::compound {

class StorageObject;

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

// An open stream or sub-storage as its parent knows it, or the root. A parent that goes, or whose version
// goes, cuts its elements off; they answer every operation with STG_E_REVERTED from then on. All members want
// the session's mutex held.
class OpenElement {
 public:
  OpenElement(const OpenElement&) = delete;
  OpenElement& operator=(const OpenElement&) = delete;

  // Hands bytes that are buffered here and below to the parent's version.
  virtual void flush() = 0;
  virtual void cutOff() noexcept = 0;

 protected:
  OpenElement() = default;
  ~OpenElement() = default;

  void attach(std::shared_ptr<Session> session, StorageObject* parent, const BString& name) {
    session_ = std::move(session);
    parent_ = parent;
    name_ = name;
  }
  // Takes this out of its parent's list, if it has a parent still.
  void detach() noexcept;
  void requireAlive() const {
    if (reverted_) throw StatusError(STG_E_REVERTED);
  }

  std::shared_ptr<Session> session_;
  StorageObject* parent_ = nullptr;
  BString name_;  // as the parent has it
  bool reverted_ = false;
};

}  // namespace forgeyard::compound
