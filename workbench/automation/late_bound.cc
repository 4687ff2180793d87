#include "workbench/automation/late_bound.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "platform/com/enumerators.h"
#include "typelib/settings_edit.h"
#include "typelib/type_library.h"
#include "workbench/base/nearest.h"

namespace forgeyard::workbench {

namespace {

std::string numberOf(HRESULT status) {
  std::array<char, 16> number{};
  std::snprintf(number.data(), number.size(), "(0x%08X)", static_cast<unsigned>(code(status)));
  return number.data();
}

std::string withNumber(HRESULT status) {
  const std::string words = describe(status);
  return words.starts_with("status ") ? words : words + " " + numberOf(status);
}

const TypeInfo* descriptionOf(const Ref<IDispatch>& face) {
  const TypeInfo* type = nullptr;
  return face && succeeded(face->GetTypeInfo(&type)) ? type : nullptr;
}

// Every dual interface begins with those of IDispatch, so a pointer to one is a pointer to the other.
Ref<IDispatch> faceOf(IUnknown* object, const Guid& iid) {
  void* face = nullptr;
  if (!object || failed(object->QueryInterface(iid, &face))) return nullptr;
  return Ref<IDispatch>::adopt(static_cast<IDispatch*>(face));
}

// Calls visit(face) for each, until it answers true.
template <class Visit>
void forEachFace(IUnknown* object, Visit&& visit) {
  if (const Ref<IDispatch> own = query<IDispatch>(object); own && visit(own)) return;
  for (const TypeInfo* type : typeLibrary()) {
    if (const Ref<IDispatch> face = faceOf(object, type->iid); face && visit(face)) return;
  }
}

std::optional<FoundMember> memberOf(const Ref<IDispatch>& face, const BString& name) {
  std::int32_t id = 0;
  if (failed(face->GetIDsOfNames(std::span(&name, 1), &id))) return std::nullopt;
  const TypeInfo* type = descriptionOf(face);
  const Member* member = type ? type->find(id) : nullptr;
  return member ? std::optional(FoundMember{face, type, member}) : std::nullopt;
}

std::size_t argumentsTaken(const Thunk& form) {
  return static_cast<std::size_t>(
      std::count_if(form.params.begin(), form.params.end(), [](const Param& param) { return !param.out; }));
}

bool meansAnArgument(HRESULT status) {
  return status == DISP_E_TYPEMISMATCH || status == DISP_E_OVERFLOW || status == DISP_E_PARAMNOTFOUND;
}

std::string reason(const FoundMember& found, InvokeKind kind, HRESULT status, const InvokeError& error) {
  if (status == DISP_E_MEMBERNOTFOUND)
    return (kind == InvokeKind::PropertyPut   ? "it can't be set "
            : kind == InvokeKind::PropertyGet ? "it can't be read "
                                              : "it is no method ") +
           numberOf(status);
  std::string text;
  if (meansAnArgument(status)) {
    const Thunk& form = kind == InvokeKind::PropertyPut ? found.member->put : found.member->method;
    // The value of a put counts as one too, but that is not how anybody sees it.
    const bool value = kind == InvokeKind::PropertyPut && error.argument + 1 == argumentsTaken(form);
    text = value ? "the value: " : "argument " + std::to_string(error.argument + 1) + ": ";
  }
  return text + withNumber(status);
}

// The project's load and save are best effort; what they left undone stands in its report.
HRESULT unreported(const FoundMember& found) {
  const Ref<IProjectReport> report = found.face.as<IProjectReport>();
  if (!report) return S_OK;
  const std::string_view name = found.member->name;
  return name == "ProjectSave" ? report->saveFailure() : name == "ProjectLoad" ? report->loadFailure() : S_OK;
}

Variant invoke(const FoundMember& found, InvokeKind kind, std::span<const Variant> arguments) {
  Variant result;
  InvokeError error;
  HRESULT status = found.face->Invoke(found.member->id, kind, arguments, &result, &error);
  if (kind == InvokeKind::Method) {
    const HRESULT told = unreported(found);
    if (failed(told)) status = told;
  }
  if (failed(status)) throw MemberError(status, found.name(), reason(found, kind, status, error));
  return result;
}

template <class Enum>
bool collect(IUnknown* object, std::vector<Variant>& values) {
  const Ref<Enum> walk = query<Enum>(object);
  if (!walk) return false;
  forEach(walk, [&](const typename Enum::Value& value) {
    if constexpr (std::is_same_v<typename Enum::Value, Ref<IUnknown>>) {
      values.push_back(detail::resultOf(value));
    } else {
      values.emplace_back(value);
    }
  });
  return true;
}

bool collectAny(IUnknown* object, std::vector<Variant>& values) {
  return collect<IEnumVARIANT>(object, values) || collect<IEnumString>(object, values) ||
         collect<IEnumUnknown>(object, values);
}

}  // namespace

MemberError::MemberError(HRESULT status, const std::string& member, const std::string& why)
    : Failure(member + ": " + why), status_(status), member_(member) {}

bool FoundMember::isPlainProperty() const {
  return !member->method && argumentsTaken(member->get) == 0 && argumentsTaken(member->put) <= 1;
}

std::optional<FoundMember> findMember(IUnknown* object, std::string_view name) {
  const BString wide = BString::fromNarrow(name);
  std::optional<FoundMember> found;
  forEachFace(object, [&](const Ref<IDispatch>& face) { return (found = memberOf(face, wide)).has_value(); });
  return found;
}

FoundMember requireMember(IUnknown* object, std::string_view name) {
  if (auto found = findMember(object, name)) return *found;
  std::vector<std::string> names;
  for (const TypeInfo* type : interfacesOf(object)) {
    for (; type; type = type->base) {
      for (const Member& member : type->members) names.emplace_back(member.name);
    }
  }
  throw MemberError(DISP_E_UNKNOWNNAME, typeNameOf(object) + "." + std::string(name),
                    withNumber(DISP_E_UNKNOWNNAME) + "." + suggestion(name, names, "members"));
}

FoundMember defaultMember(IUnknown* object) {
  const Ref<IDispatch> face = query<IDispatch>(object);
  const TypeInfo* type = descriptionOf(face);
  const Member* member = type ? type->find(DISPID_VALUE) : nullptr;
  if (!member) throw MemberError(DISP_E_MEMBERNOTFOUND, typeNameOf(object), "it is no collection with items");
  return {face, type, member};
}

Variant getProperty(const FoundMember& found, std::span<const Variant> arguments) {
  return invoke(found, InvokeKind::PropertyGet, arguments);
}

void putProperty(const FoundMember& found, std::span<const Variant> argumentsAndValue) {
  invoke(found, InvokeKind::PropertyPut, argumentsAndValue);
  check(reportEdit(found.face.get(), found.member->id));
}

Variant callMethod(const FoundMember& found, std::span<const Variant> arguments) {
  return invoke(found, InvokeKind::Method, arguments);
}

Variant evaluate(const FoundMember& found, std::span<const Variant> arguments) {
  return found.member->method ? callMethod(found, arguments) : getProperty(found, arguments);
}

std::vector<Variant> elementsOf(IUnknown* object) {
  std::vector<Variant> values;
  if (collectAny(object, values)) return values;
  const Ref<IDispatch> face = query<IDispatch>(object);
  const TypeInfo* type = descriptionOf(face);
  const Member* member = type ? type->find(DISPID_NEWENUM) : nullptr;
  if (!member) throw MemberError(DISP_E_MEMBERNOTFOUND, typeNameOf(object), "it is no collection");
  Ref<IUnknown> walk;
  check(getProperty({face, type, member}).toUnknown(&walk));
  collectAny(walk.get(), values);
  return values;
}

Ref<IUnknown> listOf(std::span<const Variant> values) {
  std::vector<BString> texts;
  std::vector<Ref<IUnknown>> objects;
  for (const Variant& value : values) {
    Ref<IUnknown> object;
    if (const auto* text = value.get<BString>()) {
      texts.push_back(*text);
    } else if (succeeded(value.toUnknown(&object)) && object) {
      objects.push_back(std::move(object));
    } else {
      throw Failure("A list to hand over has texts or objects in it, nothing else.");
    }
  }
  if (objects.empty()) return make<ListEnumerator<IEnumString>>(std::move(texts));
  if (!texts.empty()) throw Failure("A list to hand over has texts or objects in it, not both.");
  return make<ListEnumerator<IEnumUnknown>>(std::move(objects));
}

std::vector<const TypeInfo*> interfacesOf(IUnknown* object) {
  std::vector<const TypeInfo*> types;
  forEachFace(object, [&](const Ref<IDispatch>& face) {
    const TypeInfo* type = descriptionOf(face);
    const auto covers = [&](const TypeInfo* known) {
      for (; known; known = known->base) {
        if (known->iid == type->iid) return true;
      }
      return false;
    };
    if (type && std::none_of(types.begin(), types.end(), covers)) types.push_back(type);
    return false;
  });
  return types;
}

std::string typeNameOf(IUnknown* object) {
  const TypeInfo* type = descriptionOf(query<IDispatch>(object));
  return type ? type->name : "object";
}

}  // namespace forgeyard::workbench
