#include "platform/storage/open_element.h"

#include "platform/storage/storage_view.h"
#include "platform/storage/structured_storage.h"

namespace forgeyard::compound {

OpenMode parseMode(std::uint32_t mode) {
  constexpr std::uint32_t kAccess = 0x3;
  constexpr std::uint32_t kServed = kAccess | STGM_SHARE_EXCLUSIVE | STGM_CREATE | STGM_TRANSACTED;
  const std::uint32_t access = mode & kAccess;
  if (access > STGM_READWRITE) throw StatusError(STG_E_INVALIDPARAMETER);
  if ((mode & ~kServed) != 0) throw StatusError(STG_E_INVALIDFUNCTION);
  return {.read = access != STGM_WRITE,
          .write = access != STGM_READ,
          .transacted = (mode & STGM_TRANSACTED) != 0,
          .create = (mode & STGM_CREATE) != 0};
}

void OpenElement::close() noexcept {
  const std::lock_guard lock(session_->mutex);
  const HRESULT flushed = guard([this] { flush(); });
  if (failed(flushed)) session_->lost = flushed;
  if (parent_) parent_->forget(name_);
  cutOff();
}

}  // namespace forgeyard::compound
