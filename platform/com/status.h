#pragma once

#include <cstdint>
#include <exception>
#include <new>
#include <type_traits>
#include <utility>

namespace forgeyard {

// The status of every interface operation. Negative values are failures; 0 is success and 1 a success that
// says that nothing was done.
enum class [[nodiscard]] HRESULT : std::int32_t{};

namespace detail {
constexpr HRESULT status(std::uint32_t code) {
  return static_cast<HRESULT>(static_cast<std::int32_t>(code));
}
}  // namespace detail

inline constexpr HRESULT S_OK = detail::status(0);
inline constexpr HRESULT S_FALSE = detail::status(1);
inline constexpr HRESULT E_NOTIMPL = detail::status(0x80004001);
inline constexpr HRESULT E_NOINTERFACE = detail::status(0x80004002);
inline constexpr HRESULT E_POINTER = detail::status(0x80004003);
inline constexpr HRESULT E_FAIL = detail::status(0x80004005);
inline constexpr HRESULT E_UNEXPECTED = detail::status(0x8000FFFF);
inline constexpr HRESULT E_OUTOFMEMORY = detail::status(0x8007000E);
inline constexpr HRESULT E_INVALIDARG = detail::status(0x80070057);
inline constexpr HRESULT CLASS_E_NOAGGREGATION = detail::status(0x80040110);
inline constexpr HRESULT CLASS_E_CLASSNOTAVAILABLE = detail::status(0x80040111);
inline constexpr HRESULT REGDB_E_CLASSNOTREG = detail::status(0x80040154);
inline constexpr HRESULT CO_E_DLLNOTFOUND = detail::status(0x800401F8);
inline constexpr HRESULT CONNECT_E_NOCONNECTION = detail::status(0x80040200);
inline constexpr HRESULT DISP_E_MEMBERNOTFOUND = detail::status(0x80020003);
inline constexpr HRESULT DISP_E_PARAMNOTFOUND = detail::status(0x80020004);
inline constexpr HRESULT DISP_E_TYPEMISMATCH = detail::status(0x80020005);
inline constexpr HRESULT DISP_E_UNKNOWNNAME = detail::status(0x80020006);
inline constexpr HRESULT DISP_E_EXCEPTION = detail::status(0x80020009);
inline constexpr HRESULT DISP_E_OVERFLOW = detail::status(0x8002000A);
inline constexpr HRESULT DISP_E_BADPARAMCOUNT = detail::status(0x8002000E);
inline constexpr HRESULT STG_E_INVALIDFUNCTION = detail::status(0x80030001);
inline constexpr HRESULT STG_E_FILENOTFOUND = detail::status(0x80030002);
inline constexpr HRESULT STG_E_PATHNOTFOUND = detail::status(0x80030003);
inline constexpr HRESULT STG_E_ACCESSDENIED = detail::status(0x80030005);
inline constexpr HRESULT STG_E_INSUFFICIENTMEMORY = detail::status(0x80030008);
inline constexpr HRESULT STG_E_INVALIDPOINTER = detail::status(0x80030009);
inline constexpr HRESULT STG_E_SEEKERROR = detail::status(0x80030019);
inline constexpr HRESULT STG_E_WRITEFAULT = detail::status(0x8003001D);
inline constexpr HRESULT STG_E_READFAULT = detail::status(0x8003001E);
inline constexpr HRESULT STG_E_SHAREVIOLATION = detail::status(0x80030020);
inline constexpr HRESULT STG_E_LOCKVIOLATION = detail::status(0x80030021);
inline constexpr HRESULT STG_E_FILEALREADYEXISTS = detail::status(0x80030050);
inline constexpr HRESULT STG_E_INVALIDPARAMETER = detail::status(0x80030057);
inline constexpr HRESULT STG_E_MEDIUMFULL = detail::status(0x80030070);
inline constexpr HRESULT STG_E_INVALIDHEADER = detail::status(0x800300FB);
inline constexpr HRESULT STG_E_INVALIDNAME = detail::status(0x800300FC);
inline constexpr HRESULT STG_E_NOTCURRENT = detail::status(0x80030101);
inline constexpr HRESULT STG_E_REVERTED = detail::status(0x80030102);
inline constexpr HRESULT STG_E_CANTSAVE = detail::status(0x80030103);
inline constexpr HRESULT STG_E_DOCFILECORRUPT = detail::status(0x80030109);

constexpr std::int32_t code(HRESULT status) noexcept {
  return static_cast<std::int32_t>(status);
}
constexpr bool succeeded(HRESULT status) noexcept {
  return code(status) >= 0;
}
constexpr bool failed(HRESULT status) noexcept {
  return code(status) < 0;
}
// Says in the code that the caller goes on whatever the status is.
constexpr void ignore(HRESULT) noexcept {}

// A failed status on its way to the operation that answers for it. It never crosses an interface: guard()
// turns it into a status again.
class StatusError : public std::exception {
 public:
  explicit StatusError(HRESULT status) noexcept : status_(status) {}
  HRESULT status() const noexcept { return status_; }
  const char* what() const noexcept override { return "an operation reported a failed status"; }

 private:
  HRESULT status_;
};

// Throws StatusError for a failed status.
inline void check(HRESULT status) {
  if (failed(status)) throw StatusError(status);
}

// The body of an interface operation: runs it and turns every exception into a status. The body returns
// HRESULT or nothing, which is S_OK.
template <class Body>
HRESULT guard(Body&& body) noexcept {
  try {
    if constexpr (std::is_void_v<decltype(body())>) {
      std::forward<Body>(body)();
      return S_OK;
    } else {
      return std::forward<Body>(body)();
    }
  } catch (const StatusError& error) {
    return error.status();
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_FAIL;
  }
}

}  // namespace forgeyard
