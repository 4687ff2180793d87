#include "platform/com/type_info.h"

namespace forgeyard {

namespace {

char lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool sameName(const char* ascii, std::u16string_view name) {
  for (const char16_t c : name) {
    if (*ascii == 0 || c > 0x7F || lower(*ascii) != lower(static_cast<char>(c))) return false;
    ++ascii;
  }
  return *ascii == 0;
}

}  // namespace

const Member* TypeInfo::find(std::int32_t id) const {
  for (const TypeInfo* type = this; type; type = type->base) {
    for (const Member& member : type->members) {
      if (member.id == id) return &member;
    }
  }
  return nullptr;
}

const Member* TypeInfo::find(const BString& wanted) const {
  for (const TypeInfo* type = this; type; type = type->base) {
    for (const Member& member : type->members) {
      if (sameName(member.name, wanted)) return &member;
    }
  }
  return nullptr;
}

HRESULT dispatchNames(const TypeInfo& type, std::span<const BString> names, std::int32_t* ids) {
  HRESULT status = S_OK;
  for (std::size_t i = 0; i < names.size(); ++i) {
    const Member* member = type.find(names[i]);
    ids[i] = member ? member->id : -1;
    if (!member) status = DISP_E_UNKNOWNNAME;
  }
  return status;
}

HRESULT dispatchInvoke(const TypeInfo& type, void* object, std::int32_t id, InvokeKind kind,
                       std::span<const Variant> arguments, Variant* result, InvokeError* error) {
  const Member* member = type.find(id);
  if (!member) return DISP_E_MEMBERNOTFOUND;
  const Thunk& thunk = kind == InvokeKind::Method        ? member->method
                       : kind == InvokeKind::PropertyGet ? member->get
                                                         : member->put;
  if (!thunk) return DISP_E_MEMBERNOTFOUND;
  return thunk.call(object, arguments, result, error);
}

}  // namespace forgeyard
