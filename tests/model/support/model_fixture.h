#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "model/classes.h"
#include "model/core/enumerate.h"
#include "model/folders/folder.h"
#include "model/project/project.h"
#include "tests/platform/support/temporary_directory.h"
#include "tests/support/class_source.h"
#include "tests/support/test_host.h"

namespace forgeyard::test {

// A component of a kind that tests control: it takes part in everything and has no contents of its own.
class FakeComponent final : public ComObject<CComponentBase> {
 public:
  static constexpr Guid clsid = guid("A0000000-0000-0000-0000-000000000001");

  HRESULT OnNew(std::int32_t* add) override {
    *add = addAnswer;
    return S_OK;
  }
  HRESULT GetClassID(Guid* out) override {
    *out = clsid;
    return S_OK;
  }
  HRESULT OutputFilesEnum(Ref<IEnumString>* out) override {
    *out = nullptr;
    return S_OK;
  }
  HRESULT InputFilesEnum(Ref<IEnumString>* out) override { return OutputFilesEnum(out); }
  HRESULT AddSource(IComponent* source) override {
    return refuseSource ? E_FAIL : CComponentBase::AddSource(source);
  }
  HRESULT RemoveSink(IComponent*) override {
    ++removedSinks;
    return S_OK;
  }
  std::size_t sourceCount() const { return sources().size(); }

  std::int32_t addAnswer = 1;
  bool refuseSource = false;
  int removedSinks = 0;
  int tasks = 0;           // how often its turn came in a walk
  bool answers = true;     // at once; else it stays at work
  Ref<IUnknown> settings;  // what every configuration gets; a folder's settings when null

 private:
  void OnTaskEnded() override {}
  void StartTask() override {
    ++tasks;
    if (answers) check(BuildResult(E_BTR_COMPLETED, 0));
  }
  void ReportResult(e_btr) override {}
  Ref<IUnknown> newSettings() override;
  Ref<IUnknown> cloneSettings(IUnknown& settings) override { return Ref<IUnknown>(&settings); }
  void settingsApplied(IUnknown&, IUnknown&) override {}
  const char16_t* streamName() const override { return u"Fake"; }
  void describeRecord(RecordFields& fields) override {
    describeName(fields);
    describeId(fields);
  }
};

// A host, the model's classes and a directory for project files. At the end every project that it made is
// closed, and no object may be left.
class ModelTest : public testing::Test {
 protected:
  ModelTest();
  ~ModelTest() override;

  // The model's path of a host path, and of a name in the test's directory.
  static BString modelPath(const std::string& hostPath);
  BString path(std::string_view name) const { return modelPath(directory_ / name); }

  // A project that isn't made or loaded yet, in the test's directory or one below.
  Ref<CProject> project(const BString& fileName = u"demo.nqp", std::string_view below = {});
  // A new project with its file and its configuration "Default".
  Ref<CProject> newProject(const BString& fileName = u"demo.nqp");
  // The same file again, as another process would see it: saved, let go of, loaded.
  Ref<CProject> reload(CProject& saved);
  void end(CProject& project) { EXPECT_EQ(project.OnClose(), S_OK); }

  Ref<CFolder> addFolder(CProject& project, const BString& name, const BString& extension = u"");
  Ref<FakeComponent> addFake(CProject& project, const BString& name = u"fake");
  void connect(CProject& project, IComponent* from, IComponent* to);
  Ref<ISourceFile> addFile(CFolder& folder, const BString& name);
  Ref<IConfiguration> newConfiguration(CProject& project, const BString& name,
                                       IConfiguration* base = nullptr);
  static void insert(CProject& project, const std::vector<BString>& names, IDispatch* folder = nullptr);
  // A sink on the object's property-change notifications until the end of the test.
  Ref<NotifySink> listen(IUnknown* object);

  TemporaryDirectory directory_;
  ClassSource classes_{modelClasses()};
  ClassSource fakeClasses_;
  Ref<TestHost> host_ = make<TestHost>();
  Ref<FakeBuilderTask> task_ = make<FakeBuilderTask>();

 private:
  long objectsBefore_ = 0;
  std::vector<Ref<CProject>> projects_;
  std::vector<Advice> advices_;
};

// Values of properties and collections, for expectations.
std::string text(const BString& value);
std::string name(ISourceFile* file);
std::string persistAs(ISourceFile* file);
std::vector<std::string> texts(const Ref<IEnumString>& names);
std::vector<std::string> texts(const Ref<ISimpleCollection>& names);
std::vector<std::string> fileNames(CFolder& folder);
std::vector<std::string> outputs(IBuilderPrivate& component);
std::int32_t dirty(IProject& project);
Ref<IEnumString> enumerator(std::vector<BString> names);
// All that a project holds, as text; two projects with equal text hold the same.
std::string dump(CProject& project);

}  // namespace forgeyard::test
