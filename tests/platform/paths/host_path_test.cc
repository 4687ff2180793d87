#include "platform/paths/host_path.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>

namespace forgeyard {
namespace {

using testing::HasSubstr;

HostPaths withDrives() {
  HostPaths paths;
  EXPECT_TRUE(paths.mapDrive("C:", "/home/u/drive c/"));
  EXPECT_TRUE(paths.mapDrive('d', "/home/u/drive c/deep"));
  return paths;
}

TEST(HostPaths, SpellsModelPathsForTheHost) {
  struct Case {
    std::string_view model;
    std::optional<std::string> host;
  };
  using namespace std::string_view_literals;
  const Case cases[] = {
      {R"(\home\u\p)", "/home/u/p"},
      {R"(\)", "/"},
      {R"(src\a.c)", "src/a.c"},
      {R"(src/sub\a.c)", "src/sub/a.c"},
      {R"(\a\\b\)", "/a//b/"},
      {R"(Z:\home)", "/home"},
      {"z:", "/"},
      {R"(C:\p\a.c)", "/home/u/drive c/p/a.c"},
      {"c:/p", "/home/u/drive c/p"},
      {"C:p", "/home/u/drive c/p"},
      {R"(D:\)", "/home/u/drive c/deep/"},
      {R"(X:\p)", std::nullopt},
      {R"(1:\p)", std::nullopt},
      {R"(\\srv\share\a)", std::nullopt},
      {"//srv/share", std::nullopt},
      {"", std::nullopt},
      {"a\0b"sv, std::nullopt},
      {R"(.\c:x)", "./c:x"},
  };
  const HostPaths paths = withDrives();
  for (const Case& c : cases) EXPECT_EQ(paths.toHost(c.model), c.host) << c.model;
}

TEST(HostPaths, HostPathsComeBackFromTheModel) {
  constexpr std::string_view kPaths[] = {"/home/u/p", "/",  "src/a.c",    "/a//b/", "./x",    "../x",
                                         "c:x",       "C:", "/home/c:/x", "a b",    "\u00E9", "\xFF"};
  const HostPaths paths = withDrives();
  for (const std::string_view host : kPaths) {
    for (const auto spelling : {HostPaths::Spelling::Plain, HostPaths::Spelling::Drive}) {
      const std::optional<std::string> model = paths.toModel(host, nullptr, spelling);
      ASSERT_TRUE(model.has_value()) << host;
      const std::string relative = host.size() >= 2 && host[1] == ':' ? "./" : "";
      EXPECT_EQ(paths.toHost(*model), relative + std::string(host)) << *model;
    }
  }
}

TEST(HostPaths, UsesTheDriveOnlyWhenAsked) {
  const HostPaths paths = withDrives();
  const auto drive = [&](std::string_view host) {
    return paths.toModel(host, nullptr, HostPaths::Spelling::Drive);
  };
  EXPECT_EQ(paths.toModel("/home/u/drive c/p"), R"(\home\u\drive c\p)");
  EXPECT_EQ(drive("/home/u/drive c/p"), R"(C:\p)");
  EXPECT_EQ(drive("/home/u/drive c"), R"(C:\)");
  EXPECT_EQ(drive("/home/u/drive c/deep/x"), R"(D:\x)");
  EXPECT_EQ(drive("/home/u/drive cx"), R"(\home\u\drive cx)");
  EXPECT_EQ(drive("/etc"), R"(\etc)");
}

TEST(HostPaths, NeverMakesANetworkShareOfAHostPath) {
  EXPECT_EQ(HostPaths().toModel("//home//u"), R"(\home\\u)");
}

TEST(HostPaths, RefusesABackslashInAHostNameAndSaysWhich) {
  std::string error;
  EXPECT_EQ(HostPaths().toModel("/home/u/a\\b.c/x", &error), std::nullopt);
  EXPECT_THAT(error, HasSubstr("/home/u/a\\b.c/x"));
  EXPECT_THAT(error, HasSubstr("\"a\\b.c\""));
  EXPECT_EQ(HostPaths().toModel("", &error), std::nullopt);
  EXPECT_THAT(error, HasSubstr("empty"));
}

TEST(HostPaths, DriveTableTakesOnlyDrivesAndAbsoluteDirectories) {
  HostPaths paths;
  EXPECT_FALSE(paths.mapDrive("CC:", "/x"));
  EXPECT_FALSE(paths.mapDrive("1:", "/x"));
  EXPECT_FALSE(paths.mapDrive("C", "/x"));
  EXPECT_FALSE(paths.mapDrive("C:", "relative"));
  EXPECT_EQ(paths.drive('c'), std::nullopt);
  EXPECT_EQ(paths.drive('z'), "/");
  EXPECT_TRUE(paths.mapDrive("Z:", "/mnt"));
  EXPECT_EQ(paths.toHost("Z:\\a"), "/mnt/a");
  EXPECT_TRUE(paths.mapDrive("Z:", ""));
  EXPECT_EQ(paths.toHost("Z:\\a"), std::nullopt);
  EXPECT_TRUE(paths.mapDrive("E:", "//"));
  EXPECT_EQ(paths.toHost("E:\\a"), "/a");
}

}  // namespace
}  // namespace forgeyard
