#pragma once

#include <cstdint>
#include <vector>

#include "platform/com/object.h"
#include "typelib/builder.h"

namespace forgeyard {

// The state machine that every node of a project carries: the project itself, each folder, each tool
// component. A node does its work when every node upstream has answered, and its own answer releases the
// nodes downstream, so the order of work follows from the connections alone.
//
// Main thread only. Every operation may be entered again from a call that the message pump serves, so no
// iterator into the sets lives across a call to another node.
class CBuilderInputOutput : public IBuilderInput, public IBuilderOutput, public IBuilderResult {
 public:
  using Implements = TypeList<IBuilderInput, IBuilderOutput, IBuilderResult>;

  enum class State : std::uint32_t {
    Prepared = 0,
    Building = 1,  // waits for its sources
    Started = 2,   // its task runs
    Finished = 4,  // answered with success; the initial state
    Failed = 5,    // answered otherwise
  };

  // IBuilderInput, called by sinks.
  HRESULT PreBuild(IBuilderOutput* connection) override;
  HRESULT Build() override;
  HRESULT Stop() override;
  // IBuilderOutput, called by sources.
  HRESULT Error() override;
  HRESULT Completed() override;
  HRESULT Stopped() override;
  // IBuilderResult, called with the outcome of the node's own task.
  HRESULT BuildResult(e_btr status, std::int32_t tasking) override;

 protected:
  // The node has acted on its sources' answers.
  virtual void OnTaskEnded() = 0;
  // All sources have answered well: begins the node's own work, which ends in BuildResult.
  virtual void StartTask() = 0;
  virtual void ReportResult(e_btr status) = 0;
  virtual void CheckSourcesDone();

  State state() const { return state_; }
  bool resting() const { return state_ == State::Finished || state_ == State::Failed; }

  const std::vector<Ref<IBuilderInput>>& sources() const { return sources_; }
  void addSource(IBuilderInput* source);
  void removeSource(IBuilderInput* source);
  void clearSources() { sources_.clear(); }
  // Sinks are known for the length of a build; a node that goes lets go of them.
  void clearSinks() { sinks_.clear(); }

 private:
  void actOnAnswers();
  void start();
  void answerSinks(HRESULT (IBuilderOutput::*answer)());
  void forEachSource(HRESULT (IBuilderInput::*operation)());

  State state_ = State::Finished;
  bool stopRequested_ = false;
  std::uint32_t completed_ = 0;
  std::uint32_t errors_ = 0;
  std::uint32_t stopped_ = 0;
  // Sets in order of insertion, so that every run does the same thing in the same order.
  std::vector<Ref<IBuilderInput>> sources_;
  std::vector<Ref<IBuilderOutput>> sinks_;
  bool prepareArmed_ = true;  // the next PreBuild resets the node
  bool stopArmed_ = true;     // the next Stop is passed upstream
  bool finishArmed_ = true;   // the sources' answers have not been acted on yet
};

}  // namespace forgeyard
