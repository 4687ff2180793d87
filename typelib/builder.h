#pragma once

#include <cstdint>

#include "platform/com/enumerators.h"
#include "platform/com/type_info.h"

namespace forgeyard {

// The builder protocol: every node of a project carries the same small state machine, and the nodes talk to
// each other through these interfaces. A node works when every node upstream has answered.

enum e_task : std::int32_t {
  E_TASK_BUILD = 0,      // run what is out of date
  E_TASK_REBUILD = 1,    // run everything
  E_TASK_CLEAN = 2,      // delete outputs
  E_TASK_COMPILE = 3,    // run only for the selected files
  E_TASK_FAKEBUILD = 4,  // work out all file lists, run nothing
};

enum e_btr : std::int32_t {
  E_BTR_COMPLETED = 0,  // done, or nothing to do
  E_BTR_ERROR = 1,      // a tool failed or a check refused; the remaining files were still tried
  E_BTR_STOPPED = 2,    // the user stopped the build
  E_BTR_FATAL = 3,      // a tool could not be started at all
};

// What the build is about; the build tool has the only copy.
struct IBuilderTask : IDispatch {
  using Base = IDispatch;
  static constexpr Guid iid = guid("5B2D7001-93C4-4E6F-A8D1-2F60C1B49E01");

  virtual HRESULT get_CurrentTask(e_task* value) = 0;
  virtual HRESULT put_CurrentTask(e_task value) = 0;
  // The full paths that E_TASK_COMPILE is limited to.
  virtual HRESULT PreBuildSelection(Ref<IEnumString>* out) = 0;
};

// Faces the source of a connection: a node's source calls it with its answer.
struct IBuilderOutput : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("5B2D7002-93C4-4E6F-A8D1-2F60C1B49E01");

  virtual HRESULT Error() = 0;
  virtual HRESULT Completed() = 0;
  virtual HRESULT Stopped() = 0;
};

// Faces the sink of a connection: a node's sink calls it to prepare, build and stop what lies upstream.
struct IBuilderInput : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("5B2D7003-93C4-4E6F-A8D1-2F60C1B49E01");

  virtual HRESULT PreBuild(IBuilderOutput* connection) = 0;
  virtual HRESULT Build() = 0;
  virtual HRESULT Stop() = 0;
};

struct IBuilderResult : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("5B2D7004-93C4-4E6F-A8D1-2F60C1B49E01");

  // `tasking` says that a task really took place.
  virtual HRESULT BuildResult(e_btr status, std::int32_t tasking) = 0;
};

struct IBuilderCreator : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("5B2D7005-93C4-4E6F-A8D1-2F60C1B49E01");

  // The work of a tool component: runs its tools, pumping calls while they run.
  virtual HRESULT DoTask(e_btr* status) = 0;
};

// The present file lists of a node; null where a node has none to give.
struct IBuilderPrivate : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("5B2D7006-93C4-4E6F-A8D1-2F60C1B49E01");

  virtual HRESULT OutputFilesEnum(Ref<IEnumString>* out) = 0;
  virtual HRESULT InputFilesEnum(Ref<IEnumString>* out) = 0;
};

FORGEYARD_DUAL(IBuilderTask)

}  // namespace forgeyard
