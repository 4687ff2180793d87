#include "model/folders/name_pool.h"

#include <functional>
#include <utility>

namespace forgeyard {

namespace {

std::uint32_t hashOf(std::u16string_view name) {
  const std::size_t hash = std::hash<std::u16string_view>{}(name);
  return static_cast<std::uint32_t>(hash ^ hash >> 32);
}

}  // namespace

std::shared_ptr<NamePool> NamePool::shared() {
  static std::weak_ptr<NamePool> open;
  std::shared_ptr<NamePool> pool = open.lock();
  if (!pool) open = pool = std::make_shared<NamePool>();
  return pool;
}

NamePool::Slot& NamePool::slot(std::u16string_view name, std::uint32_t hash) {
  const std::size_t mask = slots_.size() - 1;
  std::size_t at = hash & mask;
  while (slots_[at].taken && (slots_[at].hash != hash || !equalUnits(slots_[at].name.view(), name)))
    at = (at + 1) & mask;
  return slots_[at];
}

void NamePool::grow() {
  std::vector<Slot> old = std::exchange(slots_, std::vector<Slot>(slots_.empty() ? 1024 : slots_.size() * 2));
  const std::size_t mask = slots_.size() - 1;
  for (Slot& kept : old) {
    if (!kept.taken) continue;
    std::size_t at = kept.hash & mask;
    while (slots_[at].taken) at = (at + 1) & mask;
    slots_[at] = std::move(kept);
  }
}

template <class Text>
BString NamePool::internText(const Text& name) {
  if (used_ * 4 >= slots_.size() * 3) grow();
  const std::uint32_t hash = hashOf(name);
  Slot& found = slot(name, hash);
  if (!found.taken) {
    found = {BString(name), hash, true};
    ++used_;
  }
  return found.name;
}

BString NamePool::intern(std::u16string_view name) {
  return internText(name);
}

BString NamePool::intern(const BString& name) {
  return internText(name);
}

}  // namespace forgeyard
