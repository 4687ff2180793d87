#pragma once

#include <lua.hpp>
#include <span>
#include <vector>

#include "platform/com/automation.h"

namespace forgeyard::console {

// Between Lua and automation: nil is null, true and false are 1 and 0 as the flags of the model have it, a
// table is a list, objects are user data with the members of all their interfaces.

// Adds the metatables of objects and of their indexed members to a new state.
void openObjects(lua_State* lua);

// Pushes one value; the same object is the same user data as long as the script holds it.
void pushValue(lua_State* lua, const Variant& value);

// Pushes a table with the values from 1 on.
void pushList(lua_State* lua, std::span<const Variant> values);

// Raise a Lua error for a value that has no counterpart.
Variant valueAt(lua_State* lua, int index);
std::vector<Variant> valuesFrom(lua_State* lua, int first);

// The object at the index; raises a Lua error for anything else.
IUnknown* objectAt(lua_State* lua, int index);

// Pushes an error with `message`, `status` and `member`, that reads as its message with the script's line.
void pushError(lua_State* lua, HRESULT status, const char* member, const char* message);

// A function for Lua: what the body throws becomes a Lua error.
template <int (*Body)(lua_State*)>
int guarded(lua_State* lua);

// Makes Lua's error of the exception that is being handled, and pushes it.
void pushCurrentException(lua_State* lua);

template <int (*Body)(lua_State*)>
int guarded(lua_State* lua) {
  try {
    return Body(lua);
  } catch (const std::exception&) {
    pushCurrentException(lua);
  }
  return lua_error(lua);
}

}  // namespace forgeyard::console
