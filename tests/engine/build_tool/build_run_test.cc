// The build run of the build tool: who may refuse it, what it says, how it ends.

#include <optional>

#include "tests/engine/build_tool/build_tool_fixture.h"
#include "typelib/folder.h"

namespace forgeyard::test {

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::IsSupersetOf;

// A sink of one of the two event interfaces. It sets *cancel where it has a value for it.
template <class Event, class Cancel>
class Sink final : public ComObject<Event> {
 public:
  Sink(Log& log, std::string name, std::optional<Cancel> cancel = {})
      : log_(log), name_(std::move(name)), cancel_(cancel) {}

  std::function<void()> atEnd;
  std::vector<e_task> tasks;
  std::vector<Cancel> found;  // what *cancel held on each call

  HRESULT OnBuildStart(e_task task, Cancel* cancel) override {
    log_.push_back(name_ + " start");
    tasks.push_back(task);
    found.push_back(*cancel);
    if (cancel_) *cancel = *cancel_;
    return S_OK;
  }
  HRESULT OnBuildEnd() override {
    log_.push_back(name_ + " end");
    if (atEnd) atEnd();
    return S_OK;
  }

 private:
  Log& log_;
  const std::string name_;
  const std::optional<Cancel> cancel_;
};

using DispatchSink = Sink<DBuildToolE, std::int16_t>;
using CustomSink = Sink<IBuildToolE, std::int32_t>;

class Token final : public ComObject<IUnknown> {};

class File final : public ComObject<Dual<ISourceFile>> {
 public:
  explicit File(BString name) : name_(std::move(name)) {}

  HRESULT get_Name(BString* value) override { return *value = name_, S_OK; }
  HRESULT put_Name(const BString&) override { return E_NOTIMPL; }
  HRESULT get_PersistAs(BString*) override { return E_NOTIMPL; }
  HRESULT put_PersistAs(const BString&) override { return E_NOTIMPL; }
  HRESULT get_Project(Ref<IProject>*) override { return E_NOTIMPL; }
  HRESULT put_Project(IProject*) override { return E_NOTIMPL; }
  HRESULT AddManualDep(const BString&) override { return E_NOTIMPL; }
  HRESULT RemoveManualDep(const BString&) override { return E_NOTIMPL; }
  HRESULT get_ManualDeps(Ref<ISimpleCollection>*) override { return E_NOTIMPL; }
  HRESULT get_AutomaticDeps(Ref<ISimpleCollection>*) override { return E_NOTIMPL; }
  HRESULT put_AutomaticDeps(IUnknown*) override { return E_NOTIMPL; }
  HRESULT get_SourceControl(std::int32_t*) override { return E_NOTIMPL; }
  HRESULT put_SourceControl(std::int32_t) override { return E_NOTIMPL; }
  HRESULT get_LastUpdated(double*) override { return E_NOTIMPL; }
  HRESULT get_LastUpdatedDeps(double*) override { return E_NOTIMPL; }

 private:
  const BString name_;
};

using Items = std::vector<Ref<IUnknown>>;

Ref<IUnknown> file(const BString& name) {
  return Ref<IUnknown>(make<File>(name).get());
}

// A view, and a pane, with a selection; a view without items has none to give.
class Chosen final : public ComObject<ISelection, IKVSourceSafe> {
 public:
  explicit Chosen(std::optional<Items> items) : items_(std::move(items)) {}
  HRESULT GetSelection(Ref<IEnumUnknown>* out) override {
    if (!items_) return E_FAIL;
    *out = make<ListEnumerator<IEnumUnknown>>(*items_);
    return S_OK;
  }
  HRESULT GetSourceControlFileEnum(Ref<IEnumUnknown>* out) override { return GetSelection(out); }

 private:
  const std::optional<Items> items_;
};

// The main frame with a view and a pane.
class Frame final : public ComObject<IMainFrame, IPaneHost> {
 public:
  Ref<IUnknown> view;
  Ref<IUnknown> pane;

  HRESULT EnableModeless(std::int32_t) override { return S_OK; }
  HRESULT GetWindow(WindowHandle*) override { return E_NOTIMPL; }
  HRESULT Reserved() override { return E_NOTIMPL; }
  HRESULT GetActiveView(Ref<IUnknown>* out) override { return *out = view, S_OK; }
  HRESULT GetActivePane(Ref<IUnknown>* out) override { return *out = pane, S_OK; }
};

class BuildRun : public BuildToolTest {
 protected:
  // The main frame shows these from here on.
  void show(std::optional<Items> view, std::optional<Items> pane = {}) {
    frame_->view = Ref<IUnknown>(static_cast<ISelection*>(make<Chosen>(std::move(view)).get()));
    frame_->pane = Ref<IUnknown>(static_cast<ISelection*>(make<Chosen>(std::move(pane)).get()));
    host_->provide(SID_MainFrame, static_cast<IMainFrame*>(frame_.get()));
  }
  std::vector<std::string> selection() const {
    Ref<IEnumString> names;
    check(tool_.as<IBuilderTask>()->PreBuildSelection(&names));
    std::vector<std::string> result;
    forEach(names, [&](const BString& name) { result.push_back(name.narrow()); });
    return result;
  }

  const Ref<Frame> frame_ = make<Frame>();
};

}  // namespace

TEST_F(BuildRun, HappensInThisOrder) {
  const auto custom = make<CustomSink>(log_, "custom");
  const auto dispatch = make<DispatchSink>(log_, "dispatch");
  advise<IBuildToolE>(custom.get());
  advise<DBuildToolE>(dispatch.get());
  const Ref<FakeProject> project = addProject("A");
  project->onPreBuild = [&] {
    EXPECT_TRUE(isBuilding());
    EXPECT_EQ(project->connection.get(), tool_.as<IBuilderOutput>().get());
  };
  project->atOnce = &IBuilderOutput::Completed;
  taken();
  check(run(u"ProjectRebuild"));
  EXPECT_THAT(
      taken(),
      ElementsAre("SaveAll", "dispatch start", "custom start", "OpenTab Build", "ClearTab Build",
                  "ShowTab Build", "Build: -----", "Build: Project: A - Configuration: Debug", "Build: -----",
                  "A.PreBuild", "Debug.BuildDirty=0", "A.BuildDirty=0", "dispatch end", "custom end",
                  "Build: Project: A - Configuration: Debug", "Build: Final result: OK", "Build: -----"));
  EXPECT_FALSE(isBuilding());
  EXPECT_THAT(dispatch->tasks, ElementsAre(E_TASK_REBUILD));
  EXPECT_THAT(custom->tasks, ElementsAre(E_TASK_REBUILD));
}

TEST_F(BuildRun, SinksMayRefuseIt) {
  using Dispatch = std::optional<std::int16_t>;
  using Custom = std::optional<std::int32_t>;
  struct {
    const char* name;
    Dispatch dispatch[2];
    Custom custom[2];
    std::vector<std::string> called;
    bool started;
  } const rows[] = {
      {"nobody", {}, {}, {"d1", "d2", "c1", "c2"}, true},
      {"the first by dispatch: its like are still asked", {-1, {}}, {}, {"d1", "d2"}, false},
      {"the second by dispatch", {{}, -1}, {}, {"d1", "d2"}, false},
      {"withdrawn by the second", {-1, 0}, {}, {"d1", "d2", "c1", "c2"}, true},
      {"not VARIANT_TRUE", {1, {}}, {}, {"d1", "d2", "c1", "c2"}, true},
      {"the first: the second isn't asked", {}, {1, 0}, {"d1", "d2", "c1"}, false},
      {"the second, by any value", {}, {{}, 7}, {"d1", "d2", "c1", "c2"}, false},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const Ref<IBuildTool> tool = createInstance<IBuildTool>(CLSID_BuildTool);
    const Ref<ILoadedObject> loaded = tool.as<ILoadedObject>();
    check(loaded->OnLoad(static_cast<IServiceLookup*>(host_.get())));
    Log calls;
    const auto advise = [&](const Guid& event, IUnknown* sink) {
      Ref<IConnectionPoint> point;
      std::uint32_t cookie = 0;
      check(tool.as<IConnectionPointContainer>()->FindConnectionPoint(event, &point));
      check(point->Advise(sink, &cookie));
    };
    const auto second = make<DispatchSink>(calls, "d2", row.dispatch[1]);
    advise(IBuildToolE::iid, make<CustomSink>(calls, "c1", row.custom[0]).get());
    advise(IBuildToolE::iid, make<CustomSink>(calls, "c2", row.custom[1]).get());
    advise(DBuildToolE::iid, make<DispatchSink>(calls, "d1", row.dispatch[0]).get());
    advise(DBuildToolE::iid, second.get());
    Ref<IProjects> list;
    check(tool->get_Projects(&list));
    const auto project = make<FakeProject>();
    check(list->Add(project.get()));
    taken();

    check(tool.as<IUseCommands>()->RunCommand(commandId(u"ProjectBuild")));
    std::vector<std::string> expected;
    for (const std::string& name : row.called) expected.push_back(name + " start");
    EXPECT_EQ(calls, expected);
    EXPECT_THAT(second->found, ElementsAre(row.dispatch[0].value_or(0))) << "one variable for all";
    std::int32_t building = -1;
    check(tool->get_Building(&building));
    EXPECT_EQ(building, row.started);
    if (row.started) {
      EXPECT_THAT(taken(), IsSupersetOf({"new.PreBuild"}));
      project->answer(&IBuilderOutput::Completed);
    } else {
      EXPECT_THAT(taken(), ElementsAre("SaveAll")) << "a refusal leaves no trace in the tab";
    }
    check(loaded->OnUnload());
  }
}

TEST_F(BuildRun, WithoutAnActiveProjectOnlyAsks) {
  advise<IBuildToolE>(make<CustomSink>(log_, "custom").get());
  EXPECT_EQ(run(u"ProjectBuild"), S_OK);
  EXPECT_EQ(run(u"ProjectStopBuild"), S_OK);
  EXPECT_THAT(taken(), ElementsAre("SaveAll", "custom start"));
  EXPECT_FALSE(isBuilding());
}

TEST_F(BuildRun, GoesOnWithoutServices) {
  for (const Guid& service : {SID_OutputWindow, SID_SourceManager, SID_CommandHost, SID_MainFrame})
    host_->withdraw(service);
  const Ref<FakeProject> project = addProject("A");
  check(run(u"ProjectBuild"));
  EXPECT_TRUE(isBuilding());
  project->answer(&IBuilderOutput::Completed);
  EXPECT_FALSE(isBuilding());
}

TEST_F(BuildRun, EndsByTheAnswer) {
  struct {
    const char* command;
    FakeProject::Answer answer;
    e_btr result;
    const char* text;
    bool cleans;  // BuildDirty
  } const rows[] = {
      {"ProjectBuild", &IBuilderOutput::Completed, E_BTR_COMPLETED, "OK", true},
      {"ProjectRebuild", &IBuilderOutput::Completed, E_BTR_COMPLETED, "OK", true},
      {"ProjectClean", &IBuilderOutput::Completed, E_BTR_COMPLETED, "OK", false},
      {"ProjectCompile", &IBuilderOutput::Completed, E_BTR_COMPLETED, "OK", false},
      {"ProjectBuild", &IBuilderOutput::Error, E_BTR_ERROR, "ERRORS", false},
      {"ProjectRebuild", &IBuilderOutput::Error, E_BTR_ERROR, "ERRORS", false},
      {"ProjectBuild", &IBuilderOutput::Stopped, E_BTR_STOPPED, "STOPPED", false},
  };
  const Ref<FakeProject> project = addProject("A");
  const Ref<IBuildRunResult> last = tool_.as<IBuildRunResult>();
  e_btr result = E_BTR_FATAL;
  EXPECT_EQ(last->get_LastResult(&result), S_FALSE) << "nothing has run yet";
  const auto sink = make<CustomSink>(log_, "custom");
  sink->atEnd = [&] {
    EXPECT_FALSE(isBuilding());
    EXPECT_EQ(last->get_LastResult(&result), S_OK);
  };
  advise<IBuildToolE>(sink.get());
  show(Items{file(u"\\p\\a.c")});
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.command) + ", " + row.text);
    check(run(BString::fromNarrow(row.command).view()));
    EXPECT_TRUE(isBuilding());
    taken();
    project->answer(row.answer);
    Log expected;
    if (row.cleans) expected = {"Debug.BuildDirty=0", "A.BuildDirty=0"};
    for (const std::string& line :
         {std::string("custom end"), std::string("Build: Project: A - Configuration: Debug"),
          std::string("Build: Final result: ") + row.text, std::string("Build: -----")})
      expected.push_back(line);
    EXPECT_EQ(taken(), expected);
    EXPECT_EQ(result, row.result);
  }
}

TEST_F(BuildRun, HoldsTheTokenOfTheSavedSourcesToItsEnd) {
  const Ref<FakeProject> project = addProject("A");
  const auto token = make<Token>();
  recording_->token = token;
  const std::uint32_t unheld = referencesTo(token.get());
  const auto sink = make<CustomSink>(log_, "custom");
  sink->atEnd = [&] { EXPECT_EQ(referencesTo(token.get()), unheld + 1) << "still held for the sinks"; };
  advise<IBuildToolE>(sink.get());
  check(run(u"ProjectBuild"));
  EXPECT_EQ(referencesTo(token.get()), unheld + 1);
  project->answer(&IBuilderOutput::Error);
  EXPECT_EQ(referencesTo(token.get()), unheld);

  const auto refusing = make<DispatchSink>(log_, "refusing", std::int16_t{-1});
  advise<DBuildToolE>(refusing.get());
  check(run(u"ProjectBuild"));
  EXPECT_EQ(referencesTo(token.get()), unheld + 1) << "a refused run keeps it until the next one";
  recording_->token = make<Token>();
  check(run(u"ProjectBuild"));
  EXPECT_EQ(referencesTo(token.get()), unheld - 1) << "replaced, and the host's own is gone as well";
}

TEST_F(BuildRun, WritesToTheTabOfTheTool) {
  check(tool_.as<IOutputTab>()->put_OutputTab(u"Other"));
  addProject("A")->atOnce = &IBuilderOutput::Completed;
  taken();
  check(run(u"ProjectBuild"));
  EXPECT_THAT(taken(), IsSupersetOf({"OpenTab Other", "ClearTab Other", "ShowTab Other", "Other: -----",
                                     "Other: Final result: OK"}));
}

TEST_F(BuildRun, NeedsNoConfiguration) {
  const Ref<FakeProject> project = addProject("A");
  project->atOnce = &IBuilderOutput::Completed;
  project->hasConfiguration = false;
  taken();
  check(run(u"ProjectBuild"));
  EXPECT_THAT(taken(), IsSupersetOf({"Build: Project: A - Configuration: ", "A.BuildDirty=0"}));
}

TEST_F(BuildRun, StopSetsTheEventAndMarksTheComponents) {
  const Ref<FakeProject> project = addProject("A");
  taken();
  check(run(u"ProjectStopBuild"));
  EXPECT_THAT(taken(), ElementsAre("A.Stop")) << "also when nothing runs; the command's state says so";

  check(run(u"ProjectBuild"));
  const auto event = NamedEvent::open(kStopEvent);
  ASSERT_TRUE(event);
  EXPECT_FALSE(event->isSet());
  taken();
  for (int time = 0; time < 2; ++time) {
    check(run(u"ProjectStopBuild"));
    EXPECT_TRUE(event->isSet());
    EXPECT_TRUE(isBuilding()) << "until the project answers";
    EXPECT_THAT(taken(), ElementsAre("A.Stop"));
  }
  project->answer(&IBuilderOutput::Stopped);
  EXPECT_TRUE(event->isSet());
  check(run(u"ProjectBuild"));
  EXPECT_FALSE(event->isSet()) << "a run begins without";
  project->answer(&IBuilderOutput::Completed);
}

TEST_F(BuildRun, CompilesTheSourceFilesOfTheSelection) {
  const Ref<FakeProject> project = addProject("A");
  project->atOnce = &IBuilderOutput::Completed;
  const Ref<IUnknown> other(static_cast<ISelection*>(make<Chosen>(std::nullopt).get()));
  struct {
    const char* name;
    std::optional<Items> view;
    std::optional<Items> pane;
    std::vector<std::string> selection;
  } const rows[] = {
      {"sorted, each once, and nothing but files",
       Items{file(u"\\p\\b.c"), other, file(u"\\p\\a.c"), file(u"\\p\\b.c")},
       Items{file(u"\\p\\pane.c")},
       {"\\p\\a.c", "\\p\\b.c"}},
      {"of the pane, where the view has none to give", {}, Items{file(u"\\p\\pane.c")}, {"\\p\\pane.c"}},
      {"no files", Items{other}, Items{file(u"\\p\\pane.c")}, {}},
      {"nothing at all", {}, {}, {}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    show(row.view, row.pane);
    check(tool_.as<IBuilderTask>()->put_CurrentTask(E_TASK_CLEAN));
    taken();
    check(run(u"ProjectCompile"));
    EXPECT_EQ(selection(), row.selection);
    if (row.selection.empty()) {
      EXPECT_THAT(taken(), IsEmpty()) << "no run, not even a question";
      EXPECT_EQ(task(), E_TASK_CLEAN);
    } else {
      EXPECT_THAT(taken(), IsSupersetOf({"A.PreBuild"}));
      EXPECT_EQ(task(), E_TASK_COMPILE);
    }
  }
}

TEST_F(BuildRun, ASelectionThatIsBeingReadStaysAsItWas) {
  addProject("A")->atOnce = &IBuilderOutput::Completed;
  show(Items{file(u"\\p\\a.c")});
  check(run(u"ProjectCompile"));
  Ref<IEnumString> before;
  check(tool_.as<IBuilderTask>()->PreBuildSelection(&before));
  show(Items{file(u"\\p\\b.c")});
  check(run(u"ProjectCompile"));
  std::vector<std::string> names;
  forEach(before, [&](const BString& name) { names.push_back(name.narrow()); });
  EXPECT_THAT(names, ElementsAre("\\p\\a.c"));
  EXPECT_THAT(selection(), ElementsAre("\\p\\b.c"));
}

TEST_F(BuildRun, CommandsAreEnabledWhereTheyMakeSense) {
  const char16_t* const commands[] = {u"ProjectBuild",      u"ProjectRebuild",   u"ProjectClean",
                                      u"ProjectCompile",    u"ProjectStopBuild", u"ProjectRemove",
                                      u"BuildInsertProject"};
  const auto enabled = [&] {
    std::string marks;
    for (const char16_t* command : commands) marks += isEnabled(command) ? '+' : '-';
    return marks;
  };
  show(Items{});
  EXPECT_EQ(enabled(), "------+") << "no project";
  const Ref<FakeProject> project = addProject("A");
  EXPECT_EQ(enabled(), "+++--++") << "nothing selected";
  show(Items{Ref<IUnknown>(static_cast<ISelection*>(make<Chosen>(std::nullopt).get()))});
  EXPECT_EQ(enabled(), "++++-++") << "one item, file or not";
  check(run(u"ProjectBuild"));
  EXPECT_EQ(enabled(), "----+--") << "a run goes on";
  project->answer(&IBuilderOutput::Completed);
  EXPECT_EQ(enabled(), "++++-++");

  const auto command = make<FakeCommand>();
  EXPECT_EQ(update(*command.get(), u"ProjectBuild"), 1);
  EXPECT_EQ(update(*command.get(), u"ProjectBuild"), 0) << "nothing to change any more";
}

}  // namespace forgeyard::test
