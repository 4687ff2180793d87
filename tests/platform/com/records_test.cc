#include "platform/storage/records/records.h"

#include <functional>
#include <vector>

#include "tests/platform/com/live_objects.h"
#include "tests/platform/com/memory_stream.h"

namespace forgeyard {
namespace {

using namespace std::string_literals;

HRESULT statusOf(const std::function<void()>& work) {
  return guard([&] { work(); });
}

std::string written(const std::function<void(RecordWriter&)>& write) {
  const auto stream = make<MemoryStream>();
  RecordWriter writer(stream.get());
  write(writer);
  EXPECT_EQ(stream->position, stream->bytes.size());
  return stream->bytes;
}

// Text of a terminator's length more than `units` in the form of the cookie table.
std::string cookieBytes(std::uint32_t count, const std::string& bytes) {
  return std::string(reinterpret_cast<const char*>(&count), sizeof count) + bytes;
}

TEST(RecordWriter, WritesEachEncodingByteForByte) {
  using Writer = RecordWriter;
  const BString terminated(std::u16string_view(u"a\0b", 3));
  const struct {
    const char* name;
    std::function<void(Writer&)> write;
    std::string bytes;
  } rows[] = {
      {"u32", [](Writer& w) { w.u32(0x80FF0201); }, "\x01\x02\xFF\x80"},
      {"i32", [](Writer& w) { w.i32(-2); }, "\xFE\xFF\xFF\xFF"},
      {"u8", [](Writer& w) { w.u8(0xFE); }, "\xFE"},
      {"empty listed string", [](Writer& w) { w.listedString(BString(u"")); }, "\0\0\0\0"s},
      {"null listed string", [](Writer& w) { w.listedString(BString()); }, "\0\0\0\0"s},
      {"listed string", [](Writer& w) { w.listedString(u"a\u20AC"); }, "\2\0\0\0a\0\xAC\x20"s},
      {"listed string with a terminator inside", [&](Writer& w) { w.listedString(terminated); },
       "\3\0\0\0a\0\0\0b\0"s},
      {"listed string beyond the basic plane", [](Writer& w) { w.listedString(u"\U0001F600"); },
       "\2\0\0\0\x3D\xD8\x00\xDE"s},
      {"null cookie string", [](Writer& w) { w.cookieString(BString()); }, "\0\0\0\0"s},
      {"empty cookie string", [](Writer& w) { w.cookieString(u""); }, "\2\0\0\0\0\0"s},
      {"cookie string", [](Writer& w) { w.cookieString(u"ab"); }, "\6\0\0\0a\0b\0\0\0"s},
  };
  for (const auto& row : rows) EXPECT_EQ(written(row.write), row.bytes) << row.name;
}

TEST(RecordWriter, FailsWhenTheMediumIsFullOrRefuses) {
  for (const std::size_t room : {0u, 3u, 4u, 7u, 9u}) {
    const auto full = make<MemoryStream>();
    full->room = room;
    EXPECT_EQ(statusOf([&] { RecordWriter(full.get()).cookieString(u"ab"); }), E_FAIL) << room;
    EXPECT_EQ(full->bytes.size(), room);
  }
  const auto refusing = make<MemoryStream>();
  refusing->writeStatus = STG_E_ACCESSDENIED;
  EXPECT_EQ(statusOf([&] { RecordWriter(refusing.get()).u8(1); }), STG_E_ACCESSDENIED);
}

TEST(Records, ReadBackWhatWasWrittenAndStopBehindIt) {
  const std::vector<BString> texts{BString(),
                                   u"",
                                   u"a",
                                   BString(std::u16string_view(u"\0", 1)),
                                   BString(std::u16string_view(u"ends in one\0", 12)),
                                   u"lone \xD800 half",
                                   std::u16string(2047, u'x'),
                                   std::u16string(2048, u'y'),
                                   std::u16string(2049, u'z'),
                                   std::u16string(100000, u'\u20AC')};
  const auto stream = make<MemoryStream>();
  RecordWriter writer(stream.get());
  for (const BString& text : texts) {
    writer.listedString(text);
    writer.cookieString(text);
    writer.u8(7);
    writer.i32(-7);
  }
  stream->position = 0;
  RecordReader reader(stream.get());
  std::u16string buffer;
  for (const BString& text : texts) {
    const std::size_t start = stream->position;
    const BString listed = reader.listedString();
    EXPECT_FALSE(listed.isNull());
    EXPECT_EQ(listed, text);
    const BString cookie = reader.cookieString();
    EXPECT_EQ(cookie.isNull(), text.isNull());
    EXPECT_EQ(cookie, text);
    EXPECT_EQ(reader.u8(), 7);
    EXPECT_EQ(reader.i32(), -7);
    const std::size_t end = stream->position;
    stream->position = start;
    EXPECT_EQ(reader.listedString(buffer), text.view());
    stream->position = end;
  }
  EXPECT_EQ(stream->position, stream->bytes.size());
}

TEST(RecordReader, FailsForARecordThatBreaksOffAtAnyByte) {
  const struct {
    const char* name;
    std::string whole;
    std::function<void(RecordReader&)> read;
  } rows[] = {
      {"u32", "\1\2\3\4", [](RecordReader& r) { r.u32(); }},
      {"u8", "\1", [](RecordReader& r) { r.u8(); }},
      {"listed string", "\3\0\0\0a\0b\0c\0"s, [](RecordReader& r) { r.listedString(); }},
      {"cookie string", "\6\0\0\0a\0b\0\0\0"s, [](RecordReader& r) { r.cookieString(); }},
      {"long listed string", "\x01\x10\0\0"s + std::string(2 * 0x1001, 'x'),
       [](RecordReader& r) { r.listedString(); }},
      {"long cookie string", "\x02\x10\0\0"s + std::string(0x1002, 'x'),
       [](RecordReader& r) { r.cookieString(); }},
      {"count", "\2\0\0\0abcdefgh"s, [](RecordReader& r) { r.count(4); }},
  };
  for (const auto& row : rows) {
    for (std::size_t length = 0; length <= row.whole.size(); ++length) {
      const auto stream = make<MemoryStream>(row.whole.substr(0, length));
      RecordReader reader(stream.get());
      EXPECT_EQ(statusOf([&] { row.read(reader); }), length == row.whole.size() ? S_OK : E_FAIL)
          << row.name << " of " << length << " bytes";
    }
  }
}

TEST(RecordReader, RefusesCountsBeyondTheStreamBeforeItReservesAnything) {
  for (const std::uint32_t count :
       {0x00001000u, 0x7FFFFFFFu, 0x80000000u, 0x80000001u, 0xFFFFFFFEu, 0xFFFFFFFFu}) {
    const std::string damaged = cookieBytes(count, "a few bytes");
    const auto expectRefused = [&](const char* name, const std::function<void(RecordReader&)>& read) {
      const auto stream = make<MemoryStream>(damaged);
      RecordReader reader(stream.get());
      EXPECT_EQ(statusOf([&] { read(reader); }), E_FAIL) << name << " " << count;
      EXPECT_EQ(stream->mostAsked, sizeof count) << name << " " << count;
    };
    expectRefused("listed string", [](RecordReader& r) { r.listedString(); });
    expectRefused("cookie string", [](RecordReader& r) { r.cookieString(); });
    expectRefused("count of bytes", [](RecordReader& r) { r.count(1); });
    expectRefused("count of records", [](RecordReader& r) { r.count(0xFFFFFFFF); });
  }
}

TEST(RecordReader, CountsFromWhereTheStreamStands) {
  const auto stream = make<MemoryStream>("skip\3\0\0\0"s + "aabbcc");
  stream->position = 4;
  EXPECT_EQ(RecordReader(stream.get()).count(2), 3u);
  EXPECT_EQ(stream->position, 8u);
  stream->position = 4;
  EXPECT_EQ(statusOf([&] { RecordReader(stream.get()).count(3); }), E_FAIL);
  stream->position = 100;
  EXPECT_EQ(statusOf([&] { RecordReader(stream.get()).count(0); }), E_FAIL);
}

TEST(RecordReader, ReadsDamagedCookieStringsAsFarAsTheyAreText) {
  const struct {
    const char* name;
    std::string record;
    BString text;
  } rows[] = {
      {"without terminator", cookieBytes(4, "a\0b\0"s), u"ab"},
      {"half a unit", cookieBytes(1, "a"), u""},
      {"a unit and a half", cookieBytes(3, "a\0b"s), u"a"},
      {"half a unit behind the terminator", cookieBytes(5, "a\0\0\0x"s), u"a"},
      {"two terminators", cookieBytes(6, "a\0\0\0\0\0"s), BString(std::u16string_view(u"a\0", 2))},
  };
  for (const auto& row : rows) {
    const auto stream = make<MemoryStream>(row.record + "next");
    const BString read = RecordReader(stream.get()).cookieString();
    EXPECT_EQ(read, row.text) << row.name;
    EXPECT_FALSE(read.isNull()) << row.name;
    EXPECT_EQ(stream->position, row.record.size()) << row.name;
  }
}

TEST(RecordReader, PassesOnTheStatusOfTheStream) {
  const auto stream = make<MemoryStream>("\1\0\0\0");
  stream->readStatus = STG_E_DOCFILECORRUPT;
  EXPECT_EQ(statusOf([&] { RecordReader(stream.get()).u32(); }), STG_E_DOCFILECORRUPT);
}

// Says that it has more than it gives: what a damaged file with a whole directory looks like.
TEST(RecordReader, FailsForAStreamThatHasLessThanItSays) {
  struct Boastful final : ComObject<IStream> {
    HRESULT Read(void* out, std::uint32_t count, std::uint32_t* read) override {
      if (served_ || count != 4) return STG_E_DOCFILECORRUPT;
      served_ = true;
      const std::uint32_t units = 5000;
      std::memcpy(out, &units, sizeof units);
      *read = 4;
      return S_OK;
    }
    HRESULT Write(const void*, std::uint32_t, std::uint32_t*) override { return E_NOTIMPL; }
    HRESULT Seek(std::int64_t, StreamSeek, std::uint64_t* position) override {
      *position = 4;
      return S_OK;
    }
    HRESULT SetSize(std::uint64_t) override { return E_NOTIMPL; }
    HRESULT Commit(std::uint32_t) override { return E_NOTIMPL; }
    HRESULT Stat(STATSTG* out) override {
      out->size = UINT64_MAX;
      return S_OK;
    }
    bool served_ = false;
  };
  const auto stream = make<Boastful>();
  EXPECT_EQ(statusOf([&] { RecordReader(stream.get()).listedString(); }), STG_E_DOCFILECORRUPT);
}

}  // namespace
}  // namespace forgeyard
