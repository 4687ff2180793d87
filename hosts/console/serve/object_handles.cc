#include "hosts/console/serve/object_handles.h"

#include <limits>
#include <vector>

#include "workbench/automation/late_bound.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

template <class Number>
bool fits(std::int64_t value) {
  return value >= std::numeric_limits<Number>::min() && value <= std::numeric_limits<Number>::max();
}

Variant numberFrom(const ObjectHandles::Json& value) {
  if (!value.is_number_integer()) return Variant(value.get<double>());
  if (value.is_number_unsigned() && value.get<std::uint64_t>() > std::numeric_limits<std::uint32_t>::max())
    return Variant(value.get<double>());
  const auto number = value.get<std::int64_t>();
  if (fits<std::int32_t>(number)) return Variant(static_cast<std::int32_t>(number));
  if (fits<std::uint32_t>(number)) return Variant(static_cast<std::uint32_t>(number));
  return Variant(static_cast<double>(number));
}

}  // namespace

std::int64_t ObjectHandles::handleOf(const Ref<IUnknown>& identity) {
  const auto [at, isNew] = handles_.try_emplace(identity.get(), last_ + 1);
  if (isNew) objects_.emplace(++last_, identity);
  return at->second;
}

ObjectHandles::Json ObjectHandles::toJson(const Variant& value) {
  if (const auto* i = value.get<std::int32_t>()) return *i;
  if (const auto* u = value.get<std::uint32_t>()) return *u;
  if (const auto* b = value.get<bool>()) return *b;
  if (const auto* d = value.get<double>()) return *d;
  if (const auto* text = value.get<BString>()) return text->narrow();
  Ref<IUnknown> object;
  if (failed(value.toUnknown(&object)) || !object) return nullptr;
  // The address that every interface of the object answers with.
  const Ref<IUnknown> identity = object.as<IUnknown>();
  return {{"object", handleOf(identity)}, {"type", typeNameOf(identity.get())}};
}

Variant ObjectHandles::fromJson(const Json& value) const {
  if (value.is_null()) return Variant::null();
  if (value.is_boolean()) return Variant(static_cast<std::int32_t>(value.get<bool>()));
  if (value.is_number()) return numberFrom(value);
  if (value.is_string()) return Variant(BString::fromNarrow(value.get_ref<const std::string&>()));
  if (value.is_array()) {
    std::vector<Variant> values;
    for (const Json& element : value) values.push_back(fromJson(element));
    return Variant(listOf(values));
  }
  const auto handle = value.find("object");
  if (handle == value.end() || !handle->is_number_integer())
    throw InvalidParameters("A value that is an object has a number \"object\" in it.");
  return Variant(Ref<IUnknown>(at(handle->get<std::int64_t>())));
}

IUnknown* ObjectHandles::at(std::int64_t handle) const {
  const auto found = objects_.find(handle);
  if (found == objects_.end())
    throw InvalidParameters("There is no object " + std::to_string(handle) + "; it may have been released.");
  return found->second.get();
}

bool ObjectHandles::release(std::int64_t handle) {
  const auto found = objects_.find(handle);
  if (found == objects_.end()) return false;
  handles_.erase(found->second.get());
  const Ref<IUnknown> last = std::move(found->second);
  objects_.erase(found);
  return true;
}

void ObjectHandles::clear() {
  handles_.clear();
  objects_.clear();
}

}  // namespace forgeyard::console
