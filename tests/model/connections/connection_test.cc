// Connections: what is refused, what is undone, what is stored.

#include <gmock/gmock.h>

#include "tests/model/support/model_fixture.h"

namespace forgeyard::test {

namespace {

class ConnectionTest : public ModelTest {
 protected:
  void SetUp() override {
    project_ = newProject();
    for (int i = 0; i < 5; ++i) nodes_.push_back(addFake(*project_));
    check(project_->get_Connections(&connections_));
  }
  void TearDown() override {
    connections_ = nullptr;
    nodes_.clear();
    project_ = nullptr;
  }
  HRESULT join(std::size_t from, std::size_t to) {
    return connections_->New(nodes_[from].get(), nodes_[to].get(), nullptr);
  }
  std::int32_t count() {
    std::int32_t value = -1;
    check(connections_->get_Count(&value));
    return value;
  }

  Ref<CProject> project_;
  std::vector<Ref<FakeComponent>> nodes_;
  Ref<IConnections> connections_;
};

struct GraphCase {
  const char* name;
  std::vector<std::pair<std::size_t, std::size_t>> standing;
  std::size_t from;
  std::size_t to;
  HRESULT expected;
};

}  // namespace

TEST_F(ConnectionTest, CirclesAndDuplicatesAreRefused) {
  const GraphCase rows[] = {
      {"first", {}, 0, 1, S_OK},
      {"to itself", {}, 0, 0, E_FAIL},
      {"back", {{0, 1}}, 1, 0, E_FAIL},
      {"twice", {{0, 1}}, 0, 1, E_FAIL},
      {"round three", {{0, 1}, {1, 2}}, 2, 0, E_FAIL},
      {"short cut", {{0, 1}, {1, 2}}, 0, 2, S_OK},
      {"two into one", {{0, 2}}, 1, 2, S_OK},
      {"in front of a diamond, met in one wave", {{0, 1}, {0, 2}, {1, 3}, {2, 3}}, 4, 0, S_OK},
  };
  for (const GraphCase& row : rows) {
    SCOPED_TRACE(row.name);
    check(connections_->Close());
    for (const auto& [from, to] : row.standing) ASSERT_EQ(join(from, to), S_OK);
    EXPECT_EQ(join(row.from, row.to), row.expected);
    EXPECT_EQ(count(), static_cast<std::int32_t>(row.standing.size()) + (row.expected == S_OK ? 1 : 0));
  }
}

// The test for circles refuses whatever it meets a second time, also where no circle would arise.
TEST_F(ConnectionTest, AComponentMetASecondTimeIsRefused) {
  ASSERT_EQ(join(3, 1), S_OK);  // 0 -> 1 (low id, taken first), and 0 -> 3 -> 1 meets it again
  ASSERT_EQ(join(0, 1), S_OK);
  ASSERT_EQ(join(0, 3), S_OK);
  EXPECT_EQ(join(4, 0), E_FAIL);
}

TEST_F(ConnectionTest, AChangeIsTold) {
  check(project_->put_Dirty(0));
  const Ref<NotifySink> sink = listen(static_cast<IProject*>(project_.get()));
  ASSERT_EQ(join(0, 1), S_OK);
  EXPECT_THAT(sink->ids, testing::ElementsAre(kProjectDirty, kProjectComponentOutputs, kProjectConnections));
  EXPECT_EQ(dirty(*project_), 1);
  EXPECT_EQ(nodes_[1]->sourceCount(), 1u);
  EXPECT_EQ(join(0, 1), E_FAIL);
  EXPECT_EQ(sink->count(kProjectConnections), 1) << "refused";
  Ref<IConnection> found;
  ASSERT_EQ(connections_->get_Item(nodes_[0].get(), &found), S_OK);
  EXPECT_EQ(connections_->Delete(found.get()), S_OK);
  EXPECT_EQ(connections_->Delete(found.get()), S_OK) << "absent by now";
  EXPECT_EQ(sink->count(kProjectConnections), 2);
  EXPECT_EQ(nodes_[1]->sourceCount(), 0u);
  Ref<IComponent> end;
  EXPECT_EQ(found->get_From(&end), E_FAIL);
  EXPECT_EQ(found->get_To(&end), E_FAIL);
}

// A client may close a connection that the collection still lists: it joins nothing any more.
TEST_F(ConnectionTest, AClosedConnectionNoLongerCounts) {
  Ref<IConnection> made;
  ASSERT_EQ(connections_->New(nodes_[0].get(), nodes_[1].get(), &made), S_OK);
  EXPECT_EQ(join(1, 0), E_FAIL);
  check(made->Close());
  Ref<IConnection> found;
  EXPECT_EQ(connections_->get_Item(nodes_[0].get(), &found), E_FAIL);
  EXPECT_EQ(join(1, 0), S_OK);
}

TEST_F(ConnectionTest, ItemIsTheFirstThatBeginsThere) {
  ASSERT_EQ(join(0, 2), S_OK);
  ASSERT_EQ(join(0, 1), S_OK);
  Ref<IConnection> found;
  Ref<IComponent> to;
  ASSERT_EQ(connections_->get_Item(nodes_[0].get(), &found), S_OK);
  ASSERT_EQ(found->get_To(&to), S_OK);
  EXPECT_TRUE(sameObject(to.get(), static_cast<IComponent*>(nodes_[2].get())));
  EXPECT_EQ(connections_->get_Item(nodes_[1].get(), &found), E_FAIL);
  EXPECT_FALSE(found);
}

TEST_F(ConnectionTest, AComponentThatRefusesASourceUndoesTheSink) {
  nodes_[1]->refuseSource = true;
  EXPECT_EQ(join(0, 1), E_FAIL);
  EXPECT_EQ(nodes_[0]->removedSinks, 1);
  EXPECT_EQ(count(), 0);
}

TEST_F(ConnectionTest, ConnectionsArriveFromTheFileWithTheirSources) {
  ASSERT_EQ(join(0, 1), S_OK);
  ASSERT_EQ(join(2, 1), S_OK);
  const Ref<CProject> again = reload(*project_);
  EXPECT_EQ(static_cast<FakeComponent*>(again->contents().components[1].get())->sourceCount(), 2u);
}

}  // namespace forgeyard::test
