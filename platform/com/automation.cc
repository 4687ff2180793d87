#include "platform/com/automation.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>

#include "platform/text/fold.h"

namespace forgeyard {

namespace {

// Of the forms that from_chars knows only digits, point, sign and exponent are numbers here.
HRESULT numberFromText(const BString& text, double* out) {
  constexpr std::string_view blanks = " \t";
  const std::string narrow = text.narrow();
  std::string_view digits = narrow;
  digits.remove_prefix(std::min(digits.find_first_not_of(blanks), digits.size()));
  digits = digits.substr(0, digits.find_last_not_of(blanks) + 1);
  if (digits.starts_with('+') && !digits.starts_with("+-")) digits.remove_prefix(1);
  if (digits.find_first_not_of("0123456789.eE+-") != digits.npos) return DISP_E_TYPEMISMATCH;
  double value = 0;
  const char* end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, value);
  if (error == std::errc::invalid_argument || stop != end) return DISP_E_TYPEMISMATCH;
  if (error != std::errc()) return DISP_E_OVERFLOW;
  *out = value;
  return S_OK;
}

template <class T>
HRESULT integral(double value, T* out) {
  const double rounded = std::nearbyint(value);
  if (!(rounded >= static_cast<double>(std::numeric_limits<T>::min()) &&
        rounded <= static_cast<double>(std::numeric_limits<T>::max()))) {
    return DISP_E_OVERFLOW;
  }
  *out = static_cast<T>(rounded);
  return S_OK;
}

}  // namespace

VARTYPE Variant::type() const noexcept {
  constexpr std::array types{VARTYPE::VT_EMPTY, VARTYPE::VT_NULL,     VARTYPE::VT_I4,
                             VARTYPE::VT_UI4,   VARTYPE::VT_BOOL,     VARTYPE::VT_R8,
                             VARTYPE::VT_BSTR,  VARTYPE::VT_DISPATCH, VARTYPE::VT_UNKNOWN};
  return types[value_.index()];
}

HRESULT Variant::toDouble(double* out) const {
  if (const auto* i = get<std::int32_t>()) {
    *out = *i;
  } else if (const auto* u = get<std::uint32_t>()) {
    *out = *u;
  } else if (const auto* b = get<bool>()) {
    *out = *b ? -1 : 0;
  } else if (const auto* d = get<double>()) {
    *out = *d;
  } else if (const auto* text = get<BString>()) {
    return numberFromText(*text, out);
  } else if (type() == VARTYPE::VT_EMPTY) {
    *out = 0;
  } else {
    return DISP_E_TYPEMISMATCH;
  }
  return S_OK;
}

HRESULT Variant::toInt32(std::int32_t* out) const {
  double value = 0;
  if (const HRESULT status = toDouble(&value); failed(status)) return status;
  return integral(value, out);
}

HRESULT Variant::toUint32(std::uint32_t* out) const {
  if (const auto* b = get<bool>()) {
    *out = *b ? ~0u : 0;
    return S_OK;
  }
  double value = 0;
  if (const HRESULT status = toDouble(&value); failed(status)) return status;
  return integral(value, out);
}

HRESULT Variant::toBool(bool* out) const {
  if (const auto* text = get<BString>()) {
    if (equalFoldedAscii(text->view(), u"true")) {
      *out = true;
      return S_OK;
    }
    if (equalFoldedAscii(text->view(), u"false")) {
      *out = false;
      return S_OK;
    }
  }
  double value = 0;
  if (const HRESULT status = toDouble(&value); failed(status)) return status;
  *out = value != 0;
  return S_OK;
}

HRESULT Variant::toText(BString* out) const {
  if (const auto* text = get<BString>()) {
    *out = *text;
  } else if (const auto* i = get<std::int32_t>()) {
    *out = BString::fromNarrow(std::to_string(*i));
  } else if (const auto* u = get<std::uint32_t>()) {
    *out = BString::fromNarrow(std::to_string(*u));
  } else if (const auto* b = get<bool>()) {
    *out = *b ? u"True" : u"False";
  } else if (const auto* d = get<double>()) {
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), *d).ptr;
    *out =
        BString::fromNarrow(std::string_view(digits.data(), static_cast<std::size_t>(end - digits.data())));
  } else if (type() == VARTYPE::VT_EMPTY) {
    *out = u"";
  } else {
    return DISP_E_TYPEMISMATCH;
  }
  return S_OK;
}

HRESULT Variant::toUnknown(Ref<IUnknown>* out) const {
  *out = nullptr;
  if (const auto* dispatch = get<Ref<IDispatch>>()) {
    *out = Ref<IUnknown>(dispatch->get());
  } else if (const auto* unknown = get<Ref<IUnknown>>()) {
    *out = *unknown;
  } else if (type() != VARTYPE::VT_EMPTY && type() != VARTYPE::VT_NULL) {
    return DISP_E_TYPEMISMATCH;
  }
  return S_OK;
}

}  // namespace forgeyard
