#pragma once

#include <utility>
#include <vector>

#include "engine/component/builder_node.h"
#include "engine/component/output_tab.h"
#include "platform/com/connection_point.h"
#include "platform/com/weak_ref.h"
#include "platform/storage/records/persist.h"
#include "platform/storage/records/record_fields.h"
#include "typelib/component.h"
#include "typelib/configuration.h"
#include "typelib/host.h"
#include "typelib/project.h"
#include "typelib/records.h"

namespace forgeyard {

// What every component of a project has in common, folder and tool alike: its place in the project, one
// settings object for each configuration with the settings transaction over them, the sources that feed it,
// and its sub-storage with a stream of its own and the stream "Settings". Main thread only.
class CComponentBase : public CBuilderInputOutput,
                       public Dual<IComponent>,
                       public IPersistStorage,
                       public IProjectE,
                       public IBuilderPrivate,
                       public IComponentRecords,
                       public OutputTab {
 public:
  using Implements = TypeList<Dual<IComponent>, IPersistStorage, IProjectE, CBuilderInputOutput,
                              IBuilderPrivate, IComponentRecords, OutputTab>;

  // IComponent
  HRESULT SetParent(IDispatch* project, IUnknown* lot) override;
  HRESULT CreateUIWindow(Ref<IDispatch>* out) override;
  HRESULT get_Id(std::int32_t* value) override;
  HRESULT put_Id(std::int32_t value) override;
  HRESULT get_Setting(IConfiguration* configuration, Ref<IUnknown>* out) override;
  HRESULT Init() override;
  HRESULT Close() override;
  HRESULT get_ComponentName(BString* value) override;
  HRESULT BeforeSettings() override;
  HRESULT AfterSettings(std::int32_t apply) override;
  HRESULT AddSource(IComponent* source) override;
  HRESULT RemoveSource(IComponent* source) override;
  HRESULT AddSink(IComponent* sink) override;
  HRESULT RemoveSink(IComponent* sink) override;
  HRESULT get_Project(Ref<IDispatch>* out) override;
  HRESULT put_Project(IDispatch* value) override;

  // IPersistStorage; GetClassID is the derived class's.
  HRESULT IsDirty() override;
  HRESULT InitNew(IStorage* storage) override;
  HRESULT Load(IStorage* storage) override;
  HRESULT Save(IStorage* storage, bool sameAsLoad) override;
  HRESULT SaveCompleted(IStorage* storage) override;
  HRESULT HandsOffStorage() override;

  // IProjectE
  HRESULT OnNewConfiguration(IConfiguration* created, IConfiguration* basedOn) override;
  HRESULT OnDeletedConfiguration(IConfiguration* old) override;

  // IComponentRecords
  void describeRecords(RecordStreams& streams) override;

 protected:
  // A new settings object with the class's defaults; it has IPersistStream.
  virtual Ref<IUnknown> newSettings() = 0;
  virtual Ref<IUnknown> cloneSettings(IUnknown& settings) = 0;
  // In an applied settings transaction, for each configuration, before `now` takes the place of `old`.
  virtual void settingsApplied(IUnknown& old, IUnknown& now) = 0;
  // The component's own stream, which begins with a version: its name, and what stands in it.
  virtual const char16_t* streamName() const = 0;
  virtual void describeRecord(RecordFields& fields) = 0;
  // Further streams.
  virtual void loadStreams(IStorage&) {}
  virtual void saveStreams(IStorage&) {}
  virtual void describeStreams(RecordStreams&) {}
  // On BeforeSettings and AfterSettings, for state outside the settings objects.
  virtual void snapshot() {}
  virtual void endTransaction(bool /*apply*/) {}
  // On Close, before the project link goes.
  virtual void closing() {}
  // Whether something outside name and settings differs from the file.
  virtual bool contentsDirty() { return false; }
  virtual void contentsSaved() {}

  // Runs the dialog for a new component's fields under the main frame: true for OK.
  bool askForFields(const BString& title, std::span<DialogField> fields);

  Ref<IProject> project() const { return project_.lock(); }
  // The project's active configuration, or null.
  Ref<IConfiguration> activeConfiguration() const;
  // The settings of the active configuration; throws StatusError where there are none.
  Ref<IUnknown> activeSettings();
  IServiceLookup* services() const { return services_.get(); }
  IServiceLookup* outputServices() const override { return services_.get(); }

  const BString& name() const { return name_; }
  void setName(const BString& name) { name_ = name; }
  std::int32_t id() const { return id_; }
  void setId(std::int32_t id) { id_ = id; }
  void describeName(RecordFields& fields) { fields.text(u"Name", name_); }
  void describeId(RecordFields& fields) { fields.number(u"Id", id_); }
  void markChanged() { changed_ = true; }

  // Opens an existing stream of the kept storage for writing, else creates it.
  static Ref<IStream> streamForWriting(IStorage& storage, const BString& name);

 private:
  using SettingsMap = std::vector<std::pair<Ref<IConfiguration>, Ref<IUnknown>>>;

  static Ref<IUnknown>* find(SettingsMap& map, IConfiguration* configuration);
  SettingsMap& inForce() { return transaction_ ? working_ : settings_; }
  static void put(SettingsMap& map, IConfiguration* configuration, Ref<IUnknown> settings);
  // Settings for a new configuration: a copy of those of the one that it is based on, if there are any.
  void addSettings(SettingsMap& map, IConfiguration* configuration, IConfiguration* basedOn);
  static void removeSettings(SettingsMap& map, IConfiguration* configuration);
  void keep(IStorage* storage);
  void rememberStored();
  void describeOwnStream(RecordFields& fields);
  void loadSettings(IStream& stream);
  void saveSettings(IStream& stream);

  WeakRef<IProject> project_;
  Ref<IServiceLookup> services_;
  Advice projectEvents_;
  BString name_;
  std::int32_t id_ = 0;
  SettingsMap settings_;
  SettingsMap working_;  // between BeforeSettings and AfterSettings
  bool transaction_ = false;
  Ref<IStorage> storage_;
  bool changed_ = false;  // by more than the two below
  BString storedName_;    // what the file holds
  std::int32_t storedId_ = 0;
};

}  // namespace forgeyard
