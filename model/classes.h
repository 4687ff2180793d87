#pragma once

#include <span>

#include "platform/com/guid.h"
#include "platform/com/ref.h"

namespace forgeyard {

// One class that clients create by its identifier.
struct ModelClass {
  Guid clsid;
  Ref<IUnknown> (*create)();
};

// The classes of the model, for the module's table of classes.
std::span<const ModelClass> modelClasses();

}  // namespace forgeyard
