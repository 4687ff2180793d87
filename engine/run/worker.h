#pragma once

#include "typelib/builder.h"

namespace forgeyard {

// Has a worker thread wait for its turn and run the component's DoTask, on the main thread, then BuildResult.
// The worker holds "ExcludeMultiBuild" across both, so that one tool runs at a time over all hosts of the
// user: the worker is only the caller that keeps the place in the queue. A stop while it waits answers
// E_BTR_STOPPED, and says that no task took place. Main thread only. When the thread can't be started the
// component never answers.
void StartWorker(IBuilderCreator* creator, IBuilderResult* result);

}  // namespace forgeyard
