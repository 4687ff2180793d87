#include "model/source_file.h"

#include <algorithm>

#include "engine/simple_collection.h"
#include "model/file_names.h"
#include "platform/paths/shell_path.h"
#include "typelib/classes.h"

namespace forgeyard {

namespace {

constexpr std::uint32_t kRecordVersion = 2;

enum Notification : std::int32_t { kName = 1, kPersistAs = 2, kProject = 3, kSourceControl = 9 };

void saveList(RecordWriter& record, const std::vector<BString>& list) {
  record.u32(static_cast<std::uint32_t>(list.size()));
  for (const BString& name : list) record.listedString(name);
}

// A dependency as it is kept: canonical, with a dot in place of the working directory.
BString keptForm(const BString& name, const BString& workingDirectory) {
  std::u16string path(name.view());
  std::replace(path.begin(), path.end(), u'/', u'\\');
  if (auto canonical = PathCanonicalizeA(std::u16string_view(path), NO_PATH_LIMIT))
    path = std::move(*canonical);
  return persistedName(path, workingDirectory);
}

}  // namespace

SourceFileReader::SourceFileReader(IStream* stream, IProject* owner)
    : record(stream), project(owner), pool_(NamePool::shared()) {
  if (!owner) return;
  BString directory;
  check(owner->get_WorkingDirectory(&directory));
  directory_ = directory.view();
  PathAddBackslashA(directory_);
}

std::vector<BString> SourceFileReader::names() {
  constexpr std::uint32_t kSmallestEntry = 4;
  std::uint32_t left = record.count(kSmallestEntry);
  std::vector<BString> list;
  list.reserve(left);
  for (; left > 0; --left) list.push_back(name());
  return list;
}

BString SourceFileReader::resolve(const BString& persistAs) {
  buffer_ = directory_;
  buffer_ += persistAs.view();
  const auto canonical = PathCanonicalizeA(std::u16string_view(buffer_), NO_PATH_LIMIT);
  return canonical ? BString(*canonical) : BString(buffer_);
}

// ISourceFile

HRESULT CSourceFile::get_Name(BString* value) {
  *value = name_;
  return S_OK;
}

HRESULT CSourceFile::put_Name(const BString& value) {
  return guard([&] {
    if (name_ != value) changed_ = true;
    name_ = value;
    fileNamesChanged();
    notify(kName);
  });
}

// Reading tells the sinks, writing doesn't; clients are used to it.
HRESULT CSourceFile::get_PersistAs(BString* value) {
  return guard([&] {
    *value = persistAs_;
    notify(kPersistAs);
  });
}

HRESULT CSourceFile::put_PersistAs(const BString& value) {
  if (persistAs_ != value) changed_ = true;
  persistAs_ = value;
  return S_OK;
}

HRESULT CSourceFile::get_Project(Ref<IProject>* out) {
  *out = project_.lock();
  return S_OK;
}

HRESULT CSourceFile::put_Project(IProject* value) {
  return guard([&] {
    project_ = WeakRef<IProject>(value);
    notify(kProject);
  });
}

HRESULT CSourceFile::AddManualDep(const BString& name) {
  return guard([&] {
    manualDeps_.push_back(NamePool::shared()->intern(name));
    changed_ = true;
  });
}

HRESULT CSourceFile::RemoveManualDep(const BString& name) {
  if (std::erase(manualDeps_, BString(name)) != 0) changed_ = true;
  return S_OK;
}

HRESULT CSourceFile::get_ManualDeps(Ref<ISimpleCollection>* out) {
  return guard([&] { *out = make<CSimpleCollection>(manualDeps_); });
}

HRESULT CSourceFile::get_AutomaticDeps(Ref<ISimpleCollection>* out) {
  return guard([&] { *out = make<CSimpleCollection>(automaticDeps_); });
}

BString CSourceFile::workingDirectory() const {
  BString directory;
  if (IProject* project = project_.get()) check(project->get_WorkingDirectory(&directory));
  return directory;
}

HRESULT CSourceFile::put_AutomaticDeps(IUnknown* names) {
  return guard([&] {
    const Ref<IEnumString> walk = query<IEnumString>(names);
    if (!walk) return;
    const BString directory = workingDirectory();
    const std::shared_ptr<NamePool> pool = NamePool::shared();
    std::vector<BString> list;
    forEach(walk, [&](const BString& name) { list.push_back(pool->intern(keptForm(name, directory))); });
    if (list == automaticDeps_) return;
    list.shrink_to_fit();
    automaticDeps_ = std::move(list);
    changed_ = true;
  });
}

HRESULT CSourceFile::get_SourceControl(std::int32_t* value) {
  *value = sourceControl_;
  return S_OK;
}

HRESULT CSourceFile::put_SourceControl(std::int32_t value) {
  return guard([&] {
    if (sourceControl_ == value) return;
    sourceControl_ = value;
    changed_ = true;
    notify(kSourceControl);
  });
}

// File times aren't kept here: they are read from the disk when a build needs them.
HRESULT CSourceFile::get_LastUpdated(double*) {
  return S_OK;
}

HRESULT CSourceFile::get_LastUpdatedDeps(double*) {
  return S_OK;
}

// Events

void CSourceFile::notify(std::int32_t id) const {
  if (sinks_) sinks_->fire([id](IPropertyNotifySink& sink) { ignore(sink.OnChanged(id)); });
}

HRESULT CSourceFile::FindConnectionPoint(const Guid& iid, Ref<IConnectionPoint>* out) {
  return guard([&] {
    *out = nullptr;
    if (iid != IPropertyNotifySink::iid) return CONNECT_E_NOCONNECTION;
    if (!sinks_) sinks_ = make<ConnectionPoint<IPropertyNotifySink>>();
    *out = Ref<IConnectionPoint>(sinks_.get());
    return S_OK;
  });
}

// Persistence

HRESULT CSourceFile::GetClassID(Guid* out) {
  *out = CLSID_SourceFile;
  return S_OK;
}

HRESULT CSourceFile::IsDirty() {
  return changed_ ? S_OK : S_FALSE;
}

HRESULT CSourceFile::Load(IStream* stream) {
  return guard([&] {
    SourceFileReader reader(stream, project_.get());
    load(reader);
  });
}

void CSourceFile::load(SourceFileReader& reader) {
  const std::uint32_t version = reader.record.u32();
  project_ = reader.project;
  persistAs_ = reader.name();
  if (project_ && persistAs_.view().starts_with(u'.')) {
    reader.skipText();
    name_ = reader.resolve(persistAs_);
  } else {
    name_ = reader.name();
  }
  if (version > 0) {
    automaticDeps_ = reader.names();
    manualDeps_ = reader.names();
  }
  if (version > 1) sourceControl_ = reader.record.i32();
  changed_ = false;
  fileNamesChanged();
}

HRESULT CSourceFile::Save(IStream* stream, bool clearDirty) {
  return guard([&] {
    RecordWriter record(stream);
    record.u32(kRecordVersion);
    record.listedString(persistAs_);
    record.listedString(name_);
    saveList(record, automaticDeps_);
    saveList(record, manualDeps_);
    record.i32(sourceControl_);
    if (clearDirty) changed_ = false;
  });
}

}  // namespace forgeyard
