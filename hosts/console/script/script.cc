#include "hosts/console/script/script.h"

#include <algorithm>
#include <cstdio>
#include <new>
#include <utility>

#include "hosts/console/script/library.h"
#include "hosts/console/script/values.h"
#include "workbench/base/failure.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

// Often enough for a Ctrl-C, and seldom enough to cost nothing.
constexpr int kInstructions = 10000;

}  // namespace

struct Script::Subscription {
  std::size_t number;
  int function;  // in the registry of the state
  Advice advice;
};

Script::Script(Session& session) : session_(session), lua_(luaL_newstate()) {
  if (!lua_) throw std::bad_alloc();
  session_.setInterrupt(&interrupt_.event());
  *static_cast<Script**>(lua_getextraspace(lua_)) = this;
  luaL_openlibs(lua_);
  openObjects(lua_);
  openLibrary(lua_);
  lua_sethook(lua_, checkIn, LUA_MASKCOUNT, kInstructions);
}

Script::~Script() {
  subscriptions_.clear();
  lua_close(lua_);
  session_.setInterrupt(nullptr);
}

// Once the script is to end, every further instruction of it fails: it may have caught the first error.
void Script::checkIn(lua_State* lua, lua_Debug*) {
  Script& script = of(lua);
  if (script.session_.isInterrupted()) script.stopped_ = true;
  // SIGPIPE is ignored here, and Lua's print doesn't look.
  if (std::ferror(stdout)) script.outputClosed_ = true;
  if (!script.isEnding()) return;
  lua_sethook(lua, checkIn, LUA_MASKCOUNT, 1);
  luaL_error(lua, "stopped");
}

void Script::enter(lua_State* lua) {
  std::fflush(stdout);
  calling_ = lua;
}

void Script::leave(lua_State* lua) {
  session_.output().flush();
  if (session_.output().state() == LineWriter::State::Closed) outputClosed_ = true;
  if (!callbackError_ || callbacks_ > 0) return;
  const std::string message = std::move(*callbackError_);
  callbackError_.reset();
  lua_pushlstring(lua, message.data(), message.size());
  lua_error(lua);
}

std::size_t Script::subscribe(lua_State* lua, IUnknown* object, const char* event) {
  const int function = luaL_ref(lua, LUA_REGISTRYINDEX);
  try {
    Advice advice = console::subscribe(object, event, [this, function](std::span<const Variant> arguments) {
      return callBack(function, arguments);
    });
    subscriptions_.push_back({++lastSubscription_, function, std::move(advice)});
  } catch (...) {
    luaL_unref(lua, LUA_REGISTRYINDEX, function);
    throw;
  }
  return lastSubscription_;
}

bool Script::unsubscribe(std::size_t subscription) {
  const auto found = std::find_if(subscriptions_.begin(), subscriptions_.end(),
                                  [&](const Subscription& one) { return one.number == subscription; });
  if (found == subscriptions_.end()) return false;
  luaL_unref(lua_, LUA_REGISTRYINDEX, found->function);
  subscriptions_.erase(found);
  return true;
}

// Events come inside of calls of the module, so that there is a state to run on. What fails in here stops a
// build, and fails the script once it has the word again.
Variant Script::callBack(int function, std::span<const Variant> arguments) {
  lua_State* lua = calling_ ? calling_ : lua_;
  if (callbackError_ || isEnding() || !lua_checkstack(lua, static_cast<int>(arguments.size()) + 8)) return {};
  session_.output().flush();
  ++callbacks_;
  const int top = lua_gettop(lua);
  lua_rawgeti(lua, LUA_REGISTRYINDEX, function);
  for (const Variant& argument : arguments) pushValue(lua, argument);
  Variant result;
  if (lua_pcall(lua, static_cast<int>(arguments.size()), 1, 0) != LUA_OK) {
    callbackError_ = takeError(lua);
    ignore(guard([&] { static_cast<void>(session_.host().commands().run(u"ProjectStopBuild")); }));
    result = Variant(1);
  } else if (!lua_isnil(lua, -1)) {
    result = Variant(static_cast<std::int32_t>(lua_toboolean(lua, -1)));
  }
  lua_settop(lua, top);
  std::fflush(stdout);
  --callbacks_;
  return result;
}

// The text of the error on top of the stack.
std::string Script::takeError(lua_State* lua) {
  const char* text = luaL_tolstring(lua, -1, nullptr);
  std::string message = text ? text : "an error without words";
  lua_pop(lua, 2);
  return message;
}

// Of the value that the script has returned.
int Script::resultOf(lua_State* lua) {
  if (lua_isboolean(lua, -1)) return lua_toboolean(lua, -1) ? 0 : 1;
  return lua_isinteger(lua, -1) ? static_cast<int>(lua_tointeger(lua, -1)) & 0xFF : 0;
}

int Script::run(const std::string& file, const std::vector<std::string>& arguments) {
  const bool fromInput = file == "-";
  if (luaL_loadfilex(lua_, fromInput ? nullptr : file.c_str(), "t") != LUA_OK) throw Failure(takeError(lua_));
  lua_createtable(lua_, static_cast<int>(arguments.size()), 1);
  lua_pushstring(lua_, file.c_str());
  lua_rawseti(lua_, -2, 0);
  luaL_checkstack(lua_, static_cast<int>(arguments.size()) + 4, "too many arguments");
  lua_Integer position = 0;
  for (const std::string& argument : arguments) {
    lua_pushlstring(lua_, argument.data(), argument.size());
    lua_rawseti(lua_, -2, ++position);
  }
  lua_setglobal(lua_, "arg");
  for (const std::string& argument : arguments) lua_pushlstring(lua_, argument.data(), argument.size());
  const int status = lua_pcall(lua_, static_cast<int>(arguments.size()), 1, 0);
  std::fflush(stdout);
  if (stopped_) return static_cast<int>(ExitCode::Stopped);
  if (outputClosed_ || std::ferror(stdout)) return static_cast<int>(ExitCode::OutputClosed);
  if (exitCode_) return *exitCode_;
  if (status != LUA_OK) throw Failure(takeError(lua_));
  return resultOf(lua_);
}

}  // namespace forgeyard::console
