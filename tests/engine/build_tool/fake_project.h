#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/com/object.h"
#include "platform/storage/records/persist.h"
#include "platform/storage/records/records.h"
#include "tests/support/stub_configuration.h"
#include "typelib/builder.h"
#include "typelib/host.h"
#include "typelib/project.h"

namespace forgeyard::test {

// What happened to the objects of a test, in order.
using Log = std::vector<std::string>;

// A configuration that has a name and records what happens to its BuildDirty.
class FakeConfiguration final : public StubConfiguration<> {
 public:
  explicit FakeConfiguration(Log& log) : log_(log) {}

  HRESULT get_Name(BString* value) override {
    *value = u"Debug";
    return S_OK;
  }
  HRESULT put_BuildDirty(std::int32_t value) override {
    log_.push_back("Debug.BuildDirty=" + std::to_string(value));
    return S_OK;
  }

 private:
  Log& log_;
};

// A project as the build tool sees it: it records what the tool asks of it, and the test answers a build for
// it. Its record in a stream is its name.
class FakeProject final : public ComObject<Dual<IProject>, IBuilderInput, IComponentSite, IPersistStream> {
 public:
  using Answer = HRESULT (IBuilderOutput::*)();

  // Where the projects that the class table makes write; set by the fixture.
  inline static Log* log = nullptr;

  std::string name = "new";
  std::int32_t dirty = 0;
  HRESULT loadStatus = S_OK;
  bool hasConfiguration = true;
  Answer atOnce = nullptr;  // the answer that PreBuild gives from inside; none: the build goes on
  Ref<IBuilderOutput> connection;
  std::function<void()> onPreBuild;

  // Ends the build that is going on.
  void answer(Answer how) {
    const Ref<IBuilderOutput> tool = std::exchange(connection, nullptr);
    check(((*tool.get()).*how)());
  }

  // IBuilderInput
  HRESULT PreBuild(IBuilderOutput* output) override {
    check(say("PreBuild"));
    connection = Ref<IBuilderOutput>(output);
    if (onPreBuild) onPreBuild();
    if (atOnce) answer(atOnce);
    return S_OK;
  }
  HRESULT Build() override { return E_NOTIMPL; }
  HRESULT Stop() override { return say("Stop"); }

  HRESULT SetServices(IServiceLookup* services) override {
    return say(lookUp<IUnknown>(services, SID_BuildTool) ? "SetServices" : "SetServices without a tool");
  }

  // IPersistStream
  HRESULT GetClassID(Guid*) override { return E_NOTIMPL; }
  HRESULT IsDirty() override { return E_NOTIMPL; }
  HRESULT Load(IStream* stream) override {
    return guard([&] { name = RecordReader(stream).listedString().narrow(); });
  }
  HRESULT Save(IStream* stream, bool) override {
    return guard([&] { RecordWriter(stream).listedString(BString::fromNarrow(name)); });
  }

  // IProject
  HRESULT get_Name(BString* value) override {
    *value = BString::fromNarrow(name);
    return S_OK;
  }
  HRESULT put_WorkingDirectory(const BString& value) override {
    return say("WorkingDirectory=" + value.narrow());
  }
  HRESULT put_FileName(const BString& value) override { return say("FileName=" + value.narrow()); }
  HRESULT put_Active(std::int32_t value) override { return say("Active=" + std::to_string(value)); }
  HRESULT OnClose() override { return say("OnClose"); }
  HRESULT ProjectLoad() override {
    check(say("ProjectLoad"));
    return loadStatus;
  }
  HRESULT ProjectSave() override { return say("ProjectSave"); }
  HRESULT ProjectClose() override { return say("ProjectClose"); }
  HRESULT get_ActiveConfiguration(Ref<IConfiguration>* out) override {
    *out = hasConfiguration ? make<FakeConfiguration>(*log) : nullptr;
    return hasConfiguration ? S_OK : S_FALSE;
  }
  HRESULT get_Dirty(std::int32_t* value) override {
    *value = dirty;
    return S_OK;
  }
  HRESULT put_BuildDirty(std::int32_t value) override { return say("BuildDirty=" + std::to_string(value)); }

  HRESULT put_Name(const BString&) override { return E_NOTIMPL; }
  HRESULT get_WorkingDirectory(BString*) override { return E_NOTIMPL; }
  HRESULT get_FileName(BString*) override { return E_NOTIMPL; }
  HRESULT get_SSRoot(BString*) override { return E_NOTIMPL; }
  HRESULT put_SSRoot(const BString&) override { return E_NOTIMPL; }
  HRESULT get_Active(std::int32_t*) override { return E_NOTIMPL; }
  HRESULT get_Components(Ref<IComponents>*) override { return E_NOTIMPL; }
  HRESULT ProjectInit() override { return E_NOTIMPL; }
  HRESULT InsertFiles(IEnumString*, IDispatch*) override { return E_NOTIMPL; }
  HRESULT get_Configurations(Ref<IConfigurations>*) override { return E_NOTIMPL; }
  HRESULT put_ActiveConfiguration(IConfiguration*) override { return E_NOTIMPL; }
  HRESULT ManageConfigurations() override { return E_NOTIMPL; }
  HRESULT get_Connections(Ref<IConnections>*) override { return E_NOTIMPL; }
  HRESULT get_SSControl(std::int32_t*) override { return E_NOTIMPL; }
  HRESULT put_SSControl(std::int32_t) override { return E_NOTIMPL; }
  HRESULT get_Loaded(std::int32_t*) override { return E_NOTIMPL; }
  HRESULT put_Loaded(std::int32_t) override { return E_NOTIMPL; }
  HRESULT put_Dirty(std::int32_t) override { return E_NOTIMPL; }
  HRESULT get_VSSDatabase(Ref<IUnknown>*) override { return E_NOTIMPL; }
  HRESULT FindFileInProject(const BString&, Ref<ISourceFile>*) override { return E_NOTIMPL; }
  HRESULT SourceFilesChanged() override { return E_NOTIMPL; }
  HRESULT DeleteComponent(IUnknown*) override { return E_NOTIMPL; }
  HRESULT get_ExternalDependencies(Ref<ISimpleCollection>*) override { return E_NOTIMPL; }
  HRESULT BeforeSettings() override { return E_NOTIMPL; }
  HRESULT AfterSettings(std::int32_t) override { return E_NOTIMPL; }
  HRESULT get_BuildDirty(std::int32_t*) override { return E_NOTIMPL; }
  HRESULT InsertFiles2(const Variant&, IDispatch*) override { return E_NOTIMPL; }
  HRESULT UpdateComponentOutputs() override { return E_NOTIMPL; }

 private:
  HRESULT say(const std::string& what) const {
    log->push_back(name + "." + what);
    return S_OK;
  }
};

}  // namespace forgeyard::test
