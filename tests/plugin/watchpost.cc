// A diagnostics module as developers have it, for the test: counts the objects that are registered with it.

#include "platform/com/ref.h"

namespace {

int living = 0;

}  // namespace

extern "C" {

[[gnu::visibility("default")]] void DllRegisterObject(forgeyard::IUnknown* object) {
  // The object can be asked at once.
  if (forgeyard::query<forgeyard::IUnknown>(object)) ++living;
}
[[gnu::visibility("default")]] void DllUnRegisterObject(forgeyard::IUnknown* object) {
  if (object) --living;
}
[[gnu::visibility("default")]] int livingObjects() {
  return living;
}
}
