#include "typelib/component.h"

#include "typelib/configuration.h"

namespace forgeyard {

FORGEYARD_TYPE_INFO(
    IComponent, nullptr,
    method<&IComponent::SetParent>(1, "SetParent", "pProject,pLOT",
                                   "gives a new component its project and services"),
    method<&IComponent::OnNew>(2, "OnNew", "pAddToProject", "asks the user about a new component"),
    method<&IComponent::CreateUIWindow>(3, "CreateUIWindow", "pPlugIn",
                                        "makes the component's window for the pane"),
    property<&IComponent::get_Id, &IComponent::put_Id>(4, "Id", "number of the component within its project"),
    readOnly<&IComponent::get_Setting>(5, "Setting", "the settings of a configuration", "pConfig"),
    method<&IComponent::Init>(6, "Init", "", "starts listening to the project"),
    method<&IComponent::Close>(7, "Close", "", "lets go of project, services and files"),
    readOnly<&IComponent::get_ComponentName>(8, "ComponentName", "display name"),
    method<&IComponent::BeforeSettings>(9, "BeforeSettings", "", "starts a settings transaction"),
    method<&IComponent::AfterSettings>(10, "AfterSettings", "bApply", "ends it, kept or dropped"),
    method<&IComponent::AddSource>(11, "AddSource", "pSource", "feeds this component from another"),
    method<&IComponent::RemoveSource>(12, "RemoveSource", "pSource", "ends that"),
    method<&IComponent::AddSink>(13, "AddSink", "pSink", "tells of a component that this one feeds"),
    method<&IComponent::RemoveSink>(14, "RemoveSink", "pSink", "ends that"),
    property<&IComponent::get_Project, &IComponent::put_Project>(15, "Project", "the project it belongs to"))

FORGEYARD_TYPE_INFO(IComponents, nullptr,
                    readOnly<&IComponents::get_Count>(1, "Count", "number of components"),
                    method<&IComponents::Add>(2, "Add", "component", "puts a component into the project"),
                    readOnly<&IComponents::get_Item>(DISPID_VALUE, "Item", "the component of that Id", "var"),
                    readOnly<&IComponents::get__NewEnum>(DISPID_NEWENUM, "_NewEnum", "walks the components"),
                    method<&IComponents::Delete>(3, "Delete", "component", "takes a component off the list"),
                    method<&IComponents::New>(4, "New", "component",
                                              "asks the user about a new component and adds it"))

}  // namespace forgeyard
