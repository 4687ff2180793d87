#include <gmock/gmock.h>

#include <random>

#include "tests/platform/storage/storage_testing.h"

namespace forgeyard {
namespace {

class Stream : public StorageTest {
 protected:
  Ref<IStorage> root_ = create();
  Ref<IStream> stream_ = createStream(root_.get(), u"S");

  std::string all() {
    seek(stream_.get(), 0);
    return readAll(stream_.get());
  }
  std::uint64_t position() {
    std::uint64_t at = 0;
    check(stream_->Seek(0, StreamSeek::Current, &at));
    return at;
  }
};

TEST_F(Stream, OverwritingKeepsTheTailBeyondTheNewBytes) {
  const std::string old = pattern(200000, 1);
  const std::string fresh = pattern(70000, 2);
  write(stream_.get(), old);
  check(root_->Commit(STGC_DEFAULT));
  stream_ = nullptr;
  stream_ = openStream(root_.get(), u"S");
  write(stream_.get(), fresh);
  EXPECT_TRUE(all() == fresh + old.substr(fresh.size()));
  check(root_->Commit(STGC_DEFAULT));
  EXPECT_TRUE(all() == fresh + old.substr(fresh.size()));
}

TEST_F(Stream, WritingBehindTheEndFillsWithZeros) {
  for (const std::size_t gap : {10, 5000, 200000}) {
    check(stream_->SetSize(0));
    seek(stream_.get(), 0);
    write(stream_.get(), "head");
    seek(stream_.get(), static_cast<std::int64_t>(4 + gap));
    EXPECT_EQ(read(stream_.get(), 1), "");
    write(stream_.get(), "tail");
    EXPECT_TRUE(all() == "head" + std::string(gap, '\0') + "tail") << gap;
  }
}

TEST_F(Stream, WhatWasCutOffDoesNotComeBack) {
  for (const bool committed : {false, true}) {
    for (const std::size_t cut : {0, 10, 65536, 65537, 100000}) {
      check(stream_->SetSize(0));
      seek(stream_.get(), 0);
      const std::string bytes = pattern(150000);
      write(stream_.get(), bytes);
      if (committed) check(root_->Commit(STGC_DEFAULT));
      check(stream_->SetSize(cut));
      check(stream_->SetSize(160000));
      EXPECT_TRUE(all() == bytes.substr(0, cut) + std::string(160000 - cut, '\0')) << committed << " " << cut;
    }
  }
}

TEST_F(Stream, SizesAndPositions) {
  write(stream_.get(), "0123456789");
  EXPECT_EQ(position(), 10u);
  STATSTG stat;
  check(stream_->Stat(&stat));
  EXPECT_EQ(stat.size, 10u) << "buffered bytes count";
  EXPECT_EQ(stat.name, BString(u"S"));
  std::uint64_t at = 99;
  check(stream_->Seek(-3, StreamSeek::End, &at));
  EXPECT_EQ(at, 7u);
  EXPECT_EQ(read(stream_.get(), 100), "789") << "a short read is a success";
  EXPECT_EQ(stream_->Seek(-11, StreamSeek::Current, nullptr), STG_E_INVALIDFUNCTION);
  EXPECT_EQ(position(), 10u) << "a refused move moves nothing";
  check(stream_->Seek(INT64_MAX, StreamSeek::Set, nullptr));
  EXPECT_EQ(stream_->Seek(1, StreamSeek::Current, nullptr), STG_E_INVALIDFUNCTION);
  EXPECT_EQ(read(stream_.get(), 1), "");
  EXPECT_EQ(stream_->Write("x", 1, nullptr), STG_E_MEDIUMFULL);
  EXPECT_EQ(stream_->Seek(0, static_cast<StreamSeek>(3), nullptr), STG_E_INVALIDFUNCTION);
  EXPECT_EQ(stream_->Read(nullptr, 0, nullptr), S_OK);
}

TEST_F(Stream, ModesDecideWhatIsAllowed) {
  write(stream_.get(), "text");
  stream_ = nullptr;
  std::uint32_t count = 99;
  char byte = 0;
  stream_ = openStream(root_.get(), u"S", kRead);
  EXPECT_EQ(stream_->Write("x", 1, &count), STG_E_ACCESSDENIED);
  EXPECT_EQ(count, 0u);
  EXPECT_EQ(stream_->SetSize(1), STG_E_ACCESSDENIED);
  EXPECT_EQ(all(), "text");
  EXPECT_EQ(stream_->Write("x", 1, &count), STG_E_ACCESSDENIED) << "also with the page at hand";
  stream_ = nullptr;
  stream_ = openStream(root_.get(), u"S", STGM_WRITE | STGM_SHARE_EXCLUSIVE);
  EXPECT_EQ(stream_->Read(&byte, 1, &count), STG_E_ACCESSDENIED);
  write(stream_.get(), "TE");
  EXPECT_EQ(stream_->Read(&byte, 1, &count), STG_E_ACCESSDENIED);
  stream_ = nullptr;
  EXPECT_EQ(get(root_.get(), u"S"), "TExt");
}

// Against a string in memory: reads, writes, moves and sizes at random, with commits between them.
TEST_F(Stream, BehavesLikeBytesInMemory) {
  std::mt19937 random(7);
  const auto below = [&](std::uint32_t limit) { return static_cast<std::uint32_t>(random() % limit); };
  std::string model;
  std::size_t at = 0;
  for (int step = 0; step < 20000; ++step) {
    const std::uint32_t length = below(10) == 0 ? below(150000) : below(100);
    switch (below(8)) {
      case 0:
      case 1:
      case 2: {
        const std::string bytes = pattern(length, static_cast<std::uint32_t>(step));
        if (at > 400000) break;
        write(stream_.get(), bytes);
        if (length > 0 && model.size() < at + length) model.resize(at + length);
        model.replace(at, length, bytes);
        at += length;
        break;
      }
      case 3:
      case 4:
      case 5: {
        const std::string expected = at < model.size() ? model.substr(at, length) : "";
        ASSERT_TRUE(read(stream_.get(), length) == expected) << step;
        at += expected.size();
        break;
      }
      case 6:
        at = below(static_cast<std::uint32_t>(model.size()) + 1000);
        seek(stream_.get(), static_cast<std::int64_t>(at));
        break;
      default:
        if (below(10) == 0) {
          model.resize(below(500000));
          check(stream_->SetSize(model.size()));
        } else if (below(100) == 0) {
          check(root_->Commit(STGC_DEFAULT));
        }
    }
  }
  EXPECT_TRUE(all() == model);
}

}  // namespace
}  // namespace forgeyard
