// The life of a project's file: made, saved, loaded, closed, damaged.

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>

#include "model/folders/source_file.h"
#include "platform/storage/records/records.h"
#include "tests/model/support/model_fixture.h"
#include "tests/platform/com/memory_stream.h"

namespace forgeyard::test {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::uint32_t kRead = STGM_READ | STGM_SHARE_EXCLUSIVE | STGM_TRANSACTED;
constexpr std::uint32_t kWrite = STGM_READWRITE | STGM_SHARE_EXCLUSIVE | STGM_TRANSACTED;
constexpr std::uint32_t kNewStream = STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE;

class ProjectFileTest : public ModelTest {
 protected:
  // Changes the file behind the project's back.
  template <class Body>
  void edit(const BString& fileName, Body&& body) {
    Ref<IStorage> root;
    check(StgOpenStorage(path(fileName.narrow()), kWrite, &root));
    body(*root);
    check(root->Commit(STGC_DEFAULT));
  }
  static Ref<IStream> newStream(IStorage& storage, const BString& name) {
    Ref<IStream> stream;
    check(storage.CreateStream(name, kNewStream, &stream));
    return stream;
  }
  // A saved and closed project with two configurations, two folders and a connection between them.
  void putSample() {
    const Ref<CProject> made = newProject();
    newConfiguration(*made, u"Second");
    const Ref<CFolder> a = addFolder(*made, u"A");
    const Ref<CFolder> b = addFolder(*made, u"B");
    connect(*made, a.get(), b.get());
    addFile(*a, u".\\x.c");
    check(made->ProjectSave());
    check(made->ProjectClose());
  }
  Ref<CProject> load(HRESULT expected = S_OK) {
    const Ref<CProject> made = project();
    EXPECT_EQ(made->ProjectLoad(), expected);
    return made;
  }
  static std::int32_t connectionCount(CProject& project) {
    Ref<IConnections> connections;
    std::int32_t count = -1;
    check(project.get_Connections(&connections));
    check(connections->get_Count(&count));
    return count;
  }
  static std::int32_t loadedState(CProject& project) {
    std::int32_t loaded = -1;
    check(project.get_Loaded(&loaded));
    return loaded;
  }
};

}  // namespace

// Making one

TEST_F(ProjectFileTest, InitMakesTheDirectoriesAndOneConfiguration) {
  const Ref<CProject> made = project(u"new.nqp", "one/two");
  EXPECT_EQ(made->ProjectInit(), S_OK);
  EXPECT_EQ(loadedState(*made), 1);
  ASSERT_EQ(made->contents().configurations.size(), 1u);
  BString name;
  check(made->contents().active->get_Name(&name));
  EXPECT_EQ(name.narrow(), "Default");
  EXPECT_EQ(dirty(*made), 1);
  EXPECT_EQ(made->ProjectInit(), E_FAIL) << "it is open already";
  EXPECT_EQ(made->ProjectSave(), S_OK);
  EXPECT_TRUE(std::filesystem::exists(directory_ / "one/two/new.nqp"));
}

TEST_F(ProjectFileTest, InitThatCannotCreateTheFileSaysSo) {
  directory_.put("plain");  // a file where a directory is wanted
  const Ref<CProject> made = project(u"new.nqp", "plain");
  EXPECT_EQ(made->ProjectInit(), E_FAIL);
  EXPECT_EQ(loadedState(*made), 0);
  EXPECT_THAT(host_->messages(),
              ElementsAre(ShownMessage{"Could not create the following file for writing:-\n" +
                                           path("plain").narrow() + "\\new.nqp",
                                       "Initialise new project", MessageButtons::Ok, MessageIcon::Stop}));
}

TEST_F(ProjectFileTest, ThePathHasOneBackslashBeforeTheFileName) {
  const Ref<CProject> made = project();
  for (const char16_t* directory : {u"\\w", u"\\w\\"}) {
    check(made->put_WorkingDirectory(directory));
    EXPECT_EQ(made->core().filePath().narrow(), "\\w\\demo.nqp");
  }
  check(made->put_WorkingDirectory(u"\\w/"));
  EXPECT_EQ(made->core().filePath().narrow(), "\\w/\\demo.nqp");
}

// States

TEST_F(ProjectFileTest, WhatHasNothingToDoSaysSo) {
  const Ref<CProject> made = project();
  EXPECT_EQ(made->ProjectSave(), S_FALSE);
  EXPECT_FALSE(std::filesystem::exists(directory_ / "demo.nqp"));
  EXPECT_EQ(made->ProjectInit(), S_OK);
  EXPECT_EQ(made->ProjectLoad(), S_FALSE);
}

TEST_F(ProjectFileTest, CloseUnloadsAndLeavesTheProjectDirty) {
  const Ref<CProject> made = newProject();
  addFolder(*made, u"f");
  check(made->ProjectSave());
  check(made->SourceFilesChanged());
  check(made->put_Dirty(0));
  const Ref<IConfiguration> active = made->contents().active;
  const Ref<NotifySink> sink = listen(static_cast<IProject*>(made.get()));
  EXPECT_EQ(made->ProjectClose(), S_OK);
  std::int32_t buildDirty = -1;
  check(made->get_BuildDirty(&buildDirty));
  EXPECT_EQ(buildDirty, 0);
  EXPECT_THAT(sink->ids, ElementsAre(18, 6, 19, 30));
  EXPECT_EQ(loadedState(*made), 0);
  EXPECT_EQ(dirty(*made), 1);
  EXPECT_TRUE(made->contents().components.empty());
  EXPECT_TRUE(made->contents().configurations.empty());
  EXPECT_EQ(made->contents().active, active) << "kept until the next load";
  EXPECT_EQ(made->contents().settings.nextComponentId, 1);
  EXPECT_EQ(made->ProjectLoad(), S_OK);
  EXPECT_NE(made->contents().active, active);
  EXPECT_EQ(made->contents().components.size(), 1u);
}

TEST_F(ProjectFileTest, LoadedIsAToggle) {
  putSample();
  const Ref<CProject> made = project();
  for (const std::int32_t state : {1, 0, 1}) {
    EXPECT_EQ(made->put_Loaded(0), S_OK);
    EXPECT_EQ(loadedState(*made), state);
  }
}

TEST_F(ProjectFileTest, EndReleasesEverything) {
  const Ref<CProject> made = newProject();
  addFolder(*made, u"f");
  end(*made);
  EXPECT_EQ(made->contents().settings.nextComponentId, 0);
  EXPECT_FALSE(made->contents().active);
  Ref<IConnections> connections;
  EXPECT_EQ(made->get_Connections(&connections), E_FAIL);
  // The file is free for others.
  check(load()->ProjectClose());
}

TEST_F(ProjectFileTest, ADirtySaveOfAnUncontrolledProjectCountsAsLocalChange) {
  const Ref<CProject> made = newProject();
  EXPECT_FALSE(made->sourceControl().localChanges);
  check(made->ProjectSave());
  EXPECT_TRUE(made->sourceControl().localChanges);
  EXPECT_EQ(dirty(*made), 0);
  check(made->ProjectClose());
  check(made->ProjectLoad());
  EXPECT_EQ(dirty(*made), 1);
}

// Loading

TEST_F(ProjectFileTest, AMissingFileFailsAndSaysWhy) {
  const Ref<CProject> made = load(E_FAIL);
  EXPECT_EQ(made->loadFailure(), STG_E_FILENOTFOUND);
  EXPECT_EQ(loadedState(*made), 0);
}

TEST_F(ProjectFileTest, AFileThatIsNoProjectFails) {
  directory_.put("demo.nqp", "plain text, and not a compound file at all");
  EXPECT_TRUE(failed(load(E_FAIL)->loadFailure()));
}

TEST_F(ProjectFileTest, AProjectInUseCannotBeLoadedASecondTime) {
  putSample();
  const Ref<CProject> first = load();
  const Ref<CProject> second = load(E_FAIL);
  EXPECT_TRUE(failed(second->loadFailure()));
  check(first->ProjectClose());
  EXPECT_EQ(second->ProjectLoad(), S_OK);
}

TEST_F(ProjectFileTest, AReadOnlyFileIsMadeWritable) {
  putSample();
  ASSERT_EQ(chmod((directory_ / "demo.nqp").c_str(), 0444), 0);
  load();
  struct stat state {};
  ASSERT_EQ(stat((directory_ / "demo.nqp").c_str(), &state), 0);
  EXPECT_TRUE(state.st_mode & S_IWUSR);
}

TEST_F(ProjectFileTest, ALoadMakesNoEventsOfOldThings) {
  putSample();
  const Ref<CProject> made = project();
  check(made->put_Dirty(0));
  const Ref<NotifySink> sink = listen(static_cast<IProject*>(made.get()));
  check(made->ProjectLoad());
  EXPECT_EQ(sink->count(kProjectConfigurations), 0);
  EXPECT_EQ(sink->count(kProjectComponents), 0);
  EXPECT_EQ(sink->count(kProjectDirty), 0);
  EXPECT_EQ(sink->count(kProjectLoaded), 1);
  EXPECT_EQ(sink->count(kProjectComponentOutputs), 1) << "the lists are up to date";
}

TEST_F(ProjectFileTest, FilesFollowAProjectThatMoves) {
  putSample();
  std::filesystem::create_directory(directory_ / "moved");
  std::filesystem::rename(directory_ / "demo.nqp", directory_ / "moved/demo.nqp");
  const Ref<CProject> made = project(u"demo.nqp", "moved");
  check(made->ProjectLoad());
  const Ref<IFolderFiles> folder = made->contents().components[0].as<IFolderFiles>();
  EXPECT_EQ(name(folder->sourceFiles()[0].get()), path("moved").narrow() + "\\x.c");
  // Nothing was learnt that the file would have to take.
  EXPECT_EQ(folder.as<IPersistStorage>()->IsDirty(), S_FALSE);
}

// Best effort

TEST_F(ProjectFileTest, AnUnknownActiveNameLeavesComponentsOut) {
  putSample();
  edit(u"demo.nqp", [&](IStorage& root) {
    Ref<IStream> stream;
    check(root.OpenStream(u"Configurations", STGM_READWRITE | STGM_SHARE_EXCLUSIVE, &stream));
    check(stream->Seek(-2, StreamSeek::End, nullptr));
    check(stream->Write("X", 2, nullptr));  // "Default" becomes "DefaulX"
  });
  const Ref<CProject> made = load();
  EXPECT_EQ(loadedState(*made), 1);
  EXPECT_EQ(made->contents().configurations.size(), 2u);
  EXPECT_FALSE(made->contents().active);
  EXPECT_TRUE(made->contents().components.empty());
  ASSERT_EQ(made->omissions().size(), 1u);
  EXPECT_THAT(made->omissions()[0].what, HasSubstr("active configuration \"DefaulX\""));
}

struct DamageCase {
  const char* name;
  void (*damage)(IStorage& root);
  std::size_t configurations;
  std::size_t components;
  std::int32_t connections;
  const char* omission;  // null where nothing counts as left out
};

void cut(IStorage& storage, const BString& name, std::uint64_t size) {
  Ref<IStream> stream;
  check(storage.OpenStream(name, STGM_READWRITE | STGM_SHARE_EXCLUSIVE, &stream));
  check(stream->SetSize(size));
}

void cutInComponent(IStorage& root, const BString& component, const BString& name, std::uint64_t size) {
  Ref<IStorage> storage;
  check(root.OpenStorage(component, kWrite, &storage));
  cut(*storage, name, size);
  check(storage->Commit(STGC_DEFAULT));
}

void write(IStorage& root, const BString& name, std::initializer_list<std::uint32_t> numbers) {
  Ref<IStream> stream;
  check(root.CreateStream(name, kNewStream, &stream));
  RecordWriter record(stream.get());
  for (const std::uint32_t number : numbers) record.u32(number);
}

const DamageCase kDamages[] = {
    {"no settings", [](IStorage& r) { check(r.DestroyElement(u"Settings")); }, 2, 2, 1, nullptr},
    {"short settings", [](IStorage& r) { cut(r, u"Settings", 6); }, 2, 2, 1, "stream \"Settings\""},
    {"no configurations", [](IStorage& r) { check(r.DestroyElement(u"Configurations")); }, 0, 0, 0,
     "component \"Component0\" and all behind it"},
    {"configurations cut in the second", [](IStorage& r) { cut(r, u"Configurations", 80); }, 1, 0, 0,
     "stream \"Configurations\" and all behind it"},
    {"short configurations", [](IStorage& r) { cut(r, u"Configurations", 40); }, 0, 0, 0,
     "stream \"Configurations\" and all behind it"},
    {"huge count", [](IStorage& r) { write(r, u"Configurations", {0xFFFFFFFF}); }, 0, 0, 0,
     "stream \"Configurations\" and all behind it"},
    {"no connections", [](IStorage& r) { check(r.DestroyElement(u"Connections")); }, 2, 2, 0, nullptr},
    {"connections cut behind the first",
     [](IStorage& r) {
       write(r, u"Connections", {0, 0x10000000, 0, 0, 1});
     },
     2, 2, 1, "stream \"Connections\" and all behind it"},
    {"connection to nowhere",
     [](IStorage& r) {
       write(r, u"Connections", {0, 2, 0, 0, 1, 0, 0, 9});
     },
     2, 2, 1, "stream \"Connections\" and all behind it"},
    {"damaged second component", [](IStorage& r) { cutInComponent(r, u"Component1", u"FolderSettings", 9); },
     2, 1, 0, "component \"Component1\" and all behind it"},
    {"settings of another project",
     [](IStorage& r) {
       Ref<IStorage> storage;
       check(r.OpenStorage(u"Component0", kWrite, &storage));
       Ref<IStream> stream;
       check(storage->CreateStream(u"Settings", kNewStream, &stream));
       RecordWriter record(stream.get());
       record.u32(0);
       record.u32(1);
       record.listedString(u"Unknown");
       record.u32(0);
       record.u32(1);
       stream = nullptr;
       check(storage->Commit(STGC_DEFAULT));
     },
     2, 0, 0, "component \"Component0\" and all behind it"},
};

TEST_F(ProjectFileTest, DamageEndsTheReadingAndIsReported) {
  for (const DamageCase& row : kDamages) {
    SCOPED_TRACE(row.name);
    std::filesystem::remove(directory_ / "demo.nqp");
    putSample();
    edit(u"demo.nqp", [&](IStorage& root) { row.damage(root); });
    const Ref<CProject> made = load();
    EXPECT_EQ(loadedState(*made), 1);
    EXPECT_EQ(made->contents().configurations.size(), row.configurations);
    EXPECT_EQ(made->contents().components.size(), row.components);
    EXPECT_EQ(connectionCount(*made), row.connections);
    std::vector<std::string> leftOut;
    for (const LoadOmission& omission : made->omissions()) leftOut.push_back(omission.what);
    if (row.omission) {
      EXPECT_THAT(leftOut, Contains(row.omission));
    } else {
      EXPECT_THAT(leftOut, IsEmpty());
    }
    check(made->ProjectClose());
  }
}

TEST_F(ProjectFileTest, StrangersInTheFileAreSkippedAndKept) {
  putSample();
  edit(u"demo.nqp", [&](IStorage& root) {
    check(newStream(root, u"Notes")->Write("hello", 5, nullptr));
    Ref<IStorage> storage;
    check(root.CreateStorage(u"Component7", kWrite, &storage));
    check(storage->SetClass(guid("B0000000-0000-0000-0000-000000000007")));
    check(newStream(*storage, u"Data")->Write("data", 4, nullptr));
    check(storage->Commit(STGC_DEFAULT));
  });
  const Ref<CProject> made = load();
  EXPECT_EQ(made->contents().components.size(), 2u);
  EXPECT_TRUE(made->omissions().empty());
  check(made->ProjectSave());
  check(made->ProjectClose());

  Ref<IStorage> root;
  check(StgOpenStorage(path("demo.nqp"), kRead, &root));
  Ref<IStorage> storage;
  Ref<IStream> stream;
  char bytes[4] = {};
  check(root->OpenStorage(u"Component7", kRead, &storage));
  check(storage->OpenStream(u"Data", STGM_READ | STGM_SHARE_EXCLUSIVE, &stream));
  check(stream->Read(bytes, 4, nullptr));
  EXPECT_EQ(std::string(bytes, 4), "data");
  EXPECT_EQ(root->OpenStream(u"Notes", STGM_READ | STGM_SHARE_EXCLUSIVE, &stream), S_OK);
}

TEST_F(ProjectFileTest, ComponentsComeInTheOrderOfTheFile) {
  const Ref<CProject> made = newProject();
  for (int i = 0; i < 12; ++i) addFolder(*made, BString::fromNarrow(std::to_string(i)));
  const Ref<CProject> again = reload(*made);
  std::vector<std::string> names;
  for (const Ref<IComponent>& component : again->contents().components) {
    BString name;
    check(component->get_ComponentName(&name));
    names.push_back(name.narrow());
  }
  EXPECT_THAT(names, ElementsAre("0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "10", "11"));
}

// Connections of a file may close a circle: none of what it feeds can ever run, and nothing may hang or
// overflow.
TEST_F(ProjectFileTest, ACircleOfConnectionsIsLeftOutOfTheBuild) {
  const Ref<CProject> made = newProject();
  for (int i = 0; i < 4; ++i) addFake(*made);
  check(made->ProjectSave());
  check(made->ProjectClose());
  edit(u"demo.nqp", [&](IStorage& root) {
    write(root, u"Connections", {0, 3, 0, 0, 1, 0, 1, 0, 0, 1, 2});  // 0 -> 1 -> 0, 1 -> 2; 3 alone
  });
  const Ref<CProject> again = load();
  EXPECT_EQ(connectionCount(*again), 3);
  EXPECT_FALSE(again->building());
  check(again->PreBuild(nullptr));
  EXPECT_FALSE(again->building());
  const auto tasks = [&](std::size_t i) {
    return static_cast<FakeComponent*>(again->contents().components[i].get())->tasks;
  };
  EXPECT_EQ(tasks(2), 0);
  EXPECT_EQ(tasks(3), 2);
}

// Saving

TEST_F(ProjectFileTest, AFailedSaveKeepsTheFileAndTheProjectDirty) {
  putSample();
  const Ref<CProject> made = load();
  const std::string before = contentOf(directory_ / "demo.nqp");
  const Ref<FakeComponent> broken = addFake(*made);
  check(broken->HandsOffStorage());  // it has nothing to save into
  EXPECT_EQ(made->ProjectSave(), S_OK);
  EXPECT_EQ(made->saveFailure(), E_FAIL);
  EXPECT_EQ(dirty(*made), 1);
  EXPECT_EQ(contentOf(directory_ / "demo.nqp"), before);
}

TEST_F(ProjectFileTest, ASaveAsksComponentsWhetherAnythingChanged) {
  putSample();
  const Ref<CProject> made = load();
  check(made->put_Dirty(0));
  made->sourceControl().localChanges = false;
  check(made->ProjectSave());
  EXPECT_FALSE(made->sourceControl().localChanges) << "nothing had changed";
  const Ref<ISourceFile> file = made->contents().components[0].as<IFolderFiles>()->sourceFiles()[0];
  check(file->put_SourceControl(1));
  EXPECT_EQ(dirty(*made), 0);
  const Ref<NotifySink> sink = listen(static_cast<IProject*>(made.get()));
  check(made->ProjectSave());
  EXPECT_EQ(sink->count(kProjectDirty), 2) << "set by the component, cleared by the save";
  EXPECT_TRUE(made->sourceControl().localChanges);
}

TEST_F(ProjectFileTest, AShrunkRecordLeavesNothingBehindThatIsRead) {
  const Ref<CProject> made = newProject();
  const Ref<CFolder> folder = addFolder(*made, u"a long name of a folder");
  for (int i = 0; i < 20; ++i) addFile(*folder, u".\\some_file_with_a_name.c");
  check(made->ProjectSave());
  check(folder->put_Name(u"f"));
  Ref<ISourceFiles> files;
  check(folder->get_SourceFiles(&files));
  while (folder->sourceFiles().size() > 1) check(files->Delete(folder->sourceFiles().back().get()));
  const std::string before = dump(*made);
  const Ref<CProject> again = reload(*made);
  EXPECT_TRUE(again->omissions().empty());
  EXPECT_EQ(again->contents().components[0].as<IFolderFiles>()->sourceFiles().size(), 1u);
}

// The record in the workspace

namespace {

std::string workspaceRecord(std::uint32_t version, bool loaded, const BString& directory) {
  const auto stream = make<MemoryStream>();
  RecordWriter record(stream.get());
  record.u32(version);
  record.listedString(directory);
  record.i32(5);  // SSVersion
  record.u8(1);   // SSLocalChanges
  record.u8(0);   // SSControl
  if (version > 0) record.u8(loaded ? 1 : 0);
  SettingsBlock block;
  block.name = u"Stored";
  block.fileName = u"demo.nqp";
  block.save(record);
  if (version > 1) LogonBlock{u"user", u"secret"}.save(record);
  record.u32(4711);  // what follows belongs to the next
  return stream->bytes;
}

}  // namespace

struct WorkspaceCase {
  const char* name;
  std::uint32_t version;
  bool loadedByte;
  std::int32_t loaded;
  const char* user;
};

TEST_F(ProjectFileTest, WorkspaceRecordsOfEveryVersionAreRead) {
  const WorkspaceCase rows[] = {{"first", 0, false, 1, ""},
                                {"second, loaded", 1, true, 1, ""},
                                {"second, unloaded", 1, false, 0, ""},
                                {"third", 2, true, 1, "user"}};
  putSample();
  for (const WorkspaceCase& row : rows) {
    SCOPED_TRACE(row.name);
    const auto stream =
        make<MemoryStream>(workspaceRecord(row.version, row.loadedByte, modelPath(directory_.path())));
    const Ref<CProject> made = project(u"overwritten.nqp");
    EXPECT_EQ(made->Load(stream.get()), S_OK);
    EXPECT_EQ(loadedState(*made), row.loaded);
    EXPECT_EQ(made->contents().settings.name.narrow(), row.loaded ? "Demo" : "Stored");
    EXPECT_EQ(made->contents().settings.ssVersion, row.loaded ? 0 : 5);
    EXPECT_EQ(made->sourceControl().logon.userName.narrow(), row.user);
    EXPECT_TRUE(made->sourceControl().localChanges);
    EXPECT_EQ(dirty(*made), 0);
    EXPECT_EQ(stream->position + 4, stream->bytes.size()) << "the next record begins here";
    check(made->ProjectClose());
  }
}

TEST_F(ProjectFileTest, AProjectWhoseFileIsGoneStaysInTheWorkspace) {
  const auto stream = make<MemoryStream>(workspaceRecord(2, true, modelPath(directory_.path())));
  const Ref<CProject> made = project();
  EXPECT_EQ(made->Load(stream.get()), S_OK);
  EXPECT_EQ(loadedState(*made), 0);
  EXPECT_EQ(made->contents().settings.name.narrow(), "Stored");
}

TEST_F(ProjectFileTest, SavingTheWorkspaceRecordSavesTheProject) {
  const Ref<CProject> made = newProject();
  made->sourceControl().logon = {u"me", u"pass"};
  check(made->put_SSRoot(u"$\\x"));
  const auto stream = make<MemoryStream>();
  EXPECT_EQ(made->IsDirty(), S_OK);
  EXPECT_EQ(made->Save(stream.get(), true), S_OK);
  EXPECT_EQ(made->IsDirty(), S_FALSE);
  const std::string before = dump(*made);
  check(made->ProjectClose());
  stream->position = 0;
  const Ref<CProject> again = project(u"other.nqp");
  EXPECT_EQ(again->Load(stream.get()), S_OK);
  EXPECT_EQ(dump(*again), before);
  EXPECT_EQ(again->sourceControl().logon.password.narrow(), "pass");
}

}  // namespace forgeyard::test
