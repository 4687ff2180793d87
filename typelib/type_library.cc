#include "typelib/type_library.h"

#include <algorithm>
#include <array>

#include "platform/text/fold.h"

namespace forgeyard {

namespace {

template <class... Is>
auto descriptionsOf(TypeList<Is...>) {
  return std::array<const TypeInfo*, sizeof...(Is)>{&typeInfo<Is>()...};
}

}  // namespace

std::span<const TypeInfo* const> typeLibrary() {
  static const auto all = descriptionsOf(DualInterfaces{});
  return all;
}

const TypeInfo* findInterface(const Guid& iid) {
  const auto all = typeLibrary();
  const auto found = std::ranges::find(all, iid, [](const TypeInfo* type) { return type->iid; });
  return found == all.end() ? nullptr : *found;
}

const TypeInfo* findInterface(std::string_view name) {
  for (const TypeInfo* type : typeLibrary()) {
    const std::string_view whole = type->name;
    if (equalFoldedAscii(whole, name) || equalFoldedAscii(whole.substr(1), name)) return type;
  }
  return nullptr;
}

}  // namespace forgeyard
