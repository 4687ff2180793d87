#pragma once

#include <string_view>
#include <utility>
#include <vector>

#include "platform/com/object.h"
#include "typelib/host.h"

namespace forgeyard::console {

// The command service: knows which objects serve commands by class, and has no menus to draw. Main thread
// only.
class CommandHost final : public ComObject<ICommandHost> {
 public:
  HRESULT RegisterObject(const Guid& clsid, IUnknown* object) override;
  HRESULT UnregisterObject(const Guid& clsid, IUnknown* object) override;
  HRESULT RefreshMenu(std::uint32_t, std::uint32_t) override { return S_OK; }

 private:
  // Not counted: an object takes itself out before it goes.
  std::vector<std::pair<Guid, IUnknown*>> objects_;
};

enum class CommandOutcome { Ran, Disabled, Unknown };

// Runs a command of the object by its name, if the object says that it is enabled now. Throws StatusError
// when the command fails.
CommandOutcome runCommand(IUseCommands& object, std::u16string_view name);

}  // namespace forgeyard::console
