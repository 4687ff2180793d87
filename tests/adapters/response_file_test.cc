#include "adapters/common/response_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <stdexcept>

#include "tests/adapters/scratch_tree.h"

namespace forgeyard {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

TEST(ResponseFile, AnyWordsComeBack) {
  std::mt19937 random(11);
  for (int i = 0; i < 20'000; ++i) {
    std::vector<std::string> words(random() % 4);
    for (std::string& word : words) {
      word.resize(random() % 6);
      for (char& c : word) c = "\\\"' \t\n@a"[random() % 8];
    }
    ASSERT_EQ(responseFileWords(responseFileText(words)), words) << responseFileText(words);
  }
}

TEST(ResponseFile, IsReadLikeTheGnuToolsReadIt) {
  EXPECT_THAT(responseFileWords("-DX=\"a b\" 'c\\'d'\t-o\\ p\n\n\\\\q ''"),
              ElementsAre("-DX=a b", "c'd", "-o p", "\\q", ""));
  EXPECT_THAT(responseFileWords("\"open end"), ElementsAre("open end"));
}

TEST(ResponseFile, IsForToolsKnownByName) {
  for (const char* name : {"gcc", "/usr/bin/mipsel-linux-gnu-gcc-12", "g++-4.9", "C:\\t\\mips-elf-ld.bfd",
                           "gnu-cc", "clang++", "ar", "x86_64-w64-mingw32-gcc-ar"})
    EXPECT_TRUE(readsResponseFiles(name)) << name;
  for (const char* name : {"tool", "notgcc", "gcc.sh", "gcc-wrapper", "-12", "", "TRAMLINK", "ccache"})
    EXPECT_FALSE(readsResponseFiles(name)) << name;
}

TEST(ResponseFile, IsReplacedByItsWords) {
  const ScratchTree tree;
  tree.put("inner", "b 'c d'");
  tree.put("outer", "a @" + (tree / "inner") + "\n@" + (tree / "missing"));
  tree.put("circle", "x @" + (tree / "circle"));
  tree.makeDirectory("directory");
  const std::string missing = "@" + (tree / "missing");
  const std::string directory = "@" + (tree / "directory");
  EXPECT_THAT(withResponseFiles({"gcc", "@" + (tree / "outer"), directory, "-c"}),
              ElementsAreArray({std::string("gcc"), std::string("a"), std::string("b"), std::string("c d"),
                                missing, directory, std::string("-c")}));
  EXPECT_THROW(withResponseFiles({"gcc", "@" + (tree / "circle")}), std::runtime_error);
}

}  // namespace
}  // namespace forgeyard
