#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/registry/registry.h"
#include "tests/platform/support/temporary_directory.h"

namespace forgeyard {
namespace {

using testing::HasSubstr;

class RegistryFile : public testing::Test {
 protected:
  static void set(Registry& registry) { registry.setValue("k", "x", "1"); }
  std::string message(const std::optional<RegistryError>& error) {
    return error ? error->message : "no error";
  }

  TemporaryDirectory directory_;
  std::string file_ = directory_ / "registry";
};

TEST_F(RegistryFile, MissingFileIsAnEmptyRegistry) {
  std::optional<RegistryError> error;
  EXPECT_EQ(Registry::load(file_, &error).text(), "");
  EXPECT_FALSE(error.has_value());
}

TEST_F(RegistryFile, UpdateMakesTheFileAndItsDirectories) {
  const std::string file = directory_ / "a/b/registry";
  EXPECT_EQ(Registry::update(file, set), std::nullopt);
  EXPECT_EQ(Registry::load(file).value("k", "x"), "1");
}

TEST_F(RegistryFile, UnchangedContentWritesNothing) {
  directory_.put("registry", "[HKEY_CURRENT_USER\\k]\nx=1\n");
  struct stat before {};
  ASSERT_EQ(stat(file_.c_str(), &before), 0);
  EXPECT_EQ(Registry::update(file_, set), std::nullopt);
  struct stat after {};
  ASSERT_EQ(stat(file_.c_str(), &after), 0);
  EXPECT_EQ(before.st_ino, after.st_ino);
  EXPECT_EQ(before.st_mtim.tv_nsec, after.st_mtim.tv_nsec);
}

TEST_F(RegistryFile, KeepsItsMode) {
  directory_.put("registry");
  ASSERT_EQ(chmod(file_.c_str(), 0640), 0);
  EXPECT_EQ(Registry::update(file_, set), std::nullopt);
  struct stat status {};
  ASSERT_EQ(stat(file_.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0640u);
}

TEST_F(RegistryFile, LinkStaysALink) {
  std::filesystem::create_directory(directory_ / "dotfiles");
  std::filesystem::create_symlink("dotfiles/second", file_);
  std::filesystem::create_symlink("real", directory_ / "dotfiles/second");
  EXPECT_EQ(Registry::update(file_, set), std::nullopt);
  EXPECT_TRUE(std::filesystem::is_symlink(file_));
  EXPECT_THAT(contentOf(directory_ / "dotfiles/real"), HasSubstr("x=1"));
}

TEST_F(RegistryFile, LeavesNothingButItsLockBeside) {
  directory_.put("registry.new", "left behind by a writer that was killed");
  EXPECT_EQ(Registry::update(file_, set), std::nullopt);
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(directory_.path())) {
    names.push_back(entry.path().filename().string());
  }
  EXPECT_THAT(names, testing::UnorderedElementsAre("registry", "registry.lock"));
}

TEST_F(RegistryFile, ErrorsNameTheFileAndTheReason) {
  std::filesystem::create_directory(file_);
  std::optional<RegistryError> error;
  EXPECT_EQ(Registry::load(file_, &error).text(), "");
  EXPECT_EQ(message(error), file_ + ": the registry must be a plain file");
  EXPECT_EQ(message(Registry::update(file_, set)), file_ + ": the registry must be a plain file");

  const std::string loop = directory_ / "loop";
  std::filesystem::create_symlink(loop, loop);
  EXPECT_THAT(message(Registry::update(loop, set)), HasSubstr(loop + ": "));
  EXPECT_THAT(message(Registry::update(directory_.put("file") + "/registry", set)), HasSubstr("/file"));
  EXPECT_THAT(message(Registry::update("", set)), HasSubstr("no registry file"));
}

TEST_F(RegistryFile, NeverWaitsForANamedPipe) {
  ASSERT_EQ(mkfifo(file_.c_str(), 0600), 0);
  std::optional<RegistryError> error;
  Registry::load(file_, &error);
  EXPECT_EQ(message(error), file_ + ": the registry must be a plain file");
}

TEST_F(RegistryFile, NullDeviceIsAnEmptyRegistryThatCannotBeChanged) {
  std::optional<RegistryError> error;
  EXPECT_EQ(Registry::load("/dev/null", &error).text(), "");
  EXPECT_EQ(message(error), "no error");
  std::filesystem::create_symlink("/dev/zero", directory_ / "endless");
  Registry::load(directory_ / "endless", &error);
  EXPECT_EQ(message(error), directory_ / "endless" + ": the registry is larger than 16 MB");
}

TEST_F(RegistryFile, ExceptionInTheChangeWritesNothingAndFreesTheLock) {
  directory_.put("registry", "; mine\n");
  EXPECT_THROW((void)Registry::update(file_,
                                      [](Registry& registry) {
                                        set(registry);
                                        throw std::runtime_error("stop");
                                      }),
               std::runtime_error);
  EXPECT_EQ(contentOf(file_), "; mine\n");
  EXPECT_EQ(Registry::update(file_, set), std::nullopt);
}

// A full disk, as far as a limit on the size of files is one.
TEST_F(RegistryFile, FailedWriteLeavesTheOldContent) {
  directory_.put("registry", "; mine\n");
  const pid_t child = fork();
  if (child == 0) {
    const rlimit limit{10, 10};
    setrlimit(RLIMIT_FSIZE, &limit);
    signal(SIGXFSZ, SIG_IGN);
    const auto error = Registry::update(file_, set);
    _exit(error && error->code == EFBIG ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(contentOf(file_), "; mine\n");
  EXPECT_FALSE(std::filesystem::exists(file_ + ".new"));
}

TEST_F(RegistryFile, WritersAtOnceLoseNothingAndReadersSeeWholeContent) {
  constexpr int kWriters = 4;
  constexpr int kValues = 25;
  std::vector<pid_t> children;
  for (int writer = 0; writer < kWriters; ++writer) {
    const pid_t child = fork();
    if (child == 0) {
      bool good = true;
      for (int i = 0; i < kValues; ++i) {
        const std::string name = std::to_string(writer) + "." + std::to_string(i);
        const auto error = Registry::update(file_, [&](Registry& registry) {
          registry.setValue("k", name, name);
          const std::string count = registry.value("k", "count").value_or("0");
          registry.setValue("k", "count", std::to_string(std::stoi(count) + 1));
        });
        const Registry seen = Registry::load(file_);
        good = good && !error && seen.value("k", name) == name &&
               seen.open("k")->valueNames().size() >= static_cast<std::size_t>(i) + 2;
      }
      _exit(good ? 0 : 1);
    }
    children.push_back(child);
  }
  for (const pid_t child : children) {
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
  }
  const Registry registry = Registry::load(file_);
  EXPECT_EQ(registry.value("k", "count"), std::to_string(kWriters * kValues));
  EXPECT_EQ(registry.open("k")->valueNames().size(), kWriters * kValues + 1u);
}

class Environment : public testing::Test {
 protected:
  void SetUp() override {
    for (std::size_t i = 0; i < saved_.size(); ++i) {
      const char* value = getenv(kNames[i]);
      if (value) saved_[i] = value;
      unsetenv(kNames[i]);
    }
  }
  void TearDown() override {
    for (std::size_t i = 0; i < saved_.size(); ++i) {
      if (saved_[i]) {
        setenv(kNames[i], saved_[i]->c_str(), 1);
      } else {
        unsetenv(kNames[i]);
      }
    }
  }

  static constexpr std::array<const char*, 3> kNames = {"FORGEYARD_REGISTRY", "XDG_CONFIG_HOME", "HOME"};
  std::array<std::optional<std::string>, 3> saved_;
};

TEST_F(Environment, NamesTheFileInThreeSteps) {
  EXPECT_EQ(Registry::defaultFile(), "");
  setenv("HOME", "/home/u", 1);
  EXPECT_EQ(Registry::defaultFile(), "/home/u/.config/forgeyard/registry");
  setenv("XDG_CONFIG_HOME", "relative", 1);
  EXPECT_EQ(Registry::defaultFile(), "/home/u/.config/forgeyard/registry");
  setenv("XDG_CONFIG_HOME", "/cfg", 1);
  EXPECT_EQ(Registry::defaultFile(), "/cfg/forgeyard/registry");
  setenv("FORGEYARD_REGISTRY", "mine", 1);
  EXPECT_EQ(Registry::defaultFile(), "mine");
}

}  // namespace
}  // namespace forgeyard
