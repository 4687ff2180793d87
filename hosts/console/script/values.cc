#include "hosts/console/script/values.h"

#include <array>
#include <limits>
#include <new>
#include <string>

#include "hosts/console/script/script.h"
#include "workbench/automation/late_bound.h"
#include "workbench/base/failure.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

constexpr const char* kObject = "forgeyard.object";
constexpr const char* kMember = "forgeyard.member";
constexpr const char* kError = "forgeyard.error";
// Where the registry has the table of the user data by object.
const char kObjects = 0;

using Object = Ref<IUnknown>;

std::string textAt(lua_State* lua, int index) {
  std::size_t length = 0;
  const char* text = lua_tolstring(lua, index, &length);
  return {text, length};
}

void pushText(lua_State* lua, const std::string& text) {
  lua_pushlstring(lua, text.data(), text.size());
}

void pushObject(lua_State* lua, const Ref<IUnknown>& object) {
  // The address that every interface of the object answers with.
  const Ref<IUnknown> identity = object.as<IUnknown>();
  if (!identity) return lua_pushnil(lua);
  lua_rawgetp(lua, LUA_REGISTRYINDEX, &kObjects);
  if (lua_rawgetp(lua, -1, identity.get()) == LUA_TNIL) {
    lua_pop(lua, 1);
    new (lua_newuserdatauv(lua, sizeof(Object), 0)) Object(identity);
    luaL_setmetatable(lua, kObject);
    lua_pushvalue(lua, -1);
    lua_rawsetp(lua, -3, identity.get());
  }
  lua_remove(lua, -2);
}

Variant numberAt(lua_State* lua, int index) {
  if (!lua_isinteger(lua, index)) return Variant(static_cast<double>(lua_tonumber(lua, index)));
  const lua_Integer number = lua_tointeger(lua, index);
  if (number >= std::numeric_limits<std::int32_t>::min() &&
      number <= std::numeric_limits<std::int32_t>::max())
    return Variant(static_cast<std::int32_t>(number));
  if (number >= 0 && number <= std::numeric_limits<std::uint32_t>::max())
    return Variant(static_cast<std::uint32_t>(number));
  return Variant(static_cast<double>(number));
}

Variant listAt(lua_State* lua, int index) {
  std::vector<Variant> values;
  for (lua_Integer i = 1; lua_geti(lua, index, i) != LUA_TNIL; ++i) {
    values.push_back(valueAt(lua, lua_gettop(lua)));
    lua_pop(lua, 1);
  }
  lua_pop(lua, 1);
  return Variant(listOf(values));
}

// Indexed properties and methods, waiting for their arguments: a table with the object and the name.
void pushMember(lua_State* lua, int object, const FoundMember& found) {
  object = lua_absindex(lua, object);
  lua_createtable(lua, 2, 0);
  lua_pushvalue(lua, object);
  lua_rawseti(lua, -2, 1);
  lua_pushstring(lua, found.member->name);
  lua_rawseti(lua, -2, 2);
  luaL_setmetatable(lua, kMember);
}

// The object and the member of such a table.
FoundMember memberAt(lua_State* lua, int index) {
  luaL_checktype(lua, index, LUA_TTABLE);
  index = lua_absindex(lua, index);
  lua_rawgeti(lua, index, 1);
  lua_rawgeti(lua, index, 2);
  FoundMember found = requireMember(objectAt(lua, -2), textAt(lua, -1));
  lua_pop(lua, 2);
  return found;
}

int pushEvaluated(lua_State* lua, const FoundMember& found, const std::vector<Variant>& arguments) {
  Variant result;
  Script::of(lua).call(lua, [&] { result = evaluate(found, arguments); });
  pushValue(lua, result);
  return 1;
}

// object.name and collection[index]

int readObject(lua_State* lua) {
  IUnknown* object = objectAt(lua, 1);
  if (lua_isinteger(lua, 2)) return pushEvaluated(lua, defaultMember(object), {valueAt(lua, 2)});
  const FoundMember found = requireMember(object, luaL_checkstring(lua, 2));
  if (found.isPlainProperty()) return pushEvaluated(lua, found, {});
  pushMember(lua, 1, found);
  return 1;
}

int writeObject(lua_State* lua) {
  const FoundMember found = requireMember(objectAt(lua, 1), luaL_checkstring(lua, 2));
  const Variant value = valueAt(lua, 3);
  Script::of(lua).call(lua, [&] { putProperty(found, std::span(&value, 1)); });
  return 0;
}

// collection(index)
int callObject(lua_State* lua) {
  return pushEvaluated(lua, defaultMember(objectAt(lua, 1)), valuesFrom(lua, 2));
}

int countObject(lua_State* lua) {
  return pushEvaluated(lua, requireMember(objectAt(lua, 1), "Count"), {});
}

// Of the table of elements: the index behind the given one, and the element there.
int nextElement(lua_State* lua) {
  const lua_Integer next = luaL_checkinteger(lua, 2) + 1;
  lua_pushinteger(lua, next);
  if (lua_geti(lua, 1, next + 1) != LUA_TNIL) return 2;
  lua_pushnil(lua);
  return 1;
}

// for index, element in pairs(collection): the elements as they are now.
int walkObject(lua_State* lua) {
  std::vector<Variant> elements;
  Script::of(lua).call(lua, [&] { elements = elementsOf(objectAt(lua, 1)); });
  lua_pushcfunction(lua, nextElement);
  pushList(lua, elements);
  lua_pushinteger(lua, -1);
  return 3;
}

int describeObject(lua_State* lua) {
  IUnknown* object = objectAt(lua, 1);
  std::string text = typeNameOf(object);
  for (const char* name : {"Name", "ComponentName"}) {
    const auto found = findMember(object, name);
    BString value;
    if (!found || !found->isPlainProperty() || failed(getProperty(*found).toText(&value))) continue;
    text += " " + value.narrow();
    break;
  }
  pushText(lua, text);
  return 1;
}

int releaseObject(lua_State* lua) {
  static_cast<Object*>(luaL_checkudata(lua, 1, kObject))->~Object();
  return 0;
}

// object:Name(...), also object.Name(...).
int callMember(lua_State* lua) {
  const FoundMember found = memberAt(lua, 1);
  lua_rawgeti(lua, 1, 1);
  const bool self = lua_rawequal(lua, 2, -1) != 0;
  lua_pop(lua, 1);
  return pushEvaluated(lua, found, valuesFrom(lua, self ? 3 : 2));
}

// object.Name[index]
int readMember(lua_State* lua) {
  return pushEvaluated(lua, memberAt(lua, 1), {valueAt(lua, 2)});
}

// object.Name[index] = value
int writeMember(lua_State* lua) {
  const FoundMember found = memberAt(lua, 1);
  const std::array arguments{valueAt(lua, 2), valueAt(lua, 3)};
  Script::of(lua).call(lua, [&] { putProperty(found, arguments); });
  return 0;
}

int describeError(lua_State* lua) {
  lua_getfield(lua, 1, "message");
  return 1;
}

void makeMetatable(lua_State* lua, const char* name, const luaL_Reg* functions) {
  luaL_newmetatable(lua, name);
  luaL_setfuncs(lua, functions, 0);
  // Scripts see no metatable that they could change.
  lua_pushstring(lua, name);
  lua_setfield(lua, -2, "__metatable");
  lua_pop(lua, 1);
}

}  // namespace

void openObjects(lua_State* lua) {
  static constexpr luaL_Reg object[] = {
      {"__index", guarded<readObject>}, {"__newindex", guarded<writeObject>},
      {"__call", guarded<callObject>},  {"__len", guarded<countObject>},
      {"__pairs", guarded<walkObject>}, {"__tostring", guarded<describeObject>},
      {"__gc", releaseObject},          {nullptr, nullptr}};
  static constexpr luaL_Reg member[] = {{"__call", guarded<callMember>},
                                        {"__index", guarded<readMember>},
                                        {"__newindex", guarded<writeMember>},
                                        {nullptr, nullptr}};
  static constexpr luaL_Reg error[] = {{"__tostring", describeError}, {nullptr, nullptr}};
  makeMetatable(lua, kObject, object);
  makeMetatable(lua, kMember, member);
  makeMetatable(lua, kError, error);
  lua_newtable(lua);
  lua_createtable(lua, 0, 1);
  lua_pushstring(lua, "v");
  lua_setfield(lua, -2, "__mode");
  lua_setmetatable(lua, -2);
  lua_rawsetp(lua, LUA_REGISTRYINDEX, &kObjects);
}

void pushValue(lua_State* lua, const Variant& value) {
  if (const auto* i = value.get<std::int32_t>()) return lua_pushinteger(lua, *i);
  if (const auto* u = value.get<std::uint32_t>()) return lua_pushinteger(lua, *u);
  if (const auto* b = value.get<bool>()) return lua_pushboolean(lua, *b ? 1 : 0);
  if (const auto* d = value.get<double>()) return lua_pushnumber(lua, *d);
  if (const auto* text = value.get<BString>()) return pushText(lua, text->narrow());
  Ref<IUnknown> object;
  ignore(value.toUnknown(&object));
  pushObject(lua, object);
}

void pushList(lua_State* lua, std::span<const Variant> values) {
  lua_createtable(lua, static_cast<int>(values.size()), 0);
  lua_Integer position = 0;
  for (const Variant& value : values) {
    pushValue(lua, value);
    lua_rawseti(lua, -2, ++position);
  }
}

Variant valueAt(lua_State* lua, int index) {
  index = lua_absindex(lua, index);
  switch (lua_type(lua, index)) {
    case LUA_TNIL:
    case LUA_TNONE:
      return Variant::null();
    case LUA_TBOOLEAN:
      return Variant(static_cast<std::int32_t>(lua_toboolean(lua, index)));
    case LUA_TNUMBER:
      return numberAt(lua, index);
    case LUA_TSTRING:
      return Variant(BString::fromNarrow(textAt(lua, index)));
    case LUA_TTABLE:
      return listAt(lua, index);
    default:
      return Variant(Ref<IUnknown>(objectAt(lua, index)));
  }
}

std::vector<Variant> valuesFrom(lua_State* lua, int first) {
  std::vector<Variant> values;
  for (int i = first; i <= lua_gettop(lua); ++i) values.push_back(valueAt(lua, i));
  return values;
}

IUnknown* objectAt(lua_State* lua, int index) {
  auto* object = static_cast<Object*>(luaL_testudata(lua, index, kObject));
  if (object) return object->get();
  luaL_error(lua, "an object is needed here, not a %s", luaL_typename(lua, index));
  return nullptr;
}

void pushError(lua_State* lua, HRESULT status, const char* member, const char* message) {
  lua_createtable(lua, 0, 3);
  luaL_where(lua, 1);
  lua_pushstring(lua, message);
  lua_concat(lua, 2);
  lua_setfield(lua, -2, "message");
  lua_pushinteger(lua, static_cast<std::uint32_t>(code(status)));
  lua_setfield(lua, -2, "status");
  lua_pushstring(lua, member);
  lua_setfield(lua, -2, "member");
  luaL_setmetatable(lua, kError);
}

void pushCurrentException(lua_State* lua) {
  try {
    throw;
  } catch (const MemberError& error) {
    pushError(lua, error.status(), error.member().c_str(), error.what());
  } catch (const StatusError& error) {
    pushError(lua, error.status(), "", describe(error.status()).c_str());
  } catch (const std::exception& error) {
    pushError(lua, E_FAIL, "", error.what());
  }
}

}  // namespace forgeyard::console
