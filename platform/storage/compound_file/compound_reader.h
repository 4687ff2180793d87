#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/storage/disk/host_file.h"
#include "platform/storage/storage_tree.h"

namespace forgeyard::compound {

struct CompoundContents {
  std::shared_ptr<StorageTree> root;
  std::vector<std::string> damage;  // a sentence for each finding, the first hundred
};

// Reads the directory and the tables of a compound file, of which nothing is kept but where each stream lies.
// What is damaged is left out or cut short and told in `damage`, so that one broken stream doesn't hide the
// others. Time and memory are bounded by the file's size, whatever its bytes. Throws STG_E_INVALIDHEADER or
// STG_E_DOCFILECORRUPT when not even the root's entry can be had.
CompoundContents readCompoundFile(const SharedFile& file);

}  // namespace forgeyard::compound
