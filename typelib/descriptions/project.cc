#include "typelib/project.h"

#include "typelib/component.h"
#include "typelib/configuration.h"
#include "typelib/connection.h"
#include "typelib/folder.h"

namespace forgeyard {

FORGEYARD_TYPE_INFO(
    IProject, nullptr,
    property<&IProject::get_Name, &IProject::put_Name>(kProjectName, "Name", "display name"),
    property<&IProject::get_WorkingDirectory, &IProject::put_WorkingDirectory>(
        kProjectWorkingDirectory, "WorkingDirectory",
        "directory of the project file, root of relative paths"),
    property<&IProject::get_FileName, &IProject::put_FileName>(kProjectFileName, "FileName",
                                                               "name of the project file without directory"),
    property<&IProject::get_SSRoot, &IProject::put_SSRoot>(
        kProjectSSRoot, "SSRoot", "place of the project in its source control database"),
    property<&IProject::get_Active, &IProject::put_Active>(kProjectActive, "Active",
                                                           "the active project of the workspace (0 or 1)"),
    readOnly<&IProject::get_Components>(kProjectComponents, "Components", "the blocks of the project"),
    method<&IProject::OnClose>(7, "OnClose", "", "the end of the project"),
    method<&IProject::ProjectLoad>(8, "ProjectLoad", "", "reads the project file"),
    method<&IProject::ProjectSave>(9, "ProjectSave", "", "writes the project file"),
    method<&IProject::ProjectInit>(10, "ProjectInit", "", "makes a new, empty project file"),
    method<&IProject::InsertFiles>(11, "InsertFiles", "files,pFolder",
                                   "takes files into the project's folders"),
    readOnly<&IProject::get_Configurations>(kProjectConfigurations, "Configurations", "the configurations"),
    property<&IProject::get_ActiveConfiguration, &IProject::put_ActiveConfiguration>(
        kProjectActiveConfiguration, "ActiveConfiguration", "the configuration that is built"),
    method<&IProject::ManageConfigurations>(14, "ManageConfigurations", "",
                                            "shows the configurations dialog"),
    readOnly<&IProject::get_Connections>(kProjectConnections, "Connections", "who feeds whom"),
    property<&IProject::get_SSControl, &IProject::put_SSControl>(kProjectSSControl, "SSControl",
                                                                 "under source control (0 or 1)"),
    method<&IProject::ProjectClose>(17, "ProjectClose", "",
                                    "unloads the project without leaving the workspace"),
    property<&IProject::get_Loaded, &IProject::put_Loaded>(
        kProjectLoaded, "Loaded", "the project file is open (0 or 1); a put toggles"),
    property<&IProject::get_Dirty, &IProject::put_Dirty>(kProjectDirty, "Dirty", "unsaved changes (0 or 1)"),
    readOnly<&IProject::get_VSSDatabase>(20, "VSSDatabase", "the open source control database"),
    method<&IProject::FindFileInProject>(21, "FindFileInProject", "Name,File",
                                         "the source file of that name"),
    method<&IProject::SourceFilesChanged>(kProjectSourceFilesChanged, "SourceFilesChanged", "",
                                          "tells that files came or went"),
    method<&IProject::DeleteComponent>(23, "DeleteComponent", "CompPtr",
                                       "removes a component with all it has"),
    readOnly<&IProject::get_ExternalDependencies>(kProjectExternalDependencies, "ExternalDependencies",
                                                  "dependencies that are no file of the project"),
    method<&IProject::BeforeSettings>(25, "BeforeSettings", "", "does nothing at project level"),
    method<&IProject::AfterSettings>(26, "AfterSettings", "bApply", "does nothing at project level"),
    property<&IProject::get_BuildDirty, &IProject::put_BuildDirty>(27, "BuildDirty",
                                                                   "a build is due (0 or 1)"),
    method<&IProject::InsertFiles2>(28, "InsertFiles2", "var,pFolder", "takes one file into the project"),
    method<&IProject::UpdateComponentOutputs>(kProjectComponentOutputs, "UpdateComponentOutputs", "",
                                              "works all file lists out anew"))

}  // namespace forgeyard
