#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/com/guid.h"

namespace forgeyard {

// A compound file put together by hand, as another writer might leave it: either sector size, streams in
// scattered sectors, sibling trees that are lists, all entries red, garbage in fields that don't count.
struct ImageElement {
  std::u16string name;
  std::string bytes;  // of a stream
  bool storage = false;
  std::vector<ImageElement> children;
  Guid clsid{};
};

struct ImageOptions {
  unsigned sectorShift = 9;
  bool scattered = false;      // neighbouring sectors of a stream lie apart, in falling order
  bool cutLastSector = false;  // the file ends with its last byte
};

std::string buildImage(const std::vector<ImageElement>& root, const ImageOptions& options = {});

}  // namespace forgeyard
