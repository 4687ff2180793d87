#include "workbench/session/command_host.h"

#include <algorithm>

namespace forgeyard::workbench {

namespace {

// The state of one command, for the object that serves it to fill in.
class CommandState final : public ComObject<IHostCommand> {
 public:
  HRESULT get_Enabled(std::int32_t* value) override {
    *value = enabled_;
    return S_OK;
  }
  HRESULT put_Enabled(std::int32_t value) override {
    enabled_ = value;
    return S_OK;
  }
  HRESULT get_Checked(std::int32_t* value) override {
    *value = checked_;
    return S_OK;
  }
  HRESULT put_Checked(std::int32_t value) override {
    checked_ = value;
    return S_OK;
  }
  HRESULT put_MenuText(const BString&) override { return S_OK; }

 private:
  std::int32_t enabled_ = 0;
  std::int32_t checked_ = 0;
};

bool isEnabled(IUseCommands& object, std::uint32_t id) {
  const auto state = make<CommandState>();
  std::int32_t changed = 0;
  check(object.UpdateCommand(id, state.get(), &changed));
  std::int32_t enabled = 0;
  check(state->get_Enabled(&enabled));
  return enabled != 0;
}

}  // namespace

HRESULT CommandHost::RegisterObject(const Guid& clsid, IUnknown* object) {
  return guard([&] { objects_.emplace_back(clsid, object); });
}

HRESULT CommandHost::UnregisterObject(const Guid& clsid, IUnknown* object) {
  return std::erase(objects_, std::pair(clsid, object)) ? S_OK : S_FALSE;
}

void CommandHost::addObject(IUseCommands& object) {
  Table table{Ref<IUseCommands>(&object), {}};
  check(object.GetCommands(&table.commands));
  tables_.push_back(std::move(table));
}

CommandOutcome CommandHost::run(std::u16string_view name) const {
  for (const Table& table : tables_) {
    const auto found = std::find_if(table.commands.begin(), table.commands.end(),
                                    [&](const CommandEntry& entry) { return entry.name == name; });
    if (found == table.commands.end()) continue;
    if (!isEnabled(*table.object, found->id)) return CommandOutcome::Disabled;
    check(table.object->RunCommand(found->id));
    return CommandOutcome::Ran;
  }
  return CommandOutcome::Unknown;
}

std::vector<BString> CommandHost::names() const {
  std::vector<BString> names;
  for (const Table& table : tables_) {
    for (const CommandEntry& entry : table.commands) names.emplace_back(entry.name);
  }
  return names;
}

}  // namespace forgeyard::workbench
