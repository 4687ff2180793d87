#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "platform/storage/compound_file/compound_format.h"

namespace forgeyard::compound {

// A table of successors, as the FAT and the mini FAT are, with who has claimed which sector: a sector belongs
// to one chain at most. That ends loops, and bounds what all chains of a file together can hold.
class ChainTable {
 public:
  ChainTable() = default;
  explicit ChainTable(std::vector<std::uint32_t> next) : next_(std::move(next)), claimed_(next_.size()) {}

  std::uint32_t size() const noexcept { return static_cast<std::uint32_t>(next_.size()); }

  // False for a sector that the table doesn't have or that is claimed already.
  bool claim(std::uint32_t sector) {
    if (sector >= next_.size() || claimed_[sector]) return false;
    claimed_[sector] = true;
    return true;
  }

  enum class End {
    Whole,   // came to the chain's end
    Longer,  // the chain goes on behind the limit
    Broken,  // came to a sector that can't belong to it
  };

  // Claims the chain from `first` on, up to `limit` sectors, and calls visit(sector, count) for each row of
  // neighbours in it.
  template <class Visit>
  End follow(std::uint32_t first, std::uint64_t limit, Visit&& visit) {
    std::uint32_t sector = first;
    while (sector != kEndOfChain) {
      if (limit == 0) return End::Longer;
      const std::uint32_t start = sector;
      std::uint32_t count = 0;
      while (limit > 0 && sector == start + count && claim(sector)) {
        sector = next_[sector];
        ++count;
        --limit;
      }
      if (count == 0) return End::Broken;
      visit(start, count);
    }
    return End::Whole;
  }

 private:
  std::vector<std::uint32_t> next_;
  std::vector<bool> claimed_;
};

}  // namespace forgeyard::compound
