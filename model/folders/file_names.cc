#include "model/folders/file_names.h"

namespace forgeyard {

namespace {

std::uint64_t generation = 1;

}  // namespace

BString persistedName(std::u16string_view path, const BString& workingDirectory) {
  if (workingDirectory.empty() || !path.starts_with(workingDirectory.view())) return path;
  return BString::concat(u".", path.substr(workingDirectory.size()));
}

void fileNamesChanged() {
  ++generation;
}

std::uint64_t fileNamesGeneration() {
  return generation;
}

}  // namespace forgeyard
