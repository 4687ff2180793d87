#include "workbench/automation/idl.h"

#include "typelib/classes.h"
#include "typelib/type_library.h"

namespace forgeyard::workbench {

namespace {

constexpr std::string_view kValue = "value";

// The names in the list, one for each parameter; a property's value need not be named there.
std::vector<std::string> parameterNames(const Member& member, const Thunk& form) {
  std::vector<std::string> names;
  std::string_view rest = member.arguments;
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find(','), rest.size());
    names.emplace_back(rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  while (names.size() < form.params.size()) names.emplace_back(kValue);
  return names;
}

std::string typeText(const Param& param) {
  std::string text(param.typeName);
  if (param.type == ParamType::Object) text += '*';
  if (param.out) text += '*';
  return text;
}

std::string parameterText(const Param& param, const std::string& name) {
  return (param.out ? "[out, retval] " : "[in] ") + typeText(param) + " " + name;
}

std::string quoted(std::string_view text) {
  std::string result = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') result += '\\';
    result += c;
  }
  return result + '"';
}

std::string idText(std::int32_t id) {
  return "id(" + std::to_string(id) + ")";
}

void addForm(std::vector<std::string>& lines, const Member& member, const Thunk& form, const char* kind) {
  if (!form) return;
  const std::vector<std::string> names = parameterNames(member, form);
  lines.push_back("  [" + idText(member.id) + kind + ", helpstring(" + quoted(member.help) + ")]");
  std::string declaration = "  HRESULT " + std::string(member.name) + "(";
  for (std::size_t i = 0; i < form.params.size(); ++i)
    declaration += (i == 0 ? "" : ", ") + parameterText(form.params[i], names[i]);
  lines.push_back(declaration + ");");
}

void indent(std::vector<std::string>& lines) {
  for (std::string& line : lines) {
    if (!line.empty()) line.insert(0, "  ");
  }
}

}  // namespace

std::vector<std::string> interfaceLines(const TypeInfo& type) {
  std::vector<std::string> lines;
  lines.push_back("[object, dual, uuid(" + formatGuid(type.iid) + ")]");
  lines.push_back("interface " + std::string(type.name) + " : " +
                  (type.base ? type.base->name : "IDispatch") + " {");
  for (const Member& member : type.members) {
    addForm(lines, member, member.get, ", propget");
    addForm(lines, member, member.put, ", propput");
    addForm(lines, member, member.method, "");
  }
  lines.emplace_back("};");
  return lines;
}

std::vector<std::string> libraryLines() {
  std::vector<std::string> lines{
      "[uuid(" + formatGuid(LIBID_FORGEYARDLib) +
          "), version(1.0), lcid(0x409), helpstring(\"Forgeyard 1.0 Type Library\")]",
      "library FORGEYARDLib {"};
  for (const TypeInfo* type : typeLibrary()) {
    std::vector<std::string> own = interfaceLines(*type);
    indent(own);
    lines.insert(lines.end(), own.begin(), own.end());
    lines.emplace_back();
  }
  lines.back() = "};";
  return lines;
}

}  // namespace forgeyard::workbench
