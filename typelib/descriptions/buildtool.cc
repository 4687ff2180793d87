#include "typelib/buildtool.h"

namespace forgeyard {

FORGEYARD_TYPE_INFO(IProjects, nullptr,
                    readOnly<&IProjects::get_Item>(DISPID_VALUE, "Item", "the project at an index from 0",
                                                   "var"),
                    method<&IProjects::Add>(1, "Add", "project", "adds a project to the workspace"),
                    readOnly<&IProjects::get_Count>(2, "Count", "number of projects"),
                    readOnly<&IProjects::get__NewEnum>(DISPID_NEWENUM, "_NewEnum", "walks the projects"),
                    method<&IProjects::Delete>(3, "Delete", "project",
                                               "removes a project from the workspace"),
                    method<&IProjects::New>(4, "New", "project", "makes an empty project in the workspace"))

FORGEYARD_TYPE_INFO(IBuildTool, nullptr,
                    readOnly<&IBuildTool::get_Projects>(kToolProjects, "Projects",
                                                        "the workspace's projects"),
                    property<&IBuildTool::get_ActiveProject, &IBuildTool::put_ActiveProject>(
                        kToolActiveProject, "ActiveProject", "the project that build commands act on"),
                    readOnly<&IBuildTool::get_Building>(3, "Building", "a build run is going on (0 or 1)"),
                    method<&IBuildTool::InsertProject>(4, "InsertProject", "path,pOut",
                                                       "loads a project file into the workspace"))

}  // namespace forgeyard
