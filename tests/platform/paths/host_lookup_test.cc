#include "platform/paths/host_lookup.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "tests/platform/support/temporary_directory.h"

namespace forgeyard {
namespace {

class HostLookupTest : public testing::Test {
 protected:
  std::string model(std::string_view name) const {
    return HostPaths().toModel(directory_.path()).value() + "\\" + std::string(name);
  }
  std::optional<std::string> existing(std::string_view name) { return lookup_.existing(model(name)); }
  std::optional<std::string> resolve(std::string_view name) { return lookup_.resolve(model(name)); }

  TemporaryDirectory directory_;
  HostLookup lookup_;
};

TEST_F(HostLookupTest, FindsEachComponentWithoutRegardToCase) {
  const std::string file = directory_.put("Src/Sub Dir/Main.C");
  EXPECT_EQ(existing("SRC\\sub dir\\main.c"), file);
  EXPECT_EQ(existing("src/SUB DIR/MAIN.c"), file);
  EXPECT_EQ(existing("SRC\\.\\..\\src\\sub dir\\MAIN.C"), directory_ / "Src/./../Src/Sub Dir/Main.C");
  EXPECT_EQ(existing("src\\other.c"), std::nullopt);
  EXPECT_EQ(existing("src\\sub dir\\main.c\\x"), std::nullopt);
}

TEST_F(HostLookupTest, ExactSpellingWins) {
  directory_.put("A.C");
  const std::string exact = directory_.put("a.c");
  EXPECT_EQ(existing("a.c"), exact);
  EXPECT_EQ(existing("A.C"), directory_ / "A.C");
}

TEST_F(HostLookupTest, ExactNameWinsBelowADirectoryOfAnotherSpelling) {
  directory_.put("Src/A.C");
  const std::string exact = directory_.put("Src/a.c");
  EXPECT_EQ(existing("SRC\\a.c"), exact);
}

TEST_F(HostLookupTest, OfSeveralTheFirstInByteOrderIsTaken) {
  directory_.put("main.c");
  directory_.put("mAin.c");
  const std::string first = directory_.put("Main.c");
  EXPECT_EQ(existing("MAIN.C"), first);
}

TEST_F(HostLookupTest, FoldsLettersBeyondAscii) {
  const std::string latin = directory_.put("Caf\u00E9.c");
  const std::string russian = directory_.put("\u0416\u0443\u043A.c");
  EXPECT_EQ(existing("CAF\u00C9.C"), latin);
  EXPECT_EQ(existing("\u0436\u0423\u041A.c"), russian);
}

TEST_F(HostLookupTest, NoBreakSpaceStandsForABlankWhereNothingIsSpelledSo) {
  const std::string file = directory_.put("My Files/a b.c");
  EXPECT_EQ(existing("My\u00A0Files\\a\u00A0b.c"), file);
  const std::string exact = directory_.put("My Files/a\u00A0b.c");
  EXPECT_EQ(existing("My\u00A0Files\\a\u00A0b.c"), exact);
  EXPECT_EQ(existing("My Files\\A\u00A0B.c"), directory_ / "My Files/a b.c");
}

TEST_F(HostLookupTest, BlankDoesNotStandForANoBreakSpace) {
  directory_.put("a\u00A0b.c");
  EXPECT_EQ(existing("a b.c"), std::nullopt);
}

TEST_F(HostLookupTest, ResolvesExistingParentsOfWhatIsYetToBeMade) {
  std::filesystem::create_directories(directory_ / "Src/Out");
  EXPECT_EQ(resolve("SRC\\out\\New.obj"), directory_ / "Src/Out/New.obj");
  EXPECT_EQ(resolve("SRC\\Deep\\er\\New.obj"), directory_ / "Src/Deep/er/New.obj");
  EXPECT_EQ(resolve("src\\deep\\"), directory_ / "Src/deep/");
  EXPECT_EQ(resolve("src\\OUT\\"), directory_ / "Src/Out/");
  EXPECT_EQ(lookup_.resolve("X:\\a"), std::nullopt);
  EXPECT_EQ(lookup_.resolve("\\no such directory\\a"), "/no such directory/a");
}

TEST_F(HostLookupTest, DriveOutsideTheTableHoldsNothing) {
  directory_.put("a.c");
  EXPECT_EQ(lookup_.existing("X:\\a.c"), std::nullopt);
  HostPaths paths;
  paths.mapDrive('X', directory_.path());
  lookup_.setPaths(paths);
  EXPECT_EQ(lookup_.existing("X:\\A.C"), directory_ / "a.c");
}

TEST_F(HostLookupTest, LinkToNothingIsNoFileButKeepsItsName) {
  std::filesystem::create_symlink("nowhere", directory_ / "Link");
  EXPECT_EQ(existing("link"), std::nullopt);
  EXPECT_EQ(resolve("link"), directory_ / "Link");
}

TEST_F(HostLookupTest, FindsWhatWasMadeOrRemovedSinceTheLastLook) {
  EXPECT_EQ(existing("a.obj"), std::nullopt);
  const std::string made = directory_.put("A.OBJ");
  EXPECT_EQ(existing("a.obj"), made);
  std::filesystem::rename(made, directory_ / "A.Obj");
  EXPECT_EQ(existing("a.obj"), directory_ / "A.Obj");
  std::filesystem::remove(directory_ / "A.Obj");
  EXPECT_EQ(existing("a.obj"), std::nullopt);
}

TEST_F(HostLookupTest, ReadsNothingForAnExactName) {
  directory_.put("a.c");
  EXPECT_TRUE(existing("a.c").has_value());
  EXPECT_EQ(lookup_.cache().listings(), 0u);
}

}  // namespace
}  // namespace forgeyard
