#include "workbench/project/properties.h"

#include <algorithm>
#include <array>

#include "platform/text/fold.h"
#include "typelib/settings_edit.h"
#include "workbench/base/failure.h"

namespace forgeyard::workbench {

namespace {

bool isPlain(const Thunk& thunk) {
  if (!thunk || thunk.params.size() != 1) return false;
  const ParamType type = thunk.params.front().type;
  return type != ParamType::Object && type != ParamType::Variant;
}

// A choice among several is an unsigned number, and "yes" is none of them.
bool isFlag(const Thunk& put) {
  const ParamType type = put.params.front().type;
  return type == ParamType::I4 || type == ParamType::Bool;
}

const TypeInfo& descriptionOf(IDispatch& object) {
  const TypeInfo* info = nullptr;
  check(object.GetTypeInfo(&info));
  return *info;
}

std::vector<std::string> propertiesWith(const TypeInfo& info, Thunk Member::*form) {
  std::vector<std::string> names;
  if (info.base) names = propertiesWith(*info.base, form);
  for (const Member& member : info.members) {
    if (isPlain(member.*form)) names.emplace_back(member.name);
  }
  return names;
}

const Member* find(const TypeInfo& type, const std::string& property, Thunk Member::*form) {
  const Member* member = type.find(BString::fromNarrow(property));
  return member && isPlain(member->*form) ? member : nullptr;
}

const Member* find(IDispatch& object, const std::string& property, Thunk Member::*form) {
  return find(descriptionOf(object), property, form);
}

struct Word {
  std::string_view text;
  std::int32_t value;
};
constexpr std::array kWords{Word{"yes", 1}, Word{"on", 1},  Word{"true", 1},
                            Word{"no", 0},  Word{"off", 0}, Word{"false", 0}};

Variant argumentFor(const Member& member, const std::string& value) {
  if (isFlag(member.put)) {
    for (const Word& word : kWords) {
      if (equalFoldedAscii(word.text, value)) return Variant(word.value);
    }
  }
  return Variant(BString::fromNarrow(value));
}

std::int32_t identifierOf(IDispatch& object, const std::string& property) {
  const BString name = BString::fromNarrow(property);
  std::int32_t id = 0;
  require(object.GetIDsOfNames(std::span(&name, 1), &id), property);
  return id;
}

}  // namespace

std::vector<ValueChoice> valueChoices(const TypeInfo& type, const std::string& property) {
  const Member* member = find(type, property, &Member::put);
  if (!member) return {};
  std::vector<ValueChoice> choices;
  for (const Choice& choice : member->choices) choices.push_back({std::to_string(choice.value), choice.name});
  if (choices.empty() && isFlag(member->put)) return {{"0", "no"}, {"1", "yes"}};
  return choices;
}

std::string propertyHelp(const TypeInfo& type, const std::string& property) {
  const Member* member = type.find(BString::fromNarrow(property));
  return member ? member->help : "";
}

std::vector<Assignment> assignments(const std::vector<std::string>& texts) {
  std::vector<Assignment> result;
  for (const std::string& text : texts) {
    const std::size_t sign = text.find('=');
    if (sign == 0 || sign == text.npos)
      throw Failure("\"" + text +
                    "\" sets nothing. Write PROPERTY=VALUE, with quotes around a value with blanks.");
    result.push_back({text.substr(0, sign), text.substr(sign + 1)});
  }
  return result;
}

std::vector<std::string> readableProperties(IDispatch& object) {
  return readableProperties(descriptionOf(object));
}

std::vector<std::string> readableProperties(const TypeInfo& type) {
  return propertiesWith(type, &Member::get);
}

std::vector<std::string> writableProperties(IDispatch& object) {
  return writableProperties(descriptionOf(object));
}

std::vector<std::string> writableProperties(const TypeInfo& type) {
  return propertiesWith(type, &Member::put);
}

bool hasReadable(IDispatch& object, const std::string& property) {
  return find(object, property, &Member::get) != nullptr;
}

bool hasWritable(IDispatch& object, const std::string& property) {
  return find(object, property, &Member::put) != nullptr;
}

Variant propertyValue(IDispatch& object, const std::string& property) {
  Variant value;
  require(object.Invoke(identifierOf(object, property), InvokeKind::PropertyGet, {}, &value, nullptr),
          property);
  return value;
}

std::string readProperty(IDispatch& object, const std::string& property) {
  BString text;
  require(propertyValue(object, property).toText(&text), property);
  return text.narrow();
}

void putProperty(IDispatch& object, const std::string& property, const std::string& value) {
  const Member* member = find(object, property, &Member::put);
  if (!member) throw Failure(property + " can't be set.");
  const Variant argument = argumentFor(*member, value);
  const HRESULT status = object.Invoke(identifierOf(object, property), InvokeKind::PropertyPut,
                                       std::span(&argument, 1), nullptr, nullptr);
  if (status == DISP_E_TYPEMISMATCH || status == DISP_E_OVERFLOW) {
    throw Failure("\"" + value + "\" is no value for " + member->name +
                  ", which takes a number: " + member->help + ".");
  }
  require(status, std::string(member->name) + " can't be set to \"" + value + "\"");
}

void editProperty(IDispatch& object, const std::string& property, const std::string& value) {
  putProperty(object, property, value);
  require(reportEdit(&object, identifierOf(object, property)), "What follows from " + property);
}

}  // namespace forgeyard::workbench
