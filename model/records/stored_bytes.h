#pragma once

#include <string>
#include <utility>
#include <vector>

#include "platform/storage/structured_storage.h"
#include "typelib/records.h"

namespace forgeyard {

// What a storage holds, in memory, in the order of its enumeration.
struct StorageBytes {
  BString name;  // null for a root
  Guid clsid{};
  std::vector<std::pair<BString, std::string>> streams;
  std::vector<StorageBytes> storages;
};

// Reads a storage as far as that goes. `elements` gets the list of what it holds, `leftOut` what can't be
// read, where the storage itself has not told of it. Throws StatusError.
StorageBytes readStorage(IStorage& storage, std::vector<StoredElement>& elements,
                         std::vector<LoadOmission>& leftOut);
// Fills an empty storage, without a commit of its own. Throws StatusError.
void writeStorage(IStorage& storage, const StorageBytes& bytes);

}  // namespace forgeyard
