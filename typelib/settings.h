#pragma once

#include "typelib/settings_row.h"

namespace forgeyard {

// Settings of the tool components, one object for each configuration, and the components' own interfaces. The
// properties are the rows of the tables in typelib/settings/, in their order.

// What all tools have in common.
struct IBuilderSettings : IDispatch {
  using Base = IDispatch;
  static constexpr Guid iid = guid("5B2D7020-93C4-4E6F-A8D1-2F60C1B49E01");

#define FORGEYARD_SETTING FORGEYARD_SETTING_OPERATIONS
#include "typelib/settings/builder.inc"

  virtual HRESULT get_Clone(Ref<IBuilderSettings>* out) = 0;
  // *result is 1 when all but BuildDirty agrees; general failure for settings of another kind.
  virtual HRESULT LogicallyEqual(IBuilderSettings* settings, std::int32_t* result) = 0;
};

struct ICmdLineSettings : IBuilderSettings {
  using Base = IBuilderSettings;
  static constexpr Guid iid = guid("5B2D7021-93C4-4E6F-A8D1-2F60C1B49E01");

#define FORGEYARD_SETTING FORGEYARD_SETTING_OPERATIONS
#include "typelib/settings/command_line.inc"
};

struct ICcSettings : IBuilderSettings {
  using Base = IBuilderSettings;
  static constexpr Guid iid = guid("5B2D7022-93C4-4E6F-A8D1-2F60C1B49E01");

#define FORGEYARD_SETTING FORGEYARD_SETTING_OPERATIONS
#include "typelib/settings/compiler.inc"
};

struct IAsmSettings : IBuilderSettings {
  using Base = IBuilderSettings;
  static constexpr Guid iid = guid("5B2D7023-93C4-4E6F-A8D1-2F60C1B49E01");

#define FORGEYARD_SETTING FORGEYARD_SETTING_OPERATIONS
#include "typelib/settings/assembler.inc"
};

struct ILinkSettings : IBuilderSettings {
  using Base = IBuilderSettings;
  static constexpr Guid iid = guid("5B2D7024-93C4-4E6F-A8D1-2F60C1B49E01");

#define FORGEYARD_SETTING FORGEYARD_SETTING_OPERATIONS
#include "typelib/settings/linker.inc"
};

struct ILinkerSettings : ILinkSettings {
  using Base = ILinkSettings;
  static constexpr Guid iid = guid("5B2D7025-93C4-4E6F-A8D1-2F60C1B49E01");
};

struct ICmdLine : IDispatch {
  using Base = IDispatch;
  static constexpr Guid iid = guid("5B2D7026-93C4-4E6F-A8D1-2F60C1B49E01");

  virtual HRESULT get_Name(BString* value) = 0;
  virtual HRESULT put_Name(const BString& value) = 0;
};

struct ICc : IDispatch {
  using Base = IDispatch;
  static constexpr Guid iid = guid("5B2D7027-93C4-4E6F-A8D1-2F60C1B49E01");

  virtual HRESULT get_Name(BString* value) = 0;
  virtual HRESULT put_Name(const BString& value) = 0;
};

struct IAsm : IDispatch {
  using Base = IDispatch;
  static constexpr Guid iid = guid("5B2D7028-93C4-4E6F-A8D1-2F60C1B49E01");

  virtual HRESULT get_Name(BString* value) = 0;
  virtual HRESULT put_Name(const BString& value) = 0;
};

struct ILinker : IDispatch {
  using Base = IDispatch;
  static constexpr Guid iid = guid("5B2D7029-93C4-4E6F-A8D1-2F60C1B49E01");

  virtual HRESULT get_Name(BString* value) = 0;
  virtual HRESULT put_Name(const BString& value) = 0;
};

// The rows of an interface's own properties.
template <class SettingsInterface>
struct SettingsRows;

template <>
struct SettingsRows<IBuilderSettings> {
  using Interface = IBuilderSettings;
  static constexpr auto kRows = std::to_array<SettingsProperty>({
#define FORGEYARD_SETTING FORGEYARD_SETTING_ROW
#include "typelib/settings/builder.inc"
  });
};

template <>
struct SettingsRows<ICmdLineSettings> {
  using Interface = ICmdLineSettings;
  static constexpr auto kRows = std::to_array<SettingsProperty>({
#define FORGEYARD_SETTING FORGEYARD_SETTING_ROW
#include "typelib/settings/command_line.inc"
  });
};

template <>
struct SettingsRows<ICcSettings> {
  using Interface = ICcSettings;
  static constexpr auto kRows = std::to_array<SettingsProperty>({
#define FORGEYARD_SETTING FORGEYARD_SETTING_ROW
#include "typelib/settings/compiler.inc"
  });
};

template <>
struct SettingsRows<IAsmSettings> {
  using Interface = IAsmSettings;
  static constexpr auto kRows = std::to_array<SettingsProperty>({
#define FORGEYARD_SETTING FORGEYARD_SETTING_ROW
#include "typelib/settings/assembler.inc"
  });
};

template <>
struct SettingsRows<ILinkSettings> {
  using Interface = ILinkSettings;
  static constexpr auto kRows = std::to_array<SettingsProperty>({
#define FORGEYARD_SETTING FORGEYARD_SETTING_ROW
#include "typelib/settings/linker.inc"
  });
};

template <>
struct SettingsRows<ILinkerSettings> : SettingsRows<ILinkSettings> {};

FORGEYARD_DUAL(IBuilderSettings)
FORGEYARD_DUAL(ICmdLineSettings)
FORGEYARD_DUAL(ICcSettings)
FORGEYARD_DUAL(IAsmSettings)
FORGEYARD_DUAL(ILinkSettings)
FORGEYARD_DUAL(ILinkerSettings)
FORGEYARD_DUAL(ICmdLine)
FORGEYARD_DUAL(ICc)
FORGEYARD_DUAL(IAsm)
FORGEYARD_DUAL(ILinker)

}  // namespace forgeyard
