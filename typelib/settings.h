#pragma once

#include "platform/com/type_info.h"

namespace forgeyard {

// Settings of the tool components, one object for each configuration, and the components' own interfaces.
// Flags are 32-bit numbers: zero is off.

// What all tools have in common.
struct IBuilderSettings : IDispatch {
  using Base = IDispatch;
  static constexpr Guid iid = guid("5B2D7020-93C4-4E6F-A8D1-2F60C1B49E01");

  virtual HRESULT get_Input(BString* value) = 0;
  virtual HRESULT put_Input(const BString& value) = 0;
  virtual HRESULT get_Output(BString* value) = 0;
  virtual HRESULT put_Output(const BString& value) = 0;
  virtual HRESULT get_Command(BString* value) = 0;
  virtual HRESULT put_Command(const BString& value) = 0;
  virtual HRESULT get_CommandOutDir(BString* value) = 0;
  virtual HRESULT put_CommandOutDir(const BString& value) = 0;
  virtual HRESULT get_BuildDirty(std::int32_t* value) = 0;
  virtual HRESULT put_BuildDirty(std::int32_t value) = 0;

  virtual HRESULT get_Clone(Ref<IBuilderSettings>* out) = 0;
  // *result is 1 when all but BuildDirty agrees; general failure for settings of another kind.
  virtual HRESULT LogicallyEqual(IBuilderSettings* settings, std::int32_t* result) = 0;
};

struct ICmdLineSettings : IBuilderSettings {
  using Base = IBuilderSettings;
  static constexpr Guid iid = guid("5B2D7021-93C4-4E6F-A8D1-2F60C1B49E01");

  virtual HRESULT get_RunOnce(std::int32_t* value) = 0;
  virtual HRESULT put_RunOnce(std::int32_t value) = 0;
  virtual HRESULT get_FileSeparator(BString* value) = 0;
  virtual HRESULT put_FileSeparator(const BString& value) = 0;
};

struct ICcSettings : IBuilderSettings {
  using Base = IBuilderSettings;
  static constexpr Guid iid = guid("5B2D7022-93C4-4E6F-A8D1-2F60C1B49E01");

  virtual HRESULT get_TranslateMode(std::uint32_t* value) = 0;
  virtual HRESULT put_TranslateMode(std::uint32_t value) = 0;
  virtual HRESULT get_DebugInfo(std::int32_t* value) = 0;
  virtual HRESULT put_DebugInfo(std::int32_t value) = 0;
  virtual HRESULT get_AnsiCompliance(std::int32_t* value) = 0;
  virtual HRESULT put_AnsiCompliance(std::int32_t value) = 0;
  virtual HRESULT get_NoStdLibs(std::int32_t* value) = 0;
  virtual HRESULT put_NoStdLibs(std::int32_t value) = 0;
  virtual HRESULT get_SaveIntFiles(std::int32_t* value) = 0;
  virtual HRESULT put_SaveIntFiles(std::int32_t value) = 0;
  virtual HRESULT get_IncludePath(BString* value) = 0;
  virtual HRESULT put_IncludePath(const BString& value) = 0;
  virtual HRESULT get_DefineMacros(BString* value) = 0;
  virtual HRESULT put_DefineMacros(const BString& value) = 0;
  virtual HRESULT get_UndefineMacros(BString* value) = 0;
  virtual HRESULT put_UndefineMacros(const BString& value) = 0;
  virtual HRESULT get_OptimisationLevel(std::uint32_t* value) = 0;
  virtual HRESULT put_OptimisationLevel(std::uint32_t value) = 0;
  virtual HRESULT get_PreprocessorOptions(BString* value) = 0;
  virtual HRESULT put_PreprocessorOptions(const BString& value) = 0;
  virtual HRESULT get_AssemblerOptions(BString* value) = 0;
  virtual HRESULT put_AssemblerOptions(const BString& value) = 0;
  virtual HRESULT get_TargetCPUOptions(BString* value) = 0;
  virtual HRESULT put_TargetCPUOptions(const BString& value) = 0;
  virtual HRESULT get_SpecificOptimisations(BString* value) = 0;
  virtual HRESULT put_SpecificOptimisations(const BString& value) = 0;
  virtual HRESULT get_SmallDataThreshold(BString* value) = 0;
  virtual HRESULT put_SmallDataThreshold(const BString& value) = 0;
  virtual HRESULT get_WarningLevel(std::uint32_t* value) = 0;
  virtual HRESULT put_WarningLevel(std::uint32_t value) = 0;
  virtual HRESULT get_EnableSpecificWarnings(BString* value) = 0;
  virtual HRESULT put_EnableSpecificWarnings(const BString& value) = 0;
  virtual HRESULT get_DisableSpecificWarnings(BString* value) = 0;
  virtual HRESULT put_DisableSpecificWarnings(const BString& value) = 0;
  virtual HRESULT get_Options(BString* value) = 0;
  virtual HRESULT put_Options(const BString& value) = 0;
};

struct IAsmSettings : IBuilderSettings {
  using Base = IBuilderSettings;
  static constexpr Guid iid = guid("5B2D7023-93C4-4E6F-A8D1-2F60C1B49E01");

  virtual HRESULT get_ListConditionedOut(std::int32_t* value) = 0;
  virtual HRESULT put_ListConditionedOut(std::int32_t value) = 0;
  virtual HRESULT get_WriteNonGlobals(std::int32_t* value) = 0;
  virtual HRESULT put_WriteNonGlobals(std::int32_t value) = 0;
  virtual HRESULT get_EnableCommonMacros(std::int32_t* value) = 0;
  virtual HRESULT put_EnableCommonMacros(std::int32_t value) = 0;
  virtual HRESULT get_ExpandMacros(std::int32_t* value) = 0;
  virtual HRESULT put_ExpandMacros(std::int32_t value) = 0;
  virtual HRESULT get_DisableWarnings(std::int32_t* value) = 0;
  virtual HRESULT put_DisableWarnings(std::int32_t value) = 0;
  virtual HRESULT get_MakeUndefinedXREF(std::int32_t* value) = 0;
  virtual HRESULT put_MakeUndefinedXREF(std::int32_t value) = 0;
  virtual HRESULT get_WriteEquates(std::int32_t* value) = 0;
  virtual HRESULT put_WriteEquates(std::int32_t value) = 0;
  virtual HRESULT get_LineNumsInDebugInfo(std::int32_t* value) = 0;
  virtual HRESULT put_LineNumsInDebugInfo(std::int32_t value) = 0;
  virtual HRESULT get_SLDInDebugInfo(std::int32_t* value) = 0;
  virtual HRESULT put_SLDInDebugInfo(std::int32_t value) = 0;
  virtual HRESULT get_IncludePath(BString* value) = 0;
  virtual HRESULT put_IncludePath(const BString& value) = 0;
  virtual HRESULT get_EquateSymbols(BString* value) = 0;
  virtual HRESULT put_EquateSymbols(const BString& value) = 0;
  virtual HRESULT get_Options(BString* value) = 0;
  virtual HRESULT put_Options(const BString& value) = 0;
  virtual HRESULT get_CreateListingFile(std::int32_t* value) = 0;
  virtual HRESULT put_CreateListingFile(std::int32_t value) = 0;
  virtual HRESULT get_CreateSymbolFile(std::int32_t* value) = 0;
  virtual HRESULT put_CreateSymbolFile(std::int32_t value) = 0;
};

struct ILinkSettings : IBuilderSettings {
  using Base = IBuilderSettings;
  static constexpr Guid iid = guid("5B2D7024-93C4-4E6F-A8D1-2F60C1B49E01");

  virtual HRESULT get_OutputFormat(std::uint32_t* value) = 0;
  virtual HRESULT put_OutputFormat(std::uint32_t value) = 0;
  virtual HRESULT get_OutputName(BString* value) = 0;
  virtual HRESULT put_OutputName(const BString& value) = 0;
  virtual HRESULT get_AddOverlayRecognitionBytes(std::int32_t* value) = 0;
  virtual HRESULT put_AddOverlayRecognitionBytes(std::int32_t value) = 0;
  virtual HRESULT get_ZeroBSSSections(std::int32_t* value) = 0;
  virtual HRESULT put_ZeroBSSSections(std::int32_t value) = 0;
  virtual HRESULT get_CaseSensitive(std::int32_t* value) = 0;
  virtual HRESULT put_CaseSensitive(std::int32_t value) = 0;
  virtual HRESULT get_ListExternals(std::int32_t* value) = 0;
  virtual HRESULT put_ListExternals(std::int32_t value) = 0;
  virtual HRESULT get_MultipleDefsWarning(std::int32_t* value) = 0;
  virtual HRESULT put_MultipleDefsWarning(std::int32_t value) = 0;
  virtual HRESULT get_MultipleDeclsWarning(std::int32_t* value) = 0;
  virtual HRESULT put_MultipleDeclsWarning(std::int32_t value) = 0;
  virtual HRESULT get_RelocationFilePath(BString* value) = 0;
  virtual HRESULT put_RelocationFilePath(const BString& value) = 0;
  virtual HRESULT get_RelocationFileStyle(std::uint32_t* value) = 0;
  virtual HRESULT put_RelocationFileStyle(std::uint32_t value) = 0;
  virtual HRESULT get_GPRegisterLocation(BString* value) = 0;
  virtual HRESULT put_GPRegisterLocation(const BString& value) = 0;
  virtual HRESULT get_LibraryPath(BString* value) = 0;
  virtual HRESULT put_LibraryPath(const BString& value) = 0;
  virtual HRESULT get_EquateSymbols(BString* value) = 0;
  virtual HRESULT put_EquateSymbols(const BString& value) = 0;
  virtual HRESULT get_Options(BString* value) = 0;
  virtual HRESULT put_Options(const BString& value) = 0;
  virtual HRESULT get_CreateSymbolFile(std::int32_t* value) = 0;
  virtual HRESULT put_CreateSymbolFile(std::int32_t value) = 0;
  virtual HRESULT get_CreateMapFile(std::int32_t* value) = 0;
  virtual HRESULT put_CreateMapFile(std::int32_t value) = 0;
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
