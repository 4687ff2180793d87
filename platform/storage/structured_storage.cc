#include "platform/storage/structured_storage.h"

#include "platform/storage/disk/file_calls.h"
#include "platform/storage/disk/model_path.h"
#include "platform/storage/root_storage.h"

namespace forgeyard {
namespace {

template <class Open>
HRESULT produceRoot(const BString& path, std::uint32_t mode, Ref<IStorage>* out, Open&& open) {
  if (!out) return STG_E_INVALIDPOINTER;
  *out = nullptr;
  return guard([&] { *out = open(compound::FileCalls::system(), compound::hostPathOf(path), path, mode); });
}

}  // namespace

HRESULT StgCreateDocfile(const BString& path, std::uint32_t mode, Ref<IStorage>* out) {
  return produceRoot(path, mode, out, compound::createRoot);
}

HRESULT StgOpenStorage(const BString& path, std::uint32_t mode, Ref<IStorage>* out) {
  return produceRoot(path, mode, out, compound::openRoot);
}

}  // namespace forgeyard
