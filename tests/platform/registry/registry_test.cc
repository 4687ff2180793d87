#include "platform/registry/registry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <string>
#include <string_view>

#include "platform/registry/registry_paths.h"

namespace forgeyard {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::string_view kText = R"(; Forgeyard's registry
[HKEY_CURRENT_USER\Software\Korvel]
Home=\home\u\forgeyard
@=unnamed

; tools
[HKEY_CURRENT_USER\Software\Korvel\Build Tool\Compilers]
  PSX  =  cc -x "a b" -DX=1
Zeta=z
alpha=a
[HKEY_CURRENT_USER\Software\Korvel\Build Tool\Targets]
)";

TEST(Registry, ReadsValuesByKeyAndNameWithoutRegardToCase) {
  const Registry registry = Registry::parse(kText);
  EXPECT_EQ(registry.value(registry_keys::kKorvel, "Home"), R"(\home\u\forgeyard)");
  EXPECT_EQ(registry.value("software\\KORVEL", "HOME"), R"(\home\u\forgeyard)");
  EXPECT_EQ(registry.value("HKEY_CURRENT_USER\\Software\\Korvel", ""), "unnamed");
  EXPECT_EQ(registry.value(registry_keys::kCompilers, "psx"), R"(cc -x "a b" -DX=1)");
  EXPECT_EQ(registry.value(registry_keys::kCompilers, "other"), std::nullopt);
  EXPECT_EQ(registry.value(registry_keys::kCompilers, ""), std::nullopt);
}

TEST(Registry, TellsAMissingKeyFromAnEmptyOne) {
  const Registry registry = Registry::parse(kText);
  ASSERT_TRUE(registry.open(registry_keys::kTargets).has_value());
  EXPECT_THAT(registry.open(registry_keys::kTargets)->valueNames(), IsEmpty());
  EXPECT_FALSE(registry.open(registry_keys::kAssemblers).has_value());
  EXPECT_TRUE(registry.open("Software").has_value()) << "a key above a section exists";
  EXPECT_FALSE(registry.open("Software\\Kor").has_value());
  EXPECT_TRUE(Registry().open("").has_value());
}

TEST(Registry, KeepsTheOrderOfNames) {
  const Registry registry = Registry::parse(kText);
  EXPECT_THAT(registry.open(registry_keys::kCompilers)->valueNames(), ElementsAre("PSX", "Zeta", "alpha"));
  EXPECT_THAT(registry.open(registry_keys::kKorvel)->valueNames(), ElementsAre("Home", ""));
  EXPECT_THAT(registry.open("Software\\Korvel\\Build Tool")->subkeys(), ElementsAre("Compilers", "Targets"));
  EXPECT_THAT(registry.open("")->subkeys(), ElementsAre("Software"));
}

TEST(Registry, KeepsAndIgnoresDamagedLines) {
  constexpr std::string_view kDamaged =
      "stray=1\n[HKEY_CURRENT_USER\\a]\nx=1\nno equals sign\n=no name\n[HKEY_CURRENT_USER\\b\ny=2\n"
      "[]\nz=3\n[HKEY_CURRENT_USER\\c]\nw=4";
  Registry registry = Registry::parse(kDamaged);
  EXPECT_EQ(registry.text(), kDamaged);
  EXPECT_THAT(registry.open("a")->valueNames(), ElementsAre("x"));
  EXPECT_FALSE(registry.open("b").has_value());
  EXPECT_EQ(registry.value("a", "y"), std::nullopt) << "its section's line is damaged";
  EXPECT_EQ(registry.value("c", "w"), "4");
  registry.setValue("c", "v", "5");
  EXPECT_EQ(registry.text(), std::string(kDamaged) + "\nv=5\n");
}

TEST(Registry, LastOfSeveralValuesCountsAndSectionsWithOneNameAreOneKey) {
  Registry registry = Registry::parse(
      "[HKEY_CURRENT_USER\\a]\nx=1\ny=1\nX=2\n[HKEY_CURRENT_USER\\b]\n[HKEY_CURRENT_USER\\A]\nz=3\n");
  EXPECT_EQ(registry.value("a", "x"), "2");
  EXPECT_THAT(registry.open("a")->valueNames(), ElementsAre("x", "y", "z"));
  registry.setValue("a", "x", "4");
  EXPECT_EQ(registry.value("a", "x"), "4");
  EXPECT_TRUE(registry.removeValue("a", "x"));
  EXPECT_EQ(registry.value("a", "x"), std::nullopt);
}

TEST(Registry, ChangesOnlyTheLineThatChanges) {
  Registry registry = Registry::parse(kText);
  registry.setValue(registry_keys::kCompilers, "psx", "new");
  registry.setValue(registry_keys::kKorvel, "Later", "1");
  registry.setValue(registry_keys::kCompilers, "Zeta", "z");
  std::string expected(kText);
  expected.replace(expected.find("  PSX"), std::string_view("  PSX  =  cc -x \"a b\" -DX=1").size(),
                   "PSX=new");
  expected.insert(expected.find("\n; tools"), "Later=1\n");
  EXPECT_EQ(registry.text(), expected);
}

TEST(Registry, WritesANewFileThatReadsWell) {
  Registry registry;
  registry.setValue(registry_keys::kKorvel, "Home", R"(\opt\forgeyard)");
  registry.setValue(registry_keys::kDrives, "C:", "/home/u/c");
  registry.createKey(registry_keys::kDrives);
  registry.setValue(registry_keys::kKorvel, "", "x");
  EXPECT_EQ(registry.text(), R"([HKEY_CURRENT_USER\Software\Korvel]
Home=\opt\forgeyard
@=x

[HKEY_CURRENT_USER\Software\Korvel\Build Tool\Drives]
C:=/home/u/c
)");
}

TEST(Registry, RemovesAKeyWithAllBelowAndKeepsForeignComments) {
  Registry registry = Registry::parse(kText);
  EXPECT_TRUE(registry.removeKey("Software\\Korvel\\Build Tool"));
  EXPECT_EQ(registry.text(), kText.substr(0, kText.find("[HKEY_CURRENT_USER\\Software\\Korvel\\Build")));
  EXPECT_FALSE(registry.open(registry_keys::kCompilers).has_value());
  EXPECT_FALSE(registry.removeKey("Software\\Korvel\\Build Tool"));
  EXPECT_FALSE(registry.removeValue(registry_keys::kKorvel, "none"));
}

TEST(Registry, LeavesNoBlankLinesOfItsOwnWhenKeysComeAndGo) {
  Registry registry = Registry::parse(kText);
  for (const char* key : {"HKEY_CLASSES_ROOT\\a", "HKEY_CLASSES_ROOT\\a\\b", "HKEY_CLASSES_ROOT\\c"}) {
    registry.setValue(key, "", "text");
  }
  EXPECT_TRUE(registry.removeKey("HKEY_CLASSES_ROOT\\a"));
  EXPECT_TRUE(registry.removeKey("HKEY_CLASSES_ROOT\\c"));
  EXPECT_EQ(registry.text(), kText);
}

TEST(Registry, KeepsLineEndsAndTheByteOrderMark) {
  Registry registry = Registry::parse("\xEF\xBB\xBF[HKEY_CURRENT_USER\\a]\r\nx=1\r\n");
  EXPECT_EQ(registry.value("a", "x"), "1");
  registry.setValue("a", "y", "2");
  EXPECT_EQ(registry.text(), "\xEF\xBB\xBF[HKEY_CURRENT_USER\\a]\r\nx=1\r\ny=2\r\n");
}

TEST(Registry, EscapesOnlyWhatWouldBeMisread) {
  struct Case {
    std::string_view name, text, line;
  };
  using namespace std::string_view_literals;
  constexpr Case kCases[] = {
      {"plain name", "a=b ; c [d] @ 100% %41 %zz", "plain name=a=b ; c [d] @ 100% %41 %zz"},
      {"x", " blanks ", "x=%20blanks%20"},
      {"x", "two\nlines\r", "x=two%0Alines%0D"},
      {"x", "%20 is %0a", "x=%2520 is %250a"},
      {"x", "a\0b"sv, "x=a%00b"},
      {"x", "", "x="},
      {"a=b", "1", "a%3Db=1"},
      {"@", "1", "%40=1"},
      {"@x", "1", "@x=1"},
      {";x", "1", "%3Bx=1"},
      {"[x]", "1", "%5Bx]=1"},
      {" ", "\t", "%20=%09"},
  };
  for (const Case& c : kCases) {
    Registry registry;
    registry.setValue("k", c.name, c.text);
    EXPECT_EQ(registry.text(), "[HKEY_CURRENT_USER\\k]\n" + std::string(c.line) + "\n");
    EXPECT_EQ(Registry::parse(registry.text()).value("k", c.name), std::string(c.text)) << c.line;
  }
}

TEST(Registry, AnyNamesAndTextsComeBack) {
  constexpr std::string_view LETTERS("aB%20=;@[]\\ \t\n\r\0\xC3", 17);
  std::mt19937 random(9);
  const auto text = [&](std::size_t least) {
    std::string result(least + random() % 6, '\0');
    for (char& c : result) c = LETTERS[random() % LETTERS.size()];
    return result;
  };
  for (int i = 0; i < 20'000; ++i) {
    const std::string key = "k" + text(0) + "k";
    const std::string name = text(0);
    const std::string data = text(0);
    Registry registry;
    registry.setValue(key, name, data);
    const Registry again = Registry::parse(registry.text());
    ASSERT_EQ(again.value(key, name), data) << registry.text();
    ASSERT_THAT(again.open(key)->valueNames(), ElementsAre(name)) << registry.text();
  }
}

TEST(Registry, SurvivesBeingMoved) {
  Registry registry = Registry::parse("[HKEY_CURRENT_USER\\a]\nx=1\n");
  registry.setValue("a", "y", "2");
  Registry moved = std::move(registry);
  EXPECT_EQ(moved.value("a", "x"), "1");
  EXPECT_EQ(moved.text(), "[HKEY_CURRENT_USER\\a]\nx=1\ny=2\n");
}

TEST(RegistryPaths, FillTheTableOfDrives) {
  Registry registry;
  registry.setValue(registry_keys::kDrives, "C:", "/home/u/c");
  registry.setValue(registry_keys::kDrives, "D:", "not absolute");
  registry.setValue(registry_keys::kDrives, "Z:", "");
  const HostPaths paths = hostPathsFrom(registry);
  EXPECT_EQ(paths.toHost("C:\\x"), "/home/u/c/x");
  EXPECT_EQ(paths.toHost("D:\\x"), std::nullopt);
  EXPECT_EQ(paths.toHost("Z:\\x"), std::nullopt);
  EXPECT_EQ(hostPathsFrom(Registry()).toHost("Z:\\x"), "/x");
}

}  // namespace
}  // namespace forgeyard
