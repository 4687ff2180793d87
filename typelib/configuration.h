#pragma once

#include "platform/com/type_info.h"
#include "typelib/collections.h"

namespace forgeyard {

struct IProject;

// A named set of build choices of one project.
struct IConfiguration : IDispatch {
  using Base = IDispatch;
  static constexpr Guid iid = guid("5B2D700E-93C4-4E6F-A8D1-2F60C1B49E01");

  virtual HRESULT get_Name(BString* value) = 0;
  virtual HRESULT put_Name(const BString& value) = 0;
  virtual HRESULT get_OutputDirectory(BString* value) = 0;
  virtual HRESULT put_OutputDirectory(const BString& value) = 0;
  virtual HRESULT get_IntermediateDirectory(BString* value) = 0;
  virtual HRESULT put_IntermediateDirectory(const BString& value) = 0;
  virtual HRESULT BeforeSettings() = 0;
  virtual HRESULT AfterSettings(std::int32_t apply) = 0;
  virtual HRESULT get_UpdateFileDependencies(std::int32_t* value) = 0;
  virtual HRESULT put_UpdateFileDependencies(std::int32_t value) = 0;
  virtual HRESULT get_BuildDirty(std::int32_t* value) = 0;
  virtual HRESULT put_BuildDirty(std::int32_t value) = 0;
  // Kept weakly.
  virtual HRESULT put_Project(IProject* value) = 0;
};

struct IConfigurations : IDispatch {
  using Base = IDispatch;
  static constexpr Guid iid = guid("5B2D700F-93C4-4E6F-A8D1-2F60C1B49E01");

  virtual HRESULT get_Item(const BString& name, Ref<IConfiguration>* out) = 0;
  virtual HRESULT get_Count(std::int32_t* value) = 0;
  virtual HRESULT get__NewEnum(Ref<IUnknown>* out) = 0;  // IEnumVARIANT of IConfiguration
  virtual HRESULT Delete(IConfiguration* configuration) = 0;
  virtual HRESULT New(const BString& name, IConfiguration* basedOn, Ref<IConfiguration>* out) = 0;
};

FORGEYARD_DUAL(IConfiguration)
FORGEYARD_DUAL(IConfigurations)

}  // namespace forgeyard
