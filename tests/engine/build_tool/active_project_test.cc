// The projects of the workspace: the list, its active project, insertion and removal, and what is stored of
// them.

#include "platform/paths/host_path.h"
#include "tests/engine/build_tool/build_tool_fixture.h"

namespace forgeyard::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ActiveProject : public BuildToolTest {
 protected:
  Ref<IStorage> newStorage() const {
    Ref<IStorage> storage;
    check(StgCreateDocfile(BString::fromNarrow(HostPaths().toModel(directory_ / "ws").value()),
                           STGM_CREATE | STGM_TRANSACTED | STGM_SHARE_EXCLUSIVE | STGM_READWRITE, &storage));
    return storage;
  }
};

}  // namespace

TEST_F(ActiveProject, TheFirstOfTheListBecomesActive) {
  logChanges();
  const Ref<FakeProject> a = addProject("A");
  EXPECT_THAT(taken(), ElementsAre("A.SetServices", "changed 1", "A.Active=1", "RefreshMenu", "changed 2",
                                   "changed 2", "RefreshMenu"));
  const Ref<FakeProject> b = addProject("B");
  EXPECT_THAT(taken(), ElementsAre("B.SetServices", "changed 1", "changed 2", "RefreshMenu"));
  EXPECT_EQ(listed(), "A* B");

  check(tool_->put_ActiveProject(b.get()));
  EXPECT_THAT(taken(), ElementsAre("A.Active=0", "B.Active=1", "RefreshMenu", "changed 2"));
  check(tool_->put_ActiveProject(nullptr));
  EXPECT_THAT(taken(), ElementsAre("B.Active=0", "RefreshMenu", "changed 2"));
  EXPECT_EQ(listed(), "A B") << "none may be active";
  const Ref<FakeProject> c = addProject("C");
  EXPECT_EQ(listed(), "A* B C") << "until the list changes";
  check(tool_->put_ActiveProject(b.get()));
  check(projects()->Delete(c.get()));
  check(projects()->Delete(a.get()));
  EXPECT_EQ(listed(), "B*");
  taken();
  check(projects()->Delete(a.get()));
  EXPECT_THAT(taken(), IsEmpty()) << "it isn't in the list any more";
  check(projects()->Delete(b.get()));
  EXPECT_EQ(listed(), "");
  EXPECT_FALSE(active());
  EXPECT_THAT(taken(),
              ElementsAre("changed 1", "B.Active=0", "RefreshMenu", "changed 2", "changed 2", "RefreshMenu"));
}

TEST_F(ActiveProject, TheListHasItsProjectsByPosition) {
  const Ref<FakeProject> a = addProject("A");
  const Ref<FakeProject> b = addProject("B");
  std::int32_t count = 0;
  check(projects()->get_Count(&count));
  EXPECT_EQ(count, 2);
  Ref<IProject> found;
  for (const std::int32_t index : {0, 1}) {
    EXPECT_EQ(projects()->get_Item(Variant(index), &found), S_OK);
    EXPECT_EQ(found.get(), index == 0 ? a.get() : b.get());
  }
  for (const Variant& index : {Variant(std::int32_t{-1}), Variant(std::int32_t{2}), Variant(BString(u"A"))}) {
    found = nullptr;
    EXPECT_EQ(projects()->get_Item(index, &found), E_FAIL);
    EXPECT_FALSE(found);
  }
  EXPECT_EQ(projects()->Add(nullptr), E_POINTER);
}

TEST_F(ActiveProject, ANewProjectIsLeftToItsCallerToFill) {
  logChanges();
  Ref<IProject> made;
  check(projects()->New(&made));
  EXPECT_THAT(taken(), ElementsAre("new.SetServices"));
  EXPECT_EQ(listed(), "new");
}

TEST_F(ActiveProject, StaysDuringABuild) {
  const Ref<FakeProject> a = addProject("A");
  const Ref<FakeProject> b = addProject("B");
  check(run(u"ProjectBuild"));
  taken();
  EXPECT_EQ(tool_->put_ActiveProject(b.get()), E_BUILDING);
  EXPECT_EQ(tool_->put_ActiveProject(nullptr), E_BUILDING);
  EXPECT_THAT(host_->messages(), IsEmpty());
  EXPECT_EQ(run(u"BuildProject0", 0), S_OK) << "it is the active one: nothing to ask for";
  EXPECT_THAT(host_->messages(), IsEmpty());
  EXPECT_EQ(run(u"BuildProject0", 1), S_OK);
  EXPECT_THAT(host_->messages(),
              ElementsAre(ShownMessage{"A new project may not be selected whilst a build is in progress.",
                                       "Project", MessageButtons::Ok, MessageIcon::Exclamation}));
  EXPECT_EQ(host_->modalDepth(), 0);
  EXPECT_THAT(taken(), IsEmpty()) << "nothing has changed";
  EXPECT_EQ(listed(), "A* B");
  a->answer(&IBuilderOutput::Completed);
  check(run(u"BuildProject0", 1));
  EXPECT_EQ(listed(), "A B*");
}

TEST_F(ActiveProject, IsBuiltToTheEndWhateverBecomesOfTheList) {
  const Ref<FakeProject> a = addProject("A");
  check(run(u"ProjectBuild"));
  const Ref<FakeProject> b = addProject("B");
  EXPECT_EQ(listed(), "A* B");
  check(projects()->Delete(b.get()));
  EXPECT_EQ(projects()->Delete(a.get()), E_BUILDING) << "none would be left to be active";
  EXPECT_EQ(active().get(), a.get());
  EXPECT_TRUE(isBuilding());
  taken();
  a->answer(&IBuilderOutput::Completed);
  EXPECT_FALSE(isBuilding());
  EXPECT_THAT(taken(), testing::IsSupersetOf({"A.BuildDirty=0", "Build: Project: A - Configuration: Debug",
                                              "Build: Final result: OK"}));
}

TEST_F(ActiveProject, TheMenuHasACommandForEachProject) {
  const auto command = make<FakeCommand>();
  EXPECT_EQ(update(*command.get(), u"BuildNoProject"), 1);
  EXPECT_EQ(command->text, "<no projects>");
  EXPECT_FALSE(command->enabled);
  EXPECT_EQ(commandId(u"BuildProject0"), 0x66u);

  const Ref<FakeProject> a = addProject("A");
  const Ref<FakeProject> b = addProject("B");
  struct {
    std::uint32_t position;
    const char* text;
    bool checked;
  } const rows[] = {{0, "A", true}, {1, "B", false}};
  for (const auto& row : rows) {
    const auto entry = make<FakeCommand>();
    EXPECT_EQ(update(*entry.get(), u"BuildProject0", row.position), 1);
    EXPECT_EQ(entry->text, row.text);
    EXPECT_EQ(entry->checked, row.checked) << row.text;
  }
  const auto beyond = make<FakeCommand>();
  EXPECT_EQ(update(*beyond.get(), u"BuildProject0", 2), 0);
  EXPECT_EQ(update(*beyond.get(), u"BuildNoProject"), 0);
  EXPECT_EQ(beyond->text, "");

  taken();
  check(run(u"BuildProject0", 0));
  check(run(u"BuildProject0", 2));
  EXPECT_THAT(taken(), IsEmpty()) << "active already, and none at all";
  check(run(u"BuildProject0", 1));
  EXPECT_EQ(listed(), "A B*");
  EXPECT_EQ(commands()->RunCommand(9999), E_INVALIDARG);
}

TEST_F(ActiveProject, InsertionLoadsAndStoresTheProject) {
  Ref<IProject> inserted;
  check(tool_->InsertProject(u"\\home\\u\\demo.nqp", &inserted));
  EXPECT_THAT(
      taken(),
      ElementsAre("new.SetServices", "new.FileName=demo.nqp", "new.WorkingDirectory=\\home\\u",
                  "new.ProjectLoad", "new.FileName=demo.nqp", "new.WorkingDirectory=\\home\\u",
                  "new.ProjectSave", "new.SetServices", "new.Active=1", "RefreshMenu", "RefreshMenu"));
  EXPECT_EQ(inserted, active());
  EXPECT_EQ(listed(), "new*");
  EXPECT_EQ(tool_->InsertProject(u"\\home\\u\\demo.nqp", nullptr), S_OK) << "nobody asks for the object";
  EXPECT_EQ(listed(), "new* new");

  EXPECT_EQ(run(u"BuildInsertProject"), S_OK) << "the dialog is cancelled";
  EXPECT_EQ(listed(), "new* new");
  host_->chooseFile(u"\\home\\u\\second.nqp");
  check(run(u"BuildInsertProject"));
  EXPECT_EQ(listed(), "new* new new");
  EXPECT_THAT(host_->dialogTitles(),
              ElementsAre("Insert project into workspace", "Insert project into workspace"));
  EXPECT_EQ(host_->modalDepth(), 0);
}

TEST_F(ActiveProject, RemovalMakesANeighbourActive) {
  struct {
    const char* name;
    int projects;
    int active;
    const char* left;
  } const rows[] = {{"the first", 3, 0, "B* C"},
                    {"the second", 3, 1, "A* C"},
                    {"the last", 3, 2, "A B*"},
                    {"the only one", 1, 0, ""}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    std::vector<Ref<FakeProject>> all;
    for (int i = 0; i < row.projects; ++i)
      all.push_back(addProject(std::string(1, static_cast<char>('A' + i))));
    const Ref<FakeProject> removed = all[static_cast<std::size_t>(row.active)];
    check(tool_->put_ActiveProject(removed.get()));
    taken();
    check(run(u"ProjectRemove"));
    EXPECT_EQ(listed(), row.left);
    const Log log = taken();
    ASSERT_GE(log.size(), 2u);
    EXPECT_EQ(log[log.size() - 2], removed->name + ".ProjectClose");
    EXPECT_EQ(log.back(), removed->name + ".OnClose");
    for (const Ref<FakeProject>& project : all) check(projects()->Delete(project.get()));
  }
}

TEST_F(ActiveProject, RemovalAsksFirst) {
  const ShownMessage sure{"Are you sure you want to remove this project?", "Remove Project Confirmation",
                          MessageButtons::YesNo, MessageIcon::Question};
  const ShownMessage changed{"Project has changed!\nDo you want to save current changes?", "Project Changed",
                             MessageButtons::YesNo, MessageIcon::Question};
  using Answers = std::vector<MessageAnswer>;
  constexpr auto kYes = MessageAnswer::Yes;
  constexpr auto kNo = MessageAnswer::No;
  struct {
    const char* name;
    bool dirty;
    Answers answers;
    std::vector<ShownMessage> asked;
    bool saved;
    bool removed;
  } const rows[] = {{"no", true, {kNo}, {sure}, false, false},
                    {"yes, nothing to save", false, {kYes}, {sure}, false, true},
                    {"yes, and save", true, {kYes, kYes}, {sure, changed}, true, true},
                    {"yes, but don't save", true, {kYes, kNo}, {sure, changed}, false, true}};
  std::size_t shown = 0;
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const Ref<FakeProject> project = addProject("A");
    project->dirty = row.dirty;
    for (const MessageAnswer answer : row.answers) host_->answer(answer);
    taken();
    check(run(u"ProjectRemove"));
    const auto& messages = host_->messages();
    EXPECT_THAT(std::vector(messages.begin() + static_cast<std::ptrdiff_t>(shown), messages.end()),
                testing::ElementsAreArray(row.asked));
    shown = messages.size();
    const Log log = taken();
    EXPECT_EQ(std::count(log.begin(), log.end(), "A.ProjectSave"), row.saved);
    EXPECT_EQ(listed(), row.removed ? "" : "A*");
    check(projects()->Delete(project.get()));
  }
}

TEST_F(ActiveProject, TheListIsStoredWithTheNameOfTheActiveOne) {
  for (const char* const chosen : {"A", "B", ""}) {
    SCOPED_TRACE(chosen);
    const Ref<IStorage> storage = newStorage();
    const Ref<FakeProject> a = addProject("A");
    const Ref<FakeProject> b = addProject("B");
    check(tool_->put_ActiveProject(*chosen == 'A' ? a.get() : *chosen == 'B' ? b.get() : nullptr));
    check(tool_.as<IPersistStorage>()->Save(storage.get(), false));
    check(projects()->Delete(a.get()));
    check(projects()->Delete(b.get()));

    const Ref<IBuildTool> other = createInstance<IBuildTool>(CLSID_BuildTool);
    check(other.as<ILoadedObject>()->OnLoad(static_cast<IServiceLookup*>(host_.get())));
    check(other.as<IPersistStorage>()->Load(storage.get()));
    Ref<IProject> active;
    check(other->get_ActiveProject(&active));
    ASSERT_TRUE(active);
    EXPECT_EQ(nameOf(active), *chosen ? chosen : "A") << "without a name it is the first";
    check(other.as<ILoadedObject>()->OnUnload());
  }
}

TEST_F(ActiveProject, AnOldListNamesNoActiveProjectAndAMissingOneIsMade) {
  const Ref<IStorage> storage = newStorage();
  const Ref<IPersistStorage> persistent = tool_.as<IPersistStorage>();
  check(persistent->Load(storage.get()));
  EXPECT_EQ(listed(), "");
  {
    Ref<IStream> stream;
    check(storage->OpenStream(u"BuildTool", STGM_READWRITE | STGM_SHARE_EXCLUSIVE, &stream));
    RecordWriter writer(stream.get());
    for (const std::uint32_t value : {0u, 2u}) writer.u32(value);
    for (const char16_t* name : {u"A", u"B"}) writer.listedString(name);
  }
  check(persistent->HandsOffStorage());
  check(persistent->Load(storage.get()));
  EXPECT_EQ(listed(), "A* B");
}

}  // namespace forgeyard::test
