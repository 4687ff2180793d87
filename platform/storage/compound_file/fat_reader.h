#pragma once

#include <cstdint>
#include <vector>

#include "platform/storage/compound_file/byte_runs.h"
#include "platform/storage/compound_file/chain_table.h"
#include "platform/storage/compound_file/damage_list.h"
#include "platform/storage/compound_file/sector_file.h"

namespace forgeyard::compound {

// Reads the FAT of a compound file, with the sectors that hold it and its list claimed. Entries whose FAT
// sector is missing read as free, so only the chains through them are broken.
ChainTable readFat(const SectorFile& file, DamageList& damage);

// Reads up to `count` entries of a table of successors that lies at the given places; fewer if there is less.
std::vector<std::uint32_t> readTable(const HostFile& file, const ByteRuns& places, std::uint64_t count);

}  // namespace forgeyard::compound
