#include "model/configurations/configuration.h"

#include "model/core/enumerate.h"
#include "typelib/classes.h"
#include "typelib/component.h"
#include "typelib/settings.h"

namespace forgeyard {

namespace {

constexpr std::uint32_t kRecordVersion = 3;

enum Notification : std::int32_t { kName = 1, kOutputDirectory = 2, kIntermediateDirectory = 3 };

}  // namespace

void ConfigurationRecord::describe(RecordFields& fields) {
  const std::uint32_t version = fields.version(kRecordVersion);
  fields.text(u"Name", name);
  fields.text(u"OutputDirectory", outputDirectory);
  fields.text(u"IntermediateDirectory", intermediateDirectory);
  TextPairs pairs = cookies.pairs();
  fields.pairs(u"cookies", pairs, version > 0);
  cookies.assign(pairs);
  fields.learnt().flag(u"BuildDirty", buildDirty, version > 1);
  fields.flag(u"UpdateFileDependencies", updateFileDependencies, version > 2);
}

HRESULT CConfiguration::putAndNotify(BString& field, const BString& value, std::int32_t id) {
  return guard([&] {
    field = value;
    notify(id);
  });
}

HRESULT CConfiguration::get_Name(BString* value) {
  *value = record_.name;
  return S_OK;
}

HRESULT CConfiguration::put_Name(const BString& value) {
  return putAndNotify(record_.name, value, kName);
}

HRESULT CConfiguration::get_OutputDirectory(BString* value) {
  *value = record_.outputDirectory;
  return S_OK;
}

HRESULT CConfiguration::put_OutputDirectory(const BString& value) {
  return putAndNotify(record_.outputDirectory, value, kOutputDirectory);
}

HRESULT CConfiguration::get_IntermediateDirectory(BString* value) {
  *value = record_.intermediateDirectory;
  return S_OK;
}

HRESULT CConfiguration::put_IntermediateDirectory(const BString& value) {
  return putAndNotify(record_.intermediateDirectory, value, kIntermediateDirectory);
}

HRESULT CConfiguration::get_UpdateFileDependencies(std::int32_t* value) {
  *value = record_.updateFileDependencies ? 1 : 0;
  return S_OK;
}

HRESULT CConfiguration::put_UpdateFileDependencies(std::int32_t value) {
  record_.updateFileDependencies = value != 0;
  return S_OK;
}

HRESULT CConfiguration::get_BuildDirty(std::int32_t* value) {
  *value = record_.buildDirty ? 1 : 0;
  return S_OK;
}

HRESULT CConfiguration::put_BuildDirty(std::int32_t value) {
  record_.buildDirty = value != 0;
  return S_OK;
}

HRESULT CConfiguration::put_Project(IProject* value) {
  return guard([&] { project_ = WeakRef<IProject>(value); });
}

// The settings transaction

BString CConfiguration::target() const {
  const BString* found = record_.cookies.find(kTargetCookie);
  return found && !found->isNull() ? *found : BString(u"");
}

HRESULT CConfiguration::BeforeSettings() {
  return guard([&] {
    snapshot_ = Snapshot{record_.outputDirectory, record_.intermediateDirectory, target(),
                         record_.updateFileDependencies};
  });
}

// A configuration that was added within the transaction has nothing to go back to.
HRESULT CConfiguration::AfterSettings(std::int32_t apply) {
  return guard([&] {
    if (!apply) {
      if (snapshot_) restore(*snapshot_);
    } else if (!record_.buildDirty) {
      markBuildDirty(snapshot_.value_or(Snapshot{}));
    }
  });
}

void CConfiguration::restore(const Snapshot& before) {
  record_.outputDirectory = before.outputDirectory;
  record_.intermediateDirectory = before.intermediateDirectory;
  record_.updateFileDependencies = before.updateFileDependencies;
  record_.cookies.put(kTargetCookie, before.target);
}

// That the flag being on is enough, changed or not, is meant: with it on, applied settings rebuild.
void CConfiguration::markBuildDirty(const Snapshot& before) {
  const bool targetChanged = target() != before.target;
  const bool updateChanged = record_.updateFileDependencies != before.updateFileDependencies;
  if (!targetChanged && !record_.updateFileDependencies) return;
  record_.buildDirty = true;
  markToolsDirty(targetChanged, updateChanged);
}

void CConfiguration::markToolsDirty(bool targetChanged, bool updateChanged) {
  const Ref<IProject> project = project_.lock();
  if (!project) return;
  Ref<IComponents> components;
  check(project->get_Components(&components));
  forEachObject<IComponent>(*components, [&](IComponent& component) {
    Ref<IUnknown> settings;
    if (failed(component.get_Setting(this, &settings))) return;
    if (const Ref<ICcSettings> compiler = settings.as<ICcSettings>()) {
      if (targetChanged || updateChanged) check(compiler->put_BuildDirty(1));
    } else if (const Ref<IAsmSettings> assembler = settings.as<IAsmSettings>()) {
      if (targetChanged) check(assembler->put_BuildDirty(1));
    }
  });
}

// Persistence

HRESULT CConfiguration::GetClassID(Guid* out) {
  *out = CLSID_Configuration;
  return S_OK;
}

HRESULT CConfiguration::IsDirty() {
  return inFile_ && record_ == stored_ ? S_FALSE : S_OK;
}

HRESULT CConfiguration::Load(IStream* stream) {
  return guard([&] {
    RecordReader reader(stream);
    LoadFields fields(reader);
    ConfigurationRecord record;
    record.describe(fields);
    record_ = stored_ = std::move(record);
    inFile_ = true;
  });
}

HRESULT CConfiguration::Save(IStream* stream, bool clearDirty) {
  return guard([&] {
    RecordWriter writer(stream);
    SaveFields fields(writer);
    record_.describe(fields);
    if (!clearDirty) return;
    stored_ = record_;
    inFile_ = true;
  });
}

}  // namespace forgeyard
