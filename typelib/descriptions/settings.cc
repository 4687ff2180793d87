#include "typelib/settings.h"

namespace forgeyard {

FORGEYARD_TYPE_INFO(IBuilderSettings, nullptr,
                    property<&IBuilderSettings::get_Input, &IBuilderSettings::put_Input>(
                        1, "Input",
                        "which files reach the component: patterns separated by semicolons; empty takes all"),
                    property<&IBuilderSettings::get_Output, &IBuilderSettings::put_Output>(
                        2, "Output",
                        "suffixes of the outputs, or whole names for a component that runs once"),
                    property<&IBuilderSettings::get_Command, &IBuilderSettings::put_Command>(
                        3, "Command", "the command line with its macros"),
                    property<&IBuilderSettings::get_CommandOutDir, &IBuilderSettings::put_CommandOutDir>(
                        4, "CommandOutDir", "what $(OutDir) stands for"),
                    property<&IBuilderSettings::get_BuildDirty, &IBuilderSettings::put_BuildDirty>(
                        5, "BuildDirty", "changed since the last clean build (0 or 1)"),
                    readOnly<&IBuilderSettings::get_Clone>(6, "Clone", "a copy"),
                    method<&IBuilderSettings::LogicallyEqual>(7, "LogicallyEqual", "pSettings,result",
                                                              "whether two settings say the same"))

FORGEYARD_TYPE_INFO(ICmdLineSettings, &typeInfo<IBuilderSettings>(),
                    property<&ICmdLineSettings::get_RunOnce, &ICmdLineSettings::put_RunOnce>(
                        8, "RunOnce", "Execute Once: one run for all inputs (0 or 1)"),
                    property<&ICmdLineSettings::get_FileSeparator, &ICmdLineSettings::put_FileSeparator>(
                        9, "FileSeparator", "what joins the names of the list macros; empty is one blank"))

FORGEYARD_TYPE_INFO(
    ICcSettings, &typeInfo<IBuilderSettings>(),
    property<&ICcSettings::get_TranslateMode, &ICcSettings::put_TranslateMode>(
        8, "TranslateMode", "0 compile to an object file, 1 stop at assembler source"),
    property<&ICcSettings::get_DebugInfo, &ICcSettings::put_DebugInfo>(9, "DebugInfo",
                                                                       "emit debug information (0 or 1)"),
    property<&ICcSettings::get_AnsiCompliance, &ICcSettings::put_AnsiCompliance>(
        10, "AnsiCompliance", "strict language mode (0 or 1)"),
    property<&ICcSettings::get_NoStdLibs, &ICcSettings::put_NoStdLibs>(11, "NoStdLibs",
                                                                       "stored only (0 or 1)"),
    property<&ICcSettings::get_SaveIntFiles, &ICcSettings::put_SaveIntFiles>(
        12, "SaveIntFiles", "keep intermediate files (0 or 1)"),
    property<&ICcSettings::get_IncludePath, &ICcSettings::put_IncludePath>(
        13, "IncludePath", "directories, separated by semicolons"),
    property<&ICcSettings::get_DefineMacros, &ICcSettings::put_DefineMacros>(
        14, "DefineMacros", "definitions, separated by semicolons"),
    property<&ICcSettings::get_UndefineMacros, &ICcSettings::put_UndefineMacros>(
        15, "UndefineMacros", "names, separated by semicolons"),
    property<&ICcSettings::get_OptimisationLevel, &ICcSettings::put_OptimisationLevel>(16,
                                                                                       "OptimisationLevel",
                                                                                       "0 to 3"),
    property<&ICcSettings::get_PreprocessorOptions, &ICcSettings::put_PreprocessorOptions>(
        17, "PreprocessorOptions", "options for the preprocessor"),
    property<&ICcSettings::get_AssemblerOptions, &ICcSettings::put_AssemblerOptions>(
        18, "AssemblerOptions", "options for the assembler"),
    property<&ICcSettings::get_TargetCPUOptions, &ICcSettings::put_TargetCPUOptions>(
        19, "TargetCPUOptions", "machine options without -m"),
    property<&ICcSettings::get_SpecificOptimisations, &ICcSettings::put_SpecificOptimisations>(
        20, "SpecificOptimisations", "optimisation flags without -f"),
    property<&ICcSettings::get_SmallDataThreshold, &ICcSettings::put_SmallDataThreshold>(
        21, "SmallDataThreshold", "bytes of small data; 0 switches it off"),
    property<&ICcSettings::get_WarningLevel, &ICcSettings::put_WarningLevel>(22, "WarningLevel",
                                                                             "0 none, 1 standard, 2 all"),
    property<&ICcSettings::get_EnableSpecificWarnings, &ICcSettings::put_EnableSpecificWarnings>(
        23, "EnableSpecificWarnings", "warning names"),
    property<&ICcSettings::get_DisableSpecificWarnings, &ICcSettings::put_DisableSpecificWarnings>(
        24, "DisableSpecificWarnings", "warning names"),
    property<&ICcSettings::get_Options, &ICcSettings::put_Options>(25, "Options",
                                                                   "further options, passed as they stand"))

FORGEYARD_TYPE_INFO(IAsmSettings, &typeInfo<IBuilderSettings>(),
                    property<&IAsmSettings::get_ListConditionedOut, &IAsmSettings::put_ListConditionedOut>(
                        8, "ListConditionedOut", "keep conditioned-out lines in the listing (0 or 1)"),
                    property<&IAsmSettings::get_WriteNonGlobals, &IAsmSettings::put_WriteNonGlobals>(
                        9, "WriteNonGlobals", "write non-global symbols to the object file (0 or 1)"),
                    property<&IAsmSettings::get_EnableCommonMacros, &IAsmSettings::put_EnableCommonMacros>(
                        10, "EnableCommonMacros", "enable common macros (0 or 1)"),
                    property<&IAsmSettings::get_ExpandMacros, &IAsmSettings::put_ExpandMacros>(
                        11, "ExpandMacros", "expand macros in the listing (0 or 1)"),
                    property<&IAsmSettings::get_DisableWarnings, &IAsmSettings::put_DisableWarnings>(
                        12, "DisableWarnings", "suppress output (0 or 1)"),
                    property<&IAsmSettings::get_MakeUndefinedXREF, &IAsmSettings::put_MakeUndefinedXREF>(
                        13, "MakeUndefinedXREF", "undefined symbols are external (0 or 1)"),
                    property<&IAsmSettings::get_WriteEquates, &IAsmSettings::put_WriteEquates>(
                        14, "WriteEquates", "write equates to the output (0 or 1)"),
                    property<&IAsmSettings::get_LineNumsInDebugInfo, &IAsmSettings::put_LineNumsInDebugInfo>(
                        15, "LineNumsInDebugInfo", "line numbers in the debug information (0 or 1)"),
                    property<&IAsmSettings::get_SLDInDebugInfo, &IAsmSettings::put_SLDInDebugInfo>(
                        16, "SLDInDebugInfo", "source-level debug information (0 or 1)"),
                    property<&IAsmSettings::get_IncludePath, &IAsmSettings::put_IncludePath>(
                        17, "IncludePath", "directories, separated by semicolons"),
                    property<&IAsmSettings::get_EquateSymbols, &IAsmSettings::put_EquateSymbols>(
                        18, "EquateSymbols", "equates, separated by semicolons"),
                    property<&IAsmSettings::get_Options, &IAsmSettings::put_Options>(19, "Options",
                                                                                     "assembler options"),
                    property<&IAsmSettings::get_CreateListingFile, &IAsmSettings::put_CreateListingFile>(
                        20, "CreateListingFile", "produce a listing (0 or 1)"),
                    property<&IAsmSettings::get_CreateSymbolFile, &IAsmSettings::put_CreateSymbolFile>(
                        21, "CreateSymbolFile", "produce a symbol file (0 or 1)"))

FORGEYARD_TYPE_INFO(
    ILinkSettings, &typeInfo<IBuilderSettings>(),
    property<&ILinkSettings::get_OutputFormat, &ILinkSettings::put_OutputFormat>(
        8, "OutputFormat", "0 executable, 1 pure binary, 2 S-record"),
    property<&ILinkSettings::get_OutputName, &ILinkSettings::put_OutputName>(9, "OutputName",
                                                                             "name of the output file"),
    property<&ILinkSettings::get_AddOverlayRecognitionBytes, &ILinkSettings::put_AddOverlayRecognitionBytes>(
        10, "AddOverlayRecognitionBytes", "mark overlays (0 or 1)"),
    property<&ILinkSettings::get_ZeroBSSSections, &ILinkSettings::put_ZeroBSSSections>(
        11, "ZeroBSSSections", "write zeroed sections out (0 or 1)"),
    property<&ILinkSettings::get_CaseSensitive, &ILinkSettings::put_CaseSensitive>(
        12, "CaseSensitive", "symbols are case sensitive (0 or 1)"),
    property<&ILinkSettings::get_ListExternals, &ILinkSettings::put_ListExternals>(
        13, "ListExternals", "list externals in the map (0 or 1)"),
    property<&ILinkSettings::get_MultipleDefsWarning, &ILinkSettings::put_MultipleDefsWarning>(
        14, "MultipleDefsWarning", "warn of multiple definitions in libraries (0 or 1)"),
    property<&ILinkSettings::get_MultipleDeclsWarning, &ILinkSettings::put_MultipleDeclsWarning>(
        15, "MultipleDeclsWarning", "warn of multiple declarations of a variable (0 or 1)"),
    property<&ILinkSettings::get_RelocationFilePath, &ILinkSettings::put_RelocationFilePath>(
        16, "RelocationFilePath", "file for relocation information"),
    property<&ILinkSettings::get_RelocationFileStyle, &ILinkSettings::put_RelocationFileStyle>(
        17, "RelocationFileStyle", "0 none, 1 MIPS"),
    property<&ILinkSettings::get_GPRegisterLocation, &ILinkSettings::put_GPRegisterLocation>(
        18, "GPRegisterLocation", "value of the global pointer"),
    property<&ILinkSettings::get_LibraryPath, &ILinkSettings::put_LibraryPath>(
        19, "LibraryPath", "directories, separated by semicolons"),
    property<&ILinkSettings::get_EquateSymbols, &ILinkSettings::put_EquateSymbols>(
        20, "EquateSymbols", "equates, separated by semicolons"),
    property<&ILinkSettings::get_Options, &ILinkSettings::put_Options>(
        21, "Options", "further options, passed as they stand"),
    property<&ILinkSettings::get_CreateSymbolFile, &ILinkSettings::put_CreateSymbolFile>(
        22, "CreateSymbolFile", "produce a symbol file (0 or 1)"),
    property<&ILinkSettings::get_CreateMapFile, &ILinkSettings::put_CreateMapFile>(
        23, "CreateMapFile", "produce a map file (0 or 1)"))

template <>
const TypeInfo& typeInfo<ILinkerSettings>() {
  static const TypeInfo info{"ILinkerSettings", ILinkerSettings::iid, {}, &typeInfo<ILinkSettings>()};
  return info;
}

FORGEYARD_TYPE_INFO(ICmdLine, nullptr,
                    property<&ICmdLine::get_Name, &ICmdLine::put_Name>(1, "Name", "display name"))

FORGEYARD_TYPE_INFO(ICc, nullptr, property<&ICc::get_Name, &ICc::put_Name>(1, "Name", "display name"))

FORGEYARD_TYPE_INFO(IAsm, nullptr, property<&IAsm::get_Name, &IAsm::put_Name>(1, "Name", "display name"))

FORGEYARD_TYPE_INFO(ILinker, nullptr,
                    property<&ILinker::get_Name, &ILinker::put_Name>(1, "Name", "display name"))

}  // namespace forgeyard
