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

// The texts of a collection of those, in its order. Throws StatusError.
template <class Collection>
std::vector<BString> textsOf(Collection& collection) {
  Ref<IUnknown> unknown;
  check(collection.get__NewEnum(&unknown));
  std::vector<BString> texts;
  forEach(unknown.as<IEnumVARIANT>(),
          [&](const Variant& value) { check(value.toText(&texts.emplace_back())); });
  return texts;
}

}  // namespace forgeyard::workbench
