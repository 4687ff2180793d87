#include "platform/storage/storage_tree.h"

#include <algorithm>
#include <utility>

#include "platform/storage/compound_file/element_name.h"

namespace forgeyard::compound {
namespace {

// The first element that is not ordered before the name.
template <class Elements>
auto position(Elements& elements, std::u16string_view name) noexcept {
  return std::lower_bound(elements.begin(), elements.end(), name,
                          [](const Element& element, std::u16string_view wanted) {
                            return DirectoryOrder{}(element.name, wanted);
                          });
}

template <class Elements>
auto* findIn(Elements& elements, std::u16string_view name) noexcept {
  const auto at = position(elements, name);
  return at != elements.end() && !DirectoryOrder{}(name, at->name) ? &*at : nullptr;
}

}  // namespace

StorageTree::~StorageTree() {
  std::vector<std::shared_ptr<StorageTree>> last;
  const auto takeStorages = [&last](StorageTree& from) {
    for (Element& element : from.elements) {
      if (element.storage.use_count() == 1) last.push_back(std::move(element.storage));
    }
  };
  takeStorages(*this);
  while (!last.empty()) {
    const std::shared_ptr<StorageTree> next = std::move(last.back());
    last.pop_back();
    takeStorages(*next);
  }
}

const Element* StorageTree::find(std::u16string_view name) const noexcept {
  return findIn(elements, name);
}

Element* StorageTree::find(std::u16string_view name) noexcept {
  return findIn(elements, name);
}

Element& StorageTree::insert(Element element) {
  const auto at = position(elements, element.name);
  return *elements.insert(at, std::move(element));
}

void StorageTree::erase(std::u16string_view name) noexcept {
  if (const Element* element = find(name)) elements.erase(elements.begin() + (element - elements.data()));
}

}  // namespace forgeyard::compound
