#include "typelib/folder.h"

#include "typelib/project.h"

namespace forgeyard {

FORGEYARD_TYPE_INFO(
    ISourceFile, nullptr, property<&ISourceFile::get_Name, &ISourceFile::put_Name>(1, "Name", "full path"),
    property<&ISourceFile::get_PersistAs, &ISourceFile::put_PersistAs>(2, "PersistAs", "name as stored"),
    property<&ISourceFile::get_Project, &ISourceFile::put_Project>(3, "Project", "the project it belongs to"),
    method<&ISourceFile::AddManualDep>(4, "AddManualDep", "name", "adds a dependency of the user's"),
    method<&ISourceFile::RemoveManualDep>(5, "RemoveManualDep", "name", "removes every such dependency"),
    readOnly<&ISourceFile::get_ManualDeps>(6, "ManualDeps", "dependencies entered by the user"),
    property<&ISourceFile::get_AutomaticDeps, &ISourceFile::put_AutomaticDeps>(
        7, "AutomaticDeps", "dependencies found by the compiler"),
    property<&ISourceFile::get_SourceControl, &ISourceFile::put_SourceControl>(
        9, "SourceControl", "under source control (0 or 1)"),
    readOnly<&ISourceFile::get_LastUpdated>(10, "LastUpdated", "not kept"),
    readOnly<&ISourceFile::get_LastUpdatedDeps>(11, "LastUpdatedDeps", "not kept"))

FORGEYARD_TYPE_INFO(ISourceFiles, nullptr,
                    readOnly<&ISourceFiles::get_Item>(DISPID_VALUE, "Item", "the file at an index from 0",
                                                      "var"),
                    method<&ISourceFiles::Add>(1, "Add", "file", "adds a file"),
                    readOnly<&ISourceFiles::get_Count>(2, "Count", "number of files"),
                    readOnly<&ISourceFiles::get__NewEnum>(DISPID_NEWENUM, "_NewEnum", "walks the files"),
                    method<&ISourceFiles::Delete>(3, "Delete", "file", "removes a file"),
                    method<&ISourceFiles::New>(4, "New", "file", "makes an empty file entry and adds it"),
                    method<&ISourceFiles::AddMulti>(5, "AddMulti", "files", "adds several files"),
                    method<&ISourceFiles::RemoveMulti>(6, "RemoveMulti", "files", "removes several files"))

FORGEYARD_TYPE_INFO(IFolder, nullptr,
                    readOnly<&IFolder::get_SourceFiles>(1, "SourceFiles", "the folder's files"),
                    property<&IFolder::get_Name, &IFolder::put_Name>(2, "Name", "display name"),
                    property<&IFolder::get_Extension, &IFolder::put_Extension>(
                        3, "Extension", "file filter: extensions separated by semicolons"),
                    property<&IFolder::get_Enabled, &IFolder::put_Enabled>(
                        4, "Enabled", "passes its files on in the active configuration (0 or 1)"))

FORGEYARD_TYPE_INFO(IFolderSettings, nullptr,
                    property<&IFolderSettings::get_Enabled, &IFolderSettings::put_Enabled>(
                        1, "Enabled", "the folder passes its files on (0 or 1)"),
                    readOnly<&IFolderSettings::get_Clone>(2, "Clone", "a copy"))

}  // namespace forgeyard
