#include "hosts/console/script/library.h"

#include <cerrno>
#include <cstdio>

#include "hosts/console/build/build_run.h"
#include "hosts/console/script/script.h"
#include "hosts/console/script/shell_command.h"
#include "hosts/console/script/values.h"
#include "hosts/console/session/session.h"
#include "platform/com/class_table.h"
#include "platform/files/host_location.h"
#include "workbench/automation/late_bound.h"
#include "workbench/base/failure.h"
#include "workbench/session/registered_classes.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

Session& sessionOf(lua_State* lua) {
  return Script::of(lua).session();
}

// for element in each(collection)
int nextOfList(lua_State* lua) {
  const lua_Integer next = lua_tointeger(lua, lua_upvalueindex(2)) + 1;
  lua_pushinteger(lua, next);
  lua_replace(lua, lua_upvalueindex(2));
  lua_geti(lua, lua_upvalueindex(1), next);
  return 1;
}

int each(lua_State* lua) {
  std::vector<Variant> elements;
  Script::of(lua).call(lua, [&] { elements = elementsOf(objectAt(lua, 1)); });
  pushList(lua, elements);
  lua_pushinteger(lua, 0);
  lua_pushcclosure(lua, nextOfList, 2);
  return 1;
}

// forgeyard.create("KV.Cc")
int create(lua_State* lua) {
  const std::string name = luaL_checkstring(lua, 1);
  const Guid clsid = classNamed(sessionOf(lua).registry(), name);
  if (clsid == GUID_NULL) throw MemberError(REGDB_E_CLASSNOTREG, name, describe(REGDB_E_CLASSNOTREG));
  void* object = nullptr;
  HRESULT status = S_OK;
  Script::of(lua).call(lua, [&] { status = CoCreateInstance(clsid, IUnknown::iid, &object); });
  const Ref<IUnknown> made = Ref<IUnknown>::adopt(static_cast<IUnknown*>(object));
  if (failed(status)) throw MemberError(status, name, describe(status));
  pushValue(lua, Variant(made));
  return 1;
}

// forgeyard.run("ProjectBuild"): "OK", "ERRORS" or "STOPPED"; nil for a command that builds nothing.
int run(lua_State* lua) {
  Script& script = Script::of(lua);
  const BString command = BString::fromNarrow(luaL_checkstring(lua, 1));
  if (script.isInCallback())
    return luaL_error(lua, "a command can't be run from within an event; note it and run it afterwards");
  CommandEnd end;
  script.call(lua, [&] { end = runCommand(script.session(), command); });
  if (end.stopAsked) {
    script.stop();
    return luaL_error(lua, "stopped");
  }
  if (!end.result) return 0;
  lua_pushstring(lua, resultWord(*end.result));
  return 1;
}

// forgeyard.on(object, "OnBuildEnd", function): a function that ends it.
int on(lua_State* lua) {
  IUnknown* object = objectAt(lua, 1);
  const char* event = luaL_checkstring(lua, 2);
  luaL_checktype(lua, 3, LUA_TFUNCTION);
  lua_settop(lua, 3);
  const std::size_t subscription = Script::of(lua).subscribe(lua, object, event);
  lua_pushinteger(lua, static_cast<lua_Integer>(subscription));
  lua_pushcclosure(
      lua,
      [](lua_State* state) {
        const auto number = static_cast<std::size_t>(lua_tointeger(state, lua_upvalueindex(1)));
        lua_pushboolean(state, Script::of(state).unsubscribe(number) ? 1 : 0);
        return 1;
      },
      1);
  return 1;
}

// forgeyard.answer("name", ...): what the next dialog's boxes are filled in with.
int answer(lua_State* lua) {
  std::vector<BString> texts;
  for (int i = 1; i <= lua_gettop(lua); ++i) texts.push_back(BString::fromNarrow(luaL_checkstring(lua, i)));
  sessionOf(lua).host().frame().fillNextDialog(std::move(texts));
  return 0;
}

// forgeyard.modelpath("src/a.c"): the spelling that the model has for a file of this system.
int modelPath(lua_State* lua) {
  const ModelPath path = toModel(luaL_checkstring(lua, 1));
  if (!path) throw Failure(path.error);
  pushValue(lua, Variant(path.path));
  return 1;
}

// forgeyard.hostpath(file.Name): the way back; nil for a path that can name no file here.
int hostPath(lua_State* lua) {
  const auto host = spelledHost(BString::fromNarrow(luaL_checkstring(lua, 1)));
  if (!host) return 0;
  lua_pushlstring(lua, host->data(), host->size());
  return 1;
}

// forgeyard.commands(): the names of what forgeyard.run() runs.
int commands(lua_State* lua) {
  const std::vector<BString> names = sessionOf(lua).host().commands().names();
  pushList(lua, std::vector<Variant>(names.begin(), names.end()));
  return 1;
}

int exitScript(lua_State* lua) {
  const bool plain = lua_isnoneornil(lua, 1) || lua_isboolean(lua, 1);
  const bool good = lua_isnoneornil(lua, 1) || lua_toboolean(lua, 1);
  Script::of(lua).exit(plain ? (good ? 0 : 1) : static_cast<int>(luaL_checkinteger(lua, 1)) & 0xFF);
  return luaL_error(lua, "os.exit");
}

// os.execute: as Lua's own, but the user's wish to stop ends the command with all that it has started.
int execute(lua_State* lua) {
  if (lua_isnoneornil(lua, 1)) {
    lua_pushboolean(lua, 1);
    return 1;
  }
  const char* command = luaL_checkstring(lua, 1);
  const Interrupt::Handled handled;
  std::fflush(stdout);
  const ShellCommand shell(command);
  if (!shell) return luaL_fileresult(lua, 0, nullptr);
  while (!shell.waitInterrupted()) {
    if (!sessionOf(lua).isInterrupted()) continue;
    shell.killAll();
    Script::of(lua).stop();
    return luaL_error(lua, "stopped");
  }
  errno = 0;
  return luaL_execresult(lua, shell.status());
}

// Bytecode isn't checked when it is loaded and may do anything to this process, so that all loaders take
// texts alone.
constexpr const char* kTextsAlone = R"LUA(
local load, loadfile = load, loadfile
function _G.load(chunk, name, mode, ...) return load(chunk, name, "t", ...) end
function _G.loadfile(file, mode, ...) return loadfile(file, "t", ...) end
function _G.dofile(file)
  local chunk, why = loadfile(file, "t")
  if not chunk then error(why, 0) end
  return chunk()
end
package.searchers[2] = function(name)
  local path, missing = package.searchpath(name, package.path)
  if not path then return missing end
  local chunk, why = loadfile(path, "t")
  if not chunk then
    error(("error loading module '%s' from file '%s':\n\t%s"):format(name, path, why), 0)
  end
  return chunk, path
end
)LUA";

}  // namespace

void openLibrary(lua_State* lua) {
  static constexpr luaL_Reg functions[] = {{"create", guarded<create>},
                                           {"run", guarded<run>},
                                           {"on", guarded<on>},
                                           {"answer", guarded<answer>},
                                           {"modelpath", guarded<modelPath>},
                                           {"hostpath", guarded<hostPath>},
                                           {"commands", guarded<commands>},
                                           {nullptr, nullptr}};
  luaL_newlib(lua, functions);
  lua_setglobal(lua, "forgeyard");
  lua_pushcfunction(lua, guarded<each>);
  lua_setglobal(lua, "each");
  pushValue(lua, Variant(Ref<IDispatch>(&sessionOf(lua).tool())));
  lua_setglobal(lua, "BuildTool");
  lua_getglobal(lua, "os");
  lua_pushcfunction(lua, exitScript);
  lua_setfield(lua, -2, "exit");
  lua_pushcfunction(lua, guarded<execute>);
  lua_setfield(lua, -2, "execute");
  lua_pop(lua, 1);
  if (luaL_dostring(lua, kTextsAlone) != LUA_OK) lua_error(lua);
}

}  // namespace forgeyard::console
