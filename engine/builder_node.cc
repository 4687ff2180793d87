#include "engine/builder_node.h"

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

void CBuilderInputOutput::forEachSource(HRESULT (IBuilderInput::*operation)()) {
  for (const auto sources = sources_; const Ref<IBuilderInput>& source : sources) {
    check((source.get()->*operation)());
  }
}

void CBuilderInputOutput::answerSinks(HRESULT (IBuilderOutput::*answer)()) {
  for (const auto sinks = sinks_; const Ref<IBuilderOutput>& sink : sinks) check((sink.get()->*answer)());
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
    forEachSource(&IBuilderInput::Build);
    // Sources that answered inside that walk, and nodes without any, are acted on here.
    CheckSourcesDone();
  });
}

HRESULT CBuilderInputOutput::Stop() {
  return guard([&] {
    if (state_ != State::Building) return;
    stopRequested_ = true;
    if (!stopArmed_) return;
    forEachSource(&IBuilderInput::Stop);
    stopArmed_ = false;
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
  if (stopped_ == 0 && !stopRequested_) {
    if (errors_ == 0) {
      state_ = State::Started;
      StartTask();
    } else {
      answerSinks(&IBuilderOutput::Error);
      state_ = State::Failed;
    }
  } else {
    answerSinks(&IBuilderOutput::Stopped);
    state_ = State::Failed;
  }
  OnTaskEnded();
  prepareArmed_ = true;
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
