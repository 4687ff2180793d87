#pragma once

#include <utility>
#include <vector>

#include "platform/com/enumerators.h"

namespace forgeyard {

// The `_NewEnum` of a collection of objects: an IEnumVARIANT over the objects as they are now, each as the
// VT_DISPATCH that it answers the query with.
template <class I>
Ref<IUnknown> enumerateObjects(const std::vector<Ref<I>>& objects) {
  std::vector<Variant> values;
  values.reserve(objects.size());
  for (const Ref<I>& object : objects) values.emplace_back(object.template as<IDispatch>());
  return Ref<IUnknown>(make<ListEnumerator<IEnumVARIANT>>(std::move(values)).get());
}

// Calls body(I&) for each object of a collection (whatever has get__NewEnum) that has the interface I.
template <class I, class Collection, class Body>
void forEachObject(Collection& collection, Body&& body) {
  Ref<IUnknown> walk;
  check(collection.get__NewEnum(&walk));
  forEach(walk.template as<IEnumVARIANT>(), [&](const Variant& value) {
    Ref<IUnknown> object;
    check(value.toUnknown(&object));
    if (const Ref<I> wanted = object.template as<I>()) body(*wanted);
  });
}

}  // namespace forgeyard
