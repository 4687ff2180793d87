// Configurations, their cookies and their collection.

#include "model/configurations/configuration.h"

#include <gmock/gmock.h>

#include "model/configurations/configurations.h"
#include "tests/model/support/model_fixture.h"
#include "tests/platform/com/memory_stream.h"
#include "tools/assembler/asm_settings.h"
#include "tools/compiler/cc_settings.h"

namespace forgeyard::test {

namespace {

using testing::ElementsAre;

class ConfigurationTest : public ModelTest {
 protected:
  static std::string nameOf(IConfiguration& configuration) {
    BString name;
    check(configuration.get_Name(&name));
    return name.narrow();
  }
  static std::vector<std::string> names(CProject& project) {
    std::vector<std::string> result;
    Ref<IConfigurations> configurations;
    check(project.get_Configurations(&configurations));
    forEachObject<IConfiguration>(*configurations, [&](IConfiguration& c) { result.push_back(nameOf(c)); });
    return result;
  }
  static std::string target(IConfiguration& configuration) {
    BString value(u"<absent>");
    ignore(query<IKVSupportCookies>(&configuration)->get_Cookie(u"Target", &value));
    return text(value);
  }
  static void putTarget(IConfiguration& configuration, const BString& value) {
    check(query<IKVSupportCookies>(&configuration)->put_Cookie(u"Target", value));
  }
  static std::int32_t buildDirty(IConfiguration& configuration) {
    std::int32_t value = -1;
    check(configuration.get_BuildDirty(&value));
    return value;
  }
  static Ref<IConfigurations> all(CProject& project) {
    Ref<IConfigurations> configurations;
    check(project.get_Configurations(&configurations));
    return configurations;
  }
};

// Records what a project tells its components.
class EventSink final : public ComObject<IProjectE> {
 public:
  std::vector<std::string> events;
  HRESULT OnNewConfiguration(IConfiguration* created, IConfiguration* basedOn) override {
    record("new", created);
    if (basedOn) record("based on", basedOn);
    return S_OK;
  }
  HRESULT OnDeletedConfiguration(IConfiguration* old) override {
    record("deleted", old);
    return S_OK;
  }

 private:
  void record(const char* what, IConfiguration* configuration) {
    BString name;
    check(configuration->get_Name(&name));
    events.push_back(std::string(what) + " " + name.narrow());
  }
};

}  // namespace

TEST_F(ConfigurationTest, ANewOneHasDefaultsAndAnEmptyTarget) {
  const Ref<CProject> project = newProject();
  const Ref<IConfiguration> made = newConfiguration(*project, u"New");
  BString directory(u"?");
  std::int32_t update = -1;
  check(made->get_OutputDirectory(&directory));
  check(made->get_UpdateFileDependencies(&update));
  EXPECT_EQ(text(directory), "");
  EXPECT_EQ(update, 1);
  EXPECT_EQ(buildDirty(*made), 1);
  BString value(u"?");
  EXPECT_EQ(made.as<IKVSupportCookies>()->get_Cookie(u"Target", &value), S_OK);
  EXPECT_EQ(text(value), "");
}

TEST_F(ConfigurationTest, ACopyTakesDirectoriesAndTargetAndNothingElse) {
  const Ref<CProject> project = newProject();
  const Ref<IConfiguration> base = newConfiguration(*project, u"Base");
  check(base->put_OutputDirectory(u"out"));
  check(base->put_IntermediateDirectory(u"int"));
  check(base->put_UpdateFileDependencies(0));
  check(base->put_BuildDirty(0));
  putTarget(*base, u"mips");
  check(base.as<IKVSupportCookies>()->put_Cookie(u"Other", u"x"));
  const Ref<IConfiguration> copy = newConfiguration(*project, u"Copy", base.get());
  BString output;
  BString intermediate;
  std::int32_t update = -1;
  check(copy->get_OutputDirectory(&output));
  check(copy->get_IntermediateDirectory(&intermediate));
  check(copy->get_UpdateFileDependencies(&update));
  EXPECT_EQ(output.narrow(), "out");
  EXPECT_EQ(intermediate.narrow(), "int");
  EXPECT_EQ(target(*copy), "mips");
  EXPECT_EQ(update, 1);
  EXPECT_EQ(buildDirty(*copy), 1);
  Ref<IEnumString> cookies;
  check(copy.as<IKVSupportCookies>()->GetCookies(&cookies));
  EXPECT_THAT(texts(cookies), ElementsAre("Target"));
}

TEST_F(ConfigurationTest, ATargetIsCopiedOnlyWhereThereIsOne) {
  const Ref<CProject> project = newProject();
  const Ref<IConfiguration> base = newConfiguration(*project, u"Base");
  putTarget(*base, {});
  EXPECT_EQ(target(*newConfiguration(*project, u"FromNull", base.get())), "");
  check(base.as<IKVSupportCookies>()->DeleteCookie(u"Target"));
  EXPECT_EQ(target(*newConfiguration(*project, u"FromNone", base.get())), "<absent>");
}

TEST_F(ConfigurationTest, ComponentsHearOfNewAndDeletedOnes) {
  const Ref<CProject> project = newProject();
  const auto sink = make<EventSink>();
  Advice advice;
  check(advice.connect<IProjectE>(static_cast<IProject*>(project.get()), sink.get()));
  const Ref<NotifySink> notified = listen(static_cast<IProject*>(project.get()));
  const Ref<IConfiguration> base = project->contents().active;
  const Ref<IConfiguration> made = newConfiguration(*project, u"Made", base.get());
  check(all(*project)->Delete(made.get()));
  EXPECT_THAT(sink->events, ElementsAre("new Made", "based on Default", "deleted Made"));
  EXPECT_EQ(notified->count(kProjectConfigurations), 2);
  EXPECT_EQ(dirty(*project), 1);
}

TEST_F(ConfigurationTest, ItemComparesNamesExactlyAndTakesTheFirst) {
  const Ref<CProject> project = newProject();
  const Ref<IConfiguration> first = newConfiguration(*project, u"Twin");
  newConfiguration(*project, u"Twin");
  Ref<IConfiguration> found;
  EXPECT_EQ(all(*project)->get_Item(u"Twin", &found), S_OK);
  EXPECT_EQ(found, first);
  EXPECT_EQ(all(*project)->get_Item(u"twin", &found), E_FAIL);
  EXPECT_FALSE(found);
}

TEST_F(ConfigurationTest, TheLastOneStays) {
  const Ref<CProject> project = newProject();
  EXPECT_EQ(all(*project)->Delete(project->contents().active.get()), S_OK);
  EXPECT_THAT(names(*project), ElementsAre("Default"));
}

TEST_F(ConfigurationTest, DeletingTheActiveOneActivatesTheFirst) {
  const Ref<CProject> project = newProject();
  newConfiguration(*project, u"B");
  const Ref<IConfiguration> c = newConfiguration(*project, u"C");
  check(project->put_ActiveConfiguration(c.get()));
  EXPECT_EQ(all(*project)->Delete(c.get()), S_OK);
  EXPECT_THAT(names(*project), ElementsAre("Default", "B"));
  EXPECT_EQ(nameOf(*project->contents().active), "Default");
  EXPECT_EQ(all(*project)->Delete(c.get()), S_OK) << "absent by now";
  EXPECT_EQ(names(*project).size(), 2u);
}

TEST_F(ConfigurationTest, DuringABuildTheActiveOneStaysAndOthersMayGo) {
  const Ref<CProject> project = newProject();
  const Ref<IConfiguration> other = newConfiguration(*project, u"Other");
  const Ref<FakeComponent> busy = addFake(*project);
  busy->answers = false;
  task_->task = E_TASK_BUILD;
  check(project->PreBuild(nullptr));
  EXPECT_EQ(all(*project)->Delete(project->contents().active.get()), S_OK);
  EXPECT_THAT(names(*project), ElementsAre("Default", "Other"));
  EXPECT_THAT(host_->messages(),
              ElementsAre(ShownMessage{"A project's active configuration may not be deleted during a build",
                                       "Project", MessageButtons::Ok, MessageIcon::Exclamation}));
  EXPECT_EQ(all(*project)->Delete(other.get()), S_OK);
  EXPECT_THAT(names(*project), ElementsAre("Default"));
  check(busy->BuildResult(E_BTR_COMPLETED, 0));
}

// The settings transaction

TEST_F(ConfigurationTest, DroppedSettingsBringBackAllFour) {
  const auto made = make<CConfiguration>();
  check(made->put_OutputDirectory(u"out"));
  check(made->put_IntermediateDirectory(u"int"));
  putTarget(*made, u"mips");
  check(made->BeforeSettings());
  check(made->put_OutputDirectory(u"x"));
  check(made->put_IntermediateDirectory(u"y"));
  check(made->put_UpdateFileDependencies(0));
  putTarget(*made, u"arm");
  check(made->AfterSettings(0));
  BString output;
  BString intermediate;
  std::int32_t update = -1;
  check(made->get_OutputDirectory(&output));
  check(made->get_IntermediateDirectory(&intermediate));
  check(made->get_UpdateFileDependencies(&update));
  EXPECT_EQ(output.narrow(), "out");
  EXPECT_EQ(intermediate.narrow(), "int");
  EXPECT_EQ(update, 1);
  EXPECT_EQ(target(*made), "mips");
}

TEST_F(ConfigurationTest, OneThatWasAddedWithinATransactionHasNothingToGoBackTo) {
  const auto made = make<CConfiguration>();
  check(made->put_OutputDirectory(u"out"));
  putTarget(*made, u"mips");
  check(made->AfterSettings(0));
  BString output;
  check(made->get_OutputDirectory(&output));
  EXPECT_EQ(output.narrow(), "out");
  EXPECT_EQ(target(*made), "mips");
}

struct ApplyCase {
  const char* name;
  std::int32_t dirtyBefore;
  std::int32_t updateBefore;
  std::int32_t updateAfter;
  bool newTarget;
  std::int32_t dirtyAfter;
  std::int32_t compilerDirty;
  std::int32_t assemblerDirty;
};

TEST_F(ConfigurationTest, AppliedSettingsMakeABuildDue) {
  const ApplyCase rows[] = {
      {"nothing changed, no update", 0, 0, 0, false, 0, 0, 0},
      {"nothing changed, update on", 0, 1, 1, false, 1, 0, 0},
      {"update switched on", 0, 0, 1, false, 1, 1, 0},
      {"update switched off", 0, 1, 0, false, 0, 0, 0},
      {"new target", 0, 0, 0, true, 1, 1, 1},
      {"new target, update off", 0, 1, 0, true, 1, 1, 1},
      {"due already", 1, 0, 1, true, 1, 0, 0},
  };
  for (const ApplyCase& row : rows) {
    SCOPED_TRACE(row.name);
    const Ref<CProject> project = newProject(BString::fromNarrow(std::string(row.name) + ".nqp"));
    const auto compiler = make<CcSettings>();
    const auto assembler = make<AsmSettings>();
    addFolder(*project, u"not concerned");
    for (IUnknown* settings : {static_cast<IUnknown*>(static_cast<IBuilderSettings*>(compiler.get())),
                               static_cast<IUnknown*>(static_cast<IBuilderSettings*>(assembler.get()))}) {
      const auto component = make<FakeComponent>();
      component->settings = Ref<IUnknown>(settings);
      check(component->SetParent(static_cast<IProject*>(project.get()),
                                 static_cast<IServiceLookup*>(host_.get())));
      check(component->Init());
      Ref<IComponents> components;
      check(project->get_Components(&components));
      check(components->Add(static_cast<IComponent*>(component.get())));
    }
    check(compiler->put_BuildDirty(0));
    check(assembler->put_BuildDirty(0));
    const Ref<IConfiguration> active = project->contents().active;
    check(active->put_BuildDirty(row.dirtyBefore));
    check(active->put_UpdateFileDependencies(row.updateBefore));
    check(active->BeforeSettings());
    check(active->put_UpdateFileDependencies(row.updateAfter));
    if (row.newTarget) putTarget(*active, u"changed");
    check(active->AfterSettings(1));
    EXPECT_EQ(buildDirty(*active), row.dirtyAfter);
    std::int32_t value = -1;
    check(compiler->get_BuildDirty(&value));
    EXPECT_EQ(value, row.compilerDirty);
    check(assembler->get_BuildDirty(&value));
    EXPECT_EQ(value, row.assemblerDirty);
  }
}

TEST_F(ConfigurationTest, OnlyTextsAnnounceThemselvesAndTheProjectStaysClean) {
  const Ref<CProject> project = newProject();
  const Ref<IConfiguration> made = project->contents().active;
  check(project->put_Dirty(0));
  const Ref<NotifySink> sink = listen(made.get());
  check(made->put_Name(u"a"));
  check(made->put_OutputDirectory(u"b"));
  check(made->put_IntermediateDirectory(u"c"));
  check(made->put_UpdateFileDependencies(0));
  check(made->put_BuildDirty(0));
  putTarget(*made, u"d");
  EXPECT_THAT(sink->ids, ElementsAre(1, 2, 3));
  EXPECT_EQ(dirty(*project), 0);
}

// The record

TEST_F(ConfigurationTest, DirtyTellsExactlyWhetherTheRecordWouldChange) {
  const auto made = make<CConfiguration>();
  EXPECT_EQ(made->IsDirty(), S_OK) << "in no file yet";
  const auto stream = make<MemoryStream>();
  check(made->Save(stream.get(), true));
  EXPECT_EQ(made->IsDirty(), S_FALSE);
  check(made->put_BuildDirty(1));
  EXPECT_EQ(made->IsDirty(), S_FALSE);
  check(made->put_BuildDirty(0));
  EXPECT_EQ(made->IsDirty(), S_OK);
  check(made->put_BuildDirty(1));
  EXPECT_EQ(made->IsDirty(), S_FALSE);
  check(made->put_Cookie(u"c", {}));
  EXPECT_EQ(made->IsDirty(), S_OK);
  check(made->Save(stream.get(), true));
  check(made->put_Cookie(u"c", u""));
  EXPECT_EQ(made->IsDirty(), S_OK) << "null and empty are stored apart";
  check(made->Save(stream.get(), false));
  EXPECT_EQ(made->IsDirty(), S_OK);
}

TEST_F(ConfigurationTest, AShortRecordLeavesTheObjectAsItWas) {
  const auto made = make<CConfiguration>();
  check(made->put_Name(u"kept"));
  const auto stream = make<MemoryStream>();
  check(made->Save(stream.get(), true));
  check(made->put_Name(u"changed"));
  for (std::size_t size = 0; size < stream->bytes.size(); ++size) {
    EXPECT_EQ(made->Load(make<MemoryStream>(stream->bytes.substr(0, size)).get()), E_FAIL) << size;
  }
  EXPECT_EQ(nameOf(*made), "changed");
}

// Cookies

TEST(CookieTest, TellWhatWasThere) {
  const auto made = make<CConfiguration>();
  BString value(u"untouched");
  EXPECT_EQ(made->get_Cookie(u"a", &value), S_FALSE);
  EXPECT_EQ(value.narrow(), "untouched");
  EXPECT_EQ(made->put_Cookie(u"a", u"1"), S_OK);
  EXPECT_EQ(made->put_Cookie(u"a", u"2"), S_OK);
  EXPECT_EQ(made->get_Cookie(u"a", &value), S_OK);
  EXPECT_EQ(value.narrow(), "2");
  EXPECT_EQ(made->DeleteCookie(u"a"), S_OK);
  EXPECT_EQ(made->DeleteCookie(u"a"), S_FALSE);
}

TEST(CookieTest, NamesAreSortedAndAreACopy) {
  const auto made = make<CConfiguration>();
  for (const char16_t* name : {u"b", u"a", u"B", u"\u00e9", u"a"}) check(made->put_Cookie(name, u"v"));
  Ref<IEnumString> names;
  check(made->GetCookies(&names));
  check(made->DeleteCookie(u"a"));
  EXPECT_THAT(texts(names), ElementsAre("B", "a", "b", "\u00e9"));
}

}  // namespace forgeyard::test
