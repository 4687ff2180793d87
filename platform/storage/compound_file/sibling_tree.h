#pragma once

#include <cstdint>
#include <span>

#include "platform/storage/compound_file/compound_format.h"

namespace forgeyard::compound {

struct SiblingLinks {
  std::uint32_t left = kNoEntry;
  std::uint32_t right = kNoEntry;
  bool black = true;
};

// Links siblings, which have the ids firstId, firstId + 1, ... in directory order, to a balanced red-black
// tree. The id of its top; kNoEntry for no siblings.
std::uint32_t linkSiblings(std::span<SiblingLinks> siblings, std::uint32_t firstId);

}  // namespace forgeyard::compound
