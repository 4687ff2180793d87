// The project object: its properties, what they announce, its flags and its part in a build.

#include <gmock/gmock.h>

#include "model/configurations/configurations.h"
#include "model/folders/source_file.h"
#include "tests/model/support/model_fixture.h"
#include "typelib/classes.h"

namespace forgeyard::test {

namespace {

using testing::ElementsAre;

class ProjectTest : public ModelTest {};

struct PutCase {
  const char* name;
  HRESULT (*put)(CProject&);
  std::int32_t notification;
  bool marksDirty;
};

const PutCase kPuts[] = {
    {"Name", [](CProject& p) { return p.put_Name(u"x"); }, 1, true},
    {"WorkingDirectory", [](CProject& p) { return p.put_WorkingDirectory(u"\\x"); }, 2, false},
    {"FileName", [](CProject& p) { return p.put_FileName(u"x.nqp"); }, 3, true},
    {"SSRoot", [](CProject& p) { return p.put_SSRoot(u"$\\x"); }, 4, true},
    {"SourceFilesChanged", [](CProject& p) { return p.SourceFilesChanged(); }, 22, true},
};

}  // namespace

TEST_F(ProjectTest, PropertiesAnnounceThemselvesAndSomeMarkTheProjectDirty) {
  for (const PutCase& row : kPuts) {
    SCOPED_TRACE(row.name);
    const Ref<CProject> project = newProject(BString::fromNarrow(std::string(row.name) + ".nqp"));
    ASSERT_EQ(project->put_Dirty(0), S_OK);
    const Ref<NotifySink> sink = listen(static_cast<IProject*>(project.get()));
    EXPECT_EQ(row.put(*project), S_OK);
    EXPECT_EQ(sink->count(row.notification), 1);
    EXPECT_EQ(sink->count(kProjectDirty), row.marksDirty ? 1 : 0);
    EXPECT_EQ(dirty(*project), row.marksDirty ? 1 : 0);
  }
}

TEST_F(ProjectTest, SourceFilesChangedMakesABuildDue) {
  const Ref<CProject> project = newProject();
  std::int32_t due = -1;
  ASSERT_EQ(project->get_BuildDirty(&due), S_OK);
  EXPECT_EQ(due, 0);
  ASSERT_EQ(project->SourceFilesChanged(), S_OK);
  ASSERT_EQ(project->get_BuildDirty(&due), S_OK);
  EXPECT_EQ(due, 1);
}

TEST_F(ProjectTest, DirtyAnnouncesOnlyChangesButRefreshesListsEveryTime) {
  const Ref<CProject> project = newProject();
  ASSERT_EQ(project->put_Dirty(0), S_OK);
  const Ref<NotifySink> sink = listen(static_cast<IProject*>(project.get()));
  task_->puts.clear();
  for (const std::int32_t value : {1, 7, 0, 0}) EXPECT_EQ(project->put_Dirty(value), S_OK);
  EXPECT_THAT(sink->ids, ElementsAre(19, 30, 30, 19, 30, 30));
  EXPECT_THAT(task_->puts,
              ElementsAre(E_TASK_FAKEBUILD, E_TASK_FAKEBUILD, E_TASK_FAKEBUILD, E_TASK_FAKEBUILD));
}

TEST_F(ProjectTest, ListsAreNotRefreshedWithoutABuildTool) {
  const Ref<CProject> project = newProject();
  host_->withdraw(SID_BuildTool);
  const Ref<NotifySink> sink = listen(static_cast<IProject*>(project.get()));
  EXPECT_EQ(project->UpdateComponentOutputs(), S_OK);
  EXPECT_TRUE(sink->ids.empty());
}

TEST_F(ProjectTest, ManyChangesAreOneForTheLists) {
  const Ref<CProject> project = newProject();
  const Ref<NotifySink> sink = listen(static_cast<IProject*>(project.get()));
  EXPECT_EQ(project->BeginChanges(), S_OK);
  EXPECT_EQ(project->BeginChanges(), S_OK);
  check(project->put_SSRoot(u"a"));
  check(project->put_SSRoot(u"b"));
  EXPECT_EQ(project->EndChanges(), S_OK);
  EXPECT_EQ(sink->count(kProjectComponentOutputs), 0);
  EXPECT_EQ(project->EndChanges(), S_OK);
  EXPECT_EQ(sink->count(kProjectComponentOutputs), 1);
  EXPECT_EQ(project->EndChanges(), E_UNEXPECTED);
}

TEST_F(ProjectTest, TheActiveProjectIsRegisteredForCommands) {
  const Ref<CProject> project = newProject();
  IUnknown* self = static_cast<IProject*>(project.get());
  const Ref<NotifySink> sink = listen(self);
  EXPECT_EQ(project->put_Active(0), S_OK);
  EXPECT_TRUE(sink->ids.empty());
  EXPECT_EQ(project->put_Active(5), S_OK);
  EXPECT_EQ(project->put_Active(1), S_OK);
  EXPECT_THAT(sink->ids, ElementsAre(5));
  EXPECT_THAT(host_->registered(), ElementsAre(std::pair(CLSID_Project, self)));
  EXPECT_EQ(project->put_Active(0), S_OK);
  EXPECT_THAT(sink->ids, ElementsAre(5, 5));
  EXPECT_TRUE(host_->registered().empty());
}

TEST_F(ProjectTest, AnActiveProjectThatEndsIsTakenOutOfTheCommandHost) {
  const Ref<CProject> project = newProject();
  ASSERT_EQ(project->put_Active(1), S_OK);
  end(*project);
  EXPECT_TRUE(host_->registered().empty());
}

TEST_F(ProjectTest, ActiveConfigurationTellsNothingDoneFromChanged) {
  const Ref<CProject> bare = project(u"bare.nqp");
  Ref<IConfiguration> active;
  EXPECT_EQ(bare->get_ActiveConfiguration(&active), S_FALSE);
  EXPECT_FALSE(active);

  const Ref<CProject> project = newProject();
  const Ref<IConfiguration> other = newConfiguration(*project, u"Other");
  ASSERT_EQ(project->put_Dirty(0), S_OK);
  const Ref<NotifySink> sink = listen(static_cast<IProject*>(project.get()));
  const std::size_t menus = host_->refreshedMenus().size();
  EXPECT_EQ(project->put_ActiveConfiguration(other.get()), S_OK);
  EXPECT_EQ(project->put_ActiveConfiguration(other.get()), S_FALSE);
  EXPECT_EQ(sink->count(kProjectActiveConfiguration), 1);
  EXPECT_EQ(dirty(*project), 1);
  ASSERT_EQ(host_->refreshedMenus().size(), menus + 1);
  EXPECT_EQ(host_->refreshedMenus().back(), std::pair(136u, 155u));
}

TEST_F(ProjectTest, SourceControlIsRefusedWithoutABinding) {
  const Ref<CProject> project = newProject();
  const Ref<NotifySink> sink = listen(static_cast<IProject*>(project.get()));
  std::int32_t control = -1;
  EXPECT_EQ(project->put_SSControl(0), S_OK);
  EXPECT_EQ(project->put_SSControl(1), E_FAIL);
  EXPECT_EQ(project->get_SSControl(&control), S_OK);
  EXPECT_EQ(control, 0);
  EXPECT_EQ(sink->count(kProjectSSControl), 0);
  Ref<IUnknown> database;
  EXPECT_EQ(project->get_VSSDatabase(&database), E_FAIL);
}

TEST_F(ProjectTest, WhatAsksTheUserFailsWithoutAFrame) {
  const Ref<CProject> project = newProject();
  const Ref<FakeComponent> component = addFake(*project);
  for (const bool window : {true, false}) {
    SCOPED_TRACE(window ? "no frame" : "no window");
    window ? host_->withdraw(SID_MainFrame)
           : host_->provide(SID_MainFrame, static_cast<IServiceLookup*>(host_.get()));
    host_->setWindow(0);
    EXPECT_EQ(project->ProjectLoad(), E_FAIL);
    EXPECT_EQ(project->ProjectSave(), E_FAIL);
    EXPECT_EQ(project->ProjectInit(), E_FAIL);
    EXPECT_EQ(project->ManageConfigurations(), E_FAIL);
    EXPECT_EQ(project->DeleteComponent(static_cast<IComponent*>(component.get())), E_FAIL);
  }
  EXPECT_TRUE(host_->messages().empty());
  EXPECT_EQ(host_->modalDepth(), 0);
  host_->provide(SID_MainFrame, nullptr);
}

TEST_F(ProjectTest, DeletingAComponentAsksFirst) {
  const Ref<CProject> project = newProject();
  const Ref<FakeComponent> component = addFake(*project);
  host_->answer(MessageAnswer::No);
  EXPECT_EQ(project->DeleteComponent(static_cast<IComponent*>(component.get())), S_OK);
  EXPECT_EQ(project->contents().components.size(), 1u);
  EXPECT_THAT(host_->messages(),
              ElementsAre(ShownMessage{"Are you sure you want to delete this component?", "Delete Component",
                                       MessageButtons::YesNo, MessageIcon::Exclamation}));
}

TEST_F(ProjectTest, ADeletedComponentGoesWithItsConnectionsAndItsElement) {
  const Ref<CProject> project = newProject();
  const Ref<FakeComponent> a = addFake(*project);
  const Ref<FakeComponent> b = addFake(*project);
  const Ref<FakeComponent> c = addFake(*project);
  connect(*project, a.get(), b.get());
  connect(*project, b.get(), c.get());
  ASSERT_EQ(project->ProjectSave(), S_OK);
  const Ref<NotifySink> sink = listen(static_cast<IProject*>(project.get()));

  EXPECT_EQ(project->DeleteComponent(static_cast<IBuilderInput*>(b.get())), S_OK);
  EXPECT_EQ(sink->count(kProjectConnections), 3);  // two connections, and the component
  EXPECT_EQ(sink->count(kProjectComponents), 1);
  EXPECT_EQ(dirty(*project), 1);
  EXPECT_EQ(c->sourceCount(), 0u);

  const Ref<CProject> again = reload(*project);
  EXPECT_EQ(again->contents().components.size(), 2u);
  EXPECT_EQ(again->contents().settings.nextComponentId, 3);
  Ref<IConnections> connections;
  std::int32_t count = -1;
  ASSERT_EQ(again->get_Connections(&connections), S_OK);
  ASSERT_EQ(connections->get_Count(&count), S_OK);
  EXPECT_EQ(count, 0);
}

TEST_F(ProjectTest, AComponentThatIsNoneOfTheProjectsIsNotDeleted) {
  const Ref<CProject> project = newProject();
  const auto stranger = make<FakeComponent>();
  EXPECT_EQ(project->DeleteComponent(static_cast<IComponent*>(stranger.get())), E_FAIL);
}

// The build

namespace {

// Counts the answers of a project.
class Answers final : public ComObject<IBuilderOutput> {
 public:
  int errors = 0;
  int completed = 0;
  int stopped = 0;
  HRESULT Error() override { return ++errors, S_OK; }
  HRESULT Completed() override { return ++completed, S_OK; }
  HRESULT Stopped() override { return ++stopped, S_OK; }
};

}  // namespace

TEST_F(ProjectTest, ABuildStartsEveryComponentOnceAndAnswers) {
  const Ref<CProject> project = newProject();
  const Ref<CFolder> left = addFolder(*project, u"left");
  const Ref<CFolder> right = addFolder(*project, u"right");
  const Ref<FakeComponent> middle = addFake(*project);
  const Ref<FakeComponent> last = addFake(*project);
  const Ref<FakeComponent> alone = addFake(*project);
  connect(*project, left.get(), middle.get());
  connect(*project, right.get(), middle.get());
  connect(*project, middle.get(), last.get());
  middle->tasks = last->tasks = alone->tasks = 0;
  const auto answers = make<Answers>();
  task_->task = E_TASK_BUILD;
  EXPECT_EQ(project->PreBuild(answers.get()), S_OK);
  EXPECT_EQ(middle->tasks, 1);
  EXPECT_EQ(last->tasks, 1);
  EXPECT_EQ(alone->tasks, 1);
  EXPECT_EQ(answers->completed, 1);
  EXPECT_FALSE(project->building());
}

TEST_F(ProjectTest, AnEmptyProjectIsBuiltAtOnce) {
  const Ref<CProject> project = newProject();
  const auto answers = make<Answers>();
  EXPECT_EQ(project->PreBuild(answers.get()), S_OK);
  EXPECT_EQ(answers->completed, 1);
}

TEST_F(ProjectTest, AChangeDuringABuildLeavesTheTaskAlone) {
  const Ref<CProject> project = newProject();
  const Ref<FakeComponent> busy = addFake(*project);
  const auto answers = make<Answers>();
  busy->answers = false;
  task_->task = E_TASK_BUILD;
  ASSERT_EQ(project->PreBuild(answers.get()), S_OK);
  ASSERT_TRUE(project->building());
  EXPECT_EQ(project->put_Name(u"renamed"), S_OK);
  EXPECT_EQ(task_->task, E_TASK_BUILD);
  EXPECT_EQ(busy->BuildResult(E_BTR_COMPLETED, 1), S_OK);
  EXPECT_EQ(answers->completed, 1);
  EXPECT_EQ(project->put_Name(u"again"), S_OK);
  EXPECT_EQ(task_->task, E_TASK_FAKEBUILD);
}

struct ExternalCase {
  const char* name;
  e_task task;
  std::int32_t update;
  bool computed;
};

TEST_F(ProjectTest, ExternalDependenciesFollowBuildsThatMayHaveLearntSome) {
  const ExternalCase rows[] = {
      {"build", E_TASK_BUILD, 1, true},      {"rebuild", E_TASK_REBUILD, 1, true},
      {"compile", E_TASK_COMPILE, 1, true},  {"clean", E_TASK_CLEAN, 1, false},
      {"no update", E_TASK_BUILD, 0, false}, {"lists only", E_TASK_FAKEBUILD, 1, false},
  };
  for (const ExternalCase& row : rows) {
    SCOPED_TRACE(row.name);
    const Ref<CProject> project = newProject(BString::fromNarrow(std::string(row.name) + ".nqp"));
    const Ref<CFolder> folder = addFolder(*project, u"f");
    const Ref<ISourceFile> a = addFile(*folder, u".\\a.c");
    addFile(*folder, u".\\b.c");
    ASSERT_EQ(a->put_AutomaticDeps(enumerator({u"z.h", path("b.c"), u"Z.h", u"m.h"}).get()), S_OK);
    ASSERT_EQ(a->AddManualDep(u"m.h"), S_OK);
    ASSERT_EQ(project->contents().active->put_UpdateFileDependencies(row.update), S_OK);
    const Ref<NotifySink> sink = listen(static_cast<IProject*>(project.get()));
    task_->task = row.task;
    ASSERT_EQ(project->PreBuild(nullptr), S_OK);
    Ref<ISimpleCollection> found;
    ASSERT_EQ(project->get_ExternalDependencies(&found), S_OK);
    EXPECT_EQ(texts(found),
              row.computed ? (std::vector<std::string>{"Z.h", "m.h", "z.h"}) : std::vector<std::string>());
    EXPECT_EQ(sink->count(kProjectExternalDependencies), row.computed ? 1 : 0);
    task_->task = row.task;
    ASSERT_EQ(project->PreBuild(nullptr), S_OK);
    EXPECT_EQ(sink->count(kProjectExternalDependencies), row.computed ? 1 : 0) << "told without a change";
  }
}

}  // namespace forgeyard::test
