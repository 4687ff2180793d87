#include "engine/simple_collection.h"

namespace forgeyard {

HRESULT CSimpleCollection::get__NewEnum(Ref<IUnknown>* out) {
  return guard([&] {
    std::vector<Variant> variants(values_->begin(), values_->end());
    *out = Ref<IUnknown>(make<ListEnumerator<IEnumVARIANT>>(std::move(variants)).get());
  });
}

HRESULT CSimpleCollection::get_Count(std::int32_t* value) {
  *value = static_cast<std::int32_t>(values_->size());
  return S_OK;
}

HRESULT CSimpleCollection::Next(std::uint32_t count, BString* out, std::uint32_t* fetched) {
  return walk_->Next(count, out, fetched);
}

HRESULT CSimpleCollection::Skip(std::uint32_t count) {
  return walk_->Skip(count);
}

HRESULT CSimpleCollection::Reset() {
  return walk_->Reset();
}

}  // namespace forgeyard
