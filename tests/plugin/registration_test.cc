// What the module writes into the user's registry.

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <map>
#include <set>
#include <thread>

#include "platform/registry/registry.h"
#include "tests/plugin/class_list.h"
#include "tests/plugin/loaded_module.h"
#include "typelib/classes.h"

namespace forgeyard::test {
namespace {

constexpr std::string_view kUsers = R"(; mine
[HKEY_CURRENT_USER\Software\Korvel]
Home=\opt\forgeyard

[HKEY_CLASSES_ROOT\KV.Other.1]
@=somebody else's
)";

const std::string kClassKeys = R"(HKEY_CLASSES_ROOT\CLSID)";

std::string classKey(const Guid& clsid) {
  return kClassKeys + "\\{" + formatGuid(clsid) + "}";
}

class Registration : public ModuleTest {
 protected:
  Registry loaded() const { return Registry::load(registryFile()); }
};

TEST_F(Registration, WritesAllOfAClass) {
  ASSERT_EQ(module_.registerServer(), S_OK);
  const std::string text = readFile(registryFile());
  const std::string expected = R"([HKEY_CLASSES_ROOT\KV.Folder.1]
@=Folder Class

[HKEY_CLASSES_ROOT\KV.Folder.1\CLSID]
@={157C5E4A-3BD5-11D1-817F-00AA002676D3}

[HKEY_CLASSES_ROOT\KV.Folder]
@=Folder Class

[HKEY_CLASSES_ROOT\KV.Folder\CurVer]
@=KV.Folder.1

[HKEY_CLASSES_ROOT\KV.Folder\CLSID]
@={157C5E4A-3BD5-11D1-817F-00AA002676D3}

[HKEY_CLASSES_ROOT\CLSID\{157C5E4A-3BD5-11D1-817F-00AA002676D3}]
@=Folder Class

[HKEY_CLASSES_ROOT\CLSID\{157C5E4A-3BD5-11D1-817F-00AA002676D3}\ProgID]
@=KV.Folder.1

[HKEY_CLASSES_ROOT\CLSID\{157C5E4A-3BD5-11D1-817F-00AA002676D3}\VersionIndependentProgID]
@=KV.Folder

[HKEY_CLASSES_ROOT\CLSID\{157C5E4A-3BD5-11D1-817F-00AA002676D3}\Programmable]

[HKEY_CLASSES_ROOT\CLSID\{157C5E4A-3BD5-11D1-817F-00AA002676D3}\InprocServer32]
@=)" + modulePath() + R"(
ThreadingModel=Apartment

[HKEY_CLASSES_ROOT\CLSID\{157C5E4A-3BD5-11D1-817F-00AA002676D3}\Description]
@=A folder component groups source files with common settings

[HKEY_CLASSES_ROOT\CLSID\{157C5E4A-3BD5-11D1-817F-00AA002676D3}\Implemented Categories\{78891EA0-9163-11D0-AB97-00C0F0093B0F}]
@=Build Componenent

)";
  EXPECT_THAT(text, testing::HasSubstr(expected));
}

TEST_F(Registration, EntersEveryClassInTheOrderOfTheMap) {
  ASSERT_EQ(module_.registerServer(), S_OK);
  const Registry registry = loaded();
  std::vector<std::string> keys;
  for (const KnownClass& one : knownClasses()) {
    keys.push_back("{" + formatGuid(one.clsid) + "}");
    const std::string program = std::string("KV.") + one.name;
    const std::string key = classKey(one.clsid);
    EXPECT_EQ(registry.value(key, ""), std::string(one.name) + " Class");
    EXPECT_EQ(registry.value(key + "\\ProgID", ""), program + ".1");
    EXPECT_EQ(registry.value(key + "\\InprocServer32", ""), modulePath()) << one.name;
    EXPECT_EQ(registry.value("HKEY_CLASSES_ROOT\\" + program + "\\CurVer", ""), program + ".1");
    for (const std::string& id : {program, program + ".1"}) {
      EXPECT_EQ(registry.value("HKEY_CLASSES_ROOT\\" + id + "\\CLSID", ""), keys.back()) << id;
    }
  }
  EXPECT_EQ(registry.open(kClassKeys)->subkeys(), keys);
}

std::set<std::string> inCategory(const Registry& registry, const Guid& category, const std::string& spelled) {
  std::set<std::string> names;
  for (const KnownClass& one : knownClasses()) {
    const std::string key = classKey(one.clsid) + "\\Implemented Categories\\{" + formatGuid(category) + "}";
    if (registry.value(key, "") == spelled) names.insert(one.name);
  }
  return names;
}

TEST_F(Registration, LetsAHostFindClassesByCategory) {
  ASSERT_EQ(module_.registerServer(), S_OK);
  const Registry registry = loaded();
  const std::set<std::string> loadedObjects{"BuildTool",   "BuildCategories", "FolderLO",
                                            "WorkspaceLO", "CmdLineLO",       "CcLO",
                                            "AsmLO",       "LinkerLO",        "SourceControl"};
  std::set<std::string> commands = loadedObjects;
  commands.insert({"Project", "FolderPane"});
  EXPECT_EQ(inCategory(registry, CATID_LoadedObject, "Loaded Object"), loadedObjects);
  EXPECT_EQ(inCategory(registry, CATID_UseCommands, "I Use Commands"), commands);
  EXPECT_EQ(inCategory(registry, CATID_UseCommands, "use commands"),
            (std::set<std::string>{"CmdLineWindow", "CcWindow", "AsmWindow", "LinkerWindow", "FolderWindow",
                                   "Workspace"}));
  EXPECT_EQ(inCategory(registry, CATID_BuildComponent, "Build Componenent"), std::set<std::string>{"Folder"});
}

TEST_F(Registration, NamesThePaneOfTheWorkspace) {
  ASSERT_EQ(module_.registerServer(), S_OK);
  const Registry registry = loaded();
  const std::string key = classKey(CLSID_Workspace);
  const std::map<std::string, std::string> expected{
      {"MenuText", "&Workspace"},    {"MenuHelp", "Workspace View"},
      {"Version", "1.0.0"},          {"Description", "Description of Workspace"},
      {"Name", "KV Workspace Pane"}, {"Company", "Korvel Ltd"},
  };
  for (const auto& [subkey, text] : expected) EXPECT_EQ(registry.value(key + "\\" + subkey, ""), text);
  EXPECT_EQ(registry.value(key, "Category"), "Corvane");
}

TEST_F(Registration, WritesOnceAndThenNothing) {
  struct stat first {};
  struct stat second {};
  ASSERT_EQ(module_.registerServer(), S_OK);
  const std::string text = readFile(registryFile());
  ASSERT_EQ(::stat(registryFile().c_str(), &first), 0);
  ASSERT_EQ(module_.registerServer(), S_OK);
  ASSERT_EQ(::stat(registryFile().c_str(), &second), 0);
  EXPECT_EQ(readFile(registryFile()), text);
  EXPECT_EQ(first.st_ino, second.st_ino) << "a new file took the old one's place";
}

TEST_F(Registration, LeavesTheUsersPartAsItWasAndTheTypeLibraryBehind) {
  writeFile(registryFile(), std::string(kUsers));
  ASSERT_EQ(module_.registerServer(), S_OK);
  EXPECT_THAT(readFile(registryFile()), testing::StartsWith(std::string(kUsers)));
  ASSERT_EQ(module_.unregisterServer(), S_OK);
  const std::string library = R"([HKEY_CLASSES_ROOT\TypeLib\{51645AC4-3B0D-11D1-817F-00AA002676D3}\1.0)";
  EXPECT_EQ(readFile(registryFile()),
            std::string(kUsers) + "\n" + library + "]\n@=Forgeyard 1.0 Type Library\n\n" + library +
                "\\FLAGS]\n@=0\n\n" + library + "\\409\\linux]\n@=" + modulePath() + "\n");
  EXPECT_EQ(module_.unregisterServer(), S_OK);
}

TEST_F(Registration, ReplacesWhatAnOlderVersionSaid) {
  const std::string key = classKey(CLSID_Project);
  Registry old;
  old.setValue(key, "", "Old Class");
  old.setValue(key, "AppID", "gone");
  old.setValue(key + "\\InprocServer32", "", "/old/Forgeyard.so");
  old.setValue(key + "\\LocalServer32", "", "/old/server");
  old.setValue(key + "\\Programmable\\deep\\er", "x", "y");
  old.setValue(key + "\\implemented categories\\{00000000-0000-0000-0000-000000000001}", "", "gone");
  old.setValue("HKEY_CLASSES_ROOT\\KV.Project\\CurVer", "", "KV.Project.0");
  writeFile(registryFile(), old.text());
  ASSERT_EQ(module_.registerServer(), S_OK);
  const Registry registry = loaded();
  EXPECT_EQ(registry.value(key, ""), "Project Class");
  EXPECT_EQ(registry.open(key)->valueNames(), std::vector<std::string>{""});
  EXPECT_EQ(registry.value(key + "\\InprocServer32", ""), modulePath());
  EXPECT_THAT(
      registry.open(key)->subkeys(),
      testing::UnorderedElementsAre("ProgID", "VersionIndependentProgID", "Programmable", "InprocServer32",
                                    testing::AnyOf("Implemented Categories", "implemented categories")));
  EXPECT_TRUE(registry.open(key + "\\Programmable")->subkeys().empty());
  EXPECT_EQ(registry.open(key + "\\Implemented Categories")->subkeys(),
            std::vector<std::string>{"{" + formatGuid(CATID_UseCommands) + "}"});
  EXPECT_EQ(registry.value("HKEY_CLASSES_ROOT\\KV.Project\\CurVer", ""), "KV.Project.1");
}

TEST_F(Registration, NamesTheModuleByAWholePath) {
  const auto before = std::filesystem::current_path();
  std::filesystem::copy_file(modulePath(), scratch_ / "Copy.so");
  std::filesystem::current_path(scratch_.path());
  {
    const LoadedModule relative("./Copy.so");
    std::filesystem::current_path(before);
    EXPECT_EQ(relative.registerServer(), S_OK);
  }
  EXPECT_EQ(loaded().value(classKey(CLSID_BuildTool) + "\\InprocServer32", ""), scratch_ / "Copy.so");
}

TEST_F(Registration, FailsWhereThereCanBeNoFile) {
  writeFile(scratch_ / "file", "");
  const ScopedVariable elsewhere("FORGEYARD_REGISTRY", scratch_ / "file" + "/registry");
  EXPECT_TRUE(failed(module_.registerServer()));
  EXPECT_TRUE(failed(module_.unregisterServer()));
  EXPECT_EQ(readFile(scratch_ / "file"), "");
}

// Two installations that start for the first time at one moment: all classes come from one of them.
TEST_F(Registration, OfTwoModulesAtOnceIsWholeAndOfOne) {
  const std::string copy = scratch_ / "Copy.so";
  std::filesystem::copy_file(modulePath(), copy);
  writeFile(registryFile(), std::string(kUsers));
  const LoadedModule other(copy);
  std::thread second([&] { EXPECT_EQ(other.registerServer(), S_OK); });
  EXPECT_EQ(module_.registerServer(), S_OK);
  second.join();
  const Registry registry = loaded();
  std::set<std::string> servers;
  for (const KnownClass& one : knownClasses()) {
    servers.insert(registry.value(classKey(one.clsid) + "\\InprocServer32", "").value_or("none"));
  }
  EXPECT_THAT(servers, testing::AnyOf(std::set{modulePath()}, std::set{copy}));
  EXPECT_THAT(readFile(registryFile()), testing::StartsWith(std::string(kUsers)));
}

}  // namespace
}  // namespace forgeyard::test
