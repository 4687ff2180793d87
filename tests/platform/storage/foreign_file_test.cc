#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "tests/platform/storage/image_builder.h"
#include "tests/platform/storage/storage_testing.h"
#include "tests/platform/storage/strict_reader.h"
#include "tests/support/places.h"

namespace forgeyard {
namespace {

using testing::IsEmpty;

class ForeignFile : public StorageTest {
 protected:
  static std::string goldenDirectory() {
    const char* asked = std::getenv("FORGEYARD_GOLDEN");
    return asked ? std::string(asked) : places::golden();
  }
};

TEST_F(ForeignFile, EitherSectorSizeHoweverTheSectorsLie) {
  constexpr Guid kFolder = guid("157C5E4A-3BD5-11D1-817F-00AA002676D3");
  const std::vector<ImageElement> root = {
      {.name = u"Z", .bytes = pattern(100, 1), .children = {}},
      {.name = u"Long", .bytes = pattern(50000, 2), .children = {}},
      {.name = u"Sub",
       .bytes = "",
       .storage = true,
       .children = {{.name = u"b", .bytes = pattern(4095, 3), .children = {}},
                    {.name = u"a", .bytes = pattern(4096, 4), .children = {}},
                    {.name = u"Empty", .bytes = "", .children = {}}},
       .clsid = kFolder},
      {.name = u"A", .bytes = pattern(3000, 5), .children = {}}};
  const Contents expected = {{"Z", pattern(100, 1)},
                             {"Long", pattern(50000, 2)},
                             {"A", pattern(3000, 5)},
                             {"Sub/", formatGuid(kFolder)},
                             {"Sub/b", pattern(4095, 3)},
                             {"Sub/a", pattern(4096, 4)},
                             {"Sub/Empty", ""}};
  for (const unsigned shift : {9u, 12u}) {
    for (const bool scattered : {false, true}) {
      directory_.put(
          "p.nqp", buildImage(root, {.sectorShift = shift, .scattered = scattered, .cutLastSector = false}));
      const Ref<IStorage> storage = open();
      EXPECT_THAT(findingsOf(storage.get()), IsEmpty());
      EXPECT_THAT(namesOf(storage.get()), testing::ElementsAre("A", "Z", "Sub", "Long"));
      EXPECT_TRUE(contentsOf(storage.get()) == expected) << shift << scattered;
      put(storage.get(), u"New", "n");
      check(storage->Commit(STGC_ONLYIFCURRENT));
      const StrictReading written = readStrictly(stored());
      EXPECT_THAT(written.complaints, IsEmpty());
      EXPECT_EQ(written.contents.size(), expected.size() + 1);
    }
  }
}

TEST_F(ForeignFile, ReferenceProjectsShowTheirElements) {
  for (const char* name : {"minimal", "old_records", "two_folders"}) {
    const std::string base = goldenDirectory() + "/projects/" + name;
    const auto description = nlohmann::json::parse(std::ifstream(base + ".json"));
    std::filesystem::copy_file(base + ".nqp", host());
    const Ref<IStorage> root = open(kReadRoot);
    EXPECT_THAT(findingsOf(root.get()), IsEmpty()) << name;
    const std::vector<STATSTG> elements = elementsOf(root.get());
    const auto& expected = description["root_elements"];
    ASSERT_EQ(elements.size(), expected.size()) << name;
    for (std::size_t i = 0; i < elements.size(); ++i) {
      EXPECT_EQ(elements[i].name.narrow(), expected[i]["name"]) << name;
      const bool stream = expected[i]["kind"] == "stream";
      ASSERT_EQ(elements[i].type == StgType::Stream, stream) << name;
      if (stream) {
        EXPECT_EQ(elements[i].size, expected[i]["size"]) << name;
        EXPECT_EQ(get(root.get(), elements[i].name).size(), expected[i]["size"]) << name;
      } else {
        EXPECT_EQ("{" + formatGuid(elements[i].clsid) + "}", expected[i]["clsid"]) << name;
        EXPECT_THAT(elementsOf(openStorage(root.get(), elements[i].name, kRead).get()),
                    testing::Not(IsEmpty()));
      }
    }
    std::filesystem::remove(host());
  }
}

// A file of another writer, made with `gsf createole`, of a text of 5,000 bytes, a short one and a directory.
TEST_F(ForeignFile, AFileOfAnotherWriterOpens) {
  std::filesystem::copy_file(places::storageSamples() + "/other_writer.ole", host());
  const Ref<IStorage> root = open();
  EXPECT_THAT(findingsOf(root.get()), IsEmpty());
  const Contents contents = contentsOf(root.get());
  EXPECT_EQ(contents.at("short.txt"), "a short text\n");
  EXPECT_EQ(contents.at("inner/deep.txt"), "deep\n");
  EXPECT_EQ(contents.at("long.txt").size(), 5000u);
}

// With the programs installed, other implementations read what we write, and we what they write.
class OtherPrograms : public StorageTest {
 protected:
  static bool has(const std::string& command) {
    return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
  }

  std::string output(const std::string& command) const {
    EXPECT_EQ(std::system(("cd '" + directory_.path() + "' && " + command + " >out 2>&1").c_str()), 0)
        << stored("out");
    return stored("out");
  }

  void writeSample() const {
    const Ref<IStorage> root = create();
    put(root.get(), u"Short", pattern(300));
    put(root.get(), u"Long", pattern(9'000'000));
    for (int i = 0; i < 50; ++i) {
      const Ref<IStorage> sub =
          createStorage(root.get(), BString::fromNarrow("Component" + std::to_string(i)), kCreate);
      put(sub.get(), u"Settings", std::to_string(i));
    }
    check(root->Commit(STGC_DEFAULT));
  }
};

TEST_F(OtherPrograms, GsfReadsOurFilesAndWeReadItsFiles) {
  if (!has("gsf --version")) GTEST_SKIP() << "gsf (package libgsf-bin) is not installed";
  writeSample();
  const std::string list = output("gsf list p.nqp");
  EXPECT_THAT(list, testing::HasSubstr("Component49"));
  EXPECT_TRUE(output("gsf cat p.nqp Short") == pattern(300));
  EXPECT_TRUE(output("gsf cat p.nqp Long") == pattern(9'000'000));
  EXPECT_EQ(output("gsf cat p.nqp Component37/Settings"), "37");

  directory_.put("in/large.bin", pattern(8'000'000, 3));
  directory_.put("in/small.bin", pattern(70, 4));
  output("gsf createole made.ole in/large.bin in/small.bin");
  const Contents made = contentsOf(open(kReadRoot, "made.ole").get());
  EXPECT_TRUE(made == (Contents{{"large.bin", pattern(8'000'000, 3)}, {"small.bin", pattern(70, 4)}}));
}

TEST_F(OtherPrograms, OlefileReadsOurFiles) {
  std::string python;
  for (const char* candidate : {"python3", "/usr/bin/python3"}) {
    if (python.empty() && has(candidate + std::string(" -c 'import olefile'"))) python = candidate;
  }
  if (python.empty()) GTEST_SKIP() << "python3-olefile is not installed";
  writeSample();
  directory_.put("read.py",
                 "import olefile, sys\n"
                 "ole = olefile.OleFileIO('p.nqp', raise_defects=olefile.DEFECT_POTENTIAL)\n"
                 "assert len(ole.listdir()) == 52, ole.listdir()\n"
                 "assert ole.openstream('Component7/Settings').read() == b'7'\n"
                 "sys.stdout.buffer.write(ole.openstream('Long').read())\n");
  EXPECT_TRUE(output(python + " read.py") == pattern(9'000'000));
}

}  // namespace
}  // namespace forgeyard
