#include "engine/component/macro_map.h"

#include <gtest/gtest.h>

#include "tests/support/memory_files.h"

namespace forgeyard {
namespace {

class Macros : public testing::Test {
 protected:
  Macros() {
    map.set(Macro::CIntDir, u"\\p\\obj\\");
    map.set(Macro::COutDir, u"\\p\\out\\");
    map.set(Macro::OutDir, u"\\p\\obj\\");
    map.set(Macro::WorkDir, u"\\p");
    map.set(Macro::FileFullPathList, u"");
    map.set(Macro::OutFileFullPathList, u"");
    map.setFile(u"\\p\\src\\a.b.c");
  }
  MacroMap map;
};

TEST_F(Macros, AreReplacedInOneCommand) {
  struct Case {
    const char16_t* text;
    const char16_t* expanded;
  };
  for (const auto& [text, expanded] : {
           Case{u"cc $(FileFullPath) -o$(OutDir)$(FileName).obj", u"cc \\p\\src\\a.b.c -o\\p\\obj\\a.b.obj"},
           Case{u"$(File)$(File)", u"a.b.ca.b.c"},
           Case{u"$(InDir)|$(FileExt)", u"\\p\\src\\|.c"},
           Case{u"$(file) $(Nope) $(", u"$(file) $(Nope) $("},
           Case{u"$(FileFullPathList)", u""},
           Case{u"$$(WorkDir)", u"$\\p"},
       }) {
    EXPECT_EQ(map.expand(text), BString(expanded));
  }
}

TEST_F(Macros, FileWithoutExtensionHasADotForIt) {
  map.setFile(u"\\p\\makefile");
  EXPECT_EQ(map.expand(u"$(FileName)$(FileExt)"), u"makefile.");
}

TEST_F(Macros, AMacroInsideAValueIsReplacedOnlyIfItSortsLater) {
  map.set(Macro::CIntDir, u"<$(OutDir)>");
  map.set(Macro::OutDir, u"<$(CIntDir)>");
  EXPECT_EQ(map.expand(u"$(CIntDir)"), u"<<$(CIntDir)>>");
  EXPECT_EQ(map.expand(u"$(OutDir)"), u"<$(CIntDir)>");
  map.set(Macro::File, u"$(File)");
  EXPECT_EQ(map.expand(u"$(File)"), u"$(File)") << "a key never replaces itself";
}

TEST(MacroNames, AreFoundExactlyAndOnlyWithAValue) {
  MacroMap map;
  EXPECT_FALSE(map.find(u"$(OutDir)"));
  map.set(Macro::OutDir, u"");
  EXPECT_EQ(map.find(u"$(OutDir)"), Macro::OutDir);
  EXPECT_FALSE(map.find(u"$(outdir)"));
  EXPECT_FALSE(map.find(u"$(FileFullPath"));
}

TEST(Directories, BecomeAbsoluteAndAreMade) {
  struct Case {
    const char16_t* text;
    const char16_t* workingDirectory;
    const char16_t* result;
  };
  for (const auto& [text, workingDirectory, result] : {
           Case{u"obj", u"\\p", u"\\p\\obj\\"},
           Case{u"", u"\\p", u"\\p\\"},
           Case{u"..\\out\\.\\x\\", u"\\p\\q", u"\\p\\out\\x\\"},
           Case{u"\\abs\\d", u"\\p", u"\\abs\\d\\"},
           Case{u"C:\\o", u"\\p", u"C:\\o\\"},
           Case{u"r\u00E9sum\u00E9 x", u"\\p\\", u"\\p\\r\u00E9sum\u00E9 x\\"},
       }) {
    MemoryFileSystem disk;
    const ScopedFileSystem scope(disk);
    const std::u16string made = absoluteDirectory(text, workingDirectory);
    EXPECT_EQ(BString(made), BString(result));
    EXPECT_TRUE(disk.isDirectory(BString(std::u16string_view(made).substr(0, made.size() - 1))))
        << BString(made).narrow();
  }
}

TEST(Directories, LongPathsAreKept) {
  MemoryFileSystem disk;
  const ScopedFileSystem scope(disk);
  std::u16string deep = u"\\";
  deep.append(400, u'd');
  EXPECT_EQ(absoluteDirectory(u"x", deep), deep + u"\\x\\");
}

}  // namespace
}  // namespace forgeyard
