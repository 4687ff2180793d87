#pragma once

#include <string_view>
#include <utility>
#include <vector>

#include "platform/com/object.h"
#include "typelib/host.h"

namespace forgeyard::workbench {

enum class CommandOutcome { Ran, Disabled, Unknown };

// The command service: has the tables of all objects that use commands, knows which objects serve commands by
// class, and has no menus to draw. Main thread only.
class CommandHost final : public ComObject<ICommandHost> {
 public:
  HRESULT RegisterObject(const Guid& clsid, IUnknown* object) override;
  HRESULT UnregisterObject(const Guid& clsid, IUnknown* object) override;
  HRESULT RefreshMenu(std::uint32_t, std::uint32_t) override { return S_OK; }

  // Asks the object for its table of commands and keeps a reference to it. Throws StatusError.
  void addObject(IUseCommands& object);
  void removeObjects() { tables_.clear(); }

  // Runs the command of that name, if the object that brought it says that it is enabled now. Throws
  // StatusError when the command fails.
  CommandOutcome run(std::u16string_view name) const;
  // The names of all commands, in the order in which their objects came.
  std::vector<BString> names() const;

 private:
  struct Table {
    Ref<IUseCommands> object;
    std::span<const CommandEntry> commands;
  };

  std::vector<Table> tables_;
  // Not counted: an object takes itself out before it goes.
  std::vector<std::pair<Guid, IUnknown*>> objects_;
};

}  // namespace forgeyard::workbench
