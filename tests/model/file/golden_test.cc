// What a load of the reference project files brings up. What stands in them, record by record, is compared
// with the console host's dump.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "tests/model/support/model_fixture.h"
#include "tests/support/places.h"

namespace forgeyard::test {

namespace {

using Json = nlohmann::json;

std::filesystem::path goldenDirectory() {
  const char* given = std::getenv("FORGEYARD_GOLDEN");
  return std::filesystem::path(given ? given : places::golden()) / "projects";
}

std::vector<std::string> goldenNames() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(goldenDirectory())) {
    if (entry.path().extension() == ".nqp") names.push_back(entry.path().stem().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

class GoldenProject : public ModelTest, public testing::WithParamInterface<std::string> {
 protected:
  void SetUp() override {
    const std::filesystem::path source = goldenDirectory() / GetParam();
    std::ifstream(source.string() + ".json") >> expected_;
    std::filesystem::copy_file(source.string() + ".nqp", directory_ / "p.nqp");
  }

  Ref<CProject> loaded() {
    Ref<CProject> made = project(u"p.nqp");
    EXPECT_EQ(made->ProjectLoad(), S_OK);
    return made;
  }
  bool hasNote() const { return expected_.contains("note"); }

  Json expected_;
};

std::string nameOfTest(const testing::TestParamInfo<std::string>& info) {
  return info.param;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Golden, GoldenProject, testing::ValuesIn(goldenNames()), nameOfTest);

TEST_P(GoldenProject, LoadBringsUpWhatItShould) {
  const Ref<CProject> project = loaded();
  const ProjectContents& contents = project->contents();
  const Json& load = expected_["load"];
  EXPECT_EQ(contents.configurations.size(), load["configurations"]);
  EXPECT_EQ(contents.components.size(), load["components"]);
  std::int32_t connections = -1;
  Ref<IConnections> collection;
  check(project->get_Connections(&collection));
  check(collection->get_Count(&connections));
  EXPECT_EQ(connections, load["connections"]);
  BString active;
  if (contents.active) check(contents.active->get_Name(&active));
  EXPECT_EQ(contents.active ? Json(active.narrow()) : Json(), load["active"]);
  EXPECT_EQ(dirty(*project), 0);
  EXPECT_TRUE(hasNote() || project->omissions().empty()) << project->omissions().front().what;
}

TEST_P(GoldenProject, RelativeFilesFollowTheDirectoryAndOthersStay) {
  const Ref<CProject> project = loaded();
  const std::string directory = project->contents().workingDirectory.narrow();
  ASSERT_EQ(project->contents().components.size(), expected_["components"].size());
  for (std::size_t at = 0; at < project->contents().components.size(); ++at) {
    const Ref<IFolderFiles> folder = project->contents().components[at].as<IFolderFiles>();
    if (!folder) continue;
    Json names = Json::array();
    for (const Ref<ISourceFile>& file : folder->sourceFiles()) names.push_back(name(file.get()));
    Json wanted = Json::array();
    for (const Json& file : expected_["components"][at]["files"]) {
      const std::string persisted = file["PersistAs"];
      wanted.push_back(persisted.starts_with(".\\") ? Json(directory + persisted.substr(1)) : file["Name"]);
    }
    EXPECT_EQ(names, wanted);
  }
}

TEST_P(GoldenProject, SavedAndLoadedAgainItIsTheSame) {
  const Ref<CProject> first = loaded();
  const std::string before = dump(*first);
  // The stored file name is not the one it was copied to.
  check(first->put_FileName(u"p.nqp"));
  const Ref<CProject> second = reload(*first);
  check(second->put_FileName(BString::fromNarrow(expected_["settings"]["FileName"].get<std::string>())));
  EXPECT_EQ(dump(*second), before);
}

}  // namespace forgeyard::test
