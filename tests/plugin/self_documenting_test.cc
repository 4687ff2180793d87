// What the classes tell of their own history, and the diagnostics module that they register with.

#include "typelib/self_documenting.h"

#include <dlfcn.h>

#include <map>

#include "platform/com/enumerators.h"
#include "tests/plugin/class_list.h"
#include "tests/plugin/loaded_module.h"
#include "tests/support/places.h"
#include "typelib/classes.h"

namespace forgeyard::test {
namespace {

using SelfDocumentingClasses = ModuleTest;

Ref<IKVSelfDocumenting> documented(const LoadedModule& module, const Guid& clsid) {
  return module.create(clsid).as<IKVSelfDocumenting>();
}

// "version key text" of each entry.
std::vector<std::string> rows(IKVSelfDocumenting& object, const char16_t* key, std::int32_t first,
                              std::int32_t last) {
  Ref<IEntries> entries;
  EXPECT_EQ(object.Entries(key, first, last, &entries), S_OK);
  Ref<IUnknown> walk;
  EXPECT_EQ(entries->get__NewEnum(&walk), S_OK);
  std::vector<std::string> all;
  forEach(walk.as<IEnumVARIANT>(), [&](const Variant& value) {
    Ref<IUnknown> one;
    EXPECT_EQ(value.toUnknown(&one), S_OK);
    const Ref<IEntry> entry = one.as<IEntry>();
    std::int32_t version = -1;
    BString rowKey;
    BString text;
    EXPECT_TRUE(succeeded(entry->get_Version(&version)) && succeeded(entry->get_Key(&rowKey)) &&
                succeeded(entry->get_Text(&text)));
    all.push_back(std::to_string(version) + " " + rowKey.narrow() + " " + text.narrow());
  });
  return all;
}

TEST_F(SelfDocumentingClasses, TellTheirVersionNameAndRows) {
  const struct {
    Guid clsid;
    const char* name;
    std::int32_t version;
    std::size_t rows;
  } table[] = {{CLSID_BuildTool, "CBuildTool", 2, 8},
               {CLSID_Project, "CProject", 6, 10},
               {CLSID_Configuration, "CConfiguration", 0, 3},
               {CLSID_Connection, "CConnection", 0, 3},
               {CLSID_SourceFile, "CSourceFile", 0, 3},
               {CLSID_Folder, "CFolder", 0, 3},
               {CLSID_CmdLine, "CCmdLine", 0, 3},
               {CLSID_WorkspaceLO, "CWorkspaceLO", 0, 3},
               {CLSID_FolderLO, "CFolderLO", 0, 3},
               {CLSID_CmdLineLO, "CCmdLineLO", 0, 3},
               {CLSID_CcLO, "CCcLO", 0, 3},
               {CLSID_AsmLO, "CAsmLO", 1, 4},
               {CLSID_LinkerLO, "CLinkerLO", 0, 3}};
  for (const auto& row : table) {
    SCOPED_TRACE(row.name);
    const Ref<IKVSelfDocumenting> object = documented(module_, row.clsid);
    ASSERT_TRUE(object);
    std::int32_t version = -1;
    EXPECT_EQ(object->GetVersion(&version), S_OK);
    EXPECT_EQ(version, row.version);
    EXPECT_EQ(rows(*object, u"", -1, -1).size(), row.rows);
    EXPECT_EQ(rows(*object, u"Class", -1, -1), std::vector<std::string>{std::string("0 Class ") + row.name});
    EXPECT_EQ(rows(*object, u"FixedIn", 0, 0), std::vector<std::string>{"0 FixedIn 1,0,0,2"});
    EXPECT_EQ(rows(*object, u"", 1, 5).empty(), row.version == 0);
    EXPECT_EQ(rows(*object, u"class", -1, -1).size(), 0U) << "keys compare exactly";
    BString path;
    EXPECT_EQ(object->GetModule(&path), S_OK);
    EXPECT_TRUE(path.narrow().ends_with("\\Forgeyard.so")) << path.narrow();
  }
}

TEST_F(SelfDocumentingClasses, ChooseRowsByKeyAndVersion) {
  const Ref<IKVSelfDocumenting> project = documented(module_, CLSID_Project);
  EXPECT_EQ(rows(*project, u"Beta Fix", 2, 2),
            (std::vector<std::string>{"2 Beta Fix Project Settings window remembers last Components selected",
                                      "2 Beta Fix and selects currently active configuration"}));
  EXPECT_EQ(rows(*project, u"Internal", -1, -1).size(), 2U);
  EXPECT_EQ(rows(*project, u"", 3, 4).size(), 2U);
  EXPECT_EQ(rows(*project, u"", 6, 3).size(), 0U);
}

TEST_F(SelfDocumentingClasses, KeepRowsByTheirKeys) {
  const Ref<IKVSelfDocumenting> tool = documented(module_, CLSID_BuildTool);
  Ref<IEntries> all;
  Ref<IEntries> again;
  ASSERT_EQ(tool->Entries({}, -1, -1, &all), S_OK);
  ASSERT_EQ(tool->Entries({}, -1, -1, &again), S_OK);
  EXPECT_EQ(all, again) << "built once for the object";
  Ref<ISimpleCollection> keys;
  ASSERT_EQ(all->get_Keys(&keys), S_OK);
  std::int32_t count = 0;
  EXPECT_EQ(keys->get_Count(&count), S_OK);
  EXPECT_EQ(count, 5);
  Ref<IEntries> fixes;
  ASSERT_EQ(all->EntriesWithKey(u"Beta Fix", &fixes), S_OK);
  EXPECT_EQ(fixes->get_Count(&count), S_OK);
  EXPECT_EQ(count, 3);
  Ref<IEntry> entry;
  EXPECT_EQ(fixes->get_Item(Variant(3), &entry), E_FAIL);
  EXPECT_EQ(fixes->get_Item(Variant(0), &entry), S_OK);
}

TEST_F(SelfDocumentingClasses, NameTheClassesBelowThem) {
  const Ref<IKVSelfDocumenting> tool = documented(module_, CLSID_BuildTool);
  std::vector<Guid> children;
  EXPECT_EQ(tool->Children(&children), S_OK);
  EXPECT_EQ(children, std::vector<Guid>{CLSID_Project});
  EXPECT_EQ(documented(module_, CLSID_AsmLO)->Children(&children), S_OK);
  EXPECT_EQ(children, std::vector<Guid>{CLSID_Asm});
  EXPECT_EQ(documented(module_, CLSID_Connection)->Children(&children), S_OK);
  EXPECT_TRUE(children.empty());
}

// A copy of the module with the diagnostics module beside it.
TEST_F(SelfDocumentingClasses, RegisterWithTheDiagnosticsModule) {
  std::filesystem::copy_file(modulePath(), scratch_ / "Forgeyard.so");
  std::filesystem::copy_file(places::watchpost(), scratch_ / "Watchpost.so");
  const LoadedModule watched(scratch_ / "Forgeyard.so");
  const std::map<std::string, bool> carriers{{"BuildTool", true},     {"Project", true}, {"Folder", true},
                                             {"Configuration", true}, {"CmdLine", true}, {"Cc", true},
                                             {"Asm", true},           {"Linker", true}};
  for (const KnownClass& one : knownClasses()) {
    if (one.serves != Serves::Objects) continue;
    const Ref<IUnknown> object = watched.create(one.clsid);
    void* library = dlopen((scratch_ / "Watchpost.so").c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (!library) continue;  // nobody has asked for it yet
    const auto living = reinterpret_cast<int (*)()>(dlsym(library, "livingObjects"));
    EXPECT_EQ(living(), carriers.contains(one.name) ? 1 : 0) << one.name;
    dlclose(library);
  }
  void* library = dlopen((scratch_ / "Watchpost.so").c_str(), RTLD_NOW | RTLD_NOLOAD);
  ASSERT_TRUE(library);
  EXPECT_EQ(reinterpret_cast<int (*)()>(dlsym(library, "livingObjects"))(), 0);
  dlclose(library);
  EXPECT_EQ(watched.canUnloadNow(), S_OK);
}

}  // namespace
}  // namespace forgeyard::test
