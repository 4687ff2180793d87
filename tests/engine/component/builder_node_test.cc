#include "engine/component/builder_node.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace forgeyard {
namespace {

// A node of a graph under test: records what happens to it, and answers when told to.
class Node final : public ComObject<CBuilderInputOutput> {
 public:
  enum class Answers { AtOnce, WhenTold, CannotStart };

  Node(std::string name, std::vector<std::string>& log, Answers answers = Answers::AtOnce)
      : name_(std::move(name)), log_(log), answers_(answers) {}

  void feed(Node& sink) { sink.addSource(this); }
  void finish(e_btr status, std::int32_t tasking = 1) { check(BuildResult(status, tasking)); }
  using CBuilderInputOutput::clearSinks;
  using CBuilderInputOutput::clearSources;
  using CBuilderInputOutput::state;

 protected:
  void OnTaskEnded() override { log_.push_back(name_ + " acted"); }
  void StartTask() override {
    log_.push_back(name_ + " starts");
    if (answers_ == Answers::CannotStart) throw StatusError(E_FAIL);
    if (answers_ == Answers::AtOnce) check(BuildResult(E_BTR_COMPLETED, 0));
  }
  void ReportResult(e_btr status) override { log_.push_back(name_ + " reports " + std::to_string(status)); }

 private:
  std::string name_;
  std::vector<std::string>& log_;
  Answers answers_;
};

// The end of the chain, as the build tool is.
class Tool final : public ComObject<IBuilderOutput> {
 public:
  HRESULT Error() override { return count("Error"); }
  HRESULT Completed() override { return count("Completed"); }
  HRESULT Stopped() override { return count("Stopped"); }
  std::vector<std::string> answers;

 private:
  HRESULT count(const char* answer) {
    answers.emplace_back(answer);
    return S_OK;
  }
};

class BuilderNode : public testing::Test {
 protected:
  ~BuilderNode() override {
    for (auto& [name, node] : nodes_) {
      node->clearSources();
      node->clearSinks();
    }
  }
  Node& node(const std::string& name, Node::Answers answers = Node::Answers::WhenTold) {
    auto& found = nodes_[name];
    if (!found) found = make<Node>(name, log_, answers);
    return *found;
  }
  // "a>b b>c": the named nodes with their connections.
  void graph(const std::string& edges) {
    std::size_t at = 0;
    while (at < edges.size()) {
      const std::size_t end = std::min(edges.find(' ', at), edges.size());
      const std::string edge = edges.substr(at, end - at);
      node(edge.substr(0, 1)).feed(node(edge.substr(2, 1)));
      at = end + 1;
    }
  }
  void build(Node& last) {
    check(last.PreBuild(static_cast<IBuilderOutput*>(tool_.get())));
    check(last.Build());
  }
  std::vector<std::string> takeLog() { return std::exchange(log_, {}); }

  std::vector<std::string> log_;
  std::map<std::string, Ref<Node>> nodes_;
  Ref<Tool> tool_ = make<Tool>();
};

using Log = std::vector<std::string>;
using State = CBuilderInputOutput::State;

TEST_F(BuilderNode, NodeWithoutSourcesStartsInsideBuild) {
  build(node("a"));
  EXPECT_EQ(takeLog(), (Log{"a starts", "a acted"}));
  node("a").finish(E_BTR_COMPLETED);
  EXPECT_EQ(takeLog(), (Log{"a reports 0"}));
  EXPECT_EQ(tool_->answers, (Log{"Completed"}));
  EXPECT_EQ(node("a").state(), State::Finished);
}

TEST_F(BuilderNode, SourceThatAnswersInsideTheWalkReleasesItsSinkOnce) {
  node("f", Node::Answers::AtOnce);
  node("g", Node::Answers::AtOnce);
  graph("f>c g>c");
  build(node("c"));
  EXPECT_EQ(std::count(log_.begin(), log_.end(), "c starts"), 1);
}

TEST_F(BuilderNode, TaskThatCannotStartIsAnErrorAndWedgesNothing) {
  node("f", Node::Answers::AtOnce);
  node("x", Node::Answers::CannotStart);
  graph("f>x f>c x>p c>p");
  for (int round = 0; round < 2; ++round) {
    check(node("p").PreBuild(static_cast<IBuilderOutput*>(tool_.get())));
    EXPECT_EQ(node("p").Build(), E_FAIL);
    node("c").finish(E_BTR_COMPLETED);
    EXPECT_EQ(tool_->answers, Log{"Error"});
    EXPECT_EQ(std::count(log_.begin(), log_.end(), "p starts"), 0);
    tool_->answers.clear();
  }
  // Without a caller in the walk: the answer to the source, which a worker gives, fails.
  graph("a>x");
  check(node("p").PreBuild(static_cast<IBuilderOutput*>(tool_.get())));
  EXPECT_EQ(node("p").Build(), S_OK);
  node("c").finish(E_BTR_COMPLETED);
  EXPECT_EQ(node("a").BuildResult(E_BTR_COMPLETED, 1), E_FAIL);
  EXPECT_EQ(tool_->answers, Log{"Error"});
}

TEST_F(BuilderNode, DiamondResetsItsHeadOnceAndWaitsForBothBranches) {
  graph("a>b a>c b>d c>d");
  build(node("d"));
  EXPECT_EQ(takeLog(), (Log{"a starts", "a acted"}));
  node("a").finish(E_BTR_COMPLETED);
  EXPECT_EQ(takeLog(), (Log{"a reports 0", "b starts", "b acted", "c starts", "c acted"}));
  node("b").finish(E_BTR_COMPLETED);
  EXPECT_EQ(node("d").state(), State::Building);
  node("c").finish(E_BTR_COMPLETED);
  EXPECT_EQ(node("d").state(), State::Started);
  node("d").finish(E_BTR_COMPLETED);
  EXPECT_EQ(tool_->answers, (Log{"Completed"}));
}

TEST_F(BuilderNode, FailedBranchIsPassedOnWithoutARunButOnlyWhenTheOthersHaveAnswered) {
  graph("a>d b>d d>e");
  build(node("e"));
  takeLog();
  node("a").finish(E_BTR_ERROR);
  EXPECT_EQ(node("d").state(), State::Building) << "b still runs";
  node("b").finish(E_BTR_COMPLETED);
  EXPECT_EQ(takeLog(), (Log{"a reports 1", "b reports 0", "e acted", "d acted"}));
  EXPECT_EQ(node("d").state(), State::Failed);
  EXPECT_EQ(node("e").state(), State::Failed);
  EXPECT_EQ(tool_->answers, (Log{"Error"}));
}

TEST_F(BuilderNode, AnswersOfATaskReachTheSinksByTheirKind) {
  const std::map<e_btr, std::string> kinds{{E_BTR_COMPLETED, "Completed"},
                                           {E_BTR_ERROR, "Error"},
                                           {E_BTR_FATAL, "Error"},
                                           {E_BTR_STOPPED, "Stopped"}};
  for (const auto& [status, answer] : kinds) {
    tool_->answers.clear();
    build(node("a"));
    node("a").finish(status);
    EXPECT_EQ(tool_->answers, (Log{answer}));
    EXPECT_EQ(node("a").state(), status == E_BTR_COMPLETED ? State::Finished : State::Failed);
  }
}

TEST_F(BuilderNode, ResultWithoutATaskReportsNothing) {
  build(node("a"));
  takeLog();
  node("a").finish(E_BTR_STOPPED, 0);
  EXPECT_EQ(takeLog(), Log{});
  EXPECT_EQ(tool_->answers, (Log{"Stopped"}));
}

TEST_F(BuilderNode, StopMarksWaitingNodesAndLeavesARunningTaskAlone) {
  graph("a>b b>c");
  build(node("c"));
  check(node("c").Stop());
  EXPECT_EQ(node("a").state(), State::Started) << "a runs: the stop event ends it";
  node("a").finish(E_BTR_STOPPED);
  EXPECT_EQ(node("b").state(), State::Failed);
  EXPECT_EQ(node("c").state(), State::Failed);
  EXPECT_EQ(tool_->answers, (Log{"Stopped"}));
}

TEST_F(BuilderNode, StoppedNodeDoesNotRunThoughItsSourcesCompleted) {
  graph("a>b b>c");
  build(node("c"));
  check(node("c").Stop());
  takeLog();
  node("a").finish(E_BTR_COMPLETED);
  EXPECT_EQ(takeLog(), (Log{"a reports 0", "c acted", "b acted"}));
  EXPECT_EQ(tool_->answers, (Log{"Stopped"}));
}

TEST_F(BuilderNode, StopWinsOverAFailedSource) {
  graph("a>c b>c");
  build(node("c"));
  node("a").finish(E_BTR_ERROR);
  node("b").finish(E_BTR_STOPPED);
  EXPECT_EQ(tool_->answers, (Log{"Stopped"}));
}

TEST_F(BuilderNode, StopAfterTheLastTaskChangesNothing) {
  graph("a>b");
  build(node("b"));
  node("a").finish(E_BTR_COMPLETED);
  node("b").finish(E_BTR_COMPLETED);
  check(node("b").Stop());
  EXPECT_EQ(node("b").state(), State::Finished);
  EXPECT_EQ(tool_->answers, (Log{"Completed"}));
}

TEST_F(BuilderNode, NextBuildBeginsAfreshAfterEveryKindOfEnd) {
  graph("a>b");
  for (const e_btr first : {E_BTR_COMPLETED, E_BTR_ERROR, E_BTR_STOPPED}) {
    build(node("b"));
    node("a").finish(first);
    if (first == E_BTR_COMPLETED) node("b").finish(E_BTR_COMPLETED);
    tool_->answers.clear();
    takeLog();
    build(node("b"));
    EXPECT_EQ(takeLog(), (Log{"a starts", "a acted"}));
    node("a").finish(E_BTR_COMPLETED);
    node("b").finish(E_BTR_COMPLETED);
    EXPECT_EQ(tool_->answers, (Log{"Completed"}));
  }
}

TEST_F(BuilderNode, NodesOnACycleAreNotReachedFromElsewhere) {
  graph("x>y y>x");
  build(node("a"));
  EXPECT_EQ(takeLog(), (Log{"a starts", "a acted"}));
  EXPECT_EQ(node("x").state(), State::Finished);
}

TEST_F(BuilderNode, BuildOfAnUnpreparedNodeDoesNothing) {
  check(node("a").Build());
  EXPECT_EQ(takeLog(), Log{});
}

}  // namespace
}  // namespace forgeyard
