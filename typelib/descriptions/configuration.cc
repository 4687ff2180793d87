#include "typelib/configuration.h"

#include "typelib/project.h"

namespace forgeyard {

FORGEYARD_TYPE_INFO(
    IConfiguration, nullptr,
    property<&IConfiguration::get_Name, &IConfiguration::put_Name>(1, "Name",
                                                                   "name, unique within the project"),
    property<&IConfiguration::get_OutputDirectory, &IConfiguration::put_OutputDirectory>(
        2, "OutputDirectory", "directory of final outputs; macro $(COutDir)"),
    property<&IConfiguration::get_IntermediateDirectory, &IConfiguration::put_IntermediateDirectory>(
        3, "IntermediateDirectory", "directory of intermediate outputs; macro $(CIntDir)"),
    method<&IConfiguration::BeforeSettings>(4, "BeforeSettings", "", "starts a settings transaction"),
    method<&IConfiguration::AfterSettings>(5, "AfterSettings", "bApply", "ends it, kept or undone"),
    property<&IConfiguration::get_UpdateFileDependencies, &IConfiguration::put_UpdateFileDependencies>(
        6, "UpdateFileDependencies", "read dependencies back after each compile (0 or 1)"),
    property<&IConfiguration::get_BuildDirty, &IConfiguration::put_BuildDirty>(
        7, "BuildDirty", "not built cleanly since it changed (0 or 1)"),
    writeOnly<&IConfiguration::put_Project>(8, "Project", "the project it belongs to"))

FORGEYARD_TYPE_INFO(
    IConfigurations, nullptr,
    readOnly<&IConfigurations::get_Item>(DISPID_VALUE, "Item", "the configuration of that name", "Name"),
    readOnly<&IConfigurations::get_Count>(1, "Count", "number of configurations"),
    readOnly<&IConfigurations::get__NewEnum>(DISPID_NEWENUM, "_NewEnum", "walks the configurations"),
    method<&IConfigurations::Delete>(2, "Delete", "configuration", "removes one; the last one stays"),
    method<&IConfigurations::New>(3, "New", "Name,pBasedOn,pNew", "makes one, with the settings of another"))

}  // namespace forgeyard
