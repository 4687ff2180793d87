#pragma once

#include <vector>

#include "platform/com/enumerators.h"
#include "platform/com/ref.h"

namespace forgeyard::workbench {

// The elements of a collection that have the interface I, in its order. Throws StatusError.
template <class I, class Collection>
std::vector<Ref<I>> elementsOf(Collection& collection) {
  Ref<IUnknown> unknown;
  check(collection.get__NewEnum(&unknown));
  std::vector<Ref<I>> elements;
  forEach(unknown.as<IEnumVARIANT>(), [&](const Variant& value) {
    Ref<IUnknown> object;
    check(value.toUnknown(&object));
    if (Ref<I> element = object.as<I>()) elements.push_back(std::move(element));
  });
  return elements;
}

}  // namespace forgeyard::workbench
