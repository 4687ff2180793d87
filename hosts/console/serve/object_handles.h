#pragma once

#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>

#include "platform/com/automation.h"
#include "workbench/base/failure.h"

namespace forgeyard::console {

// Parameters of a request that mean nothing here.
class InvalidParameters : public workbench::Failure {
 public:
  using workbench::Failure::Failure;
};

// The objects that a client has in its hands, by number, and values on their way to it and back. An object
// has one number for as long as it is held; numbers are never used again. Main thread only.
//
// null, numbers and texts are what they are; true and false are 1 and 0, as the flags of the model have it;
// an object is {"object": NUMBER, "type": "IProject"}, of which the type doesn't count on the way back; an
// array is a list of texts or of objects.
class ObjectHandles {
 public:
  using Json = nlohmann::ordered_json;

  Json toJson(const Variant& value);
  // Throws InvalidParameters for what has no counterpart, and for a number that stands for no object.
  Variant fromJson(const Json& value) const;

  // Borrowed. Throws InvalidParameters.
  IUnknown* at(std::int64_t handle) const;
  // False for a number that stands for none.
  bool release(std::int64_t handle);
  void clear();

 private:
  std::int64_t handleOf(const Ref<IUnknown>& identity);

  std::map<std::int64_t, Ref<IUnknown>> objects_;
  std::map<IUnknown*, std::int64_t> handles_;
  std::int64_t last_ = 0;
};

}  // namespace forgeyard::console
