// The reference project files: what is in them, field by field, and what a load of them brings up.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "model/configuration.h"
#include "model/source_file.h"
#include "tests/model/model_fixture.h"

namespace forgeyard::test {

namespace {

using Json = nlohmann::json;

std::filesystem::path goldenDirectory() {
  const char* given = std::getenv("FORGEYARD_GOLDEN");
  return std::filesystem::path(given ? given : FORGEYARD_GOLDEN_DEFAULT) / "projects";
}

std::vector<std::string> goldenNames() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(goldenDirectory())) {
    if (entry.path().extension() == ".nqp") names.push_back(entry.path().stem().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

Json list(const std::vector<BString>& texts) {
  Json result = Json::array();
  for (const BString& entry : texts) result.push_back(entry.narrow());
  return result;
}

class GoldenProject : public ModelTest, public testing::WithParamInterface<std::string> {
 protected:
  void SetUp() override {
    const std::filesystem::path source = goldenDirectory() / GetParam();
    std::ifstream(source.string() + ".json") >> expected_;
    std::filesystem::copy_file(source.string() + ".nqp", directory_ / "p.nqp");
  }

  Ref<IStorage> root() {
    Ref<IStorage> opened;
    check(StgOpenStorage(path("p.nqp"), STGM_READ | STGM_SHARE_EXCLUSIVE | STGM_TRANSACTED, &opened));
    return opened;
  }
  static Ref<IStream> stream(IStorage& storage, const BString& name) {
    Ref<IStream> opened;
    check(storage.OpenStream(name, STGM_READ | STGM_SHARE_EXCLUSIVE, &opened));
    return opened;
  }
  Ref<CProject> loaded() {
    const Ref<CProject> made = project(u"p.nqp");
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

TEST_P(GoldenProject, ElementsStandInTheirOrder) {
  Ref<IEnumSTATSTG> elements;
  check(root()->EnumElements(&elements));
  Json found = Json::array();
  STATSTG element;
  while (elements->Next(1, &element, nullptr) == S_OK) {
    if (element.type == StgType::Stream) {
      found.push_back({{"name", element.name.narrow()}, {"kind", "stream"}, {"size", element.size}});
    } else {
      found.push_back({{"name", element.name.narrow()},
                       {"kind", "storage"},
                       {"clsid", "{" + formatGuid(element.clsid) + "}"}});
    }
  }
  EXPECT_EQ(found, expected_["root_elements"]);
}

TEST_P(GoldenProject, SettingsAreRead) {
  const Ref<CProject> project = loaded();
  const SettingsBlock& read = project->contents().settings;
  const Json& settings = expected_["settings"];
  EXPECT_EQ(read.name.narrow(), settings["Name"]);
  EXPECT_EQ(read.fileName.narrow(), settings["FileName"]);
  EXPECT_EQ(read.ssRoot.narrow(), settings["SSRoot"]);
  EXPECT_EQ(read.nextComponentId, settings["NextComponentId"]);
  EXPECT_EQ(read.ssDatabasePath.narrow(), settings["SSDatabasePath"]);
  EXPECT_EQ(read.ssVersion, settings["SSVersion"]);
}

TEST_P(GoldenProject, ConfigurationsAreRead) {
  const Ref<IStorage> opened = root();
  const Ref<IStream> source = stream(*opened, u"Configurations");
  RecordReader record(source.get());
  ASSERT_EQ(record.u32(), expected_["configurations"].size());
  for (const Json& expected : expected_["configurations"]) {
    ConfigurationRecord read;
    read.load(record);
    EXPECT_EQ(read.name.narrow(), expected["Name"]);
    EXPECT_EQ(read.outputDirectory.narrow(), expected["OutputDirectory"]);
    EXPECT_EQ(read.intermediateDirectory.narrow(), expected["IntermediateDirectory"]);
    EXPECT_EQ(read.buildDirty, expected["BuildDirty"]);
    EXPECT_EQ(read.updateFileDependencies, expected["UpdateFileDependencies"]);
    Json cookies = Json::array();
    for (const BString& name : read.cookies.names()) {
      const BString& value = *read.cookies.find(name);
      cookies.push_back({name.narrow(), value.isNull() ? Json() : Json(value.narrow())});
    }
    EXPECT_EQ(cookies, expected["cookies"]);
  }
  EXPECT_EQ(record.listedString().narrow(), expected_["active"]);
}

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

TEST_P(GoldenProject, FoldersAreRead) {
  const Ref<CProject> project = loaded();
  const std::string directory = project->workingDirectory().narrow();
  std::size_t at = 0;
  for (const Json& expected : expected_["components"]) {
    if (at == project->contents().components.size()) break;
    const Ref<IComponent> component = project->contents().components[at++];
    const Ref<IFolder> folder = component.as<IFolder>();
    if (!folder) continue;
    BString name;
    BString extension;
    std::int32_t id = -1;
    check(folder->get_Name(&name));
    check(folder->get_Extension(&extension));
    check(component->get_Id(&id));
    EXPECT_EQ(name.narrow(), expected["Name"]);
    EXPECT_EQ(extension.narrow(), expected["Extension"]);
    EXPECT_EQ(id, expected["Id"]);
    Json files = Json::array();
    for (const Ref<ISourceFile>& file : folder.as<IFolderFiles>()->sourceFiles()) {
      const Ref<ISourceFileDependencies> lists = file.as<ISourceFileDependencies>();
      std::int32_t control = -1;
      check(file->get_SourceControl(&control));
      files.push_back({{"PersistAs", persistAs(file.get())},
                       {"Name", test::name(file.get())},
                       {"AutomaticDeps", list(lists->automaticDependencies())},
                       {"ManualDeps", list(lists->manualDependencies())},
                       {"SourceControl", control}});
    }
    Json wanted = expected["files"];
    for (Json& file : wanted) {
      file.erase("version");
      // A relative entry follows the directory that the file was found in.
      const std::string persisted = file["PersistAs"];
      if (persisted.starts_with(".\\")) file["Name"] = directory + persisted.substr(1);
    }
    EXPECT_EQ(files, wanted);
    for (const Json& entry : expected["settings"]) {
      Ref<IConfigurations> configurations;
      check(project->get_Configurations(&configurations));
      Ref<IConfiguration> configuration;
      check(configurations->get_Item(BString::fromNarrow(entry["configuration"].get<std::string>()),
                                     &configuration));
      Ref<IUnknown> settings;
      check(component->get_Setting(configuration.get(), &settings));
      std::int32_t enabled = -1;
      check(settings.as<IFolderSettings>()->get_Enabled(&enabled));
      EXPECT_EQ(enabled, entry["Enabled"]);
    }
  }
}

TEST_P(GoldenProject, StoredNamesAreReadWhereThereIsNoProject) {
  const Ref<IStorage> opened = root();
  for (const Json& expected : expected_["components"]) {
    if (expected["kind"] != "folder") continue;
    Ref<IStorage> storage;
    check(opened->OpenStorage(BString::fromNarrow(expected["element"].get<std::string>()),
                              STGM_READ | STGM_SHARE_EXCLUSIVE | STGM_TRANSACTED, &storage));
    const Ref<IStream> source = stream(*storage, u"SourceFiles");
    SourceFileReader reader(source.get(), nullptr);
    reader.record.u32();
    ASSERT_EQ(reader.record.u32(), expected["files"].size());
    for (const Json& file : expected["files"]) {
      const auto read = make<CSourceFile>();
      read->load(reader);
      EXPECT_EQ(test::name(read.get()), file["Name"]);
    }
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
