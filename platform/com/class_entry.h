#pragma once

#include "platform/com/object.h"

namespace forgeyard {

// One row of a module's object map: a class and how to make an object of it.
struct ClassEntry {
  Guid clsid;
  const char* name;  // "Project": registered as KV.Project.1
  HRESULT (*create)(const Guid& iid, void** out);
};

// Creator of a class with a default constructor.
template <class T>
HRESULT createObject(const Guid& iid, void** out) {
  *out = nullptr;
  return guard([&] { return make<T>()->QueryInterface(iid, out); });
}

}  // namespace forgeyard
