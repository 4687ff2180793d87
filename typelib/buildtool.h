#pragma once

#include "platform/com/type_info.h"
#include "typelib/builder.h"
#include "typelib/collections.h"
#include "typelib/project.h"

namespace forgeyard {

// The build tool's list of open projects.
struct IProjects : IDispatch {
  using Base = IDispatch;
  static constexpr Guid iid = guid("5B2D701B-93C4-4E6F-A8D1-2F60C1B49E01");

  // By index from 0, as VT_I4.
  virtual HRESULT get_Item(const Variant& index, Ref<IProject>* out) = 0;
  virtual HRESULT Add(IProject* project) = 0;
  virtual HRESULT get_Count(std::int32_t* value) = 0;
  virtual HRESULT get__NewEnum(Ref<IUnknown>* out) = 0;  // IEnumVARIANT of IProject
  virtual HRESULT Delete(IProject* project) = 0;
  virtual HRESULT New(Ref<IProject>* out) = 0;
};

enum BuildToolNotification : std::int32_t { kToolProjects = 1, kToolActiveProject = 2 };

// The one object that lives for the whole run: projects, the active project, the build run.
struct IBuildTool : IDispatch {
  using Base = IDispatch;
  static constexpr Guid iid = guid("5B2D701C-93C4-4E6F-A8D1-2F60C1B49E01");

  virtual HRESULT get_Projects(Ref<IProjects>* out) = 0;
  virtual HRESULT get_ActiveProject(Ref<IProject>* out) = 0;
  // Refused with E_BUILDING during a build. A null project is allowed.
  virtual HRESULT put_ActiveProject(IProject* value) = 0;
  virtual HRESULT get_Building(std::int32_t* value) = 0;
  // `out` may be null.
  virtual HRESULT InsertProject(const BString& path, Ref<IProject>* out) = 0;
};

// The tool's error for code 0x200.
inline constexpr HRESULT E_BUILDING = detail::status(0x80040200);

// Events of the build run.
struct IBuildToolE : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("5B2D701D-93C4-4E6F-A8D1-2F60C1B49E01");

  // A non-zero *cancel keeps the build run from starting.
  virtual HRESULT OnBuildStart(e_task task, std::int32_t* cancel) = 0;
  virtual HRESULT OnBuildEnd() = 0;
};

// The same as a dispatch interface: -1 in *cancel is its truth.
struct DBuildToolE : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("5B2D701E-93C4-4E6F-A8D1-2F60C1B49E01");
  static constexpr std::int32_t kOnBuildStart = 1;
  static constexpr std::int32_t kOnBuildEnd = 2;
  static constexpr std::int16_t VARIANT_TRUE = -1;

  virtual HRESULT OnBuildStart(e_task task, std::int16_t* cancel) = 0;
  virtual HRESULT OnBuildEnd() = 0;
};

// How the last build run ended, for hosts that have to tell: read it once OnBuildEnd has come.
struct IBuildRunResult : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("5B2D7033-93C4-4E6F-A8D1-2F60C1B49E01");

  // E_BTR_COMPLETED, E_BTR_ERROR or E_BTR_STOPPED, as "Final result" says; S_FALSE and E_BTR_COMPLETED before
  // the end of the first run.
  virtual HRESULT get_LastResult(e_btr* result) = 0;
};

FORGEYARD_DUAL(IProjects)
FORGEYARD_DUAL(IBuildTool)

}  // namespace forgeyard
