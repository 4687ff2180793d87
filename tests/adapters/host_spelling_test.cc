#include "adapters/common/host_spelling.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "tests/platform/support/scratch.h"

namespace forgeyard {
namespace {

// A host with the directories /home and /usr and the drives C: and Z:.
std::optional<std::string> fakeHost(std::string_view path) {
  static const std::set<std::string, std::less<>> directories = {"home", "usr"};
  std::string result(path);
  std::replace(result.begin(), result.end(), '\\', '/');
  if (beginsWithDrive(path)) {
    if (path[0] != 'C' && path[0] != 'Z') return std::nullopt;
    return (path[0] == 'C' ? "/c" : "") + result.substr(2);
  }
  const std::string first = result.substr(1, result.find('/', 1) - 1);
  return directories.contains(first) ? std::optional(result) : std::nullopt;
}

TEST(SpellPathsInArgument, RespellsPathsAndNothingElse) {
  const struct {
    const char* name;
    const char* argument;
    const char* expected;
  } cases[] = {
      {"whole path", R"(\home\u\a.c)", "/home/u/a.c"},
      {"first directory alone", R"(\usr)", "/usr"},
      {"blanks and other letters", R"(\home\Jörg Müller\a b.c)", "/home/Jörg Müller/a b.c"},
      {"drive", R"(C:\p\a.c)", "/c/p/a.c"},
      {"drive that isn't mapped", R"(Q:\p\a.c)", R"(Q:\p\a.c)"},
      {"behind option letters", R"(-o\home\u\a.obj)", "-o/home/u/a.obj"},
      {"drive behind option letters", R"(-IC:\inc)", "-I/c/inc"},
      {"option of one drive letter", R"(-C:\inc)", "-/c/inc"},
      {"long option", R"(--sysroot=\usr\mips)", "--sysroot=/usr/mips"},
      {"option with a slash", R"(/Fo\home\a.obj)", "/Fo/home/a.obj"},
      {"behind a comma and an equals sign", R"(-Wl,-Map=\home\u\a.map)", "-Wl,-Map=/home/u/a.map"},
      {"several paths", R"(\home\a.obj,\home\a.sym,,C:\a.lst)", "/home/a.obj,/home/a.sym,,/c/a.lst"},
      {"pair of paths", R"(-fdebug-prefix-map=\home\u=\usr\src)", "-fdebug-prefix-map=/home/u=/usr/src"},
      {"response file", R"(@\home\u\list)", "@/home/u/list"},
      {"option behind a path", R"(-Wl,-L\home\lib,-lx)", "-Wl,-L/home/lib,-lx"},
      {"comma in a name", R"(\home\a,b\c.c)", "/home/a,b/c.c"},
      {"equals sign in a name", R"(-I\home\a=b\inc)", "-I/home/a=b/inc"},
      {"trailing separator", R"(\home\a.obj,)", "/home/a.obj,"},
      {"list", R"(PATHS=\home\a;\usr\b)", "PATHS=/home/a;/usr/b"},
      {"line feed", R"(\n)", R"(\n)"},
      {"expression", R"(s/\(a\)/\1/g)", R"(s/\(a\)/\1/g)"},
      {"expression in the middle", R"(^\homeless)", R"(^\homeless)"},
      {"dots are no directory", R"(\.)", R"(\.)"},
      {"no name at all", R"(\)", R"(\)"},
      {"network share", R"(\\home\u)", R"(\\home\u)"},
      {"quoted macro", R"(-DX="a\home")", R"(-DX="a\home")"},
      {"relative path", R"(src\a.c)", R"(src\a.c)"},
      {"pattern before a path", R"(\n,\home\a)", R"(\n,/home/a)"},
      {"nothing", "", ""},
      {"host path", "/home/u/a.c", "/home/u/a.c"},
  };
  for (const auto& [name, argument, expected] : cases) {
    EXPECT_EQ(spellPathsInArgument(argument, fakeHost), expected) << name;
  }
}

class HostSpellingTest : public testing::Test {
 protected:
  HostSpellingTest() {
    std::filesystem::create_directories(scratch_ / "My Dir");
    writeFile(scratch_ / "My Dir/Main.c", "");
    registry_.emplace(Registry::parse(
        "[HKEY_CURRENT_USER\\Software\\Korvel\\Build Tool\\Drives]\nC:=" + scratch_.path() + "\n"));
    spelling_.emplace(*registry_);
  }
  std::string model(const std::string& rest) const {
    std::string text = scratch_.path() + rest;
    std::replace(text.begin(), text.end(), '/', '\\');
    return text;
  }

  ScratchDirectory scratch_;
  std::optional<UserRegistry> registry_;
  std::optional<HostSpelling> spelling_;
};

TEST_F(HostSpellingTest, FindsExistingFilesWithoutRegardToCase) {
  const std::string file = scratch_ / "My Dir/Main.c";
  EXPECT_EQ(spelling_->path(model("\\MY DIR\\main.C")), file);
  EXPECT_EQ(spelling_->path("c:\\my dir\\MAIN.c"), file);
  EXPECT_EQ(spelling_->argument("-oC:\\my dir\\new.obj"), "-o" + (scratch_ / "My Dir/new.obj"));
  EXPECT_TRUE(spelling_->isFile("C:\\my dir\\main.c"));
  EXPECT_FALSE(spelling_->isDirectory("C:\\my dir\\main.c"));
}

TEST_F(HostSpellingTest, AnOutputKeepsItsOwnName) {
  EXPECT_EQ(spelling_->outputPath(model("/My Dir/MAIN.c")), scratch_ / "My Dir/MAIN.c");
  EXPECT_EQ(spelling_->outputPath(model("/my dir/new.c")), scratch_ / "My Dir/new.c");
  EXPECT_EQ(spelling_->outputPath("new.c"), "new.c");
}

TEST_F(HostSpellingTest, LeavesAPathThatCanNameNoFile) {
  for (const char* text : {"Q:\\a.c", "\\\\server\\share\\a.c", ""}) {
    EXPECT_EQ(spelling_->path(text), text);
    EXPECT_EQ(spelling_->outputPath(text), text);
  }
}

}  // namespace
}  // namespace forgeyard
