#include "model/components/component_objects.h"

#include "engine/build_tool/command_state.h"
#include "platform/com/class_table.h"
#include "typelib/buildtool.h"
#include "typelib/classes.h"
#include "typelib/component.h"

namespace forgeyard {

constexpr ComponentType kFolderType{
    CLSID_Folder,
    {CommandKind::Command, 163, 0, u"InsertFolder", u"&Folder...",
     u"Insert a new folder component into the active project", u"Insert Folder"},
    {{FORGEYARD_HISTORY_HEAD("CFolderLO")}},
};

constexpr ComponentType kCmdLineType{
    CLSID_CmdLine,
    {CommandKind::Command, 262, 0, u"InsertCmdLine", u"Cmd&Line...",
     u"Insert a new command line component into the active project", u"Insert Command Line Component"},
    {{FORGEYARD_HISTORY_HEAD("CCmdLineLO")}},
};

constexpr ComponentType kCcType{
    CLSID_Cc,
    {CommandKind::Command, 378, 0, u"InsertCc", u"&Cc...",
     u"Insert a new compiler component into the active project", u"Insert compiler"},
    {{FORGEYARD_HISTORY_HEAD("CCcLO")}},
};

constexpr ComponentType kAsmType{
    CLSID_Asm,
    {CommandKind::Command, 279, 0, u"InsertAsm", u"&Asm...",
     u"Insert a new assembler component into the active project", u"Insert Asm"},
    {{FORGEYARD_HISTORY_HEAD("CAsmLO"),
      {1},
      {0, "Beta Fix", "Fixed - APT caused by Project with Assembler component -> Settings Dlg"}}},
};

constexpr ComponentType kLinkerType{
    CLSID_Linker,
    {CommandKind::Command, 298, 0, u"InsertLinker", u"&Linker...",
     u"Insert a new linker component into the active project", u"Insert Linker"},
    {{FORGEYARD_HISTORY_HEAD("CLinkerLO")}},
};

HRESULT CComponentLO::OnLoad(IUnknown* site) {
  site_ = query<IServiceLookup>(site);
  return S_OK;
}

HRESULT CComponentLO::OnUnload() {
  site_ = nullptr;
  return S_OK;
}

HRESULT CComponentLO::GetCommands(std::span<const CommandEntry>* out) {
  *out = {&type_.insert, 1};
  return S_OK;
}

Ref<IProject> CComponentLO::projectToChange() const {
  // Looked up each time: the tool may be made behind this object, and ends with the host.
  const Ref<IBuildTool> tool = lookUp<IBuildTool>(site_.get(), SID_BuildTool);
  if (!tool) return nullptr;
  std::int32_t building = 0;
  check(tool->get_Building(&building));
  Ref<IProject> project;
  check(tool->get_ActiveProject(&project));
  if (building || !project) return nullptr;
  std::int32_t loaded = 0;
  check(project->get_Loaded(&loaded));
  return loaded ? project : nullptr;
}

HRESULT CComponentLO::RunCommand(std::uint32_t id) {
  return guard([&] {
    if (id != type_.insert.id) return E_INVALIDARG;
    const Ref<IProject> project = projectToChange();
    const Ref<IDispatch> component = project ? createInstance<IDispatch>(type_.component) : nullptr;
    if (!component) return E_FAIL;
    Ref<IComponents> components;
    check(project->get_Components(&components));
    return components->New(component.get());
  });
}

HRESULT CComponentLO::UpdateCommand(std::uint32_t id, IHostCommand* command, std::int32_t* changed) {
  *changed = 0;
  return guard([&] {
    if (id != type_.insert.id) return E_INVALIDARG;
    *changed = setEnabled(*command, static_cast<bool>(projectToChange()));
    return S_OK;
  });
}

}  // namespace forgeyard
