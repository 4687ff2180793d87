#pragma once

#include <utility>

#include "platform/com/object.h"
#include "platform/storage/storage_view.h"
#include "platform/storage/structured_storage.h"

namespace forgeyard::compound {

// The COM object of an open storage over its state; `Others` are interfaces that a derived class adds.
template <class View, class... Others>
class StorageObject : public ComObject<IStorage, Others...> {
 public:
  template <class... Args>
  explicit StorageObject(Args&&... args) : state_(std::forward<Args>(args)...) {}

  View& state() noexcept { return state_; }

  HRESULT CreateStream(const BString& name, std::uint32_t mode, Ref<IStream>* out) override {
    return state_.CreateStream(name, mode, out);
  }
  HRESULT OpenStream(const BString& name, std::uint32_t mode, Ref<IStream>* out) override {
    return state_.OpenStream(name, mode, out);
  }
  HRESULT CreateStorage(const BString& name, std::uint32_t mode, Ref<IStorage>* out) override {
    return state_.CreateStorage(name, mode, out);
  }
  HRESULT OpenStorage(const BString& name, std::uint32_t mode, Ref<IStorage>* out) override {
    return state_.OpenStorage(name, mode, out);
  }
  HRESULT Commit(std::uint32_t flags) override { return state_.Commit(flags); }
  HRESULT Revert() override { return state_.Revert(); }
  HRESULT EnumElements(Ref<IEnumSTATSTG>* out) override { return state_.EnumElements(out); }
  HRESULT DestroyElement(const BString& name) override { return state_.DestroyElement(name); }
  HRESULT SetClass(const Guid& clsid) override { return state_.SetClass(clsid); }
  HRESULT Stat(STATSTG* out) override { return state_.Stat(out); }

 protected:
  ~StorageObject() override { state_.close(); }

 private:
  View state_;
};

using SubStorage = StorageObject<SubStorageView>;

}  // namespace forgeyard::compound
