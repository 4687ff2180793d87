#include "platform/threads/runtime_directory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <system_error>

#include "tests/platform/support/scratch.h"

namespace forgeyard {
namespace {

using testing::AllOf;
using testing::HasSubstr;

TEST(RuntimeDirectory, EnvironmentChoosesInOrder) {
  const ScratchDirectory scratch;
  struct Case {
    const char* name;
    std::optional<std::string> exact, session;
    std::string expected;
  };
  const Case cases[] = {
      {"exact wins", scratch / "own", scratch / "session", scratch / "own"},
      {"session", std::nullopt, scratch.path(), scratch / "forgeyard"},
      {"empty counts as unset", "", scratch.path(), scratch / "forgeyard"},
      {"neither", std::nullopt, std::nullopt, "/tmp/forgeyard-" + std::to_string(::geteuid())},
  };
  for (const Case& row : cases) {
    const ScopedVariable exact("FORGEYARD_RUNTIME_DIR", row.exact);
    const ScopedVariable session("XDG_RUNTIME_DIR", row.session);
    EXPECT_EQ(runtimeDirectory(), row.expected) << row.name;
    EXPECT_EQ(modeOf(row.expected), 0700u) << row.name;
  }
}

std::string failureFor(const std::string& directory) {
  const ScopedVariable exact("FORGEYARD_RUNTIME_DIR", directory);
  try {
    runtimeDirectory();
  } catch (const std::system_error& error) {
    return error.what();
  }
  return "";
}

TEST(RuntimeDirectory, RefusesADirectoryThatOthersControl) {
  const ScratchDirectory scratch;
  std::filesystem::create_directory(scratch / "open");
  ::chmod((scratch / "open").c_str(), 0777);
  std::filesystem::create_directory(scratch / "own");
  std::filesystem::create_symlink(scratch / "own", scratch / "link");
  writeFile(scratch / "file", "");
  EXPECT_THAT(failureFor(scratch / "open"), AllOf(HasSubstr(scratch / "open"), HasSubstr("other users")));
  EXPECT_THAT(failureFor(scratch / "link"), AllOf(HasSubstr(scratch / "link"), HasSubstr("symbolic link")));
  EXPECT_THAT(failureFor(scratch / "file"), AllOf(HasSubstr(scratch / "file"), HasSubstr("Not a directory")));
  EXPECT_THAT(failureFor(scratch / "no/such"),
              AllOf(HasSubstr(scratch / "no/such"), HasSubstr("No such file")));
}

TEST(RuntimeDirectory, RefusesADirectoryOfAnotherUser) {
  const bool isRoot = ::geteuid() == 0;
  const ScratchDirectory scratch;
  const int changed = isRoot ? ::chown(scratch.path().c_str(), 12345, 12345) : 0;
  ASSERT_EQ(changed, 0);
  const std::string foreign = isRoot ? scratch.path() : "/";
  const std::string owner = isRoot ? "12345" : "0";
  EXPECT_THAT(failureFor(foreign), HasSubstr("belongs to user " + owner));
}

}  // namespace
}  // namespace forgeyard
