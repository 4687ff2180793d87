// Stands in for the fuzzer's own main program: runs a fuzz target once over every file that lies in the named
// files and directories, and over no bytes at all. A target that finds a fault aborts.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

namespace fs = std::filesystem;

void replay(const fs::path& file) {
  std::printf("%s\n", file.c_str());
  std::fflush(stdout);
  std::ifstream in(file, std::ios::binary);
  const std::vector<char> bytes{std::istreambuf_iterator<char>(in), {}};
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

int replayAll(const fs::path& place) {
  if (!fs::is_directory(place)) {
    replay(place);
    return 1;
  }
  int count = 0;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(place)) {
    if (!entry.is_regular_file()) continue;
    replay(entry.path());
    ++count;
  }
  return count;
}

}  // namespace

int main(int argc, char** argv) {
  LLVMFuzzerTestOneInput(nullptr, 0);
  int count = 0;
  for (int i = 1; i < argc; ++i) count += replayAll(argv[i]);
  std::printf("%d inputs\n", count);
  return count > 0 ? 0 : 1;
}
