// The user's commands on a project.

#include "model/project/project_commands.h"

#include <gmock/gmock.h>

#include "tests/model/support/model_fixture.h"

namespace forgeyard::test {

namespace {

using testing::ElementsAre;

class ProjectCommandsTest : public ModelTest {
 protected:
  static bool loaded(CProject& project) { return static_cast<bool>(project.contents().root); }
};

}  // namespace

TEST_F(ProjectCommandsTest, UnloadingAsksOnlyWhenChangesWouldBeLost) {
  const Ref<CProject> project = newProject();
  ProjectCommands commands(*project);
  host_->answer(MessageAnswer::Cancel);
  EXPECT_EQ(commands.unload(), S_FALSE);
  EXPECT_TRUE(loaded(*project));
  EXPECT_THAT(host_->messages(), ElementsAre(ShownMessage{
                                     "You have made changes to this project. If you unload \n"
                                     "the project now, you will lose those changes.",
                                     "Unload Project", MessageButtons::OkCancel, MessageIcon::Exclamation}));
  EXPECT_EQ(commands.save(), S_OK);
  EXPECT_EQ(commands.unload(), S_OK);
  EXPECT_FALSE(loaded(*project));
  EXPECT_EQ(dirty(*project), 1);
  EXPECT_EQ(commands.unload(), S_FALSE) << "not loaded: nothing to lose";
  EXPECT_EQ(commands.save(), S_FALSE);
  EXPECT_EQ(host_->messages().size(), 1u);
}

TEST_F(ProjectCommandsTest, ReloadingDropsChanges) {
  const Ref<CProject> project = newProject();
  ProjectCommands commands(*project);
  check(commands.save());
  check(project->put_Name(u"changed"));
  EXPECT_EQ(commands.reload(), S_OK);
  EXPECT_EQ(project->contents().settings.name.narrow(), "Demo");
  check(commands.unload());
  EXPECT_EQ(commands.reload(), S_OK);
  EXPECT_TRUE(loaded(*project));
}

TEST_F(ProjectCommandsTest, TheActiveConfigurationStaysDuringABuild) {
  const Ref<CProject> project = newProject();
  const Ref<IConfiguration> other = newConfiguration(*project, u"Other");
  const Ref<FakeComponent> busy = addFake(*project);
  ProjectCommands commands(*project);
  EXPECT_EQ(commands.activate(2), E_INVALIDARG);
  busy->answers = false;
  task_->task = E_TASK_BUILD;
  check(project->PreBuild(nullptr));
  EXPECT_EQ(commands.activate(1), S_FALSE);
  EXPECT_NE(project->contents().active, other);
  EXPECT_THAT(host_->messages(),
              ElementsAre(ShownMessage{"A project's active configuration may not be changed during a build",
                                       "Project", MessageButtons::Ok, MessageIcon::Exclamation}));
  check(busy->BuildResult(E_BTR_COMPLETED, 0));
  EXPECT_EQ(commands.activate(1), S_OK);
  EXPECT_EQ(project->contents().active, other);
}

TEST_F(ProjectCommandsTest, EachFolderHasItsFilter) {
  const Ref<CProject> project = newProject();
  addFolder(*project, u"C", u"c;h");
  addFolder(*project, u"Stars", u"*.s;a.tar.gz");
  addFolder(*project, u"Any", u"");
  std::vector<std::string> filters;
  for (const FileFilter& filter : ProjectCommands(*project).fileFilters()) {
    filters.push_back(filter.description.narrow() + "|" + filter.pattern.narrow());
  }
  EXPECT_THAT(filters, ElementsAre("C (*.c;*.h)|*.c;*.h", "Stars (*.s;*.gz)|*.s;*.gz", "Any (*.*)|*.*",
                                   "All files (*.*)|*.*"));
}

TEST_F(ProjectCommandsTest, ChosenFilesAreInserted) {
  const Ref<CProject> project = newProject();
  const Ref<CFolder> folder = addFolder(*project, u"f");
  ProjectCommands commands(*project);
  EXPECT_EQ(commands.insertFiles(), S_FALSE);
  host_->chooseFiles({u"\\a.c", u"\\b.c"});
  EXPECT_EQ(commands.insertFiles(), S_OK);
  EXPECT_THAT(fileNames(*folder), ElementsAre("\\a.c", "\\b.c"));
  EXPECT_EQ(host_->dialogTitles().back(), "Insert files into active project");
}

}  // namespace forgeyard::test
