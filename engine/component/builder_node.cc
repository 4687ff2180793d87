#include "engine/component/builder_node.h"

#include <algorithm>

namespace forgeyard {

namespace {

template <class T>
void insertOnce(std::vector<Ref<T>>& set, T* entry) {
  const auto same = [entry](const Ref<T>& other) { return other.get() == entry; };
  if (std::none_of(set.begin(), set.end(), same)) set.emplace_back(entry);
}

}  // namespace

void CBuilderInputOutput::addSource(IBuilderInput* source) {
  insertOnce(sources_, source);
}

void CBuilderInputOutput::removeSource(IBuilderInput* source) {
  std::erase_if(sources_, [source](const Ref<IBuilderInput>& other) { return other.get() == source; });
}

// Both reach every node and throw the first failure behind that: a node that fails costs no other its turn or
// its answer, so that a build ends however one of them fares.

void CBuilderInputOutput::forEachSource(HRESULT (IBuilderInput::*operation)()) {
  HRESULT first = S_OK;
  for (const auto sources = sources_; const Ref<IBuilderInput>& source : sources) {
    const HRESULT status = (source.get()->*operation)();
    if (succeeded(first)) first = status;
  }
  check(first);
}

void CBuilderInputOutput::answerSinks(HRESULT (IBuilderOutput::*answer)()) {
  HRESULT first = S_OK;
  for (const auto sinks = sinks_; const Ref<IBuilderOutput>& sink : sinks) {
    const HRESULT status = (sink.get()->*answer)();
    if (succeeded(first)) first = status;
  }
  check(first);
}

HRESULT CBuilderInputOutput::PreBuild(IBuilderOutput* connection) {
  return guard([&] {
    if (prepareArmed_) {
      state_ = State::Prepared;
      errors_ = stopped_ = completed_ = 0;
      stopArmed_ = true;
      stopRequested_ = false;
      finishArmed_ = true;
      sinks_.clear();
      for (const auto sources = sources_; const Ref<IBuilderInput>& source : sources) {
        check(source->PreBuild(static_cast<IBuilderOutput*>(this)));
      }
      prepareArmed_ = false;
    }
    if (connection) insertOnce(sinks_, connection);
  });
}

HRESULT CBuilderInputOutput::Build() {
  return guard([&] {
    if (state_ != State::Prepared) return;
    state_ = State::Building;
    const HRESULT walked = guard([&] { forEachSource(&IBuilderInput::Build); });
    // Sources that answered inside that walk, and nodes without any, are acted on here.
    CheckSourcesDone();
    check(walked);
  });
}

HRESULT CBuilderInputOutput::Stop() {
  return guard([&] {
    if (state_ != State::Building) return;
    stopRequested_ = true;
    if (!stopArmed_) return;
    const HRESULT walked = guard([&] { forEachSource(&IBuilderInput::Stop); });
    stopArmed_ = false;
    check(walked);
  });
}

HRESULT CBuilderInputOutput::Error() {
  return guard([&] {
    ++errors_;
    if (state_ == State::Building) CheckSourcesDone();
  });
}

HRESULT CBuilderInputOutput::Completed() {
  return guard([&] {
    ++completed_;
    if (state_ == State::Building) CheckSourcesDone();
  });
}

HRESULT CBuilderInputOutput::Stopped() {
  return guard([&] {
    ++stopped_;
    CheckSourcesDone();
  });
}

void CBuilderInputOutput::CheckSourcesDone() {
  if (completed_ + errors_ + stopped_ != sources_.size()) return;
  if (!finishArmed_) return;
  finishArmed_ = false;
  const HRESULT acted = guard([&] { actOnAnswers(); });
  const HRESULT ended = guard([&] { OnTaskEnded(); });
  prepareArmed_ = true;
  check(acted);
  check(ended);
}

void CBuilderInputOutput::actOnAnswers() {
  const bool stop = stopped_ != 0 || stopRequested_;
  if (!stop && errors_ == 0) return start();
  const HRESULT told = guard([&] { answerSinks(stop ? &IBuilderOutput::Stopped : &IBuilderOutput::Error); });
  state_ = State::Failed;
  check(told);
}

// A task that can't be started is an error to the sinks as well, unless they have their answer already.
void CBuilderInputOutput::start() {
  state_ = State::Started;
  const HRESULT started = guard([&] { StartTask(); });
  if (failed(started) && state_ == State::Started) {
    state_ = State::Failed;
    ignore(guard([&] { answerSinks(&IBuilderOutput::Error); }));
  }
  check(started);
}

HRESULT CBuilderInputOutput::BuildResult(e_btr status, std::int32_t tasking) {
  return guard([&] {
    state_ = status == E_BTR_COMPLETED ? State::Finished : State::Failed;
    if (tasking) ReportResult(status);
    answerSinks(status == E_BTR_COMPLETED ? &IBuilderOutput::Completed
                : status == E_BTR_STOPPED ? &IBuilderOutput::Stopped
                                          : &IBuilderOutput::Error);
  });
}

}  // namespace forgeyard
