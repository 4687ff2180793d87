#pragma once

#include <array>

#include "engine/self_documentation/self_documenting.h"
#include "typelib/host.h"
#include "typelib/project.h"

namespace forgeyard {

// A type of components as its loaded object knows it. It lives as long as the module.
struct ComponentType {
  Guid component;                       // the class of the components
  CommandEntry insert;                  // the command that makes one
  std::array<HistoryRow, 6> history{};  // of the loaded object itself; rows of zeros end it
};

// What a host creates at its start for one type of components: it brings the command that inserts such a
// component into the active project, with the dialog of the new component. Main thread only.
class CComponentLO : public ComObject<ILoadedObject, IUseCommands, SelfDocumenting> {
 public:
  // ILoadedObject
  HRESULT OnLoad(IUnknown* site) override;
  HRESULT OnUnload() override;

  // IUseCommands. Other identifiers than that of the one command are E_INVALIDARG.
  HRESULT GetCommands(std::span<const CommandEntry>* out) override;
  // General failure where no component can be inserted now; a dialog that is cancelled is none.
  HRESULT RunCommand(std::uint32_t id) override;
  HRESULT UpdateCommand(std::uint32_t id, IHostCommand* command, std::int32_t* changed) override;

 protected:
  explicit CComponentLO(const ComponentType& type) : type_(type) {}

 private:
  const History& history() const override { return history_; }
  // The active project if it is loaded and no build runs, else null.
  Ref<IProject> projectToChange() const;

  const ComponentType& type_;
  std::array<Guid, 2> children_{type_.component, GUID_NULL};
  History history_{type_.history.data(), children_.data()};
  Ref<IServiceLookup> site_;
};

template <const ComponentType& Type>
class ComponentLO final : public CComponentLO {
 public:
  ComponentLO() : CComponentLO(Type) {}
};

extern const ComponentType kFolderType;
extern const ComponentType kCmdLineType;
extern const ComponentType kCcType;
extern const ComponentType kAsmType;
extern const ComponentType kLinkerType;

using CFolderLO = ComponentLO<kFolderType>;
using CCmdLineLO = ComponentLO<kCmdLineType>;
using CCcLO = ComponentLO<kCcType>;
using CAsmLO = ComponentLO<kAsmType>;
using CLinkerLO = ComponentLO<kLinkerType>;

}  // namespace forgeyard
