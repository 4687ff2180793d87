// dump: what stands in project files, the reference files among them.

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "tests/console/console_sandbox.h"
#include "tests/console/project_builder.h"

namespace forgeyard::console {
namespace {

using Json = nlohmann::json;
using testing::HasSubstr;
using namespace std::string_literals;

class Dump : public ConsoleSandbox {
 protected:
  Json dumped(const Lines& arguments, int exitCode = 0) const {
    Lines line{"dump"};
    line.insert(line.end(), arguments.begin(), arguments.end());
    const Outcome outcome = forgeyard(line);
    EXPECT_EQ(outcome.exitCode, exitCode) << outcome.errors;
    return Json::parse(outcome.output, nullptr, false);
  }
};

TEST_F(Dump, ReferenceFilesHoldWhatTheirDescriptionsSay) {
  const char* given = std::getenv("FORGEYARD_GOLDEN");
  const auto golden = std::filesystem::path(given ? given : FORGEYARD_GOLDEN_DEFAULT) / "projects";
  int files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(golden)) {
    if (entry.path().extension() != ".nqp") continue;
    ++files;
    Json expected;
    std::ifstream(std::filesystem::path(entry.path()).replace_extension(".json")) >> expected;
    const bool odd = expected.contains("note");
    expected.erase("note");
    // From a copy: a look into a file is an opener like any other.
    std::filesystem::copy_file(entry.path(), path(entry.path().filename().string()));
    Json found = Json::parse(forgeyard({"dump", entry.path().filename().string()}).output, nullptr, false);
    if (odd) {
      found.erase("left_out");
      found["load"].erase("left_out");
    }
    EXPECT_EQ(found, expected) << Json::diff(expected, found);
  }
  EXPECT_GT(files, 0);
}

TEST_F(Dump, ToolsShowTheirSettingsByConfiguration) {
  makeProject();
  must({"-c", "Small", "set", "cc", "OptimisationLevel=2", "Options=-pipe \"ü\""});
  const std::string before = content("p.nqp");
  const Json compiler = dumped({}).at("components").at(2);
  EXPECT_EQ(compiler.at("kind"), "cc");
  EXPECT_EQ(compiler.at("Name"), "cc");
  const Json& small = compiler.at("settings").at(1);
  EXPECT_EQ(small.at("configuration"), "Small");
  EXPECT_EQ(small.at("OptimisationLevel"), 2);
  EXPECT_EQ(small.at("Options"), "-pipe \"ü\"");
  EXPECT_EQ(content("p.nqp"), before);
}

TEST_F(Dump, DamagedFilesShowWhatIsLeftAndWhatIsNot) {
  makeProject();
  replaceStream(path("p.nqp"), "Connections", "\0\0\0\0\2\0\0\0"s + std::string(16, '\1'));
  const Json listed = dumped({"p.nqp"}, 1);
  EXPECT_EQ(listed.at("connections").size(), 1u) << "as far as they go";
  EXPECT_EQ(listed.at("left_out").at(0).at("what"),
            "stream \"Connections\", record 2 of 2 and all behind it");
  EXPECT_EQ(listed.at("components").size(), 4u);
  EXPECT_EQ(listed.at("load").at("connections"), 0) << "a load takes none of them";

  // The active name is none of the configurations: a load leaves out what stands behind it, a dump doesn't.
  replaceStream(path("p.nqp"), "Configurations", "\0\0\0\0\1\0\0\0X\0"s);
  const Json load = dumped({"p.nqp"}, 1).at("load");
  EXPECT_EQ(load.at("active"), nullptr);
  EXPECT_EQ(load.at("components"), 0);

  put("half.nqp", content("p.nqp").substr(0, content("p.nqp").size() / 2));
  EXPECT_GT(dumped({"half.nqp"}, 1).at("left_out").size(), 3u);
}

TEST_F(Dump, TheTreeShowsElementsOfAnyCompoundFile) {
  makeProject();
  std::filesystem::copy_file(path("p.nqp"), path("copy.bak"));
  EXPECT_THAT(shown({"dump", "--tree", "copy.bak"}),
              testing::MatchesRegex("Settings +stream +[0-9]+ bytes\n"
                                    "Component0 +storage  \\{[0-9A-F-]+\\} folder\n"
                                    "  Settings +stream (.|\n)*"));
  put("text", "no compound file");
  EXPECT_THAT(refused({"dump", "text"}), HasSubstr("is not a project file"));
  EXPECT_THAT(refused({"dump", "p.nqp", "-p", "p.nqp"}), HasSubstr("-p"));
}

}  // namespace
}  // namespace forgeyard::console
