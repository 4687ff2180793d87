#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>
#include <tuple>
#include <type_traits>

#include "platform/com/automation.h"
#include "platform/com/ref.h"

namespace forgeyard {

// A dual interface is described once, in a table of its members: name, identifier, what they take, one line
// of help. Late-bound calls, the console's `set` and `get`, scripts and the reference listing all read that
// table.

enum class ParamType : std::uint8_t { I4, UI4, Bool, R8, Bstr, Variant, Object, Enum };

struct Param {
  ParamType type;
  bool out;                   // the result of the call
  std::string_view typeName;  // as the interface definition language has it: "long", "IProject"
};

// One callable form of a member, made from its member pointer.
struct Thunk {
  // `object` points to the interface that the table describes. dispatchInvoke() has counted the arguments.
  HRESULT(*call)
  (void* object, std::span<const Variant> arguments, Variant* result, InvokeError* error) = nullptr;
  std::span<const Param> params;
  explicit operator bool() const { return call != nullptr; }
};

// A value that a property can have, and what it means.
struct Choice {
  std::int32_t value;
  const char* name;
};

struct Member {
  std::int32_t id;
  const char* name;
  const char* arguments;  // names of the parameters, separated by commas; empty for plain properties
  const char* help;
  Thunk get;
  Thunk put;
  Thunk method;
  std::span<const Choice> choices = {};  // of a property that is a choice among a few
};

struct TypeInfo {
  const char* name;
  Guid iid;
  std::span<const Member> members;  // the interface's own, in slot order
  const TypeInfo* base;             // null above the last dual interface

  // By identifier or by name (any case), own members first; null when there is none.
  const Member* find(std::int32_t id) const;
  const Member* find(const BString& name) const;
};

// Specialised beside each dual interface.
template <class I>
const TypeInfo& typeInfo();

namespace detail {

template <class T>
constexpr ParamType paramType() {
  using V = std::remove_cvref_t<T>;
  if constexpr (std::is_same_v<V, std::int32_t>) {
    return ParamType::I4;
  } else if constexpr (std::is_same_v<V, std::uint32_t>) {
    return ParamType::UI4;
  } else if constexpr (std::is_same_v<V, bool>) {
    return ParamType::Bool;
  } else if constexpr (std::is_same_v<V, double>) {
    return ParamType::R8;
  } else if constexpr (std::is_same_v<V, BString>) {
    return ParamType::Bstr;
  } else if constexpr (std::is_same_v<V, Variant>) {
    return ParamType::Variant;
  } else if constexpr (std::is_enum_v<V>) {
    return ParamType::Enum;
  } else {
    return ParamType::Object;
  }
}

// The name of a class, interface or enumeration without its namespaces.
template <class T>
constexpr std::string_view bareName() {
  // "... bareName() [with T = forgeyard::IProject; ...]", or the same with another end.
  std::string_view text = __PRETTY_FUNCTION__;
  text.remove_prefix(text.find("T = ") + 4);
  text = text.substr(0, text.find_first_of(";]"));
  const std::size_t scope = text.rfind(':');
  return scope == text.npos ? text : text.substr(scope + 1);
}

template <class T>
constexpr std::string_view typeName() {
  switch (paramType<T>()) {
    case ParamType::I4:
      return "long";
    case ParamType::UI4:
      return "unsigned long";
    case ParamType::Bool:
      return "VARIANT_BOOL";
    case ParamType::R8:
      return "double";
    case ParamType::Bstr:
      return "BSTR";
    case ParamType::Variant:
      return "VARIANT";
    case ParamType::Object:
    case ParamType::Enum:
      return bareName<std::remove_cvref_t<T>>();
  }
  return {};
}

// Plain in values.
template <class T>
struct Argument {
  static constexpr bool isOut = false;
  static constexpr Param param{paramType<T>(), false, typeName<T>()};
  std::remove_cvref_t<T> value{};
  HRESULT take(const Variant& given) {
    using V = std::remove_cvref_t<T>;
    if constexpr (std::is_same_v<V, std::int32_t>) {
      return given.toInt32(&value);
    } else if constexpr (std::is_same_v<V, std::uint32_t>) {
      return given.toUint32(&value);
    } else if constexpr (std::is_same_v<V, bool>) {
      return given.toBool(&value);
    } else if constexpr (std::is_same_v<V, double>) {
      return given.toDouble(&value);
    } else if constexpr (std::is_same_v<V, BString>) {
      return given.toText(&value);
    } else if constexpr (std::is_enum_v<V>) {
      std::int32_t number = 0;
      const HRESULT status = given.toInt32(&number);
      value = static_cast<V>(number);
      return status;
    } else {
      value = given;
      return S_OK;
    }
  }
  // Whether the argument may be left out at the end of the list.
  static constexpr bool optional = std::is_same_v<std::remove_cvref_t<T>, Variant>;
  T pass() { return value; }
};

template <class T>
concept Interface = std::is_base_of_v<IUnknown, T>;

// In interface pointers: anything that answers the query, or nothing at all.
template <Interface I>
struct Argument<I*> {
  static constexpr bool isOut = false;
  static constexpr bool optional = true;
  static constexpr Param param{ParamType::Object, false, bareName<I>()};
  Ref<I> value;
  HRESULT take(const Variant& given) {
    Ref<IUnknown> object;
    if (const HRESULT status = given.toUnknown(&object); failed(status)) return status;
    if (!object) return S_OK;
    value = object.template as<I>();
    return value ? S_OK : DISP_E_TYPEMISMATCH;
  }
  I* pass() { return value.get(); }
};

inline Variant resultOf(Ref<IUnknown> object) {
  if (Ref<IDispatch> dispatch = object.as<IDispatch>()) return Variant(std::move(dispatch));
  return Variant(std::move(object));
}

// Out values.
template <class T>
requires(!Interface<T>) struct Argument<T*> {
  static constexpr bool isOut = true;
  static constexpr bool optional = true;
  static constexpr Param param{paramType<T>(), true, typeName<T>()};
  T value{};
  T* pass() { return &value; }
  Variant result() const {
    if constexpr (std::is_enum_v<T>) {
      return Variant(static_cast<std::int32_t>(value));
    } else {
      return Variant(value);
    }
  }
};

template <class I>
struct Argument<Ref<I>*> {
  static constexpr bool isOut = true;
  static constexpr bool optional = true;
  static constexpr Param param{ParamType::Object, true, bareName<I>()};
  Ref<I> value;
  Ref<I>* pass() { return &value; }
  Variant result() const { return value ? resultOf(Ref<IUnknown>(value.get())) : Variant::null(); }
};

template <auto Function>
struct MemberThunk;

template <class I, class... Args, HRESULT (I::*Function)(Args...)>
struct MemberThunk<Function> {
  static constexpr std::array<Param, sizeof...(Args)> params{Argument<Args>::param...};

  static HRESULT call(void* object, std::span<const Variant> given, Variant* result, InvokeError* error) {
    std::tuple<Argument<Args>...> arguments;
    std::size_t next = 0;
    HRESULT status = S_OK;
    const auto takeOne = [&](auto& argument) {
      using A = std::remove_cvref_t<decltype(argument)>;
      if constexpr (!A::isOut) {
        if (failed(status)) return;
        if (next < given.size()) {
          status = argument.take(given[next]);
        } else if (!A::optional) {
          status = DISP_E_PARAMNOTFOUND;
        }
        if (failed(status) && error) error->argument = static_cast<std::uint32_t>(next);
        ++next;
      }
    };
    std::apply([&](auto&... argument) { (takeOne(argument), ...); }, arguments);
    if (failed(status)) return status;
    status = std::apply(
        [&](auto&... argument) { return (static_cast<I*>(object)->*Function)(argument.pass()...); },
        arguments);
    const auto giveOne = [&](auto& argument) {
      if constexpr (std::remove_cvref_t<decltype(argument)>::isOut) *result = argument.result();
    };
    if (succeeded(status) && result)
      std::apply([&](auto&... argument) { (giveOne(argument), ...); }, arguments);
    return status;
  }

  static constexpr Thunk thunk{&call, std::span<const Param>(params)};
};

}  // namespace detail

template <auto Get, auto Put>
constexpr Member property(std::int32_t id, const char* name, const char* help, const char* arguments = "") {
  return {id, name, arguments, help, detail::MemberThunk<Get>::thunk, detail::MemberThunk<Put>::thunk, {}};
}
template <auto Get>
constexpr Member readOnly(std::int32_t id, const char* name, const char* help, const char* arguments = "") {
  return {id, name, arguments, help, detail::MemberThunk<Get>::thunk, {}, {}};
}
template <auto Put>
constexpr Member writeOnly(std::int32_t id, const char* name, const char* help, const char* arguments = "") {
  return {id, name, arguments, help, {}, detail::MemberThunk<Put>::thunk, {}};
}
template <auto Function>
constexpr Member method(std::int32_t id, const char* name, const char* arguments, const char* help) {
  return {id, name, arguments, help, {}, {}, detail::MemberThunk<Function>::thunk};
}

// The four operations of IDispatch over a description; Dual<I> forwards to them.
HRESULT dispatchNames(const TypeInfo& type, std::span<const BString> names, std::int32_t* ids);
HRESULT dispatchInvoke(const TypeInfo& type, void* object, std::int32_t id, InvokeKind kind,
                       std::span<const Variant> arguments, Variant* result, InvokeError* error);

// The dual interface I with its late-bound half implemented. A class lists Dual<I> in place of I.
template <class I>
class Dual : public I {
 public:
  using Base = I;
  static constexpr Guid iid = I::iid;

  HRESULT GetTypeInfoCount(std::uint32_t* count) override {
    *count = 1;
    return S_OK;
  }
  HRESULT GetTypeInfo(const TypeInfo** out) override {
    *out = &typeInfo<I>();
    return S_OK;
  }
  HRESULT GetIDsOfNames(std::span<const BString> names, std::int32_t* ids) override {
    return dispatchNames(typeInfo<I>(), names, ids);
  }
  HRESULT Invoke(std::int32_t id, InvokeKind kind, std::span<const Variant> arguments, Variant* result,
                 InvokeError* error) override {
    return dispatchInvoke(typeInfo<I>(), static_cast<I*>(this), id, kind, arguments, result, error);
  }
};

// FORGEYARD_DUAL(IThing), beside the interface: says that a description exists.
#define FORGEYARD_DUAL(Interface) \
  template <>                     \
  const TypeInfo& typeInfo<Interface>();

// FORGEYARD_TYPE_INFO(IThing, base, members...), in one source file: the description of IThing; `base` is the
// description of the dual interface above it or nullptr.
#define FORGEYARD_TYPE_INFO(Interface, base, ...)                          \
  template <>                                                              \
  const TypeInfo& typeInfo<Interface>() {                                  \
    static constexpr auto members = std::to_array<Member>({__VA_ARGS__});  \
    static const TypeInfo info{#Interface, Interface::iid, members, base}; \
    return info;                                                           \
  }

}  // namespace forgeyard
