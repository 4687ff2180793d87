#include "engine/component/component_base.h"

#include <algorithm>

#include "engine/modal_scope.h"

namespace forgeyard {

namespace {

constexpr std::uint32_t kOpenForWriting = STGM_READWRITE | STGM_SHARE_EXCLUSIVE;
constexpr std::uint32_t kCreate = STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE;
constexpr const char16_t* kSettingsStream = u"Settings";

Ref<IBuilderInput> inputOf(IComponent* component) {
  return query<IBuilderInput>(component);
}

bool recordDirty(IUnknown* settings) {
  const Ref<IPersistStream> record = query<IPersistStream>(settings);
  return record && record->IsDirty() == S_OK;
}

}  // namespace

HRESULT CComponentBase::SetParent(IDispatch* project, IUnknown* lot) {
  services_ = query<IServiceLookup>(lot);
  return put_Project(project);
}

HRESULT CComponentBase::CreateUIWindow(Ref<IDispatch>* out) {
  *out = nullptr;
  return E_FAIL;
}

HRESULT CComponentBase::get_Id(std::int32_t* value) {
  *value = id_;
  return S_OK;
}

HRESULT CComponentBase::put_Id(std::int32_t value) {
  id_ = value;
  return S_OK;
}

HRESULT CComponentBase::get_Setting(IConfiguration* configuration, Ref<IUnknown>* out) {
  Ref<IUnknown>* found = find(inForce(), configuration);
  *out = found ? *found : Ref<IUnknown>();
  return found ? S_OK : E_FAIL;
}

HRESULT CComponentBase::Init() {
  return guard([&] { check(projectEvents_.connect<IProjectE>(project_.get(), this)); });
}

HRESULT CComponentBase::Close() {
  return guard([&] {
    projectEvents_.disconnect();
    closing();
    clearSources();
    clearSinks();
    settings_.clear();
    working_.clear();
    transaction_ = false;
    storage_ = nullptr;
    project_.reset();
    services_ = nullptr;
  });
}

HRESULT CComponentBase::get_ComponentName(BString* value) {
  *value = name_;
  return S_OK;
}

HRESULT CComponentBase::AddSource(IComponent* source) {
  if (const Ref<IBuilderInput> input = inputOf(source)) addSource(input.get());
  return S_OK;
}

HRESULT CComponentBase::RemoveSource(IComponent* source) {
  if (const Ref<IBuilderInput> input = inputOf(source)) removeSource(input.get());
  return S_OK;
}

HRESULT CComponentBase::AddSink(IComponent*) {
  return S_OK;
}

HRESULT CComponentBase::RemoveSink(IComponent*) {
  return S_OK;
}

HRESULT CComponentBase::get_Project(Ref<IDispatch>* out) {
  *out = project_.lock();
  return S_OK;
}

HRESULT CComponentBase::put_Project(IDispatch* value) {
  project_ = WeakRef<IProject>(query<IProject>(value).get());
  return S_OK;
}

Ref<IConfiguration> CComponentBase::activeConfiguration() const {
  Ref<IConfiguration> active;
  if (IProject* project = project_.get()) check(project->get_ActiveConfiguration(&active));
  return active;
}

Ref<IUnknown> CComponentBase::activeSettings() {
  Ref<IUnknown> settings;
  check(get_Setting(activeConfiguration().get(), &settings));
  return settings;
}

bool CComponentBase::askForFields(const BString& title, std::span<DialogField> fields) {
  const ModalScope scope(services_.get());
  bool ok = false;
  check(scope.userInterface().RunDialog(title, fields, &ok));
  return ok;
}

// Settings and their transaction

Ref<IUnknown>* CComponentBase::find(SettingsMap& map, IConfiguration* configuration) {
  const auto found = std::find_if(map.begin(), map.end(), [&](const auto& entry) {
    return sameObject(entry.first.get(), configuration);
  });
  return found == map.end() ? nullptr : &found->second;
}

void CComponentBase::put(SettingsMap& map, IConfiguration* configuration, Ref<IUnknown> settings) {
  if (Ref<IUnknown>* found = find(map, configuration)) {
    *found = std::move(settings);
  } else {
    map.emplace_back(configuration, std::move(settings));
  }
}

void CComponentBase::addSettings(SettingsMap& map, IConfiguration* configuration, IConfiguration* basedOn) {
  Ref<IUnknown>* base = basedOn ? find(map, basedOn) : nullptr;
  put(map, configuration, base ? cloneSettings(**base) : newSettings());
}

void CComponentBase::removeSettings(SettingsMap& map, IConfiguration* configuration) {
  std::erase_if(map, [&](const auto& entry) { return sameObject(entry.first.get(), configuration); });
}

HRESULT CComponentBase::BeforeSettings() {
  return guard([&] {
    snapshot();
    working_.clear();
    for (const auto& [configuration, settings] : settings_) {
      working_.emplace_back(configuration, cloneSettings(*settings));
    }
    transaction_ = true;
  });
}

HRESULT CComponentBase::AfterSettings(std::int32_t apply) {
  return guard([&] {
    if (apply && transaction_) {
      for (auto& [configuration, settings] : settings_) {
        if (Ref<IUnknown>* now = find(working_, configuration.get())) settingsApplied(*settings, **now);
      }
      settings_ = std::move(working_);
    }
    endTransaction(apply != 0);
    working_.clear();
    transaction_ = false;
  });
}

HRESULT CComponentBase::OnNewConfiguration(IConfiguration* created, IConfiguration* basedOn) {
  return guard([&] {
    addSettings(settings_, created, basedOn);
    if (transaction_) addSettings(working_, created, basedOn);
    changed_ = true;
  });
}

HRESULT CComponentBase::OnDeletedConfiguration(IConfiguration* old) {
  return guard([&] {
    removeSettings(settings_, old);
    removeSettings(working_, old);
    changed_ = true;
  });
}

// Persistence

void CComponentBase::rememberStored() {
  changed_ = false;
  storedName_ = name_;
  storedId_ = id_;
}

void CComponentBase::keep(IStorage* storage) {
  if (storage_) throw StatusError(E_FAIL);
  storage_ = Ref<IStorage>(storage);
}

HRESULT CComponentBase::IsDirty() {
  return guard([&] {
    const bool dirty = changed_ || name_ != storedName_ || id_ != storedId_ || contentsDirty() ||
                       std::any_of(settings_.begin(), settings_.end(),
                                   [](const auto& entry) { return recordDirty(entry.second.get()); });
    return dirty ? S_OK : S_FALSE;
  });
}

HRESULT CComponentBase::InitNew(IStorage* storage) {
  return guard([&] {
    keep(storage);
    changed_ = true;
    const Ref<IProject> owner = project();
    if (!owner) return;
    Ref<IConfigurations> configurations;
    check(owner->get_Configurations(&configurations));
    Ref<IUnknown> walk;
    check(configurations->get__NewEnum(&walk));
    forEach(walk.as<IEnumVARIANT>(), [&](const Variant& value) {
      Ref<IUnknown> object;
      check(value.toUnknown(&object));
      if (const Ref<IConfiguration> configuration = object.as<IConfiguration>()) {
        put(settings_, configuration.get(), newSettings());
      }
    });
  });
}

HRESULT CComponentBase::Load(IStorage* storage) {
  return guard([&] {
    keep(storage);
    Ref<IStream> stream;
    if (succeeded(storage->OpenStream(streamName(), STGM_READ | STGM_SHARE_EXCLUSIVE, &stream))) {
      RecordReader record(stream.get());
      LoadFields fields(record);
      describeOwnStream(fields);
    }
    stream = nullptr;
    loadStreams(*storage);
    if (succeeded(storage->OpenStream(kSettingsStream, STGM_READ | STGM_SHARE_EXCLUSIVE, &stream))) {
      loadSettings(*stream);
    }
    rememberStored();
  });
}

void CComponentBase::describeOwnStream(RecordFields& fields) {
  fields.unusedVersion(u"version");
  describeRecord(fields);
}

void CComponentBase::describeRecords(RecordStreams& streams) {
  streams.record(streamName(), {}, [this](RecordFields& fields) { describeOwnStream(fields); });
  describeStreams(streams);
  streams.list({kSettingsStream, u"settings", true, {}}, [this](RecordFields& fields) {
    BString configuration;
    fields.text(u"configuration", configuration);
    const Ref<IRecord> record = newSettings().as<IRecord>();
    check(record ? S_OK : E_NOINTERFACE);
    record->describe(fields);
  });
}

void CComponentBase::loadSettings(IStream& stream) {
  RecordReader reader(&stream);
  reader.u32();  // version
  const Ref<IProject> owner = project();
  if (!owner) throw StatusError(E_FAIL);
  Ref<IConfigurations> configurations;
  check(owner->get_Configurations(&configurations));
  constexpr std::uint32_t kSmallestEntry = 4;
  for (std::uint32_t left = reader.count(kSmallestEntry); left > 0; --left) {
    Ref<IConfiguration> configuration;
    check(configurations->get_Item(reader.listedString(), &configuration));
    const Ref<IUnknown> settings = newSettings();
    check(settings.as<IPersistStream>()->Load(&stream));
    put(settings_, configuration.get(), settings);
  }
}

Ref<IStream> CComponentBase::streamForWriting(IStorage& storage, const BString& name) {
  Ref<IStream> stream;
  if (failed(storage.OpenStream(name, kOpenForWriting, &stream))) {
    check(storage.CreateStream(name, kCreate, &stream));
  }
  return stream;
}

void CComponentBase::saveSettings(IStream& stream) {
  RecordWriter writer(&stream);
  writer.u32(0);
  writer.u32(static_cast<std::uint32_t>(settings_.size()));
  for (const auto& [configuration, settings] : settings_) {
    BString configurationName;
    check(configuration->get_Name(&configurationName));
    writer.listedString(configurationName);
    check(settings.as<IPersistStream>()->Save(&stream, true));
  }
}

HRESULT CComponentBase::Save(IStorage* storage, bool) {
  return guard([&] {
    IStorage* target = storage ? storage : storage_.get();
    if (!target) throw StatusError(E_FAIL);
    {
      const Ref<IStream> stream = streamForWriting(*target, streamName());
      RecordWriter record(stream.get());
      SaveFields fields(record);
      describeOwnStream(fields);
    }
    saveStreams(*target);
    saveSettings(*streamForWriting(*target, kSettingsStream));
  });
}

HRESULT CComponentBase::SaveCompleted(IStorage* storage) {
  if (storage) storage_ = Ref<IStorage>(storage);
  rememberStored();
  return guard([&] { contentsSaved(); });
}

HRESULT CComponentBase::HandsOffStorage() {
  storage_ = nullptr;
  return S_OK;
}

}  // namespace forgeyard
