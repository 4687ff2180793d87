// dump: what stands in project files, the reference files among them.

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "tests/hosts/console/console_sandbox.h"
#include "tests/hosts/console/project_builder.h"
#include "tests/support/places.h"

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
  for (const std::filesystem::path& file : referenceProjects()) {
    Json expected;
    std::ifstream(std::filesystem::path(file).replace_extension(".json")) >> expected;
    const std::string& name = file;
    const Json found = Json::parse(forgeyard({"dump", name}).output, nullptr, false);
    for (const char* part : {"settings", "configurations", "active", "components", "connections"})
      EXPECT_EQ(found.at(part), expected.at(part)) << Json::diff(expected.at(part), found.at(part));
    Json load = Json::parse(forgeyard({"dump", "--load", name}).output, nullptr, false);
    load.erase("left_out");
    EXPECT_EQ(load, expected.at("load"));
    Json elements = Json::array();
    for (const std::string& line : forgeyard({"dump", "--tree", name}).lines()) {
      std::istringstream words(line);
      std::string element, kind, rest;
      words >> element >> kind >> rest;
      if (line.starts_with(' ')) continue;
      const auto size = kind == "stream" ? Json(std::stoi(rest)) : Json(rest);
      elements.push_back({{"name", element}, {"kind", kind}, {kind == "stream" ? "size" : "clsid", size}});
    }
    EXPECT_EQ(elements, expected.at("root_elements"));
  }
}

TEST_F(Dump, TheTextKeepsItsForm) {
  const std::string golden = places::golden();
  const struct {
    Lines arguments;
    const char* text;
  } rows[] = {{{"dump", golden + "/projects/two_folders.nqp"}, "two_folders.json"},
              {{"dump", golden + "/projects/old_records.nqp"}, "old_records.json"},
              {{"dump", "--diff", golden + "/projects/two_folders.nqp"}, "two_folders.diff"}};
  for (const auto& row : rows) EXPECT_EQ(shown(row.arguments), contentOf(golden + "/text/" + row.text));
  // Wherever the file lies, and whatever its name is.
  std::filesystem::copy_file(golden + "/projects/two_folders.nqp", path("other"));
  EXPECT_EQ(shown({"dump", "other"}), shown(rows[0].arguments));
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
  EXPECT_THAT(forgeyard({"dump", "p.nqp"}).errors,
              HasSubstr("stream \"Connections\", record 2 of 2 and all behind it"));
  EXPECT_EQ(listed.at("components").size(), 4u);
  EXPECT_EQ(dumped({"--load", "p.nqp"}, 1).at("connections"), 0) << "a load takes none of them";

  // The active name is none of the configurations: a load leaves out what stands behind it, a dump doesn't.
  replaceStream(path("p.nqp"), "Configurations", "\0\0\0\0\1\0\0\0X\0"s);
  const Json load = dumped({"--load", "p.nqp"}, 1);
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

// With the programs installed: what two other readers of the format see, and a project that only they wrote.
TEST_F(Dump, OtherImplementationsSeeTheSameTreeAndTheirProjectsLoad) {
  const std::string python = "/usr/bin/python3";
  if (run(python, {"-c", "import olefile"}).exitCode != 0 || run("gsf", {"--version"}).exitCode != 0)
    GTEST_SKIP() << "gsf (libgsf-bin) or olefile (python3-olefile) is not installed";
  makeProject();
  put("source ü.c", "");
  must({"file", "add", "source ü.c"});
  put("walk.py", R"(
import olefile, sys
ole = olefile.OleFileIO(sys.argv[1], raise_defects=olefile.DEFECT_POTENTIAL)
for path in sorted(ole.listdir(streams=True, storages=True)):
    kind = ole.get_type(path) == olefile.STGTY_STREAM
    print('/'.join(path), ole.get_size(path) if kind else '{' + ole.getclsid(path) + '}')
    if kind and len(sys.argv) > 2 and len(path) == 1:
        open(sys.argv[2] + '/' + path[0], 'wb').write(ole.openstream(path).read())
)");
  // The tree as our own listing has it, in their form and order.
  std::vector<std::string> ours;
  std::string storage;
  for (const std::string& line : must({"dump", "--tree", "p.nqp"}).lines()) {
    std::istringstream words(line);
    std::string name, kind, rest;
    words >> name >> kind >> rest;
    if (!line.starts_with(' ')) storage = kind == "storage" ? name : "";
    ours.push_back((line.starts_with(' ') ? storage + "/" : "") + name + " " + rest);
  }
  std::sort(ours.begin(), ours.end());
  std::vector<std::string> theirs = run(python, {"walk.py", "p.nqp"}).lines();
  std::sort(theirs.begin(), theirs.end());
  EXPECT_EQ(theirs, ours);
  for (const std::string& line : theirs) {
    const std::string name = line.substr(0, line.rfind(' '));
    const std::string size = line.substr(line.rfind(' ') + 1);
    if (size.starts_with('{')) continue;
    EXPECT_EQ(std::to_string(run("gsf", {"cat", "p.nqp", name}).output.size()), size) << name;
  }

  // Storages of other writers have no class, so theirs is a project without components.
  must({"new", "plain.nqp", "--name", "Theirs"});
  std::filesystem::create_directory(path("streams"));
  ASSERT_EQ(run(python, {"walk.py", "plain.nqp", "streams"}).exitCode, 0);
  ASSERT_EQ(run("gsf", {"createole", "made.nqp", "streams/Settings", "streams/Configurations",
                        "streams/Connections"})
                .exitCode,
            0);
  EXPECT_EQ(dumped({"made.nqp"}), dumped({"plain.nqp"}));
  must({"-p", "made.nqp", "folder", "add", "ours"});
  EXPECT_EQ(dumped({"made.nqp"}).at("components").at(0).at("Name"), "ours");
}

}  // namespace
}  // namespace forgeyard::console
