#include "adapters/compiler/dependency_file_writer.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/adapters/component_reader.h"
#include "tests/platform/support/scratch.h"

namespace forgeyard {
namespace {

using Names = std::vector<std::string>;

const std::string NBSP = "\xC2\xA0";

DependencyPlace place() {
  DependencyPlace result;
  result.directory = "/home/u/p";
  result.target = "a.obj";
  result.source = "a.c";
  return result;
}

MakeRule rule(Names names, bool complete = true) {
  names.insert(names.begin(), "a.c");
  return {std::move(names), complete};
}

TEST(DependencyFile, IsOneLineInTheComponentsForm) {
  EXPECT_EQ(dependencyFileText(rule({}), place()), "a.obj: a.c\r\n");
  EXPECT_EQ(dependencyFileText(rule({"inc/x.h", "/usr/include/y.h"}), place()),
            "a.obj: a.c /home/u/p/inc/x.h /usr/include/y.h\r\n");
  DependencyPlace blanks = place();
  blanks.target = "my file.obj";
  blanks.source = "my\nfile.c";
  EXPECT_EQ(dependencyFileText(rule({"x.h"}), blanks), "my" + NBSP + "file.obj: my?file.c /home/u/p/x.h\r\n");
}

TEST(DependencyFile, NamesReachTheComponentWhole) {
  const struct {
    const char* name;
    std::string header;
    std::string read;
  } cases[] = {
      {"relative", "inc/x.h", "/home/u/p/inc/x.h"},
      {"dots", "./inc/../../q/./x.h", "/home/u/q/x.h"},
      {"doubled slashes", "inc//x.h", "/home/u/p/inc/x.h"},
      {"above the root", "../../../../../x.h", "/x.h"},
      {"blank", "in c/x y.h", "/home/u/p/in" + NBSP + "c/x" + NBSP + "y.h"},
      {"two blanks and one at the end", "in  c/x.h ", "/home/u/p/in" + NBSP + NBSP + "c/x.h" + NBSP},
      {"number sign and dollar", "h#$1.h", "/home/u/p/h#$1.h"},
      {"other letters", "größe/日.h", "/home/u/p/größe/日.h"},
      {"a byte that is no text", "x\xFF.h", "/home/u/p/x\xFF.h"},
      {"tab", "x\ty.h", "/home/u/p/x\ty.h"},
      {"longest", "/" + std::string(258, 'n'), "/" + std::string(258, 'n')},
  };
  MakeRule all = rule({});
  Names expected;
  for (const auto& [name, header, read] : cases) {
    EXPECT_EQ(readAsComponent(dependencyFileText(rule({header}), place())), Names{read}) << name;
    all.prerequisites.push_back(header);
    expected.push_back(read);
  }
  EXPECT_EQ(readAsComponent(dependencyFileText(all, place())), expected);
}

TEST(DependencyFile, ANameThatCannotBeCarriedNamesAFileThatCanNeverExist) {
  const struct {
    const char* name;
    std::string header;
    std::string read;
  } cases[] = {
      {"line feed", "inc/x\ny.h", "/dev/null/name-not-carried/x?y.h"},
      {"carriage return", "inc/x\ry.h", "/dev/null/name-not-carried/x?y.h"},
      {"backslash", "inc/x\\y.h", "/dev/null/name-not-carried/x?y.h"},
      {"too long", "/" + std::string(259, 'd') + "/x.h", "/dev/null/name-not-carried/x.h"},
      {"too long by what stands for a blank", "/" + std::string(256, 'd') + " h",
       "/dev/null/name-not-carried/" + std::string(232, 'd')},
  };
  for (const auto& [name, header, read] : cases) {
    EXPECT_EQ(readAsComponent(dependencyFileText(rule({"y.h", header, "z.h"}), place())),
              (Names{"/home/u/p/y.h", read, "/home/u/p/z.h"}))
        << name;
    EXPECT_LE(read.size(), 259U);
    struct stat status {};
    EXPECT_NE(::stat(read.c_str(), &status), 0) << name;
  }
  EXPECT_NE(::mkdir("/dev/null/name-not-carried", 0700), 0) << "nor can it be made";
  EXPECT_EQ(readAsComponent(dependencyFileText(rule({"y.h"}, false), place())),
            (Names{"/home/u/p/y.h", "/dev/null/list-not-understood/a.c"}));
}

TEST(DependencyFile, CutsAnUncarriedNameBetweenCharacters) {
  std::string header;
  for (int i = 0; i < 100; ++i) header += "日";
  const Names read = readAsComponent(dependencyFileText(rule({header}), place()));
  ASSERT_EQ(read.size(), 1U);
  EXPECT_EQ(read[0].size(), 27U + 77 * 3);
}

TEST(DependencyFile, NamesGetTheDriveThatTheProjectIsNamedBy) {
  DependencyPlace drive = place();
  drive.drive = "C:";
  drive.driveDirectory = "/home/u";
  EXPECT_EQ(readAsComponent(dependencyFileText(rule({"x.h", "/usr/y.h", "/home/user/z.h"}), drive)),
            (Names{"C:/p/x.h", "/usr/y.h", "/home/user/z.h"}));
  drive.drive = "Z:";
  drive.driveDirectory = "/";
  EXPECT_EQ(readAsComponent(dependencyFileText(rule({"x.h"}), drive)), (Names{"Z:/home/u/p/x.h"}));
}

TEST(AbsoluteName, LeavesTheWayOverALinkThatTextCannotShorten) {
  const ScratchDirectory scratch;
  std::filesystem::create_directories(scratch / "far/away");
  std::filesystem::create_directories(scratch / "p");
  std::filesystem::create_directory_symlink(scratch / "far/away", scratch / "p/link");
  writeFile(scratch / "far/x.h", "");
  writeFile(scratch / "p/y.h", "");
  // p/link/.. is far.
  EXPECT_EQ(absoluteName("link/../x.h", scratch / "p"), scratch / "p/link/../x.h");
  EXPECT_EQ(absoluteName("../p/y.h", scratch / "p"), scratch / "p/y.h");
}

TEST(SpelledWorkingDirectory, BelievesPwdOnlyIfItIsRight) {
  const ScratchDirectory scratch;
  std::filesystem::create_directory(scratch / "real");
  std::filesystem::create_directory_symlink(scratch / "real", scratch / "link");
  const std::string before = std::filesystem::current_path();
  ASSERT_EQ(::chdir((scratch / "real").c_str()), 0);
  const struct {
    std::optional<std::string> pwd;
    std::string expected;
  } cases[] = {
      {scratch / "link", scratch / "link"},
      {scratch / "real", scratch / "real"},
      {scratch.path(), scratch / "real"},
      {"link", scratch / "real"},
      {"", scratch / "real"},
      {std::nullopt, scratch / "real"},
  };
  for (const auto& [pwd, expected] : cases) {
    const ScopedVariable variable("PWD", pwd);
    EXPECT_EQ(spelledWorkingDirectory(), expected) << pwd.value_or("unset");
  }
  ASSERT_EQ(::chdir(before.c_str()), 0);
}

}  // namespace
}  // namespace forgeyard
