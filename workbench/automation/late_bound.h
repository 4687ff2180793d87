#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/com/type_info.h"
#include "workbench/base/failure.h"

namespace forgeyard::workbench {

// What scripts and remote clients do with an object of the module, by IDispatch alone. All its dual
// interfaces count as one: a member is looked for in the interface that the object gives out as IDispatch,
// then in the others, in the order of the type library. Main thread only.

// A call that failed: a message with the member's name, the reason and the status.
class MemberError : public Failure {
 public:
  MemberError(HRESULT status, const std::string& member, const std::string& why);

  HRESULT status() const noexcept { return status_; }
  const std::string& member() const noexcept { return member_; }  // "IProject.ProjectSave"

 private:
  HRESULT status_;
  std::string member_;
};

// A member of one of an object's interfaces.
struct FoundMember {
  Ref<IDispatch> face;
  const TypeInfo* type;
  const Member* member;

  std::string name() const { return std::string(type->name) + "." + member->name; }
  // Whether it is read without arguments.
  bool isPlainProperty() const;
};

// Names in any case.
std::optional<FoundMember> findMember(IUnknown* object, std::string_view name);
// Throws a MemberError with the nearest name that there is.
FoundMember requireMember(IUnknown* object, std::string_view name);
// What a collection gives without a name: its default member. Throws a MemberError.
FoundMember defaultMember(IUnknown* object);

// Throw a MemberError. A save that left the file as it was is a failure here.
Variant getProperty(const FoundMember& found, std::span<const Variant> arguments = {});
void putProperty(const FoundMember& found, std::span<const Variant> argumentsAndValue);
Variant callMethod(const FoundMember& found, std::span<const Variant> arguments);
// Reads or calls, whichever the member is for.
Variant evaluate(const FoundMember& found, std::span<const Variant> arguments);

// What a collection or an enumerator walks. Throws a MemberError for an object that is neither.
std::vector<Variant> elementsOf(IUnknown* object);

// A list to hand to a member: texts as IEnumString, objects as IEnumUnknown. Throws a Failure for a mixture.
Ref<IUnknown> listOf(std::span<const Variant> values);

// The descriptions of all its dual interfaces, the one that it gives out as IDispatch first.
std::vector<const TypeInfo*> interfacesOf(IUnknown* object);
// "IProject"; "object" for one without a description.
std::string typeNameOf(IUnknown* object);

}  // namespace forgeyard::workbench
