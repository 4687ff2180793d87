#pragma once

#include <gmock/gmock.h>
#include <stdlib.h>

#include <string>
#include <string_view>
#include <vector>

#include "engine/classes.h"
#include "platform/com/class_table.h"
#include "platform/com/connection_point.h"
#include "platform/threads/named_event.h"
#include "tests/engine/build_tool/fake_project.h"
#include "tests/platform/com/live_objects.h"
#include "tests/platform/support/temporary_directory.h"
#include "tests/support/class_source.h"
#include "tests/support/test_host.h"
#include "typelib/buildtool.h"
#include "typelib/classes.h"
#include "typelib/host.h"
#include "typelib/output.h"

namespace forgeyard::test {

// The host's services that a build run uses, which record each call.
class RecordingHost final : public ComObject<IOutputWindow, IOutputLines, ISourceManager, ICommandHost> {
 public:
  explicit RecordingHost(Log& log) : log_(log) {}

  Ref<IUnknown> token;  // what SaveAll hands back

  HRESULT OpenTab(const BString& tab, std::int32_t*, std::int32_t create) override {
    return say("OpenTab " + tab.narrow() + (create ? "" : " if it exists"));
  }
  HRESULT ShowTab(const BString& tab) override { return say("ShowTab " + tab.narrow()); }
  HRESULT AddLine(const BString& tab, const BString& text) override {
    return say(tab.narrow() + ": " + text.narrow());
  }
  HRESULT ClearTab(const BString& tab) override { return say("ClearTab " + tab.narrow()); }
  HRESULT Reserved() override { return E_NOTIMPL; }
  HRESULT SaveAll(Ref<IUnknown>* out) override {
    *out = token;
    return say("SaveAll");
  }
  HRESULT RegisterObject(const Guid&, IUnknown*) override { return E_NOTIMPL; }
  HRESULT UnregisterObject(const Guid&, IUnknown*) override { return E_NOTIMPL; }
  HRESULT RefreshMenu(std::uint32_t, std::uint32_t) override { return say("RefreshMenu"); }

 private:
  HRESULT say(const std::string& what) const {
    log_.push_back(what);
    return S_OK;
  }

  Log& log_;
};

// A command's state in a menu.
class FakeCommand final : public ComObject<IHostCommand> {
 public:
  std::int32_t enabled = 0;
  std::int32_t checked = 0;
  std::string text;

  HRESULT get_Enabled(std::int32_t* value) override { return *value = enabled, S_OK; }
  HRESULT put_Enabled(std::int32_t value) override { return enabled = value, S_OK; }
  HRESULT get_Checked(std::int32_t* value) override { return *value = checked, S_OK; }
  HRESULT put_Checked(std::int32_t value) override { return checked = value, S_OK; }
  HRESULT put_MenuText(const BString& value) override { return text = value.narrow(), S_OK; }
};

// The build tool alone, through its interfaces, with projects and a host that record what it asks of them.
// The runtime directory is the test's own; no object may be left at the end.
class BuildToolTest : public NoObjectLeft {
 protected:
  BuildToolTest() {
    FakeProject::log = &log_;
    std::filesystem::create_directory(directory_ / "run");
    std::filesystem::permissions(directory_ / "run", std::filesystem::perms::owner_all);
    setenv("FORGEYARD_RUNTIME_DIR", (directory_ / "run").c_str(), 1);
    IUnknown* recording = static_cast<IOutputWindow*>(recording_.get());
    for (const Guid& service : {SID_OutputWindow, SID_SourceManager, SID_CommandHost})
      host_->provide(service, recording);
    check(tool_.as<ILoadedObject>()->OnLoad(static_cast<IServiceLookup*>(host_.get())));
  }
  ~BuildToolTest() override {
    ignore(tool_.as<ILoadedObject>()->OnUnload());
    host_->clear();
    unsetenv("FORGEYARD_RUNTIME_DIR");
    FakeProject::log = nullptr;
  }

  // A project in the tool's list.
  Ref<FakeProject> addProject(const std::string& name) {
    const auto project = make<FakeProject>();
    project->name = name;
    check(projects()->Add(project.get()));
    return project;
  }
  Ref<IProjects> projects() const {
    Ref<IProjects> list;
    check(tool_->get_Projects(&list));
    return list;
  }
  // Names of the projects in the list, the active one's with a star.
  std::string listed() const {
    Ref<IUnknown> walk;
    check(projects()->get__NewEnum(&walk));
    std::string names;
    forEach(walk.as<IEnumVARIANT>(), [&](const Variant& value) {
      Ref<IUnknown> object;
      check(value.toUnknown(&object));
      const Ref<IProject> project = object.as<IProject>();
      names += (names.empty() ? "" : " ") + nameOf(project) + (project == active() ? "*" : "");
    });
    return names;
  }
  Ref<IProject> active() const {
    Ref<IProject> project;
    check(tool_->get_ActiveProject(&project));
    return project;
  }
  static std::string nameOf(const Ref<IProject>& project) {
    BString name;
    check(project->get_Name(&name));
    return name.narrow();
  }

  // Commands by their names, `later` for the numbered ones of a range.
  std::uint32_t commandId(std::u16string_view name, std::uint32_t later = 0) const {
    std::span<const CommandEntry> entries;
    check(commands()->GetCommands(&entries));
    for (const CommandEntry& entry : entries) {
      if (name == entry.name) return entry.id + later;
    }
    throw std::invalid_argument("no such command");
  }
  HRESULT run(std::u16string_view name, std::uint32_t later = 0) {
    return commands()->RunCommand(commandId(name, later));
  }
  std::int32_t update(FakeCommand& command, std::u16string_view name, std::uint32_t later = 0) {
    std::int32_t changed = -1;
    check(commands()->UpdateCommand(commandId(name, later), &command, &changed));
    return changed;
  }
  bool isEnabled(std::u16string_view name) {
    const auto command = make<FakeCommand>();
    update(*command.get(), name);
    return command->enabled != 0;
  }
  Ref<IUseCommands> commands() const { return tool_.as<IUseCommands>(); }

  bool isBuilding() const {
    std::int32_t building = -1;
    check(tool_->get_Building(&building));
    return building != 0;
  }
  e_task task() const {
    e_task task = E_TASK_FAKEBUILD;
    check(tool_.as<IBuilderTask>()->get_CurrentTask(&task));
    return task;
  }
  // Connects a sink of one of the tool's event interfaces until the end of the test.
  template <class Event>
  void advise(Event* sink) {
    Ref<IConnectionPoint> point;
    check(tool_.as<IConnectionPointContainer>()->FindConnectionPoint(Event::iid, &point));
    std::uint32_t cookie = 0;
    check(point->Advise(sink, &cookie));
  }
  // Property changes of the tool come into the log from here on.
  void logChanges() {
    const auto sink = make<NotifySink>();
    sink->also = [this](std::int32_t id) { log_.push_back("changed " + std::to_string(id)); };
    advise<IPropertyNotifySink>(sink.get());
  }
  // The log so far, which begins again.
  Log taken() { return std::exchange(log_, {}); }

  TemporaryDirectory directory_;
  Log log_;
  const ClassSource engine_{engineClasses()};
  const ClassEntry projectClass_{CLSID_Project, "Project", createObject<FakeProject>};
  const ClassSource model_{{&projectClass_, 1}};
  const Ref<TestHost> host_ = make<TestHost>();
  const Ref<RecordingHost> recording_ = make<RecordingHost>(log_);
  const Ref<IBuildTool> tool_ = createInstance<IBuildTool>(CLSID_BuildTool);
};

}  // namespace forgeyard::test
