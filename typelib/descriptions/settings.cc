#include "typelib/settings.h"

#include <deque>
#include <string>
#include <vector>

namespace forgeyard {

namespace {

constexpr std::array kFlagChoices{Choice{0, "no"}, Choice{1, "yes"}};

// "0 none, 1 standard, 2 all".
std::string listed(std::span<const Choice> choices) {
  std::string text;
  for (const Choice& choice : choices) {
    if (!text.empty()) text += ", ";
    text += std::to_string(choice.value);
    (text += ' ') += choice.name;
  }
  return text;
}

std::string helpOf(const SettingsProperty& row) {
  const std::string_view help = row.help;
  if (help.empty()) return listed(row.choices.all());
  return std::string(help) + (row.type == SettingsProperty::Type::Flag ? " (0 or 1)" : "");
}

// The description of a settings interface, made from the rows of its properties, and what it borrows.
// `further` members follow them.
class SettingsDescription {
 public:
  SettingsDescription(const char* name, const Guid& iid, const TypeInfo* base,
                      std::span<const SettingsProperty> rows, std::initializer_list<Member> further = {}) {
    for (const SettingsProperty& row : rows) members_.push_back(memberFor(row));
    members_.insert(members_.end(), further);
    info_ = {name, iid, members_, base};
  }
  SettingsDescription(const SettingsDescription&) = delete;
  SettingsDescription& operator=(const SettingsDescription&) = delete;

  const TypeInfo& info() const { return info_; }

 private:
  Member memberFor(const SettingsProperty& row) {
    const bool flag = row.type == SettingsProperty::Type::Flag;
    return {.id = row.id,
            .name = row.memberName,
            .arguments = "",
            .help = helps_.emplace_back(helpOf(row)).c_str(),
            .get = row.get,
            .put = row.put,
            .method = {},
            .choices = flag ? std::span<const Choice>(kFlagChoices) : row.choices.all()};
  }

  std::deque<std::string> helps_;
  std::vector<Member> members_;
  TypeInfo info_{};
};

}  // namespace

template <>
const TypeInfo& typeInfo<IBuilderSettings>() {
  static const SettingsDescription description(
      "IBuilderSettings", IBuilderSettings::iid, nullptr, SettingsRows<IBuilderSettings>::kRows,
      {readOnly<&IBuilderSettings::get_Clone>(6, "Clone", "a copy"),
       method<&IBuilderSettings::LogicallyEqual>(7, "LogicallyEqual", "pSettings,result",
                                                 "whether two settings say the same")});
  return description.info();
}

#define FORGEYARD_SETTINGS_INFO(Interface)                                                                  \
  template <>                                                                                               \
  const TypeInfo& typeInfo<Interface>() {                                                                   \
    static const SettingsDescription description(#Interface, Interface::iid, &typeInfo<IBuilderSettings>(), \
                                                 SettingsRows<Interface>::kRows);                           \
    return description.info();                                                                              \
  }

FORGEYARD_SETTINGS_INFO(ICmdLineSettings)
FORGEYARD_SETTINGS_INFO(ICcSettings)
FORGEYARD_SETTINGS_INFO(IAsmSettings)
FORGEYARD_SETTINGS_INFO(ILinkSettings)

template <>
const TypeInfo& typeInfo<ILinkerSettings>() {
  static const TypeInfo info{"ILinkerSettings", ILinkerSettings::iid, {}, &typeInfo<ILinkSettings>()};
  return info;
}

FORGEYARD_TYPE_INFO(ICmdLine, nullptr,
                    property<&ICmdLine::get_Name, &ICmdLine::put_Name>(1, "Name", "display name"))

FORGEYARD_TYPE_INFO(ICc, nullptr, property<&ICc::get_Name, &ICc::put_Name>(1, "Name", "display name"))

FORGEYARD_TYPE_INFO(IAsm, nullptr, property<&IAsm::get_Name, &IAsm::put_Name>(1, "Name", "display name"))

FORGEYARD_TYPE_INFO(ILinker, nullptr,
                    property<&ILinker::get_Name, &ILinker::put_Name>(1, "Name", "display name"))

}  // namespace forgeyard
