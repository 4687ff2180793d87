#include "platform/storage/compound_file/sibling_tree.h"

#include <bit>
#include <cstddef>

namespace forgeyard::compound {
namespace {

// Halving puts all nodes on the levels above the last one, which may have gaps. Red nodes on just that level
// make every path pass the same number of black ones.
std::uint32_t linkHalves(std::span<SiblingLinks> part, std::uint32_t firstId, int levelsLeft) {
  if (part.empty()) return kNoEntry;
  const std::size_t middle = part.size() / 2;
  const std::uint32_t id = firstId + static_cast<std::uint32_t>(middle);
  SiblingLinks& links = part[middle];
  links.left = linkHalves(part.first(middle), firstId, levelsLeft - 1);
  links.right = linkHalves(part.subspan(middle + 1), id + 1, levelsLeft - 1);
  links.black = levelsLeft > 0;
  return id;
}

}  // namespace

std::uint32_t linkSiblings(std::span<SiblingLinks> siblings, std::uint32_t firstId) {
  // Full levels: what a tree of this many nodes has without gaps. The top is black even when it is alone.
  const int fullLevels = static_cast<int>(std::bit_width(siblings.size() + 1)) - 1;
  return linkHalves(siblings, firstId, fullLevels);
}

}  // namespace forgeyard::compound
