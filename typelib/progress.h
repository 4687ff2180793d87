#pragma once

#include <cstdint>
#include <optional>

#include "platform/com/unknown.h"
#include "platform/text/bstring.h"
#include "typelib/builder.h"

namespace forgeyard {

// One start of a component's tool.
struct ToolRun {
  BString component;
  BString file;  // the input that it is for; null for all inputs at once
  BString command;
  std::int32_t number = 0;  // among the component's runs in this build, from 1
  std::int32_t count = 0;   // how many these will be, as seen at the first; 0 when nobody asked
};

// What a build is at, told while it goes on: a service of hosts that show it. Main thread, inside of the
// build; errors are ignored.
//
// A component's start is always followed by its end, and a tool's start by its end, one component and one
// tool at a time. The lines that a tool prints come to the output tab between its start and its end, and no
// others do.
struct IBuildProgress : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("5B2D70A0-93C4-4E6F-A8D1-2F60C1B49E01");

  // The component has its turn, with so many files going in. A non-zero *count asks for ToolRun::count, for
  // which all of them are looked at before the first tool starts.
  virtual HRESULT OnComponentStart(const BString& component, std::int32_t inputs, std::int32_t* count) = 0;
  virtual HRESULT OnComponentEnd(const BString& component, e_btr result) = 0;
  virtual HRESULT OnToolStart(const ToolRun& run) = 0;
  // The exit code of a tool that has ended by itself; nothing when it was stopped.
  virtual HRESULT OnToolEnd(const ToolRun& run, std::optional<std::int32_t> exitCode) = 0;
};

inline constexpr Guid SID_BuildProgress = guid("5B2D70A1-93C4-4E6F-A8D1-2F60C1B49E01");

}  // namespace forgeyard
