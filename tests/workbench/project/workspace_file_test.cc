#include "workbench/project/workspace_file.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include "platform/com/object.h"
#include "platform/storage/records/records.h"
#include "tests/platform/support/temporary_directory.h"
#include "workbench/base/failure.h"

namespace forgeyard::workbench {
namespace {

constexpr std::uint32_t kMode = STGM_READWRITE | STGM_SHARE_EXCLUSIVE;

// Keeps one number in a stream of its storage.
class Counter final : public ComObject<IPersistStorage> {
 public:
  std::uint32_t value = 0;
  bool startedAnew = false;
  HRESULT saveStatus = S_OK;

  bool hasStorage() const { return static_cast<bool>(storage_); }

  HRESULT GetClassID(Guid*) override { return E_NOTIMPL; }
  HRESULT IsDirty() override { return S_OK; }
  HRESULT InitNew(IStorage* storage) override {
    startedAnew = true;
    storage_ = Ref<IStorage>(storage);
    return S_OK;
  }
  HRESULT Load(IStorage* storage) override {
    return guard([&] {
      storage_ = Ref<IStorage>(storage);
      Ref<IStream> stream;
      check(storage->OpenStream(u"Value", kMode, &stream));
      value = RecordReader(stream.get()).u32();
    });
  }
  HRESULT Save(IStorage*, bool) override {
    return guard([&] {
      Ref<IStream> stream;
      check(storage_->CreateStream(u"Value", kMode | STGM_CREATE, &stream));
      RecordWriter(stream.get()).u32(value);
      return saveStatus;
    });
  }
  HRESULT SaveCompleted(IStorage*) override { return S_OK; }
  HRESULT HandsOffStorage() override {
    storage_ = nullptr;
    return S_OK;
  }

 private:
  Ref<IStorage> storage_;
};

std::uint32_t storedValue(const std::string& file, const char16_t* name) {
  WorkspaceFile workspace(file);
  const auto counter = make<Counter>();
  workspace.attach(counter.get(), name);
  return counter->startedAnew ? 0 : counter->value;
}

TEST(WorkspaceFile, KeepsAStorageForEachObject) {
  const TemporaryDirectory directory;
  const std::string file = directory / "new/dir/workspace";
  const auto first = make<Counter>();
  const auto second = make<Counter>();
  {
    WorkspaceFile workspace(file);
    workspace.attach(first.get(), u"First");
    workspace.attach(second.get(), u"Second");
    EXPECT_TRUE(first->startedAnew);
    first->value = 4711;
    second->value = 12;
    workspace.save();
    second->value = 99;
  }
  EXPECT_FALSE(first->hasStorage());
  EXPECT_EQ(storedValue(file, u"First"), 4711U);
  EXPECT_EQ(storedValue(file, u"Second"), 12U) << "what was not saved is not stored";
}

TEST(WorkspaceFile, FailedSaveStoresNothingOfAnyObject) {
  const TemporaryDirectory directory;
  const std::string file = directory / "workspace";
  {
    WorkspaceFile workspace(file);
    const auto good = make<Counter>();
    const auto bad = make<Counter>();
    workspace.attach(good.get(), u"Good");
    workspace.attach(bad.get(), u"Bad");
    good->value = 1;
    workspace.save();
    good->value = 2;
    bad->saveStatus = E_FAIL;
    EXPECT_THROW(workspace.save(), Failure);
  }
  EXPECT_EQ(storedValue(file, u"Good"), 1U);
}

TEST(WorkspaceFile, RefusesWhatItCannotUse) {
  const TemporaryDirectory directory;
  const std::string file = directory / "workspace";
  const WorkspaceFile workspace(file);
  EXPECT_THROW(WorkspaceFile{file}, Failure) << "it is open already";
  EXPECT_THROW(WorkspaceFile{directory.put("text", "no compound file")}, Failure);
  EXPECT_THROW(WorkspaceFile{directory.path()}, Failure);
  EXPECT_THROW(WorkspaceFile{""}, Failure);
}

TEST(WorkspaceFile, LiesWhereTheEnvironmentSays) {
  const auto set = [](const char* name, const char* value) {
    value ? ::setenv(name, value, 1) : ::unsetenv(name);
  };
  set("HOME", "/home/u");
  set("XDG_DATA_HOME", nullptr);
  set("FORGEYARD_WORKSPACE", nullptr);
  EXPECT_EQ(WorkspaceFile::fileFor(""), "/home/u/.local/share/forgeyard/workspace");
  set("XDG_DATA_HOME", "/data");
  EXPECT_EQ(WorkspaceFile::fileFor(""), "/data/forgeyard/workspace");
  set("FORGEYARD_WORKSPACE", "/x/my workspace");
  EXPECT_EQ(WorkspaceFile::fileFor(""), "/x/my workspace");
}

}  // namespace
}  // namespace forgeyard::workbench
