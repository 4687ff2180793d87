#pragma once

#include <span>

#include "platform/com/guid.h"

namespace forgeyard::test {

enum class Serves { Objects, NotYet, Nothing };

struct KnownClass {
  const char* name;
  Guid clsid;
  Serves serves;
};

// Every class that the registry tells of, in the order of the module's object map.
std::span<const KnownClass> knownClasses();

}  // namespace forgeyard::test
