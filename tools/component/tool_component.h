#pragma once

#include "engine/component/builder_component.h"
#include "engine/self_documentation/diagnostics.h"
#include "tools/component/target_tool.h"
#include "tools/settings/settings_object.h"

namespace forgeyard {

// What a tool component is by its types alone: its name under the tool's own interface, its class and its
// settings objects, and further interfaces.
template <class Interface, class Settings, const Guid& Clsid, class... More>
class ToolComponent : public ComObject<CBuilderComponent, Dual<Interface>, More...> {
 public:
  HRESULT get_Name(BString* value) override { return this->get_ComponentName(value); }
  HRESULT put_Name(const BString& value) override {
    return guard([&] { this->setName(value); });
  }
  HRESULT GetClassID(Guid* out) override {
    *out = Clsid;
    return S_OK;
  }

 protected:
  using SettingsInterface = typename Settings::SettingsInterface;

  Ref<IUnknown> newSettings() override { return Ref<SettingsInterface>(make<Settings>()); }

  // The settings of the active configuration; throws StatusError where there are none.
  Ref<SettingsInterface> toolSettings() {
    Ref<SettingsInterface> settings = this->activeSettings().template as<SettingsInterface>();
    if (!settings) throw StatusError(E_FAIL);
    return settings;
  }

 private:
  Diagnostics diagnostics_{static_cast<Interface*>(this)};
};

// A tool whose program goes by the target of the active configuration, and which runs for each file with a
// command that comes from its settings.
template <class Interface, class Settings, const Guid& Clsid>
class TargetToolComponent : public ToolComponent<Interface, Settings, Clsid> {
 protected:
  using SettingsInterface = typename Settings::SettingsInterface;

  virtual const TargetToolKind& kind() const = 0;
  // The command with its macros unexpanded; `program` opens it.
  virtual BString render(SettingsInterface& settings, IConfiguration& configuration,
                         const BString& program) = 0;
  // The tool has run for the file without an error.
  virtual void fileBuilt(const BString& /*file*/) {}

  bool gathersOnce() override { return false; }
  bool commandReady() override { return GenerateCommand() == 0; }

  void DoBuild(e_btr* status) override {
    if (!this->commandReady()) {
      *status = E_BTR_ERROR;
      return;
    }
    if (this->task() != E_TASK_COMPILE) this->writeHeader();
    *status = this->buildEachFile([this](const BString& file) { fileBuilt(file); });
    this->clearBuildDirty(*status);
  }

 private:
  // Puts the command into the settings of the active configuration. 0, or 1 after a message in the output
  // tab.
  int GenerateCommand() {
    const Ref<IConfiguration> configuration = this->activeConfiguration();
    const TargetTool tool = findTargetTool(configuration.get(), kind());
    if (!tool.problem.isNull()) {
      this->say(tool.problem);
      return 1;
    }
    const Ref<SettingsInterface> settings = this->toolSettings();
    check(settings->put_Command(render(*settings, *configuration, tool.command)));
    return 0;
  }
};

}  // namespace forgeyard
