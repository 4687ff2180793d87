// Folders: their files, what they give to a build, their settings.

#include <gmock/gmock.h>

#include "model/folders/folder_settings.h"
#include "model/folders/source_file.h"
#include "tests/model/support/model_fixture.h"

namespace forgeyard::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class FolderTest : public ModelTest {
 protected:
  void SetUp() override {
    project_ = newProject();
    folder_ = addFolder(*project_, u"Sources", u"c");
    check(folder_->get_SourceFiles(&files_));
  }
  void TearDown() override {
    files_ = nullptr;
    folder_ = nullptr;
    project_ = nullptr;
  }
  static Ref<CSourceFile> file(const BString& name) {
    const auto made = make<CSourceFile>();
    check(made->put_Name(name));
    return made;
  }
  static Ref<IEnumUnknown> several(const std::vector<Ref<CSourceFile>>& files) {
    std::vector<Ref<IUnknown>> objects;
    for (const auto& entry : files) objects.emplace_back(static_cast<ISourceFile*>(entry.get()));
    return make<ListEnumerator<IEnumUnknown>>(std::move(objects));
  }
  std::int32_t isDirty() { return folder_->IsDirty() == S_OK ? 1 : 0; }

  Ref<CProject> project_;
  Ref<CFolder> folder_;
  Ref<ISourceFiles> files_;
};

}  // namespace

TEST_F(FolderTest, ItemTakesAnIndexOfOneTypeOnly) {
  const Ref<ISourceFile> a = addFile(*folder_, u"a");
  Ref<ISourceFile> found;
  EXPECT_EQ(files_->get_Item(Variant(0), &found), S_OK);
  EXPECT_EQ(found, a);
  EXPECT_EQ(files_->get_Item(Variant(1), &found), E_FAIL);
  EXPECT_EQ(found, a) << "out of range leaves it alone";
  EXPECT_EQ(files_->get_Item(Variant(-1), &found), E_FAIL);
  EXPECT_EQ(files_->get_Item(Variant(0u), &found), E_FAIL);
  EXPECT_FALSE(found) << "another type clears it";
}

TEST_F(FolderTest, EachOperationIsOneChange) {
  const Ref<NotifySink> folderSink = listen(static_cast<IFolder*>(folder_.get()));
  const Ref<NotifySink> projectSink = listen(static_cast<IProject*>(project_.get()));
  const auto a = file(u"a");
  const auto b = file(u"b");
  const auto c = file(u"c");
  std::ptrdiff_t changes = 0;
  const auto expectChange = [&](const std::vector<std::string>& names) {
    ++changes;
    EXPECT_EQ(folderSink->count(1), changes);
    EXPECT_EQ(projectSink->count(kProjectSourceFilesChanged), changes);
    EXPECT_EQ(fileNames(*folder_), names);
  };
  EXPECT_EQ(files_->Add(a.get()), S_OK);
  expectChange({"a"});
  EXPECT_EQ(files_->Add(a.get()), S_OK);
  expectChange({"a"});
  EXPECT_EQ(files_->AddMulti(several({b, a, c, b}).get()), S_OK);
  expectChange({"a", "b", "c"});
  EXPECT_EQ(files_->Delete(a.get()), S_OK);
  expectChange({"b", "c"});
  EXPECT_EQ(files_->Delete(a.get()), E_FAIL);
  EXPECT_EQ(folderSink->count(1), changes);
  EXPECT_EQ(files_->RemoveMulti(several({c, a}).get()), S_OK);
  expectChange({"b"});
  EXPECT_EQ(files_->Add(c.get()), S_OK);
  expectChange({"b", "c"});
  Ref<ISourceFile> made;
  EXPECT_EQ(files_->New(&made), S_OK);
  expectChange({"b", "c", "<null>"});
  Ref<IProject> owner;
  check(made->get_Project(&owner));
  EXPECT_EQ(owner.get(), static_cast<IProject*>(project_.get()));
  std::int32_t due = 0;
  check(project_->get_BuildDirty(&due));
  EXPECT_EQ(due, 1);
}

// Outputs

TEST_F(FolderTest, GivesItsFilesWhileItIsEnabledInTheActiveConfiguration) {
  const Ref<IConfiguration> other = newConfiguration(*project_, u"Other");
  addFile(*folder_, u"\\a.c");
  addFile(*folder_, u"\\B.c");
  EXPECT_THAT(outputs(*folder_), ElementsAre("\\a.c", "\\B.c"));
  check(folder_->put_Enabled(0));
  EXPECT_THAT(outputs(*folder_), IsEmpty());
  check(project_->put_ActiveConfiguration(other.get()));
  EXPECT_THAT(outputs(*folder_), ElementsAre("\\a.c", "\\B.c"));
  Ref<IEnumString> inputs;
  EXPECT_EQ(folder_->InputFilesEnum(&inputs), S_OK);
  EXPECT_FALSE(inputs);
}

TEST_F(FolderTest, AFolderWithoutProjectHasNothingToGive) {
  const auto alone = make<CFolder>();
  EXPECT_THAT(outputs(*alone), ElementsAre("<null>"));
  std::int32_t enabled = 0;
  EXPECT_EQ(alone->get_Enabled(&enabled), E_FAIL);
}

TEST_F(FolderTest, ItsListIsOneObjectUntilSomethingChanges) {
  const Ref<ISourceFile> a = addFile(*folder_, u"\\a.c");
  const auto before = folder_->outputFiles();
  EXPECT_EQ(folder_->outputFiles(), before);
  check(project_->put_Name(u"x"));
  EXPECT_EQ(folder_->outputFiles(), before) << "the project's name is none of its business";
  addFolder(*project_, u"Other");
  EXPECT_EQ(folder_->outputFiles(), before);
  check(a->put_Name(u"\\b.c"));
  EXPECT_NE(folder_->outputFiles(), before);
  EXPECT_THAT(outputs(*folder_), ElementsAre("\\b.c"));
  addFile(*folder_, u"\\c.c");
  EXPECT_THAT(outputs(*folder_), ElementsAre("\\b.c", "\\c.c"));
}

// Settings

TEST_F(FolderTest, ANewConfigurationClonesTheSettingsOfItsBase) {
  check(folder_->put_Enabled(0));
  const Ref<IConfiguration> base = project_->contents().active;
  const auto enabledIn = [&](IConfiguration* configuration) {
    Ref<IUnknown> settings;
    std::int32_t enabled = -1;
    check(folder_->get_Setting(configuration, &settings));
    check(settings.as<IFolderSettings>()->get_Enabled(&enabled));
    return enabled;
  };
  const Ref<IConfiguration> copy = newConfiguration(*project_, u"Copy", base.get());
  const Ref<IConfiguration> fresh = newConfiguration(*project_, u"Fresh");
  EXPECT_EQ(enabledIn(copy.get()), 0);
  EXPECT_EQ(enabledIn(fresh.get()), 1);
  check(folder_->put_Enabled(1));
  EXPECT_EQ(enabledIn(copy.get()), 0) << "a copy of its own";
  Ref<IConfigurations> configurations;
  check(project_->get_Configurations(&configurations));
  check(configurations->Delete(copy.get()));
  Ref<IUnknown> settings;
  EXPECT_EQ(folder_->get_Setting(copy.get(), &settings), E_FAIL);
}

TEST_F(FolderTest, ASettingsTransactionIsKeptOrDropped) {
  for (const std::int32_t apply : {0, 1}) {
    SCOPED_TRACE(apply ? "kept" : "dropped");
    check(folder_->BeforeSettings());
    check(folder_->put_Enabled(0));
    check(folder_->put_Name(u"Renamed"));
    EXPECT_THAT(outputs(*folder_), IsEmpty());
    check(folder_->AfterSettings(apply));
    std::int32_t enabled = -1;
    BString name;
    check(folder_->get_Enabled(&enabled));
    check(folder_->get_ComponentName(&name));
    EXPECT_EQ(enabled, apply ? 0 : 1);
    EXPECT_EQ(name.narrow(), apply ? "Renamed" : "Sources");
  }
}

// Configurations may come and go while the settings of the others are edited.
TEST_F(FolderTest, ConfigurationsComeAndGoWithinASettingsTransaction) {
  Ref<IConfigurations> configurations;
  check(project_->get_Configurations(&configurations));
  const Ref<IConfiguration> base = project_->contents().active;
  for (const std::int32_t apply : {0, 1}) {
    SCOPED_TRACE(apply ? "kept" : "dropped");
    const Ref<IConfiguration> doomed = newConfiguration(*project_, u"Doomed");
    check(folder_->BeforeSettings());
    check(folder_->put_Enabled(0));
    const Ref<IConfiguration> copy = newConfiguration(*project_, u"Copy", base.get());
    check(configurations->Delete(doomed.get()));
    Ref<IUnknown> settings;
    EXPECT_EQ(folder_->get_Setting(copy.get(), &settings), S_OK);
    EXPECT_EQ(folder_->get_Setting(doomed.get(), &settings), E_FAIL);
    check(folder_->AfterSettings(apply));
    EXPECT_EQ(folder_->get_Setting(doomed.get(), &settings), E_FAIL);
    ASSERT_EQ(folder_->get_Setting(copy.get(), &settings), S_OK);
    std::int32_t enabled = -1;
    check(settings.as<IFolderSettings>()->get_Enabled(&enabled));
    EXPECT_EQ(enabled, apply ? 0 : 1) << "a copy of what was in force";
    check(folder_->put_Enabled(1));
    check(copy->put_Name(apply ? u"Kept" : u"Dropped"));
  }
  EXPECT_TRUE(reload(*project_)->omissions().empty()) << "each stored name is known";
}

TEST_F(FolderTest, NameAndExtensionAnnounceThemselves) {
  const Ref<NotifySink> sink = listen(static_cast<IFolder*>(folder_.get()));
  check(folder_->put_Name(u"n"));
  check(folder_->put_Extension(u"e"));
  EXPECT_THAT(sink->ids, ElementsAre(2, 3));
}

TEST_F(FolderTest, TheUserNamesANewFolder) {
  const auto made = make<CFolder>();
  check(made->SetParent(static_cast<IProject*>(project_.get()), static_cast<IServiceLookup*>(host_.get())));
  std::vector<std::string> labels;
  host_->fillDialog([&](std::span<DialogField> fields) {
    for (const DialogField& field : fields) labels.push_back(field.label.narrow());
    fields[0].text = u"Start-up";
    fields[1].text = u"s;asm";
    return true;
  });
  std::int32_t wanted = -1;
  EXPECT_EQ(made->OnNew(&wanted), S_OK);
  EXPECT_EQ(wanted, 1);
  EXPECT_THAT(labels, ElementsAre("&Name of the new folder:", "File e&xtensions:"));
  EXPECT_THAT(host_->dialogTitles(), ElementsAre("New Folder"));
  BString value;
  check(made->get_Name(&value));
  EXPECT_EQ(value.narrow(), "Start-up");
  check(made->get_Extension(&value));
  EXPECT_EQ(value.narrow(), "s;asm");

  host_->fillDialog([](std::span<DialogField>) { return false; });
  EXPECT_EQ(made->OnNew(&wanted), S_OK);
  EXPECT_EQ(wanted, 0);
  host_->withdraw(SID_MainFrame);
  EXPECT_EQ(made->OnNew(&wanted), E_FAIL);
  check(made->Close());
}

// Persistence

struct DirtyCase {
  const char* name;
  void (*change)(CFolder&, ISourceFile&, IConfiguration&);
  int dirty;
};

void sameDeps(CFolder&, ISourceFile& file, IConfiguration&) {
  check(file.put_AutomaticDeps(enumerator({u"a.h", u"b.h"}).get()));
}

const DirtyCase kChanges[] = {
    {"nothing", [](CFolder&, ISourceFile&, IConfiguration&) {}, 0},
    {"equal dependencies", sameDeps, 0},
    {"other dependencies",
     [](CFolder&, ISourceFile& f, IConfiguration&) {
       check(f.put_AutomaticDeps(enumerator({u"a.h"}).get()));
     },
     1},
    {"other order",
     [](CFolder&, ISourceFile& f, IConfiguration&) {
       check(f.put_AutomaticDeps(enumerator({u"b.h", u"a.h"}).get()));
     },
     1},
    {"manual dependency", [](CFolder&, ISourceFile& f, IConfiguration&) { check(f.AddManualDep(u"x")); }, 1},
    {"no such dependency", [](CFolder&, ISourceFile& f, IConfiguration&) { check(f.RemoveManualDep(u"y")); },
     0},
    {"same name", [](CFolder& f, ISourceFile&, IConfiguration&) { check(f.put_Name(u"Sources")); }, 0},
    {"new name", [](CFolder& f, ISourceFile&, IConfiguration&) { check(f.put_Name(u"S")); }, 1},
    {"same extension", [](CFolder& f, ISourceFile&, IConfiguration&) { check(f.put_Extension(u"c")); }, 0},
    {"enabled as before", [](CFolder& f, ISourceFile&, IConfiguration&) { check(f.put_Enabled(1)); }, 0},
    {"disabled", [](CFolder& f, ISourceFile&, IConfiguration&) { check(f.put_Enabled(0)); }, 1},
    {"source control", [](CFolder&, ISourceFile& f, IConfiguration&) { check(f.put_SourceControl(1)); }, 1},
    {"dropped transaction",
     [](CFolder& f, ISourceFile&, IConfiguration&) {
       check(f.BeforeSettings());
       check(f.put_Enabled(0));
       check(f.put_Name(u"other"));
       check(f.AfterSettings(0));
     },
     0},
    {"kept transaction without a change",
     [](CFolder& f, ISourceFile&, IConfiguration&) {
       check(f.BeforeSettings());
       check(f.AfterSettings(1));
     },
     0},
    {"kept transaction",
     [](CFolder& f, ISourceFile&, IConfiguration&) {
       check(f.BeforeSettings());
       check(f.put_Enabled(0));
       check(f.AfterSettings(1));
     },
     1},
};

TEST_F(FolderTest, DirtyTellsWhetherTheFileWouldChange) {
  const Ref<ISourceFile> file = addFile(*folder_, u".\\a.c");
  for (const DirtyCase& row : kChanges) {
    SCOPED_TRACE(row.name);
    check(folder_->put_Name(u"Sources"));
    check(folder_->put_Enabled(1));
    IConfiguration& configuration = *project_->contents().active;
    sameDeps(*folder_, *file, configuration);
    check(file->put_SourceControl(0));
    check(project_->ProjectSave());
    ASSERT_EQ(isDirty(), 0);
    row.change(*folder_, *file, configuration);
    EXPECT_EQ(isDirty(), row.dirty);
    check(project_->ProjectSave());
    EXPECT_EQ(isDirty(), 0);
  }
}

TEST_F(FolderTest, AStorageIsTakenOnceAndLetGo) {
  Ref<IStorage> storage;
  check(project_->contents().root->CreateStorage(
      u"Other", STGM_TRANSACTED | STGM_SHARE_EXCLUSIVE | STGM_READWRITE, &storage));
  EXPECT_EQ(folder_->InitNew(storage.get()), E_FAIL);
  EXPECT_EQ(folder_->Load(storage.get()), E_FAIL);
  EXPECT_EQ(folder_->HandsOffStorage(), S_OK);
  EXPECT_EQ(folder_->Save(nullptr, true), E_FAIL);
  EXPECT_EQ(folder_->SaveCompleted(storage.get()), S_OK);
  EXPECT_EQ(folder_->Save(nullptr, true), S_OK);
}

}  // namespace forgeyard::test
