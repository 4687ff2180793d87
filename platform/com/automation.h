#pragma once

#include <concepts>
#include <cstdint>
#include <span>
#include <utility>
#include <variant>

#include "platform/com/ref.h"
#include "platform/text/bstring.h"

namespace forgeyard {

class Variant;
struct TypeInfo;

enum class InvokeKind : std::uint8_t { Method = 1, PropertyGet = 2, PropertyPut = 4 };

// What Invoke tells about a failure beside its status.
struct InvokeError {
  // Position, from 0, of the argument that DISP_E_TYPEMISMATCH, DISP_E_OVERFLOW or DISP_E_PARAMNOTFOUND
  // means.
  std::uint32_t argument = 0;
};

// Late-bound calls. Names are compared without regard to case.
struct IDispatch : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("00020400-0000-0000-C000-000000000046");

  virtual HRESULT GetTypeInfoCount(std::uint32_t* count) = 0;
  // The description of the dual interface behind this pointer; it lives as long as the program or module.
  virtual HRESULT GetTypeInfo(const TypeInfo** out) = 0;
  virtual HRESULT GetIDsOfNames(std::span<const BString> names, std::int32_t* ids) = 0;
  // Arguments stand in the order of the declaration, out parameters left out; the out parameter becomes
  // *result, which is empty for a call that fails or has none. Arguments that are objects or values of any
  // type may be left out at the end; for a put the value is the last argument and always there. `result` and
  // `error` may be null. DISP_E_BADPARAMCOUNT for too many arguments, DISP_E_PARAMNOTFOUND for a missing one.
  virtual HRESULT Invoke(std::int32_t id, InvokeKind kind, std::span<const Variant> arguments,
                         Variant* result, InvokeError* error) = 0;
};

// Type tags of automation values, with their published numbers.
enum class VARTYPE : std::uint16_t {
  VT_EMPTY = 0,
  VT_NULL = 1,
  VT_I4 = 3,
  VT_R8 = 5,
  VT_BSTR = 8,
  VT_DISPATCH = 9,
  VT_BOOL = 11,
  VT_UNKNOWN = 13,
  VT_UI4 = 19,
};

// The value of automation: what a script, a remote client or a collection hands over.
class Variant {
 public:
  Variant() noexcept = default;
  Variant(std::int32_t value) noexcept : value_(value) {}   // NOLINT: values convert
  Variant(std::uint32_t value) noexcept : value_(value) {}  // NOLINT
  // Truth alone: no pointer becomes one.
  template <std::same_as<bool> Truth>
  Variant(Truth value) noexcept : value_(value) {}                        // NOLINT
  Variant(double value) noexcept : value_(value) {}                       // NOLINT
  Variant(BString value) noexcept : value_(std::move(value)) {}           // NOLINT
  Variant(const char16_t* text) : value_(BString(text)) {}                // NOLINT
  Variant(Ref<IDispatch> object) noexcept : value_(std::move(object)) {}  // NOLINT
  Variant(Ref<IUnknown> object) noexcept : value_(std::move(object)) {}   // NOLINT
  static Variant null() noexcept {
    Variant result;
    result.value_ = Null{};
    return result;
  }

  VARTYPE type() const noexcept;

  // The value when it has exactly that type, else null.
  template <class T>
  const T* get() const noexcept {
    return std::get_if<T>(&value_);
  }

  // Conversions as automation does them: DISP_E_TYPEMISMATCH where none exists, DISP_E_OVERFLOW where the
  // value doesn't fit; *out stays as it is then. Text converts to numbers only when all of it is one, blanks
  // around it aside; fractions are rounded, halves to the even number. Truth is -1 as a number, which is all
  // bits set for an unsigned one.
  HRESULT toInt32(std::int32_t* out) const;
  HRESULT toUint32(std::uint32_t* out) const;
  HRESULT toBool(bool* out) const;
  HRESULT toDouble(double* out) const;
  HRESULT toText(BString* out) const;
  // Null for an empty or null value.
  HRESULT toUnknown(Ref<IUnknown>* out) const;

 private:
  struct Null {};
  std::variant<std::monostate, Null, std::int32_t, std::uint32_t, bool, double, BString, Ref<IDispatch>,
               Ref<IUnknown>>
      value_;
};

}  // namespace forgeyard
