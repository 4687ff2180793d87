#include "model/core/cookie_table.h"

#include <algorithm>

namespace forgeyard {

const BString* CookieTable::find(const BString& name) const {
  const auto found = values_.find(name.narrow());
  return found == values_.end() ? nullptr : &found->second;
}

std::vector<BString> CookieTable::names() const {
  std::vector<BString> names;
  names.reserve(values_.size());
  for (const auto& [name, value] : values_) names.push_back(BString::fromNarrow(name));
  return names;
}

TextPairs CookieTable::pairs() const {
  TextPairs pairs;
  for (const auto& [name, value] : values_) pairs.emplace_back(BString::fromNarrow(name), value);
  return pairs;
}

void CookieTable::assign(const TextPairs& pairs) {
  values_.clear();
  for (const auto& [name, value] : pairs) put(name, value);
}

bool operator==(const CookieTable& a, const CookieTable& b) {
  return std::equal(a.values_.begin(), a.values_.end(), b.values_.begin(), b.values_.end(),
                    [](const auto& x, const auto& y) {
                      return x.first == y.first && x.second == y.second &&
                             x.second.isNull() == y.second.isNull();
                    });
}

HRESULT SupportCookies::get_Cookie(const BString& cookie, BString* value) {
  return guard([&] {
    const BString* found = cookies().find(cookie);
    if (!found) return S_FALSE;
    *value = *found;
    return S_OK;
  });
}

HRESULT SupportCookies::put_Cookie(const BString& cookie, const BString& value) {
  return guard([&] { cookies().put(cookie, value); });
}

HRESULT SupportCookies::DeleteCookie(const BString& cookie) {
  return guard([&] { return cookies().remove(cookie) ? S_OK : S_FALSE; });
}

HRESULT SupportCookies::GetCookies(Ref<IEnumString>* out) {
  return guard([&] { *out = make<ListEnumerator<IEnumString>>(cookies().names()); });
}

}  // namespace forgeyard
