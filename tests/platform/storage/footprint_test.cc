#include <gmock/gmock.h>

#include <cstring>
#include <fstream>

#include "platform/storage/root_storage.h"
#include "tests/platform/storage/child.h"
#include "tests/platform/storage/faulty_calls.h"
#include "tests/platform/storage/storage_testing.h"

namespace forgeyard {
namespace {

constexpr std::size_t kSize = 30'000'000;

// What it costs to work with large files, in system calls and memory rather than in time.
class Footprint : public StorageTest {
 protected:
  void writeLarge() const {
    const Ref<IStorage> root = create();
    const Ref<IStream> stream = createStream(root.get(), u"Large");
    const std::string piece = pattern(70);
    for (std::size_t done = 0; done < kSize; done += piece.size()) write(stream.get(), piece);
    check(root->Commit(STGC_DEFAULT));
  }

  // As a record reader does: a count of four bytes, then some text. The number of bytes.
  static std::size_t readInPieces(IStream* stream) {
    std::size_t total = 0;
    char bytes[70];
    for (std::uint32_t count = 4, got = 1; got > 0; count = 74 - count) {
      check(stream->Read(bytes, count, &got));
      total += got;
    }
    return total;
  }

  // The most memory that the process has had in use, in bytes.
  static std::size_t peakMemory() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
      if (line.starts_with("VmHWM:")) return std::stoul(line.substr(6)) * 1024;
    }
    return 0;
  }
};

TEST_F(Footprint, TinyReadsCostFewSystemCalls) {
  writeLarge();
  FaultyCalls calls;
  const Ref<IStorage> root = compound::openRoot(calls, host(), path(), kReadRoot);
  EXPECT_LT(calls.reads, 40) << "tables";
  calls.reads = 0;
  EXPECT_GE(readInPieces(openStream(root.get(), u"Large", kRead).get()), kSize);
  EXPECT_LE(calls.reads, static_cast<int>(kSize / 65536 + 2));
}

TEST_F(Footprint, LargeFilesDoNotFillTheMemory) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "a sanitizer's own memory hides the rest";
#endif
  constexpr std::size_t kMegabyte = 1 << 20;
  Child writer([&] {
    create();  // what a first use takes
    const std::size_t before = peakMemory();
    writeLarge();
    ::_exit(peakMemory() - before < 10 * kMegabyte ? 0 : 1);
  });
  EXPECT_EQ(writer.wait(), 0);
  Child reader([&] {
    const std::size_t before = peakMemory();
    const Ref<IStorage> root = open(kReadRoot);
    if (readInPieces(openStream(root.get(), u"Large", kRead).get()) < kSize) ::_exit(2);
    ::_exit(peakMemory() - before < 2 * kMegabyte ? 0 : 1);
  });
  EXPECT_EQ(reader.wait(), 0);
}

}  // namespace
}  // namespace forgeyard
