#pragma once

#include <lua.hpp>

namespace forgeyard::console {

// Adds what scripts have beside Lua's own library: the globals `BuildTool`, `each` and `forgeyard`, and an
// `os.exit` that ends the session in order.
void openLibrary(lua_State* lua);

}  // namespace forgeyard::console
