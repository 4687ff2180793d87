#include "platform/com/type_info.h"

#include <algorithm>

#include "platform/text/fold.h"

namespace forgeyard {

namespace {

bool sameName(const char* ascii, std::u16string_view name) {
  for (const char16_t c : name) {
    if (*ascii == 0 || foldAscii(static_cast<char16_t>(*ascii)) != foldAscii(c)) return false;
    ++ascii;
  }
  return *ascii == 0;
}

Thunk formOf(const Member& member, InvokeKind kind) {
  switch (kind) {
    case InvokeKind::Method:
      return member.method;
    case InvokeKind::PropertyGet:
      return member.get;
    case InvokeKind::PropertyPut:
      return member.put;
  }
  return {};
}

HRESULT checkCount(const Thunk& form, InvokeKind kind, std::size_t given, InvokeError* error) {
  const auto taken = static_cast<std::size_t>(
      std::count_if(form.params.begin(), form.params.end(), [](const Param& param) { return !param.out; }));
  if (given > taken) return DISP_E_BADPARAMCOUNT;
  // What a method may do without is the very point of a put.
  if (kind != InvokeKind::PropertyPut || given == taken) return S_OK;
  if (error) error->argument = static_cast<std::uint32_t>(given);
  return DISP_E_PARAMNOTFOUND;
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
  Variant given;
  const HRESULT status = guard([&] {
    const Member* member = type.find(id);
    const Thunk form = member ? formOf(*member, kind) : Thunk{};
    if (!form) return DISP_E_MEMBERNOTFOUND;
    const HRESULT counted = checkCount(form, kind, arguments.size(), error);
    return failed(counted) ? counted : form.call(object, arguments, &given, error);
  });
  if (result) *result = std::move(given);
  return status;
}

}  // namespace forgeyard
