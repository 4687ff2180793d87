// The module in a host's hands: load, create, count, unload.

#include <dlfcn.h>
#include <elf.h>

#include <cstring>
#include <set>
#include <vector>

#include "tests/plugin/class_list.h"
#include "tests/plugin/loaded_module.h"
#include "typelib/buildtool.h"
#include "typelib/classes.h"
#include "typelib/folder.h"

namespace forgeyard::test {
namespace {

using Module = ModuleTest;

bool isLoaded(const std::string& path) {
  void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
  if (library) dlclose(library);
  return library != nullptr;
}

// The names that a shared library defines for others.
std::set<std::string> exportedNames(const std::string& image) {
  std::set<std::string> names;
  Elf64_Ehdr header;
  std::memcpy(&header, image.data(), sizeof header);
  std::vector<Elf64_Shdr> sections(header.e_shnum);
  std::memcpy(sections.data(), image.data() + header.e_shoff, sections.size() * sizeof(Elf64_Shdr));
  for (const Elf64_Shdr& section : sections) {
    if (section.sh_type != SHT_DYNSYM) continue;
    std::vector<Elf64_Sym> symbols(section.sh_size / sizeof(Elf64_Sym));
    std::memcpy(symbols.data(), image.data() + section.sh_offset, symbols.size() * sizeof(Elf64_Sym));
    for (const Elf64_Sym& symbol : symbols) {
      if (symbol.st_shndx != SHN_UNDEF)
        names.insert(image.data() + sections[section.sh_link].sh_offset + symbol.st_name);
    }
  }
  return names;
}

TEST_F(Module, ShowsItsFourExportsAlone) {
  std::string image(std::filesystem::file_size(modulePath()), '\0');
  std::ifstream(modulePath(), std::ios::binary)
      .read(image.data(), static_cast<std::streamsize>(image.size()));
  EXPECT_EQ(exportedNames(image), (std::set<std::string>{"DllCanUnloadNow", "DllGetClassObject",
                                                         "DllRegisterServer", "DllUnregisterServer"}));
}

TEST_F(Module, MakesAnObjectOfEveryClassAndSaysSoForThoseThatAreNotBuilt) {
  for (const KnownClass& one : knownClasses()) {
    HRESULT status = E_UNEXPECTED;
    const Ref<IUnknown> object = module_.create(one.clsid, &status);
    const HRESULT expected = one.serves == Serves::Objects  ? S_OK
                             : one.serves == Serves::NotYet ? E_NOTIMPL
                                                            : CLASS_E_CLASSNOTAVAILABLE;
    EXPECT_EQ(code(status), code(expected)) << one.name;
    EXPECT_EQ(static_cast<bool>(object), one.serves == Serves::Objects) << one.name;
    EXPECT_EQ(module_.canUnloadNow(), object ? S_FALSE : S_OK) << one.name;
  }
}

TEST_F(Module, GivesTheInterfaceThatAClassIsKnownFor) {
  addClassSource(module_.classSource());
  EXPECT_TRUE(createInstance<IBuildTool>(CLSID_BuildTool));
  EXPECT_TRUE(createInstance<IProject>(CLSID_Project));
  EXPECT_TRUE(createInstance<IFolder>(CLSID_Folder));
  EXPECT_TRUE(createInstance<ISimpleCollection>(CLSID_SimpleCollection));
  EXPECT_FALSE(createInstance<IProject>(CLSID_Folder));
  removeClassSource(module_.classSource());
}

TEST_F(Module, KnowsDataObjectsByTheirOtherIdentifierAlone) {
  HRESULT status = S_OK;
  EXPECT_FALSE(module_.factory(CLSID_DataObject, &status));
  EXPECT_EQ(status, CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_TRUE(module_.factory(CLSID_DataObjectInMap));
  EXPECT_TRUE(module_.create(CLSID_DataObjectInMap));
}

TEST_F(Module, HasNoClassForIdentifiersThatItDoesNotServe) {
  // The null identifier stands in the map's end entry.
  for (const Guid& clsid : {GUID_NULL, IProject::iid, guid("12345678-0000-0000-0000-000000000000")}) {
    void* out = this;
    EXPECT_EQ(module_.getClassObject(clsid, IClassFactory::iid, &out), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(out, nullptr);
  }
}

TEST_F(Module, RefusesInterfacesThatAreNotThereAndLeavesNothingBehind) {
  void* out = this;
  EXPECT_EQ(module_.getClassObject(CLSID_Project, IProject::iid, &out), E_NOINTERFACE);
  EXPECT_EQ(out, nullptr);
  {
    const Ref<IClassFactory> factory = module_.factory(CLSID_Project);
    out = this;
    EXPECT_EQ(factory->CreateInstance(nullptr, IClassFactory::iid, &out), E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
    out = this;
    EXPECT_EQ(factory->CreateInstance(factory.get(), IUnknown::iid, &out), CLASS_E_NOAGGREGATION);
    EXPECT_EQ(out, nullptr);
  }
  EXPECT_EQ(module_.canUnloadNow(), S_OK);
}

TEST_F(Module, StaysForClassObjectsAndLocks) {
  Ref<IClassFactory> factory = module_.factory(CLSID_Project);
  EXPECT_EQ(module_.canUnloadNow(), S_FALSE);
  EXPECT_EQ(factory->LockServer(true), S_OK);
  EXPECT_EQ(factory->LockServer(true), S_OK);
  factory = nullptr;
  EXPECT_EQ(module_.canUnloadNow(), S_FALSE);
  factory = module_.factory(CLSID_Folder);
  EXPECT_EQ(factory->LockServer(false), S_OK);
  EXPECT_EQ(factory->LockServer(false), S_OK);
  factory = nullptr;
  EXPECT_EQ(module_.canUnloadNow(), S_OK);
}

TEST_F(Module, LeavesTheProcessAndComesBackWithAMapOfItsOwn) {
  for (int round = 0; round < 3; ++round) {
    LoadedModule once;
    EXPECT_EQ(once.canUnloadNow(), S_OK);
    const Ref<IUnknown> project = once.create(CLSID_Project);
    ASSERT_TRUE(project) << "round " << round;
    EXPECT_EQ(once.canUnloadNow(), S_FALSE);
  }
  module_.unload();
  EXPECT_FALSE(isLoaded(modulePath()));
  new (&module_) LoadedModule;
  EXPECT_TRUE(module_.create(CLSID_Project));
}

// Two copies of the module, as two installations have them, in one process.
TEST_F(Module, CountsItsOwnObjectsAlone) {
  const std::string copy = scratch_ / "Copy.so";
  std::filesystem::copy_file(modulePath(), copy);
  {
    const LoadedModule other(copy);
    const Ref<IUnknown> object = other.create(CLSID_Project);
    EXPECT_EQ(other.canUnloadNow(), S_FALSE);
    EXPECT_EQ(module_.canUnloadNow(), S_OK);
  }
  EXPECT_FALSE(isLoaded(copy));
}

}  // namespace
}  // namespace forgeyard::test
