#pragma once

#include "platform/com/unknown.h"
#include "platform/storage/structured_storage.h"

namespace forgeyard {

struct IPersist : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("0000010C-0000-0000-C000-000000000046");

  virtual HRESULT GetClassID(Guid* out) = 0;
};

struct IPersistStream : IPersist {
  using Base = IPersist;
  static constexpr Guid iid = guid("00000109-0000-0000-C000-000000000046");

  // S_OK when the object differs from what was last loaded or saved, S_FALSE when not.
  virtual HRESULT IsDirty() = 0;
  // Reads the object's record from the stream's position and leaves the position behind it.
  virtual HRESULT Load(IStream* stream) = 0;
  virtual HRESULT Save(IStream* stream, bool clearDirty) = 0;
};

struct IPersistStorage : IPersist {
  using Base = IPersist;
  static constexpr Guid iid = guid("0000010A-0000-0000-C000-000000000046");

  virtual HRESULT IsDirty() = 0;
  // Both keep the storage and fail while the object has one already.
  virtual HRESULT InitNew(IStorage* storage) = 0;
  virtual HRESULT Load(IStorage* storage) = 0;
  // A null storage means the kept one.
  virtual HRESULT Save(IStorage* storage, bool sameAsLoad) = 0;
  // With a storage, that one is kept from now on.
  virtual HRESULT SaveCompleted(IStorage* storage) = 0;
  // Lets go of the kept storage.
  virtual HRESULT HandsOffStorage() = 0;
};

}  // namespace forgeyard
