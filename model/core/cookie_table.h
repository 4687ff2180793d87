#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/com/enumerators.h"
#include "platform/storage/records/record_fields.h"
#include "typelib/cookies.h"

namespace forgeyard {

// Named text values, sorted by name, each name once. A value may be null, which its record tells from empty.
class CookieTable {
 public:
  // Null when there is no such cookie.
  const BString* find(const BString& name) const;
  void put(const BString& name, const BString& value) { values_[name.narrow()] = value; }
  // Whether there was one.
  bool remove(const BString& name) { return values_.erase(name.narrow()) != 0; }
  std::vector<BString> names() const;

  // All of them, as a record has them. Of several with one name the last counts.
  TextPairs pairs() const;
  void assign(const TextPairs& pairs);

  // Whether the records of both would be the same.
  friend bool operator==(const CookieTable& a, const CookieTable& b);

 private:
  std::map<std::string, BString> values_;
};

// The cookies of an object, over the table that it keeps. Stands in ComObject's list.
class SupportCookies : public Dual<IKVSupportCookies> {
 public:
  using Base = IKVSupportCookies;
  static constexpr Guid iid = IKVSupportCookies::iid;

  HRESULT get_Cookie(const BString& cookie, BString* value) override;
  HRESULT put_Cookie(const BString& cookie, const BString& value) override;
  HRESULT DeleteCookie(const BString& cookie) override;
  HRESULT GetCookies(Ref<IEnumString>* out) override;

 protected:
  virtual CookieTable& cookies() = 0;
};

}  // namespace forgeyard
