#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "platform/com/guid.h"
#include "platform/storage/stream_content.h"
#include "platform/text/bstring.h"

namespace forgeyard::compound {

struct StorageTree;

// A named stream or storage: exactly one of the two is there.
struct Element {
  BString name;
  std::shared_ptr<StreamContent> stream;
  std::shared_ptr<StorageTree> storage;
};

// One version of a storage's contents. Versions share what they have in common: whoever changes a storage or
// a stream first makes sure, by makeOwn(), that no other version has it too. So a snapshot costs a reference,
// and a version that equals another is the same object.
struct StorageTree {
  Guid clsid{};
  std::uint32_t stateBits = 0;  // not used by us, and kept
  std::uint64_t created = 0;    // these too
  std::uint64_t modified = 0;
  std::vector<Element> elements;  // in directory order

  StorageTree() = default;
  StorageTree(const StorageTree&) = default;
  StorageTree& operator=(const StorageTree&) = delete;
  ~StorageTree();  // takes deep trees apart without deep recursion

  const Element* find(std::u16string_view name) const noexcept;
  Element* find(std::u16string_view name) noexcept;
  // No element of that name is there.
  Element& insert(Element element);
  // Nothing happens if there is none.
  void erase(std::u16string_view name) noexcept;
};

// Gives `part` a copy of its own if another version shares it.
template <class Part>
Part& makeOwn(std::shared_ptr<Part>& part) {
  if (part.use_count() > 1) part = std::make_shared<Part>(*part);
  return *part;
}

}  // namespace forgeyard::compound
