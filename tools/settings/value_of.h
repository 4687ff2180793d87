#pragma once

#include "platform/com/status.h"

namespace forgeyard {

// The value of a property; throws StatusError.
template <class Object, class Interface, class Value>
Value valueOf(Object& object, HRESULT (Interface::*get)(Value*)) {
  Value value{};
  check((object.*get)(&value));
  return value;
}

}  // namespace forgeyard
