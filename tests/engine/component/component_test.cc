// What the tool components have in common: names, dialogs, settings for each configuration and the stored
// streams.

#include <set>

#include "tests/platform/com/memory_stream.h"
#include "tests/support/build_fixture.h"
#include "tests/tools/support/record_bytes.h"
#include "tools/assembler/asm.h"
#include "tools/classes.h"
#include "tools/command_line/cmd_line.h"
#include "tools/compiler/cc.h"
#include "tools/linker/linker.h"

namespace forgeyard::test {
namespace {

struct Tool {
  Ref<IComponent> (*create)();
  Guid clsid;
  const char16_t* stream;
  const char* title;
  const char* label;
};

template <class Component>
Ref<IComponent> create() {
  const auto component = make<Component>();
  return Ref<IComponent>(static_cast<IComponent*>(component.get()));
}

const Tool kTools[] = {
    {&create<CCmdLine>, CLSID_CmdLine, u"CmdLineSettings", "New Command Line",
     "&Name of the new command line component:"},
    {&create<CCc>, CLSID_Cc, u"Cc", "New compiler", "&Name of the new compiler component:"},
    {&create<CAsm>, CLSID_Asm, u"Asm", "New assembler", "&Name of the new assembler component:"},
    {&create<CLinker>, CLSID_Linker, u"Linker", "New Linker", "&Name of the new Linker component:"},
};

class ToolComponentTest : public BuildFixture {
 protected:
  Ref<IComponents> components() {
    Ref<IComponents> all;
    check(project_->get_Components(&all));
    return all;
  }
  Ref<IConfiguration> newConfiguration(const char16_t* name, IConfiguration* basedOn) {
    Ref<IConfigurations> all;
    check(project_->get_Configurations(&all));
    Ref<IConfiguration> created;
    check(all->New(name, basedOn, &created));
    return created;
  }
  static Ref<IBuilderSettings> settingsOf(IComponent* component, IConfiguration* configuration) {
    Ref<IUnknown> found;
    check(component->get_Setting(configuration, &found));
    return found.as<IBuilderSettings>();
  }
  static std::int32_t buildDirty(IBuilderSettings& settings) {
    return valueOf(settings, &IBuilderSettings::get_BuildDirty);
  }
  // A component that belongs to the project without being one of its list.
  Ref<IComponent> loose(const Tool& tool) {
    Ref<IComponent> component = tool.create();
    check(component->SetParent(static_cast<IProject*>(project_.get()),
                               static_cast<IServiceLookup*>(host_.get())));
    loose_.push_back(component);
    return component;
  }
  // A new compound file.
  Ref<IStorage> storage() {
    Ref<IStorage> root;
    check(StgCreateDocfile(path(std::to_string(++files_) + ".stg"),
                           STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE | STGM_TRANSACTED, &root));
    return root;
  }
  static std::string bytesOf(IStorage& storage, const BString& name) {
    Ref<IStream> stream;
    check(storage.OpenStream(name, STGM_READ | STGM_SHARE_EXCLUSIVE, &stream));
    STATSTG stat;
    check(stream->Stat(&stat));
    std::string bytes(stat.size, '\0');
    check(stream->Read(bytes.data(), static_cast<std::uint32_t>(bytes.size()), nullptr));
    return bytes;
  }
  void TearDown() override {
    for (const Ref<IComponent>& component : loose_) ignore(component->Close());
  }

 private:
  std::vector<Ref<IComponent>> loose_;
  int files_ = 0;
};

TEST_F(ToolComponentTest, ANewOneAsksForItsNameAndTakesAnyText) {
  for (const Tool& tool : kTools) {
    std::string label;
    for (const char16_t* name : {u"one", u"", u"one"}) {
      host_->fillDialog([&](std::span<DialogField> fields) {
        EXPECT_EQ(fields.size(), 1u);
        EXPECT_EQ(fields[0].text, BString(u""));
        EXPECT_EQ(fields[0].limit, 260u);
        label = fields[0].label.narrow();
        fields[0].text = name;
        return true;
      });
      const Ref<IComponent> component = tool.create();
      check(components()->New(component.get()));
      EXPECT_EQ(valueOf(*component, &IComponent::get_ComponentName), BString(name));
      EXPECT_EQ(host_->dialogTitles().back(), tool.title);
      EXPECT_EQ(label, tool.label);
      EXPECT_EQ(host_->modalDepth(), 0);
    }
  }
  EXPECT_EQ(valueOf(*components(), &IComponents::get_Count), 12);
}

TEST_F(ToolComponentTest, CancelAddsNothing) {
  for (const Tool& tool : kTools) {
    host_->fillDialog([](std::span<DialogField>) { return false; });
    check(components()->New(tool.create().get()));
  }
  EXPECT_EQ(valueOf(*components(), &IComponents::get_Count), 0);
}

TEST_F(ToolComponentTest, TheToolsOwnInterfaceHasTheName) {
  const auto component = add<CCc>(u"old");
  EXPECT_EQ(valueOf(static_cast<ICc&>(*component), &ICc::get_Name), BString(u"old"));
  check(static_cast<ICc&>(*component).put_Name(u"new"));
  EXPECT_EQ(valueOf(static_cast<IComponent&>(*component), &IComponent::get_ComponentName), BString(u"new"));
  EXPECT_EQ(component->IsDirty(), S_OK);
}

TEST_F(ToolComponentTest, TheClassTableMakesAnObjectOfEachClass) {
  std::set<Guid> known;
  for (const ClassEntry& entry : toolClasses()) {
    void* object = nullptr;
    ASSERT_EQ(entry.create(IPersist::iid, &object), S_OK) << entry.name;
    const auto persist = Ref<IPersist>::adopt(static_cast<IPersist*>(object));
    Guid clsid;
    check(persist->GetClassID(&clsid));
    EXPECT_EQ(clsid, entry.clsid) << entry.name;
    EXPECT_TRUE(persist.as<IDispatch>()) << entry.name;
    known.insert(clsid);
  }
  EXPECT_EQ(known.size(), 8u);
  for (const Tool& tool : kTools) EXPECT_TRUE(known.contains(tool.clsid));
}

// Settings for each configuration

TEST_F(ToolComponentTest, EveryConfigurationHasSettingsFromTheStart) {
  newConfiguration(u"Release", nullptr);
  for (const Tool& tool : kTools) {
    const Ref<IComponent> component = loose(tool);
    Ref<IUnknown> found;
    EXPECT_EQ(component->get_Setting(configuration().get(), &found), E_FAIL);
    check(component.as<IPersistStorage>()->InitNew(storage().get()));
    Ref<IConfigurations> all;
    check(project_->get_Configurations(&all));
    for (const char16_t* name : {u"Default", u"Release"}) {
      Ref<IConfiguration> each;
      check(all->get_Item(name, &each));
      EXPECT_EQ(component->get_Setting(each.get(), &found), S_OK);
    }
    EXPECT_EQ(component.as<IPersistStorage>()->InitNew(storage().get()), E_FAIL);
  }
}

TEST_F(ToolComponentTest, ANewConfigurationTakesTheSettingsOfItsBase) {
  const auto cc = add<CCc>(u"cc");
  const Ref<IBuilderSettings> base = settingsOf(cc.get(), configuration().get());
  check(base->put_Input(u".x"));
  check(base->put_BuildDirty(0));

  const auto based = settingsOf(cc.get(), newConfiguration(u"Based", configuration().get()).get());
  EXPECT_EQ(valueOf(*based, &IBuilderSettings::get_Input), BString(u".x"));
  EXPECT_EQ(buildDirty(*based), 0);
  EXPECT_FALSE(sameObject(based.get(), base.get()));

  const auto fresh = settingsOf(cc.get(), newConfiguration(u"Fresh", nullptr).get());
  EXPECT_NE(valueOf(*fresh, &IBuilderSettings::get_Input), BString(u".x"));
  EXPECT_EQ(buildDirty(*fresh), 1);
}

TEST_F(ToolComponentTest, ADeletedConfigurationLosesItsSettings) {
  const auto cc = add<CCc>(u"cc");
  const Ref<IConfiguration> gone = newConfiguration(u"Gone", nullptr);
  Ref<IConfigurations> all;
  check(project_->get_Configurations(&all));
  check(all->Delete(gone.get()));
  Ref<IUnknown> found;
  EXPECT_EQ(cc->get_Setting(gone.get(), &found), E_FAIL);
  EXPECT_EQ(cc->get_Setting(configuration().get(), &found), S_OK);
}

// The settings transaction

TEST_F(ToolComponentTest, AppliedSettingsAreDirtyWhenTheyChangedOrWereDirty) {
  const struct {
    const char* name;
    std::int32_t before;
    bool change;
    bool apply;
    std::int32_t after;
  } cases[] = {
      {"clean, unchanged, OK", 0, false, true, 0},   {"clean, changed, OK", 0, true, true, 1},
      {"dirty, unchanged, OK", 1, false, true, 1},   {"dirty, changed, OK", 1, true, true, 1},
      {"clean, changed, Cancel", 0, true, false, 0}, {"dirty, changed, Cancel", 1, true, false, 1},
  };
  for (const Tool& tool : kTools) {
    const Ref<IComponent> component = tool.create();
    host_->fillDialog([](std::span<DialogField>) { return true; });
    check(components()->New(component.get()));
    IConfiguration* const active = configuration().get();
    for (const auto& row : cases) {
      const Ref<IBuilderSettings> original = settingsOf(component.get(), active);
      check(original->put_Input(u".old"));
      check(original->put_BuildDirty(row.before));

      check(component->BeforeSettings());
      const Ref<IBuilderSettings> working = settingsOf(component.get(), active);
      EXPECT_FALSE(sameObject(working.get(), original.get())) << row.name;
      if (row.change) check(working->put_Input(u".new"));
      EXPECT_EQ(valueOf(*original, &IBuilderSettings::get_Input), BString(u".old")) << row.name;
      check(component->AfterSettings(row.apply ? 1 : 0));

      const Ref<IBuilderSettings> now = settingsOf(component.get(), active);
      EXPECT_EQ(buildDirty(*now), row.after) << tool.title << ": " << row.name;
      EXPECT_EQ(valueOf(*now, &IBuilderSettings::get_Input),
                BString(row.change && row.apply ? u".new" : u".old"))
          << row.name;
      EXPECT_EQ(sameObject(now.get(), original.get()), !row.apply) << row.name;
    }
  }
}

TEST_F(ToolComponentTest, ADirtyMarkOfThePageItselfDoesNotOutlastTheComparison) {
  const auto cc = add<CCc>(u"cc");
  check(settingsOf(cc.get(), configuration().get())->put_BuildDirty(0));
  check(cc->BeforeSettings());
  check(settingsOf(cc.get(), configuration().get())->put_BuildDirty(1));
  check(cc->AfterSettings(1));
  EXPECT_EQ(buildDirty(*settingsOf(cc.get(), configuration().get())), 0);
}

TEST_F(ToolComponentTest, ChangesInOneConfigurationLeaveTheOthersClean) {
  const auto cc = add<CCc>(u"cc");
  const Ref<IConfiguration> other = newConfiguration(u"Other", nullptr);
  for (IConfiguration* each : {configuration().get(), other.get()}) {
    check(settingsOf(cc.get(), each)->put_BuildDirty(0));
  }
  check(cc->BeforeSettings());
  check(settingsOf(cc.get(), other.get())->put_Output(u".x"));
  check(cc->AfterSettings(1));
  EXPECT_EQ(buildDirty(*settingsOf(cc.get(), configuration().get())), 0);
  EXPECT_EQ(buildDirty(*settingsOf(cc.get(), other.get())), 1);
}

// Stored streams

TEST_F(ToolComponentTest, StreamsHoldNameNumberAndTheSettingsOfEachConfiguration) {
  const Ref<IConfiguration> release = newConfiguration(u"Release", nullptr);
  for (const Tool& tool : kTools) {
    const Ref<IComponent> component = loose(tool);
    const Ref<IStorage> file = storage();
    const Ref<IPersistStorage> persist = component.as<IPersistStorage>();
    check(persist->InitNew(file.get()));
    check(component->put_Id(0x1234));
    check(settingsOf(component.get(), release.get())->put_Input(u".r"));
    check(persist->Save(nullptr, true));

    const auto body = [&](IConfiguration* configuration) {
      const auto stream = make<MemoryStream>();
      check(settingsOf(component.get(), configuration).as<IPersistStream>()->Save(stream.get(), false));
      return stream->bytes;
    };
    EXPECT_EQ(bytesOf(*file, tool.stream), RecordBytes().number(0).text(u"").number(0x1234).bytes());
    EXPECT_EQ(bytesOf(*file, u"Settings"), RecordBytes().number(0).number(2).text(u"Default").bytes() +
                                               body(configuration().get()) +
                                               RecordBytes().text(u"Release").bytes() + body(release.get()));

    // Read back by a new component.
    check(persist->HandsOffStorage());
    const Ref<IComponent> again = loose(tool);
    check(again.as<IPersistStorage>()->Load(file.get()));
    EXPECT_EQ(valueOf(*again, &IComponent::get_Id), 0x1234);
    for (IConfiguration* each : {configuration().get(), release.get()}) {
      std::int32_t equal = 0;
      check(settingsOf(component.get(), each)->LogicallyEqual(settingsOf(again.get(), each).get(), &equal));
      EXPECT_EQ(equal, 1) << tool.title;
    }
    EXPECT_EQ(again.as<IPersistStorage>()->IsDirty(), S_FALSE);
    EXPECT_EQ(again.as<IPersistStorage>()->Load(file.get()), E_FAIL);
  }
}

TEST_F(ToolComponentTest, StreamsThatAreNotThereAreSkipped) {
  for (const Tool& tool : kTools) {
    const Ref<IComponent> component = loose(tool);
    const Ref<IStorage> file = storage();
    EXPECT_EQ(component.as<IPersistStorage>()->Load(file.get()), S_OK);
    Ref<IUnknown> found;
    EXPECT_EQ(component->get_Setting(configuration().get(), &found), E_FAIL);
  }
}

TEST_F(ToolComponentTest, AStreamCutShortKeepsWhatWasRead) {
  const Ref<IComponent> component = loose(kTools[1]);
  const Ref<IStorage> file = storage();
  {
    Ref<IStream> stream;
    check(file->CreateStream(u"Cc", STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE, &stream));
    const std::string bytes = RecordBytes().number(0).text(u"kept").bytes();
    check(stream->Write(bytes.data(), static_cast<std::uint32_t>(bytes.size()), nullptr));
  }
  EXPECT_EQ(component.as<IPersistStorage>()->Load(file.get()), E_FAIL);
  EXPECT_EQ(valueOf(*component, &IComponent::get_ComponentName), BString(u"kept"));
}

}  // namespace
}  // namespace forgeyard::test
