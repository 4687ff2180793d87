#pragma once

#include "platform/com/type_info.h"
#include "typelib/collections.h"

namespace forgeyard {

struct IConfiguration;

// A block of a project: a folder of source files or a tool.
struct IComponent : IDispatch {
  using Base = IDispatch;
  static constexpr Guid iid = guid("5B2D7010-93C4-4E6F-A8D1-2F60C1B49E01");

  // First call on a new object: the project, kept weakly, and the look-up of host services.
  virtual HRESULT SetParent(IDispatch* project, IUnknown* lot) = 0;
  // Asks the user for what a new component needs.
  virtual HRESULT OnNew(std::int32_t* addToProject) = 0;
  virtual HRESULT CreateUIWindow(Ref<IDispatch>* out) = 0;
  virtual HRESULT get_Id(std::int32_t* value) = 0;
  virtual HRESULT put_Id(std::int32_t value) = 0;
  // The settings of a configuration; inside a settings transaction the working copies.
  virtual HRESULT get_Setting(IConfiguration* configuration, Ref<IUnknown>* out) = 0;
  virtual HRESULT Init() = 0;
  virtual HRESULT Close() = 0;
  virtual HRESULT get_ComponentName(BString* value) = 0;
  virtual HRESULT BeforeSettings() = 0;
  virtual HRESULT AfterSettings(std::int32_t apply) = 0;
  virtual HRESULT AddSource(IComponent* source) = 0;
  virtual HRESULT RemoveSource(IComponent* source) = 0;
  virtual HRESULT AddSink(IComponent* sink) = 0;
  virtual HRESULT RemoveSink(IComponent* sink) = 0;
  virtual HRESULT get_Project(Ref<IDispatch>* out) = 0;
  virtual HRESULT put_Project(IDispatch* value) = 0;
};

struct IComponents : IDispatch {
  using Base = IDispatch;
  static constexpr Guid iid = guid("5B2D7011-93C4-4E6F-A8D1-2F60C1B49E01");

  virtual HRESULT get_Count(std::int32_t* value) = 0;
  virtual HRESULT Add(IDispatch* component) = 0;
  // By Id, as VT_I4; null and general failure otherwise.
  virtual HRESULT get_Item(const Variant& id, Ref<IDispatch>* out) = 0;
  virtual HRESULT get__NewEnum(Ref<IUnknown>* out) = 0;  // IEnumVARIANT of VT_DISPATCH
  virtual HRESULT Delete(IDispatch* component) = 0;
  virtual HRESULT New(IDispatch* component) = 0;
};

// Declared for hosts; nothing here creates or calls it.
struct IBuildCategories : IDispatch {
  using Base = IDispatch;
  static constexpr Guid iid = guid("5B2D7012-93C4-4E6F-A8D1-2F60C1B49E01");

  virtual HRESULT OnCategoryUI(IUnknown* tool, std::int32_t rootTag, std::int32_t* updated) = 0;
  virtual HRESULT GetCLSID(std::int32_t index, Guid* out) = 0;
};

FORGEYARD_DUAL(IComponent)
FORGEYARD_DUAL(IComponents)

}  // namespace forgeyard
