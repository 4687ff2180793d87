#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "platform/com/automation.h"
#include "platform/com/object.h"

namespace forgeyard {

// The enumerators of collections. Next gives up to `count` values, S_FALSE when fewer were left; *fetched may
// be null. They walk the values as they were when the enumerator was made.

struct IEnumString : IUnknown {
  using Base = IUnknown;
  using Value = BString;
  static constexpr Guid iid = guid("00000101-0000-0000-C000-000000000046");

  virtual HRESULT Next(std::uint32_t count, BString* out, std::uint32_t* fetched) = 0;
  virtual HRESULT Skip(std::uint32_t count) = 0;
  virtual HRESULT Reset() = 0;
};

struct IEnumUnknown : IUnknown {
  using Base = IUnknown;
  using Value = Ref<IUnknown>;
  static constexpr Guid iid = guid("00000100-0000-0000-C000-000000000046");

  virtual HRESULT Next(std::uint32_t count, Ref<IUnknown>* out, std::uint32_t* fetched) = 0;
  virtual HRESULT Skip(std::uint32_t count) = 0;
  virtual HRESULT Reset() = 0;
};

struct IEnumVARIANT : IUnknown {
  using Base = IUnknown;
  using Value = Variant;
  static constexpr Guid iid = guid("00020404-0000-0000-C000-000000000046");

  virtual HRESULT Next(std::uint32_t count, Variant* out, std::uint32_t* fetched) = 0;
  virtual HRESULT Skip(std::uint32_t count) = 0;
  virtual HRESULT Reset() = 0;
};

// An enumerator over values that it keeps: its own, or an unchanging list that several share.
template <class Enum>
class ListEnumerator final : public ComObject<Enum> {
 public:
  using List = std::vector<typename Enum::Value>;

  explicit ListEnumerator(List values) : values_(std::make_shared<const List>(std::move(values))) {}
  explicit ListEnumerator(std::shared_ptr<const List> values) : values_(std::move(values)) {}

  HRESULT Next(std::uint32_t count, typename Enum::Value* out, std::uint32_t* fetched) override {
    const std::size_t given = std::min<std::size_t>(count, values_->size() - next_);
    std::copy_n(values_->begin() + static_cast<std::ptrdiff_t>(next_), given, out);
    next_ += given;
    if (fetched) *fetched = static_cast<std::uint32_t>(given);
    return given == count ? S_OK : S_FALSE;
  }
  HRESULT Skip(std::uint32_t count) override {
    const std::size_t skipped = std::min<std::size_t>(count, values_->size() - next_);
    next_ += skipped;
    return skipped == count ? S_OK : S_FALSE;
  }
  HRESULT Reset() override {
    next_ = 0;
    return S_OK;
  }

 private:
  std::shared_ptr<const List> values_;
  std::size_t next_ = 0;
};

// Calls body(value) for all that is left in an enumerator; a null enumerator has nothing. Throws StatusError.
template <class Enum, class Body>
void forEach(const Ref<Enum>& enumerator, Body&& body) {
  if (!enumerator) return;
  constexpr std::uint32_t kBatch = 32;
  typename Enum::Value values[kBatch];
  for (;;) {
    std::uint32_t fetched = 0;
    const HRESULT status = enumerator->Next(kBatch, values, &fetched);
    check(status);
    for (std::uint32_t i = 0; i < fetched; ++i) body(values[i]);
    if (status != S_OK || fetched == 0) return;
  }
}

}  // namespace forgeyard
