#pragma once

#include <memory>
#include <vector>

#include "platform/com/enumerators.h"
#include "typelib/collections.h"

namespace forgeyard {

// A list of texts to walk, by the automation enumerator or as the IEnumString that it is itself. Owns its
// list, which never changes; main thread only.
class CSimpleCollection final : public ComObject<Dual<ISimpleCollection>, IEnumString> {
 public:
  CSimpleCollection() : CSimpleCollection(std::vector<BString>()) {}
  explicit CSimpleCollection(std::vector<BString> values)
      : values_(std::make_shared<const std::vector<BString>>(std::move(values))), walk_(walker()) {}

  // ISimpleCollection
  HRESULT get__NewEnum(Ref<IUnknown>* out) override;
  HRESULT get_Count(std::int32_t* value) override;

  // IEnumString
  HRESULT Next(std::uint32_t count, BString* out, std::uint32_t* fetched) override;
  HRESULT Skip(std::uint32_t count) override;
  HRESULT Reset() override;

 private:
  Ref<IEnumString> walker() const { return make<ListEnumerator<IEnumString>>(values_); }

  std::shared_ptr<const std::vector<BString>> values_;
  Ref<IEnumString> walk_;
};

}  // namespace forgeyard
