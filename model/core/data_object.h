#pragma once

#include "platform/com/object.h"
#include "typelib/data_object.h"

namespace forgeyard {

// Carries references during drag and drop inside the workspace. Main thread only.
class KVDataObject final : public ComObject<IKVDataObject> {
 public:
  HRESULT GetData(Ref<IUnknown>* out) override { return give(data_, out); }
  HRESULT SetData(IUnknown* data) override { return take(data, data_); }
  HRESULT GetGUID(Guid* out) override { return give(kind_, out); }
  HRESULT SetGUID(const Guid& kind) override { return take(kind, kind_); }
  HRESULT GetInstance(std::int32_t* out) override { return give(instance_, out); }
  HRESULT SetInstance(std::int32_t instance) override { return take(instance, instance_); }
  HRESULT SetData2(IUnknown* data) override { return take(data, data2_); }
  HRESULT GetData2(Ref<IUnknown>* out) override { return give(data2_, out); }

 private:
  template <class T>
  static HRESULT give(const T& field, T* out) {
    *out = field;
    return S_OK;
  }
  template <class T, class Value>
  static HRESULT take(const Value& value, T& field) {
    field = T(value);
    return S_OK;
  }

  Ref<IUnknown> data_;
  Ref<IUnknown> data2_;
  Guid kind_{};
  std::int32_t instance_ = 0;
};

}  // namespace forgeyard
