// What a compiler driver writes as its dependency list, whatever it is, becomes a file that the component
// reads as it is meant: one line, no empty name, no name that would be lost; and a list that isn't understood
// whole says so.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "adapters/compiler/dependency_file_writer.h"
#include "tests/adapters/component_reader.h"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace forgeyard;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const MakeRule rule = readMakeRule(text);
  DependencyPlace place;
  place.directory = "/no/such/place";
  place.target = text.substr(0, 20);
  place.source = text.substr(0, 20);

  const std::string file = dependencyFileText(rule, place);
  require(file.ends_with("\r\n"));
  require(file.find_first_of("\r\n") == file.size() - 2);
  require(file.find("  ") == file.npos);

  const std::size_t expected =
      (rule.prerequisites.empty() ? 0 : rule.prerequisites.size() - 1) + !rule.complete;
  const std::vector<std::string> names = readAsComponent(file);
  require(names.size() == expected);
  for (const std::string& name : names) require(name.starts_with('/') && name.size() < 260);
  return 0;
}
