#include "engine/run/worker.h"

#include <exception>
#include <memory>
#include <optional>

#include "engine/run/exclude_multi_build.h"
#include "platform/threads/event.h"
#include "platform/threads/marshalled_ref.h"
#include "platform/threads/named_event.h"
#include "platform/threads/named_mutex.h"
#include "platform/threads/thread.h"
#include "typelib/output.h"

namespace forgeyard {

namespace {

// What DoTask answered, or the stop that came before the turn did.
struct Outcome {
  e_btr status = E_BTR_STOPPED;
  std::int32_t tasking = 0;
};

Outcome takeTurn(const MarshalledRef<IBuilderCreator>& creator, NamedMutex& turn) {
  const std::unique_ptr<NamedEvent> stop = NamedEvent::open(kStopEvent);
  const Event never;
  if (waitAny(stop ? static_cast<const Waitable&>(*stop) : never, turn) == 0) return {};
  Outcome outcome{E_BTR_FATAL, 1};
  const HRESULT status =
      creator.status([&](IBuilderCreator& component) { return component.DoTask(&outcome.status); });
  if (failed(status)) outcome.status = E_BTR_FATAL;
  return outcome;
}

// Without the shared objects there is no turn to take: the component answers so that the build ends, and says
// why.
Outcome refuse(const MarshalledRef<IBuilderResult>& result, const char* why) {
  ignore(result.status([&](IBuilderResult& component) {
    const Ref<IOutputTab> tab = query<IOutputTab>(&component);
    return tab ? tab->MsgOut(BString::fromNarrow(why)) : S_FALSE;
  }));
  return {E_BTR_FATAL, 1};
}

void work(const MarshalledRef<IBuilderCreator>& creator, const MarshalledRef<IBuilderResult>& result) {
  std::optional<NamedMutex> turn;
  Outcome outcome;
  try {
    outcome = takeTurn(creator, turn.emplace(kExcludeMultiBuild));
  } catch (const std::exception& error) {
    outcome = refuse(result, error.what());
  }
  // Components downstream start from inside this call; their workers queue behind this one.
  ignore(result.status(
      [&](IBuilderResult& component) { return component.BuildResult(outcome.status, outcome.tasking); }));
}

}  // namespace

void StartWorker(IBuilderCreator* creator, IBuilderResult* result) {
  try {
    Thread worker("build worker", [creator = MarshalledRef<IBuilderCreator>(Ref<IBuilderCreator>(creator)),
                                   result = MarshalledRef<IBuilderResult>(Ref<IBuilderResult>(result))] {
      work(creator, result);
    });
    worker.detach();
  } catch (...) {
    // A build that can't be queued stays unanswered; the user's stop is the way out.
  }
}

}  // namespace forgeyard
