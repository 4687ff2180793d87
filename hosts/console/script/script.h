#pragma once

#include <list>
#include <lua.hpp>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "hosts/console/script/interrupt.h"
#include "hosts/console/session/session.h"
#include "workbench/automation/events.h"

namespace forgeyard::console {

// A Lua program over the live objects of a session. The library is the one that is compiled as C++: an error
// that passes through our functions unwinds them. Main thread only.
class Script {
 public:
  explicit Script(Session& session);
  Script(const Script&) = delete;
  Script& operator=(const Script&) = delete;
  ~Script();

  // Runs the file, "-" for standard input, with these arguments in `arg`. The exit code that the script asks
  // for. Throws a Failure with file, line and reason for a script that can't be read or that fails.
  int run(const std::string& file, const std::vector<std::string>& arguments);
  // Whether the user has said stop; the script has ended for that.
  bool wasStopped() const { return stopped_; }

  // For the functions that scripts call.

  static Script& of(lua_State* lua) { return **static_cast<Script**>(lua_getextraspace(lua)); }
  Session& session() const { return session_; }
  // The script ends with this code, whatever it does to go on.
  void exit(int code) { exitCode_ = code; }
  void stop() { stopped_ = true; }
  bool isEnding() const { return stopped_ || outputClosed_ || exitCode_; }
  bool isInCallback() const { return callbacks_ > 0; }
  // Calls the Lua function on top of the stack whenever the event comes, until the number that this returns
  // is handed to unsubscribe(); pops it.
  std::size_t subscribe(lua_State* lua, IUnknown* object, const char* event);
  // False for a number that is none.
  bool unsubscribe(std::size_t subscription);

  // Around every call of the module: what was written leaves in order, and callbacks have a state to run on.
  // Behind it an error of a callback becomes one of the script.
  template <class Body>
  void call(lua_State* lua, Body&& body);

 private:
  struct Subscription;

  static void checkIn(lua_State* lua, lua_Debug*);
  void enter(lua_State* lua);
  void leave(lua_State* lua);
  Variant callBack(int function, std::span<const Variant> arguments);
  int resultOf(lua_State* lua);
  std::string takeError(lua_State* lua);

  Session& session_;
  Interrupt interrupt_;
  lua_State* lua_;
  lua_State* calling_ = nullptr;  // whose call of the module is under way
  std::list<Subscription> subscriptions_;
  std::size_t lastSubscription_ = 0;
  int callbacks_ = 0;
  std::optional<std::string> callbackError_;
  std::optional<int> exitCode_;
  bool stopped_ = false;
  bool outputClosed_ = false;
};

template <class Body>
void Script::call(lua_State* lua, Body&& body) {
  const Interrupt::Handled handled;
  lua_State* outer = calling_;
  enter(lua);
  try {
    body();
  } catch (...) {
    calling_ = outer;
    throw;
  }
  calling_ = outer;
  leave(lua);
}

}  // namespace forgeyard::console
