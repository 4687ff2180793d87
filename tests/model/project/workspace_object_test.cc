// The object that a host keeps for a whole workspace.

#include "model/project/workspace_object.h"

#include "tests/model/support/model_fixture.h"
#include "tests/platform/com/memory_stream.h"

namespace forgeyard::test {

namespace {

class WorkspaceObjectTest : public ModelTest {
 protected:
  WorkspaceObjectTest() {
    check(StgCreateDocfile(path("ws"), STGM_CREATE | STGM_TRANSACTED | STGM_SHARE_EXCLUSIVE | STGM_READWRITE,
                           &storage_));
  }

  Ref<IStorage> storage_;
};

}  // namespace

TEST_F(WorkspaceObjectTest, EachProjectHasAStreamUnderItsName) {
  const auto workspace = make<CWorkspaceLO>();
  const Ref<CProject> project = newProject();
  check(project->put_Name(u"Demo"));
  IUnknown* identity = static_cast<IProject*>(project.get());
  Ref<IStream> stream;
  EXPECT_EQ(workspace->GetWorkspaceStorage(identity, &stream), S_FALSE) << "there is no storage yet";
  check(workspace->InitNew(storage_.get()));
  EXPECT_EQ(workspace->Load(storage_.get()), E_FAIL) << "it has one already";

  EXPECT_EQ(workspace->GetWorkspaceStorage(nullptr, &stream), S_FALSE);
  EXPECT_FALSE(stream);
  ASSERT_EQ(workspace->GetWorkspaceStorage(identity, &stream), S_OK);
  RecordWriter(stream.get()).u32(4711);
  stream = nullptr;
  ASSERT_EQ(workspace->GetWorkspaceStorage(identity, &stream), S_OK);
  EXPECT_EQ(RecordReader(stream.get()).u32(), 4711u);
  stream = nullptr;

  check(project->put_Name(u"a name / that no element can have"));
  EXPECT_EQ(workspace->GetWorkspaceStorage(identity, &stream), S_FALSE);
  EXPECT_FALSE(stream);
  check(project->put_Name(u"Demo"));
  check(workspace->HandsOffStorage());
  EXPECT_EQ(workspace->GetWorkspaceStorage(identity, &stream), S_FALSE);
}

TEST_F(WorkspaceObjectTest, CookiesAreReadAndNotWritten) {
  const auto workspace = make<CWorkspaceLO>();
  const auto stored = make<MemoryStream>();
  RecordWriter writer(stored.get());
  for (const std::uint32_t value : {1u, 1u}) writer.u32(value);
  writer.cookieString(u"Name");
  writer.cookieString(u"value");
  stored->position = 0;
  check(workspace->Load(stored.get()));
  BString value;
  EXPECT_EQ(workspace->get_Cookie(u"Name", &value), S_OK);
  EXPECT_EQ(value, BString(u"value"));

  stored->bytes[4] = 2;  // one that isn't there
  stored->position = 0;
  const auto damaged = make<CWorkspaceLO>();
  EXPECT_TRUE(failed(damaged->Load(stored.get())));
  EXPECT_EQ(damaged->get_Cookie(u"Name", &value), S_OK) << "the cookies before the damage count";

  const auto written = make<MemoryStream>();
  check(workspace->Save(written.get(), true));
  EXPECT_EQ(written->bytes, std::string(4, '\0'));
  written->position = 0;
  const auto again = make<CWorkspaceLO>();
  check(again->Load(written.get()));
  EXPECT_EQ(again->get_Cookie(u"Name", &value), S_FALSE);
}

}  // namespace forgeyard::test
